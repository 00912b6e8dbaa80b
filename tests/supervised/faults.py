#!/usr/bin/env python3
"""Runs tests that do what no test should: the run goes on, tells what has happened, and leaves nothing.
Compares what is told with docs/supervised-faults.md.

usage: faults.py BINARY SHARED [NAME...]      the faults of these names, by default all; SHARED has
                                              the faults of docs/faults.md
       faults.py --update BINARY SHARED       writes the page
"""

import importlib.util
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
from pathlib import Path

from runs import environment_in, left_processes

HERE = Path(__file__).resolve().parent
PAGE = HERE.parent.parent / "docs" / "supervised-faults.md"
specification = importlib.util.spec_from_file_location("shared", HERE.parent / "faults" / "faults.py")
shared = importlib.util.module_from_spec(specification)
specification.loader.exec_module(shared)

# The name of the group, what the run tells on either stream, and the options that it needs.
LIMIT = ["--time-limit=1"]
FAULTS = {
    "segv": (r"printed before the crash\n\n\nTEST FAILED: segv.fault\n"
             r"the test's process was ended by SIGSEGV \(Segmentation fault\)"
             r"\n    the last check that passed is at [^\n]*faults\.cpp:\d+\n    .*crash\(\) at .*faults\.cpp:\d+", []),
    "abort": (r"ended by SIGABRT", []),
    "terminate": (r"SIGABRT[^\n]*\n    std::terminate\(\) was called: std::runtime_error: nobody may "
                  r"catch this", []),
    "exit": (r"the test ended its process by exit\(3\)", []),
    "plainExit": (r"the test ended its process by _exit\(0\)", []),
    "quickExit": (r"the test ended its process by quick_exit\(0\)", []),
    "killed": (r"ended by SIGKILL", []),
    "stackOverflow": (r"ended by SIGSEGV[^\n]*\n    overflow|ended by SIGSEGV[^\n]*\n.*overflow", []),
    "row": (r"TEST FAILED: row.fault.bad\n.*SIGSEGV", []),
    "setUp": (r"SIGSEGV[^\n]*\n    .*crash\(\) at", []),
    "tearDown": (r"SIGSEGV[^\n]*\n    .*crash\(\) at", []),
    "endless": (r"longer than its time limit of 1 seconds", LIMIT),
    "ignoresTerm": (r"longer than its time limit of 1 seconds", LIMIT),
    "stopped": (r"longer than its time limit of 1 seconds", LIMIT),
    "daemon": (r"left a process behind, which was ended: sleep 31415", []),
    "openPipe": (r"left a process behind, which was ended: (sleep 31415|sh )", []),
    "forkBomb": (r"longer than its time limit of 1 seconds", LIMIT),
    "clockSetBack": (r"TOO QUICK: test clockSetBack.fault .*only -3600 seconds", []),
    "daemonAndCrash": (r"SIGSEGV", []),
    "muchOutput": (r"\[\d+ bytes of output are cut here\]", []),
    "closedDescriptors": ("", []),
    "comma": ("", []),
    "memoryLimit": (r"bad_alloc", []),
    "threads": ("", []),
    "killsGroup": (r"ended by SIGKILL", []),
    "killsParent": (r"the process that watches over the test's process was ended", []),
    "flaky": (r"> flaky \.second try\n.*Flaky tests, which failed before they passed:"
              r"\n- flaky.fault\n", ["--retries=1"]),
    "staticDestructor": (r"behind its last test, .*SIGSEGV", []),
}
PASSING = ["daemon", "openPipe", "clockSetBack", "muchOutput", "closedDescriptors", "comma", "threads",
           "flaky", "staticDestructor"]
