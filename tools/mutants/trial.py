"""Builds mutants in a copy of the tree, and runs the tests against them, the likeliest first.

A mutant costs little: only the objects that read the changed file are compiled, without debug
information and without the build system, and only what they are linked into is linked. Tests run in a
container that can write into the copy only and that sees no other process, since a mutant may remove
the wrong folder, or end the wrong process.
"""

import collections
import contextlib
import json
import os
import pathlib
import re
import resource
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import time

# Kinds of tests that look at other things than what the libraries do, and build much for it.
LEFT_OUT = ('install', 'project', 'globals', 'reference', 'symbols', 'docs', 'syscalls', 'layout',
            'discovery', 'authoring.rejected')
# Tests that compile what users write, and so read headers only.
OF_HEADERS = ('authoring.accepted', 'authoring.warnsOfNothing')
# Tests that take long, and so are run for several mutants at once.
SLOW = ('options.RoundTrip', 'options.Memory', 'options.randomOrder', 'supervised.promise',
        'reports.cuts', 'faults.memoryOfRunner')
MEMORY = 4 << 30
FILE_SIZE = 8 << 30  # some tests make sparse files of some size

# The kinds of tests that a room's mistakes are most likely seen by, besides the room's unit tests.
KINDS_OF_ROOM = {
    'program': ('options', 'supervised', 'reports', 'crashes', 'authoring', 'approval'),
    'supervisor': ('supervised', 'crashes'),
    'reporters': ('reports', 'authoring'),
    'guards': ('crashes', 'exit', 'faults'),
    'runner': ('approval',),
    'registration': ('authoring',),
    'checks': ('authoring',),
    'testing': ('authoring', 'approval'),
    'model': ('approval', 'authoring'),
    'selection': ('options',),
    'history': ('options',),
}

FAR = 3  # the rank of unit tests that have nothing to do with a file

CONTAINER = '''
mount --bind "$1" "$1"
mount -t tmpfs none /tmp
chmod 1777 /tmp
mount -o remount,bind,ro /
shift
cd "$PWD"
exec "$@"
'''


def kinds_of(path):
    default = ('authoring',) if '/qix/' in path else ()
    return KINDS_OF_ROOM.get(pathlib.Path(path).parts[2], default)


def limit():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
    resource.setrlimit(resource.RLIMIT_FSIZE, (FILE_SIZE, FILE_SIZE))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def run(command, cwd, environment=None, timeout=None, limited=False, output=subprocess.DEVNULL):
    """Returns the status of a command, or None when its time was over."""
    with subprocess.Popen(command, cwd=cwd, env=environment, stdin=subprocess.DEVNULL,
                          stdout=output, stderr=subprocess.DEVNULL, start_new_session=True,
                          preexec_fn=limit if limited else None) as process:
        try:
            return process.wait(timeout)
        except subprocess.TimeoutExpired:
            return None
        finally:
            with contextlib.suppress(ProcessLookupError):
                os.killpg(process.pid, signal.SIGKILL)


class Test:
    """A test of CTest's, or some unit tests of one executable."""

    def __init__(self, name, command, cwd, environment, status_of_skip=0, units=()):
        self.name = name
        self.command = command
        self.units = list(units)
        self.cwd = cwd
        self.environment = environment
        self.status_of_skip = status_of_skip

    @property
    def kind(self):
        return re.match('[a-z]+', self.name)[0]

    def of(self, names):
        """The unit tests of these names."""
        return Test(self.name, [self.command[0], '--gtest_fail_fast',
                                '--gtest_filter=' + ':'.join(names)], self.cwd, self.environment,
                    units=names)

    def behind(self, failed):
        """What is left to run when one of the unit tests does not count."""
        left = self.units[self.units.index(failed.units[0]) + 1:] if failed.units else []
        return self.of(left) if left and failed is not self else None


class Units:
    """The unit tests of an executable, in one locale."""

    def __init__(self, test, names, sources):
        self.test = test
        with tempfile.NamedTemporaryFile(mode='r', suffix='.json') as listed:
            subprocess.run([test.command[0], '--gtest_list_tests', f'--gtest_output=json:{listed.name}'],
                           check=True, stdout=subprocess.DEVNULL)
            suites = json.load(listed)['testsuites']
        # Compilers are told to name the files without their folders.
        files = {f'{suite["name"]}.{case["name"]}': sources.get(pathlib.Path(case['file']).name)
                 for suite in suites for case in suite['testsuite']}
        self.by_file = collections.defaultdict(list)
        for name in names:
            self.by_file[files.get(name)].append(name)


