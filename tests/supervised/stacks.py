#!/usr/bin/env python3
"""Lets a test with two threads take too long: a debugger tells where each of them is.

usage: stacks.py BINARY
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile

SKIPPED = 77
STACKS = re.compile(r"time limit of 1 seconds, and its process was ended"
                    r"\n    thread 1:\n(        [^\n]*\n)*        [^\n]*body\(\) at [^\n]*faults\.cpp:\d+"
                    r"\n    thread 2:\n(        [^\n]*\n)*        [^\n]*waitForever\(\) at [^\n]*faults\.cpp:\d+")


def main(binary):
    if shutil.which("gdb") is None:
        print("gdb is not installed, which tells of the threads of a test that takes too long")
        return SKIPPED
    with tempfile.TemporaryDirectory() as folder:
        done = subprocess.run(
            [binary, "--run=deadlock", "--jobs=1", "--time-limit=1"], check=False, timeout=300,
            env={**os.environ, "LC_ALL": "C.UTF-8", "QIX_TESTWORKDIR": folder},
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE)
    output = done.stdout.decode(errors="replace")
    if STACKS.search(output) and "3 OK, 1 Failed" in output:
        return 0
    print(output)
    return 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
