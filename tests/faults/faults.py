#!/usr/bin/env python3
"""Runs test suites with a fault each and compares what comes of them with docs/faults.md.

usage: faults.py BINARY NAME...     compares the sections of these faults
       faults.py --update BINARY    writes the whole page
       faults.py --names            lists the faults
"""

import collections
import difflib
import os
import resource
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "approval"))
import run as approval  # noqa: E402

PAGE = HERE.parent.parent / "docs" / "faults.md"
LONGEST_LINE = 120  # bytes; what is longer, or more, is cut in the page
MOST_LINES = 25
SHOWN_LINES = 6  # at both ends of what is cut
SANITIZED_STACK = 64 * 1024 * 1024  # bytes

INTRODUCTION = """\
# What happens when things go wrong

Each section below is one fault, with the real output of a run that meets it: the tests run it
again and compare. Most suites are a group with three tests, `before`, the fault, and `after`, and a
test `last` behind the group. `TMP` is the folder of the run and `USER` the user; what is long is
cut where it says so.

What holds for all of them:

- A line of the log has left the process before the next thing happens, so whatever ends the
  process, the log holds all that was written, and its last line names the test that was running.
  The lines that this test has recorded are written when it ends, so they are the only thing that
  can be lost.
- A failure is printed when it happens, and listed once more at the end.
- Exit status 0 means that the whole run took place, that nothing failed, and that all of it was
  printed. There is one exception, which no program can see from inside: a test that calls `_exit`
  or `quick_exit` with 0.
- Errors in writing the log are ignored, so a full disk costs the log and nothing else.

| Fault | Exit status | The log | The run |
|---|---|---|---|
"""

Fault = collections.namedtuple("Fault", "name title about suite how keeps log run")


def fault(name, title, about, suite=None, how=None, keeps="output of before", log="complete",
          run="goes on"):
    return Fault(name, title, about, suite or name, how, keeps, log, run)


TO_PIPE = ('log="work/$USER/testLog.txt"; mkdir -p "work/$USER"; mkfifo "$log"; '
           '"$@"; status=$?; rm "$log"; exit $status')
TO_LINK = ('log="work/$USER/testLog.txt"; mkdir -p "work/$USER"; echo precious >target; '
           'ln -s "$PWD/target" "$log"; "$@"; status=$?; cat target; rm "$log"; exit $status')
TO_SMALL_DISK = ('mkdir -p "work/$USER"; mount -t tmpfs -o size=64k none "work/$USER"; '
                 '"$@"; status=$?; cp "work/$USER/testLog.txt" copyOfLog; exit $status')
TO_FILE = 'exec "$@" >standardOutput'
PYTHON_PIPE = """\
import os, signal, sys
reader, writer = os.pipe()
os.close(reader)
os.dup2(writer, 1)
os.close(writer)
signal.signal(signal.SIGPIPE, getattr(signal, sys.argv[1]))
os.execv(sys.argv[2], sys.argv[2:])
"""


def shell(script):
    return ["sh", "-c", script, "sh"]