class Build:
    """What is built in a folder, and from what, as Ninja knows it."""

    def __init__(self, folder):
        self.folder = folder
        self.compiles = {}
        self.links = {}
        self.readers = collections.defaultdict(set)
        self.read_commands()
        self.read_dependencies()

    def ninja(self, *arguments):
        return subprocess.run(['ninja', *arguments], cwd=self.folder, check=True, text=True,
                              stdout=subprocess.PIPE).stdout

    def read_commands(self):
        for command in self.ninja('-t', 'commands', 'all').splitlines():
            words = shlex.split(command)
            if '-c' in words and '-o' in words:
                self.compiles[words[words.index('-o') + 1]] = self.plain_compile(words)
            elif '-o' in words and words[0] == ':':
                self.links[words[words.index('-o') + 1]] = words
            elif 'qc' in words:
                self.links[words[words.index('qc') + 1]] = words

    @staticmethod
    def plain_compile(words):
        """Without a launcher, debug information and dependencies; mutants may cause warnings."""
        first = next(i for i, word in enumerate(words) if re.search(r'(\+\+|g?cc)(-\d+)?$', word)
                     and not word.endswith('ccache'))
        kept, rest = [], iter(words[first:])
        for word in rest:
            if word in ('-MT', '-MF'):
                next(rest)
            elif word not in ('-g', '-g1', '-MD', '-Werror'):
                kept.append(word)
        return [*kept, '-w']

    def read_dependencies(self):
        reader = None
        for line in self.ninja('-t', 'deps').splitlines():
            if line.startswith('    ../../'):
                self.readers[line.strip()[6:]].add(reader)
            elif line and not line.startswith(' '):
                reader = line.split(':')[0]

    def depends(self, target, objects):
        return any(word in objects or (word.endswith('.a') and word in self.links and
                                       word != target and self.depends(word, objects))
                   for word in self.links[target])


class Changed:
    """The build while sources are changed; everything is as before when it is closed."""

    def __init__(self, build, tree, mutants):
        self.build = build
        self.originals = {tree / m.path: (tree / m.path).read_text() for m in mutants}
        self.objects = {name for m in mutants for name in build.readers[m.path]}
        self.compiled = set()
        self.linked = []
        for mutant in mutants:
            (tree / mutant.path).write_text(mutant.mutated)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for source, text in self.originals.items():
            source.write_text(text)
        for target in self.linked:
            os.replace(f'{target}.original', target)
        for name in self.compiled:
            (self.build.folder / f'{name}.mutant').unlink()

    def make(self, folder):
        """Builds what the change concerns below a folder; returns whether it could be built."""
        return all(self.link(target) for target in self.build.links if target.startswith(folder))

    def link(self, target):
        place = self.build.folder / target
        if place in self.linked or not self.build.depends(target, self.objects):
            return True
        words = self.build.links[target]
        if not all(self.link(word) for word in words
                   if word.endswith('.a') and word in self.build.links and word != target):
            return False
        if not all(self.compile(word) for word in words if word in self.objects):
            return False
        words = [f'{word}.mutant' if word in self.objects else word for word in words]
        os.replace(place, f'{place}.original')
        self.linked.append(place)
        return run(['sh', '-c', linker_command(words)], self.build.folder, timeout=300) == 0

    def compile(self, name):
        if name in self.compiled:
            return True
        words = [f'{word}.mutant' if word == name else word for word in self.build.compiles[name]]
        if run(words, self.build.folder, timeout=300) != 0:
            return False
        self.compiled.add(name)
        return True

    @contextlib.contextmanager
    def undone(self):
        """What was linked, as it is without the change."""
        for target in self.linked:
            os.replace(target, f'{target}.mutant')
            os.replace(f'{target}.original', target)
        try:
            yield
        finally:
            for target in self.linked:
                os.replace(target, f'{target}.original')
                os.replace(f'{target}.mutant', target)


def linker_command(words):
    """The quick linker does, if it is here; nobody looks at the debug information."""
    quick = ['-fuse-ld=lld', '-Wl,--strip-debug'] if shutil.which('ld.lld') else []
    words = [word for word in words if word != '-g']
    if quick and 'qc' not in words:
        words[words.index('-o'):words.index('-o')] = quick
    return ' '.join(word if word in ('&&', ':') else shlex.quote(word) for word in words)


