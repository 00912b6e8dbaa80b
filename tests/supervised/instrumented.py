#!/usr/bin/env python3
"""Runs a suite under --jobs=2 with sanitizers, valgrind and coverage: what they have to tell of the
processes of tests is told, and no count is lost.

usage: instrumented.py COMPILER LIBRARIES...      the folders of libqix and libzel
What is not installed is left out, and told."""

import os
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

HERE = Path(__file__).resolve().parent
SOURCE = HERE / "instrumented.cpp"
GOOD_TESTS = 8
SKIPPED = 77
# Flags; what runs it; the group with a fault; what is told; the exit status, and how many of that
# group have failed. A fault that does not end its process is told when that ends, at the latest.
WATCHED = [
    ("-fsanitize=address", [], "useAfterFree", "AddressSanitizer: heap-use-after-free", 1, 1),
    ("-fsanitize=address", [], "leak", "LeakSanitizer: detected memory leaks", 2, 0),
    ("-fsanitize=undefined", [], "overflow", "runtime error: signed integer overflow", 0, 0),
    ("-fsanitize=thread", [], "race", "ThreadSanitizer: data race", 2, 0),
    ("-g",
     ["valgrind", "--error-exitcode=9", f"--suppressions={HERE.parent / 'valgrind.supp'}"],
     "uninitialised", "Conditional jump or move depends on uninitialised value", 2, 0),
]


class Build:
    """Builds of the suite in a folder, one for each set of flags."""

    def __init__(self, compiler, libraries, folder):
        self.compiler = compiler
        self.libraries = libraries
        self.folder = folder

    def program(self, flags):
        """None when the compiler cannot do this."""
        program = self.folder / flags.strip("-").replace("=", "-")
        if not program.exists():
            command = [*shlex.split(os.environ.get("CMAKE_CXX_COMPILER_LAUNCHER", "")),
                       self.compiler, "-std=c++17", flags, f"-I{HERE.parent.parent / 'include'}",
                       *self.wx_flags(), str(SOURCE), "-o", str(program),
                       *(f"-L{each}" for each in self.libraries), "-lqix", "-lzel",
                       *(f"-Wl,-rpath,{each}" for each in self.libraries)]
            done = subprocess.run(command, capture_output=True, cwd=self.folder, check=False)
            if done.returncode != 0:
                print(f"{flags}: {done.stderr.decode()}")
                return None
        return program

    @staticmethod
    def wx_flags():
        found = subprocess.run(["wx-config", "--cxxflags", "base"], capture_output=True, check=True)
        flags = shlex.split(found.stdout.decode())
        return [flag.replace("-I", "-isystem", 1) for flag in flags]

    def run(self, command, *arguments):
        with tempfile.TemporaryDirectory() as work:
            environment = {**os.environ, "LC_ALL": "C.UTF-8", "QIX_TESTWORKDIR": work}
            done = subprocess.run([*command, *arguments], env=environment, cwd=self.folder,
                                  stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                  stderr=subprocess.STDOUT, check=False, timeout=300)
        return done.stdout.decode(errors="replace"), done.returncode


def mistakes_of(build, flags, runner, group, text, status, failed):
    program = build.program(flags)
    if program is None or (runner and shutil.which(runner[0]) is None):
        print(f"left out: {' '.join([flags, *runner])}")
        return
    output, ended = build.run([*runner, str(program)], "--run=good", f"--run={group}", "--jobs=2")
    # Both groups have passed, and so has the test with the fault unless it has failed.
    counts = f"\n{GOOD_TESTS + 3 - failed} OK, {failed} Failed, 0 Aborted, 0 Skipped\n"
    if text not in output or counts not in output or ended != status:
        yield f"{' '.join([flags, *runner])} {group}: status {ended}\n{output}"


def mistakes_of_coverage(build, way):
    """Each test counts once, whichever process it has run in."""
    program = build.program("--coverage")
    if program is None or shutil.which("gcov") is None:
        print("left out: --coverage")
        return
    for counters in build.folder.glob("*.gcda"):
        counters.unlink()
    output, ended = build.run([str(program)], "--run=good", way)
    notes = next(build.folder.glob("*.gcno"))
    listing = subprocess.run(["gcov", "--stdout", notes.name], cwd=build.folder, check=True,
                             capture_output=True).stdout.decode(errors="replace")
    counts = re.findall(r"^ +(\S+): +\d+:.*// counted$", listing, re.MULTILINE)
    if counts != [str(GOOD_TESTS)] or ended != 0:
        yield f"--coverage {way}: counted {counts}, status {ended}\n{output}"


def main(compiler, *libraries):
    with tempfile.TemporaryDirectory(prefix="qix instrumented ") as name:
        build = Build(compiler, libraries, Path(name))
        mistakes = [mistake for watched in WATCHED for mistake in mistakes_of(build, *watched)]
        for way in ("--jobs=2", "--isolate"):
            mistakes += mistakes_of_coverage(build, way)
        is_any_built = any(Path(name).iterdir())
    print("\n".join(mistakes))
    return 1 if mistakes else 0 if is_any_built else SKIPPED


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