FAULTS = [
    fault("plantedPipe", "A named pipe in place of the log",
          "Writing to it would wait for a reader. The ready `main` refuses it, and so it does with "
          "devices and with files of other users.",
          "plain", shell(TO_PIPE), keeps=None, log="none", run="does not begin"),
    fault("plantedLink", "A symbolic link in place of the log",
          "It leads to a file that would be overwritten, and whose text is printed behind the run.",
          "plain", shell(TO_LINK), keeps=None, log="none", run="does not begin"),
    fault("smallDisk", "A disk that fills up during the run",
          "The working directory is a file system of 64 kilobytes, and each of the four tests "
          "records a line of 32. The log holds what there was room for.",
          "talkative", ["unshare", "--mount", *shell(TO_SMALL_DISK)], keeps="first ***",
          log="cut, without a word about it"),
    fault("fileSizeLimit", "A limit on the size of files",
          "The run is started with a limit of 64 kilobytes, by `ulimit -f 128`, and the suite is "
          "the one above. The ready `main` takes care that the signal SIGXFSZ does not end the "
          "run; what a test itself writes beyond the limit fails with the error EFBIG.",
          "talkative", shell('ulimit -f 128; exec "$@"'), keeps="first ***",
          log="cut, without a word about it"),
    fault("closedOutput", "Standard output is closed",
          "The run is started with `>&-`. The log does not take the place of standard output, and "
          "a run whose output is lost does not pass.",
          "passing", shell('exec "$@" >&-')),
    fault("fullOutput", "A full disk under standard output",
          "Standard output is `/dev/full`.",
          "passing", shell('exec "$@" >/dev/full')),
    fault("brokenPipe", "The reader of standard output is gone",
          "Standard output is a pipe that nobody reads. As with any program, the signal SIGPIPE "
          "ends the run; this is what happens in `suite '*' | head -1`.",
          "plain", [sys.executable, "-c", PYTHON_PIPE, "SIG_DFL"], keeps="suite",
          log="up to the running test", run="ends"),
    fault("ignoredPipe", "The reader of standard output is gone, and SIGPIPE is ignored",
          "Some services start programs like this. The run goes on for the sake of the log.",
          "passing", [sys.executable, "-c", PYTHON_PIPE, "SIG_IGN"]),
    fault("changesDirectory", "A test changes the working directory",
          "The test goes to `/` and stays there. The log is where it was."),
    fault("closesAll", "A test closes all descriptors",
          "The standard streams and the log among them, so nothing can be said any more; the exit "
          "status still tells. A test that then opens files of its own gets the numbers of the "
          "closed ones, and with them what is printed and logged.",
          log="up to the running test", run="goes on unseen"),
    fault("exhaustsMemory", "A test runs out of memory",
          "The test takes memory until `operator new` fails. That is a failure as any other."),
    fault("factoryThrows", "A factory throws",
          "It stands at the root, whose items are made before anything is selected.",
          keeps=None, log="none", run="does not begin"),
    fault("nestedFactoryThrows", "A factory in a group throws",
          "The children of the group are unknown, which fails the group around it and ends that. "
          "The run goes on behind it.", run="goes on behind the group around it"),
    fault("nameThrows", "An item cannot tell its name",
          "`getName` throws. What an item throws outside its `run` fails the group around it.",
          run="goes on behind the group around it"),
    fault("childrenThrow", "An item cannot tell its children",
          "`getSubItems` throws.", run="goes on behind the group around it"),
    fault("foreignException", "A test throws something that is no std::exception",
          "It throws the number 42. Nothing but `main` catches that.",
          log="up to the running test", run="ends"),
    fault("exit", "A test calls exit",
          "With 0, even. That is noticed, and told.", log="up to the running test", run="ends"),
    fault("immediateExit", "A test calls _exit",
          "With 0. Nothing in the process can notice that: the exit status is the test's, and what "
          "tells is that the summary is missing.", log="up to the running test", run="ends"),
    fault("abort", "A test calls abort", "So does a failed `assert`, and an exception that "
          "leaves a `noexcept` function.", log="up to the running test", run="ends"),
    fault("segmentationFault", "A test crashes",
          "It raises SIGSEGV, as the use of a bad pointer does.",
          log="up to the running test", run="ends"),
    fault("kill", "A test is killed",
          "It raises SIGKILL, as the kernel does when memory runs out.",
          log="up to the running test", run="ends"),
    fault("raisesBrokenPipe", "A test writes into a broken pipe",
          "It raises SIGPIPE.", log="up to the running test", run="ends"),
    fault("forkReturns", "A test forks, and the child comes back",
          "Without help the child would run all that follows a second time. It is ended where it "
          "leaves the test; the test here waits for it and fails with its exit status."),
    fault("forkExits", "A test forks, and the child calls exit",
          "That is the child's own affair; the test here waits for it and fails with its exit "
          "status, 7."),
    fault("deepNesting", "10,000 levels of groups",
          "Each level indents its lines by two blanks more, so these outputs are large. Standard "
          "output goes to a file here.", how=shell(TO_FILE), keeps="output of last"),
    fault("longTexts", "Names and messages of a megabyte",
          "The name of the group, the name of the test, its recorded line and its message have a "
          "megabyte each. Standard output goes to a file here.", how=shell(TO_FILE),
          keeps="output of last"),
    fault("manyFailures", "Ten thousand failures",
          "Each is printed when it happens and listed at the end. Standard output goes to a file "
          "here.", how=shell(TO_FILE), keeps="output of last"),
]