class Copy:
    """A copy of the tree in which mutants are built and tested, one after the other."""

    def __init__(self, root, place, number):
        self.root = root
        self.tree = place / f'copy{number}'
        # As everybody's build folders lie, so that a compiler cache knows the same commands again.
        self.folder = self.tree / 'build' / 'dev'
        self.temporary = self.tree / 'build' / 'temporary'
        self.seconds = {}
        self.kills = collections.Counter()
        self.broken = set()
        self.needed = {}

    def prepare(self):
        self.copy_sources()
        for left in [*self.folder.rglob('*.original')]:
            os.replace(left, str(left)[:-len('.original')])
        subprocess.run(['cmake', '--preset', 'dev', '-DQIX_BUILD_EXAMPLES=OFF',
                        '-DCMAKE_LINK_DEPENDS_NO_SHARED=ON'],
                       cwd=self.tree, check=True, stdout=subprocess.DEVNULL)
        kinds = [folder.parent.name for folder in sorted((self.tree / 'tests').glob('*/CMakeLists.txt'))]
        targets = [f'tests/{kind}/all' for kind in kinds if kind not in LEFT_OUT]
        if run(['ninja', '-C', self.folder, '-j', '2', *targets], self.tree) != 0:
            sys.exit(f'{self.tree} does not build; see there')
        self.build = Build(self.folder)
        self.wipe_temporary_files()
        if run(self.contained(['true']), self.tree) != 0:
            sys.exit('Mutants run in a container of their own, which `unshare` cannot make here; '
                     'it needs root.')
        self.find_tests()

    def copy_sources(self):
        self.tree.mkdir(parents=True, exist_ok=True)
        listed = subprocess.run(['git', 'ls-files', '-z', '--cached', '--others',
                                 '--exclude-standard'], cwd=self.root, check=True,
                                stdout=subprocess.PIPE).stdout.decode().split('\0')
        names = [name for name in listed if name and (self.root / name).is_file()]
        for old in [path for path in self.tree.rglob('*') if path.is_file()]:
            name = str(old.relative_to(self.tree))
            if not name.startswith('build/') and name not in names:
                old.unlink()
        for name in names:
            copied = self.tree / name
            if not copied.is_file() or copied.read_bytes() != (self.root / name).read_bytes():
                copied.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(self.root / name, copied)

    def find_tests(self):
        listed = json.loads(subprocess.run(
            ['ctest', '--test-dir', self.folder, '--show-only=json-v1'], check=True,
            stdout=subprocess.PIPE).stdout)
        self.others = []
        groups = {}
        for test in listed['tests']:
            if test['name'].startswith(LEFT_OUT) or 'command' not in test:
                continue
            properties = {p['name']: p['value'] for p in test.get('properties', [])}
            environment = dict(v.split('=', 1) for v in properties.get('ENVIRONMENT', []))
            environment['TMPDIR'] = str(self.temporary)
            cwd = properties.get('WORKING_DIRECTORY', str(self.folder))
            names = [a for a in test['command'] if a.startswith('--gtest_filter=')]
            if names:
                key = (test['command'][0], cwd, tuple(environment.items()))
                groups.setdefault(key, []).append(names[0].split('=', 1)[1])
            else:
                self.others.append(Test(test['name'], test['command'], cwd, environment,
                                        int(properties.get('SKIP_RETURN_CODE', 0))))
        sources = {path.name: path for path in (self.tree / 'tests').rglob('*.cpp')}
        self.units = [Units(Test(pathlib.Path(program).name, [program], cwd, dict(environment)), names,
                            sources)
                      for (program, cwd, environment), names in groups.items()]

    def near_tests(self, path):
        """The tests of a file: those named after it, those that name it, its room's, its kinds'."""
        ranks = [[] for _ in range(FAR)]
        for units in self.units_that_know(path):
            by_rank = collections.defaultdict(list)
            for file, names in units.by_file.items():
                by_rank[self.rank(path, file)] += names
            for rank, names in by_rank.items():
                if rank < FAR:
                    ranks[rank].append(units.test.of(names))
        kinds = kinds_of(path)
        return [test for rank in ranks for test in rank] + self.sorted(
            [test for test in self.others_that_know(path)
             if test.kind in kinds and not test.name.startswith(SLOW)], path)

    def far_tests(self, paths):
        """All others than the near ones of all these files."""
        near = set.intersection(*({test.name for test in self.near_tests(path)} for path in paths))
        units = []
        for path_units in self.units_that_know(*paths):
            names = [name for file, names in path_units.by_file.items() for name in names
                     if any(self.rank(path, file) == FAR for path in paths)]
            units += [path_units.test.of(names)] if names else []
        return units + self.sorted([test for test in self.others_that_know(*paths)
                                    if test.name not in near], paths[0])

    def units_that_know(self, *paths):
        """The base library's tests know nothing of the framework."""
        return [units for units in self.units if units.test.kind != 'zel' or
                any('/zel/' in path for path in paths)]

    def others_that_know(self, *paths):
        return [test for test in self.others if not test.name.startswith(OF_HEADERS) or
                any(path.endswith('.h') for path in paths)]

    @staticmethod
    def rank(path, file):
        if not file:
            return FAR
        stem = re.sub(r'^[CTI](?=[A-Z])', '', pathlib.Path(path).stem).lower()
        tested = re.sub(r'^[CTI](?=[A-Z])|Test$', '', file.stem).lower()
        if (stem.startswith(tested) or tested.startswith(stem)):
            return 0
        if re.search(rf'\b{re.escape(pathlib.Path(path).stem)}\b', file.read_text()):
            return 1
        return 2 if file.parent.name in pathlib.Path(path).parts[2:] else FAR

    def sorted(self, tests, path):
        """Those that have killed mutants of the same file or room first, and then the quick ones."""
        room = str(pathlib.Path(path).parent)
        return sorted(tests, key=lambda test: (-self.kills[path, test.name],
                                               -self.kills[room, test.name],
                                               self.seconds.get(test.name, 5.0)))

    def note_kill(self, path, name):
        self.kills[path, name] += 1
        self.kills[str(pathlib.Path(path).parent), name] += 1

    def judge(self, mutants, tests):
        """Builds with all these changes, each of a file of its own, and runs tests until one fails."""
        with Changed(self.build, self.tree, mutants) as changed:
            if not changed.make('src/'):
                return {'result': 'does not compile'}
            for test in tests:
                if not changed.make(f'tests/{test.kind}/'):
                    return {'result': 'does not compile'}
                verdict = self.verdict(test, changed)
                if verdict:
                    return verdict
        return None

    def verdict(self, test, changed):
        """What fails only when it is tried for the first time, or without a mutant, is no kill."""
        while test:
            passed, failed = self.passes(test, 40 + 12 * self.seconds.get(test.name, 10))
            if passed:
                return None
            passed = failed.name in self.broken or self.outcome_again(failed, changed)
            if passed is not True:
                return {'result': 'timeout' if passed is None else 'killed', 'by': failed.name}
            test = test.behind(failed)
        return None

    def outcome_again(self, test, changed):
        """What a test that has failed once does again with the changes, if it passes without them."""
        if test.name not in self.needed:
            with changed.undone():
                began = time.time()
                proved, _ = self.passes(test, 300)
                self.needed[test.name] = time.time() - began
            if not proved:
                self.broken.add(test.name)
                print(f'left out, since it fails without a mutant: {test.name}', flush=True)
                return True
        passed, _ = self.passes(test, 60 + 12 * self.needed[test.name])
        if passed:
            print(f'failed, but not again: {test.name}', flush=True)
        return passed

    def passes(self, test, timeout):
        """True, False, or None when the time was over; and the test that has failed."""
        began = time.time()
        with tempfile.TemporaryFile(mode='w+', errors='replace') as output:
            status = run(self.contained(test.command), test.cwd, dict(os.environ, **test.environment),
                         timeout, True, output)
            if status is None:
                self.wipe_temporary_files()
            if status in (0, test.status_of_skip):
                if not test.units:
                    self.seconds[test.name] = time.time() - began
                return True, test
            output.seek(0)
            failed = self.failed_unit(test, output.read())
        return (None if status is None else False), failed

    @staticmethod
    def failed_unit(test, output):
        """The first one that failed, or the last one that began: those behind a failure are skipped."""
        names = (re.findall(r'^\[  FAILED  \] ([^\s,]+)', output, re.M)[:1] or
                 re.findall(r'^\[ RUN      \] (\S+)', output, re.M)[-1:])
        if not test.units or not names or names[0] not in test.units:
            return test
        failed = test.of(names)
        failed.name = f'{test.name}.{names[0]}'
        return failed

    def contained(self, command):
        return ['unshare', '--mount', '--pid', '--fork', '--kill-child', '--mount-proc',
                'sh', '-ec', CONTAINER, 'sh', str(self.tree), *command]

    def wipe_temporary_files(self):
        """What a mutant without an end has written may be much."""
        shutil.rmtree(self.temporary, ignore_errors=True)
        self.temporary.mkdir(parents=True)
        self.temporary.chmod(0o1777)