STATUS = {"staticDestructor": 2}
SOURCE = Path(__file__).resolve().parents[2]
WAYS = [["--jobs=2"], ["--isolate"]]
SHOWN_WAY = WAYS[1]
# What the page tells of, in its order.
TITLES = {
    "segv": "A bad pointer is used",
    "abort": "A test calls `abort`",
    "terminate": "An exception leaves a `noexcept` function",
    "exit": "A test calls `exit(3)`",
    "plainExit": "A test calls `_exit(0)`",
    "quickExit": "A test calls `quick_exit(0)`",
    "killed": "A test is killed, as by a lack of memory",
    "stackOverflow": "The stack overflows",
    "row": "A crash in a row",
    "setUp": "A crash in set-up",
    "tearDown": "A crash in tear-down",
    "staticDestructor": "A crash in the destructor of a static object, behind the last test",
    "endless": "An endless loop, with a time limit of a second",
    "ignoresTerm": "It takes too long, and ignores SIGTERM",
    "stopped": "It stops itself by SIGSTOP",
    "forkBomb": "Processes that start processes, 64 of them, and wait",
    "daemon": "It leaves a process in a session of its own",
    "openPipe": "It leaves a process that has standard output",
    "daemonAndCrash": "It leaves a process, and crashes",
    "threads": "It leaves a thread",
    "killsGroup": "It kills its process group",
    "killsParent": "It kills the process that it was forked from",
    "muchOutput": "It prints a gigabyte",
    "closedDescriptors": "It closes all descriptors",
    "comma": "It sets a locale that writes numbers with a comma",
    "clockSetBack": "It sets the clock back by an hour",
    "memoryLimit": "It has a memory limit, and needs more",
    "flaky": "It passes when it is tried again",
}
MOST_BYTES = 2 << 20  # of an output, from its end on, are looked at
MEGABYTES = {"muchOutput": 1024}
INTRODUCTION = """\
# What happens when things go wrong in a supervised run

Each row is a real run, with `--isolate`, and the tests of qix run all of them again and compare. The
suites of the first table are groups with three tests, `before`, the fault and `after`, which is why
three items pass, and the group with them: "4 OK" means that all went on as if nothing had happened. The
second table has the faults of [What happens when things go wrong](faults.md) but the one of the runner's
own memory; their suites are described there. The 10,000 levels have a stack of 64 megabytes, since a
run with options needs more of it for each level, and the ten thousand failures run with `--jobs=2`.

Left out are the folders and lines of files, the stacks of crashes, of which [Supervised runs](supervised-runs.md)
shows one, and what is longer than a line. Nothing that the tests have started is left behind any of these
runs.
"""
HEAD = """
| Fault | What is told of the test | Standard error | Summary | Exit status |
|---|---|---|---|---|
"""


def programs_in(folder):
    """What the runs need, and no debugger, which takes its time to tell of each thread."""
    programs = Path(folder) / "bin"
    programs.mkdir(exist_ok=True)
    for name in ("addr2line", "sh", "sleep"):
        (programs / name).symlink_to(shutil.which(name))
    return str(programs)


def run(binary, name, way, folder):
    megabytes = MEGABYTES.get(name, 1) if way == SHOWN_WAY else 16
    environment = {**environment_in(folder), "PATH": programs_in(folder),
                   "SUPERVISED_MEGABYTES": str(megabytes)}
    # Its text is not decoded, since a test may print any bytes.
    return subprocess.run([binary, f"--run={name}", *way, *FAULTS[name][1]], env=environment,
                          stdin=subprocess.DEVNULL, capture_output=True, check=False, timeout=100)


class SharedRun(shared.FaultRun):
    """A fault of docs/faults.md under a supervisor."""

    def __init__(self, fault, binary, folder):
        super().__init__(fault, binary, folder)
        # A process for each of ten thousand failures takes a while.
        self.settings["args"].append("--jobs=2" if fault.name == "manyFailures" else "--isolate")
        self.needs_stack = fault.name == "deepNesting"

    def in_child(self):
        super().in_child()
        if self.needs_stack:
            hard = resource.getrlimit(resource.RLIMIT_STACK)[1]
            resource.setrlimit(resource.RLIMIT_STACK, (shared.SANITIZED_STACK, hard))

    def result(self):
        self.execute()
        diverted = self.folder / "standardOutput"
        output = diverted.read_bytes() if diverted.exists() else self.stdout
        return subprocess.CompletedProcess([], self.status, self.blank(output[-MOST_BYTES:]),
                                           self.blank(self.stderr))


def first_failure(output):
    """What is told of the first test that has failed, without a stack and without folders."""
    found = re.search(r"^Failed Tests:\n- [^\n]*\n  (.*?)(?:\n- |\n\n\d+ OK)", output,
                      re.DOTALL | re.MULTILINE)
    lines = found[1].split("\n") if found else []
    is_stack = re.compile(r"     +|    thread \d+:|    (.* at \S+:\d+$|.* in (\S*/|unknown code)|0x)")
    is_check = re.compile(r"    the last check")
    kept = [line.strip() for line in lines if is_check.match(line) or not is_stack.match(line)]
    return kept[:3]


def notable(output):
    """What is told beside failures: warnings about a test, and what is cut or flaky."""
    for pattern in (r"^TOO QUICK: .*", r"^\[\d+ bytes of output are cut here\]$",
                    r"^Flaky tests, .*"):
        yield from re.findall(pattern, output, re.MULTILINE)[:1]