MEMORY = fault("memoryOfRunner", "The runner runs out of memory",
               "A small run is repeated for each of its calls of `operator new`: once with this "
               "call failing, and once with it and all that follow failing. Wherever it happens, "
               "the run fails or ends with an error, never with a crash and never with 0, and "
               "standard output and the log agree with those of a good run up to this point.",
               "small", log="up to the failed call", run="goes on, or ends")


class FaultRun(approval.Run):
    """A run that survives what its suite does to it, and whose report is short."""

    def __init__(self, fault, binary, folder, env=None):
        program, *arguments = [*(fault.how or []), str(binary), fault.suite, "*"]
        super().__init__(Path(shutil.which(program)), {"args": arguments, "env": env or {}}, folder)

    def environment(self):
        # The sanitizers would take the signals for errors of their own, and wxWidgets leaks a
        # conversion's buffer when operator new fails in the middle of it.
        leaks = ":detect_leaks=0" if "FAULTS_FAIL_AT" in self.settings["env"] else ""
        options = {name: os.environ.get(name, "") + ":handle_segv=0:handle_abort=0" + leaks
                   for name in ("ASAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS")}
        user = next(iter(approval.users()))
        return {**super().environment(), **options, "PATH": os.environ["PATH"], "USER": user}

    def in_child(self):
        super().in_child()
        if os.environ.get("FAULTS_SANITIZED"):  # whose stack frames are several times as large
            hard = resource.getrlimit(resource.RLIMIT_STACK)[1]
            resource.setrlimit(resource.RLIMIT_STACK, (SANITIZED_STACK, hard))

    def section(self, title, data):
        return super().section(title, shortened(self.blank(data)))

    def shown_command(self):
        return ""

    def shown_status(self):
        status = super().shown_status()
        return status if status.isdigit() else f"{128 - self.status}, from {status}"


def shortened(data):
    lines = [line if len(line) <= LONGEST_LINE else cut_line(line)
             for line in data.splitlines(keepends=True)]
    if len(lines) <= MOST_LINES:
        return b"".join(lines)
    hidden = len(lines) - 2 * SHOWN_LINES
    return b"".join([*lines[:SHOWN_LINES], b"[%d lines more]\n" % hidden, *lines[-SHOWN_LINES:]])


def cut_line(line):
    text = line.rstrip(b"\n")
    return b"%s[%d bytes more]%s%s" % (text[:40], len(text) - 50, text[-10:], line[len(text):])


def is_possible(fault):
    if fault.name != "smallDisk":
        return True
    probe = ["unshare", "--mount", "sh", "-c", "mount -t tmpfs none /mnt"]
    return subprocess.run(probe, capture_output=True, check=False).returncode == 0


def section_of(fault, binary):
    """The section of the page, and the exit status."""
    with tempfile.TemporaryDirectory(prefix="qix faults ") as folder:
        run = FaultRun(fault, binary, folder)
        run.execute()
        check_kept(fault, Path(folder))
        report = list(run.report())[1:]
        return section(fault, "\n".join(["```text", *report, "```"])), run.shown_status()


def section(fault, output):
    return f"## {fault.title}\n\n{fault.about}\n\n{output}\n"


def check_kept(fault, folder):
    """What was logged before the fault is there, whatever the page says."""
    logs = [path.read_bytes() for path in folder.rglob("*")
            if path.name in ("testLog.txt", "copyOfLog") and path.is_file()]
    if fault.keeps and not any(fault.keeps.encode() in log for log in logs):
        sys.exit(f"{fault.name}: the log has lost {fault.keeps!r}")


