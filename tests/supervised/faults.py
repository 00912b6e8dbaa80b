#!/usr/bin/env python3
"""Runs tests that do what no test should: the run goes on, tells what has happened, and leaves nothing.

usage: faults.py BINARY [NAME...]    the faults of these names, by default all
"""

import re
import subprocess
import sys
import tempfile
import time

from runs import environment_in, left_processes

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
    # It may be ended before it has become another program.
    "daemon": (r"left a process behind, which was ended: (sleep 31415|.*supervised_faults)", []),
    "openPipe": (r"left a process behind, which was ended: (sleep 31415|sh )", []),
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
PASSING = ["daemon", "openPipe", "muchOutput", "closedDescriptors", "comma", "threads",
           "flaky", "staticDestructor"]
STATUS = {"staticDestructor": 2}
WAYS = [["--jobs=2"], ["--isolate"]]


def run(binary, name, way, folder):
    environment = environment_in(folder)
    begin = time.monotonic()
    # Its text is not decoded, since a test may print any bytes.
    result = subprocess.run([binary, f"--run={name}", *way, *FAULTS[name][1]], env=environment,
                            stdin=subprocess.DEVNULL, capture_output=True, check=False, timeout=100)
    told = (result.stdout + result.stderr).decode(errors="replace")
    return told, result.returncode, time.monotonic() - begin


def mistakes_of(binary, name, way):
    with tempfile.TemporaryDirectory(prefix="qix faults ") as folder:
        told, status, _ = run(binary, name, way, folder)
        left = left_processes(folder)
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


def main(binary, *names):
    count = 0
    for name in names or FAULTS:
        for way in WAYS:
            for mistake in mistakes_of(binary, name, way):
                count += 1
                print(f"--run={name} {' '.join(way)}: {mistake}")
    print(f"{len(names or FAULTS)} faults, {count} mistakes")
    return 1 if count else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