def shown(lines):
    """The lines as the cell of a table."""
    cell = []
    for line in lines:
        # How much is read at a time depends on the load.
        line = re.sub(r"\d+ bytes of output", "... bytes of output", line)
        line = re.sub(r"/?(?:[\w.+-]+/)*([\w-]+\.cpp):\d+", r"\1", line)
        line = line if len(line) <= 160 else f"{line[:100]}[{len(line) - 100} more]"
        cell.append("`" + line.replace("|", "\\|").replace("`", "'") + "`")
    return "<br>".join(cell)


def row(title, result):
    # The folder of the sources may have a blank, which ends the names of files in stacks.
    output, errors = (each[-MOST_BYTES:].decode(errors="replace").replace(f"{SOURCE}/", "")
                      for each in (result.stdout, result.stderr))
    counts = re.findall(r"^\d+ OK, \d+ Failed, \d+ Aborted, \d+ Skipped$", output, re.MULTILINE)
    lines = [line for line in errors.splitlines() if line.startswith("Error: ")]
    status = str(result.returncode) if result.returncode >= 0 else \
        f"{128 - result.returncode}, from {signal.Signals(-result.returncode).name}"
    return (f"| {title} | {shown([*first_failure(output), *notable(output)])} | {shown(lines[:1])} "
            f"| {counts[-1] if counts else ''} | {status} |\n")


def own_row(name, result):
    if name == "forkBomb":  # how many are left when the test's own process has ended depends
        result.stderr = b""
    # It may be ended before it has become another program.
    result.stderr = re.sub(rb"was ended: sh .*", b"was ended: sleep 31415", result.stderr)
    return row(TITLES[name], result)


def factory_row(binary):
    """The items are made by the supervisor, before any test runs."""
    with tempfile.TemporaryDirectory(prefix="qix faults ") as folder:
        environment = {**environment_in(folder), "SUPERVISED_CRASHING_FACTORY": "1"}
        result = subprocess.run([binary, "--run=comma", *SHOWN_WAY], env=environment, check=False,
                                stdin=subprocess.DEVNULL, capture_output=True, timeout=100)
        return row("A crash in a factory: the run does not begin", result)


def shared_rows(binary):
    for fault in shared.FAULTS:
        if shared.is_possible(fault):
            with tempfile.TemporaryDirectory(prefix="qix faults ") as folder:
                yield row(fault.title, SharedRun(fault, Path(binary).resolve(), folder).result())


def update(binary, shared_binary):
    rows = ""
    for name in TITLES:
        with tempfile.TemporaryDirectory(prefix="qix faults ") as folder:
            rows += own_row(name, run(binary, name, SHOWN_WAY, folder))
    PAGE.write_text(INTRODUCTION + HEAD + rows + factory_row(binary) + HEAD +
                    "".join(shared_rows(shared_binary)), "utf-8")


def missing_rows(rows):
    page = PAGE.read_text("utf-8")
    for each in rows:
        if each not in page:
            yield f"{PAGE.name} has no row {each}"


def mistakes_of(binary, name, way):
    with tempfile.TemporaryDirectory(prefix="qix faults ") as folder:
        result = run(binary, name, way, folder)
        left = left_processes(folder)
    if way == SHOWN_WAY and name in TITLES:
        yield from missing_rows([own_row(name, result)])
    told = (result.stdout + result.stderr).decode(errors="replace")
    status = result.returncode
    expected = STATUS.get(name, 0 if name in PASSING else 1)
    # The group itself is counted, too; set-up and tear-down have no test in front.
    passing = {"setUp": 2, "tearDown": 2, "row": 4}.get(name, 3) + (name in PASSING)
    if not re.search(FAULTS[name][0], told, re.DOTALL):
        yield f"nothing like {FAULTS[name][0]!r} is told"
    if f"\n{passing} OK, " not in told:
        yield f"not {passing} OK"
    if status != expected:
        yield f"exit status {status} instead of {expected}"
    for process in left:
        yield f"process {process} is left"


def main(binary, shared_binary, *names):
    if binary == "--update":
        update(shared_binary, *names)
        return 0
    count = 0
    if not names:
        for mistake in missing_rows([factory_row(binary), *shared_rows(shared_binary)]):
            count += 1
            print(mistake)
    for name in names or FAULTS:
        for way in WAYS:
            for mistake in mistakes_of(binary, name, way):
                count += 1
                print(f"--run={name} {' '.join(way)}: {mistake}")
    print(f"{len(names or FAULTS)} faults, {count} mistakes")
    return 1 if count else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