def run_with_failing(binary, first, count):
    """A run in which calls of operator new fail, from number first on."""
    with tempfile.TemporaryDirectory(prefix="qix faults ") as folder:
        run = FaultRun(MEMORY, binary, folder, {"FAULTS_FAIL_AT": f"{first} {count}"})
        run.execute()
        run.log = b"".join(path.read_bytes() for path in Path(folder).rglob("testLog.txt"))
        return run


def check_failing_run(run, calls):
    ended_with_error = b"Error: " in run.stderr
    if run.status != (2 if ended_with_error else 1):
        sys.exit(f"{MEMORY.name}: status {run.status} when calls {calls} fail:\n{run.stderr!r}")


def agreement(run, good):
    """How much of standard output and of the log is as in the good run."""
    pairs = ((run.stdout, good.stdout), (run.log, good.log))
    return [len(os.path.commonprefix(pair)) for pair in pairs]


def check_memory(binary):
    """The section about the runner's own memory."""
    good = run_with_failing(binary, 10**9, 1)
    calls = int(good.stderr.rsplit(b":", 1)[1])
    if good.status != 1 or calls < 50:
        sys.exit(f"{MEMORY.name}: the good run ended with {good.status} after {calls} calls")
    statuses = set()
    kept = [0, 0]  # what a run has to tell that fails at this call, or later
    for first in range(calls):
        for count in (10**9, 1):
            run = run_with_failing(binary, first, count)
            check_failing_run(run, f"{first} {count}")
            statuses.add(run.status)
            agreed = agreement(run, good)
            if agreed[0] < kept[0] or agreed[1] < kept[1]:
                sys.exit(f"{MEMORY.name}: a run in which calls {first} {count} fail has lost "
                         f"output or log: {agreed} of {kept}\n{run.stdout!r}\n{run.log!r}")
            is_swallowed = [run.stdout, run.log] == [good.stdout, good.log]
            if count > 1 and not is_swallowed:
                kept = agreed
    print(f"{calls} calls of operator new, each failing alone and with all that follow")
    return section(MEMORY, f"Exit statuses: {' and '.join(map(str, sorted(statuses)))}.")


def row_of(fault, status):
    return f"| {fault.title} | {status} | {fault.log} | {fault.run} |\n"


def page(binary):
    rows, sections = "", ""
    for each in FAULTS:
        text, status = section_of(each, binary)
        rows += row_of(each, status)
        sections += "\n" + text
    rows += row_of(MEMORY, "1 or 2")
    return INTRODUCTION + rows + sections + "\n" + check_memory(binary)


def matches(name, binary):
    expected = PAGE.read_text("utf-8")
    if not expected.startswith(INTRODUCTION):
        print(f"{PAGE.name} begins with another introduction")
        return False
    if name == MEMORY.name:
        actual = check_memory(binary)
    else:
        chosen = next(each for each in FAULTS if each.name == name)
        if not is_possible(chosen):
            print(f"{name}: file systems cannot be mounted here")
            sys.exit(approval.SKIPPED)
        actual, status = section_of(chosen, binary)
        if row_of(chosen, status) not in expected:
            print(f"{name}: {PAGE.name} has no row {row_of(chosen, status)}")
            return False
    if actual in expected:
        return True
    title = actual.split("\n", 1)[0] + "\n"
    there = title + expected.partition(title)[2].partition("\n## ")[0]
    print("\n".join(difflib.unified_diff(there.splitlines(), actual.splitlines(), PAGE.name,
                                         "this run", lineterm="")))
    return False


def main(arguments):
    if arguments == ["--names"]:
        print(";".join(each.name for each in [*FAULTS, MEMORY]))
        return 0
    update = arguments[0] == "--update"
    binary, *names = arguments[1:] if update else arguments
    binary = Path(binary).resolve()
    if update:
        PAGE.write_text(page(binary), "utf-8")
        return 0
    return 0 if all([matches(name, binary) for name in names]) else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
