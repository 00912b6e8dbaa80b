#!/usr/bin/env python3
"""Counts the system calls of a run: each test costs two writes, the line of the log and the
progress character, and nothing else, with options and without.

usage: syscalls.py BINARY      BINARY runs as many tests as BENCH_TESTS tells
"""

import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

SKIPPED = 77
TESTS = 1000
MEMORY = {"brk", "mmap", "munmap", "mremap"}  # the tests themselves have to live somewhere


def count(binary, argument, tests):
    """The number of calls of each kind."""
    with tempfile.TemporaryDirectory(prefix="qix syscalls ") as folder:
        table = Path(folder) / "table"
        command = ["strace", "-c", "-f", "-U", "calls,name", "-o", str(table), binary, argument]
        environment = {**os.environ, "BENCH_TESTS": str(tests), "QIX_TESTWORKDIR": folder}
        subprocess.run(command, env=environment, stdout=subprocess.DEVNULL, check=True)
        rows = [line.split() for line in table.read_text().splitlines()]
        return {row[1]: int(row[0]) for row in rows if len(row) == 2 and row[0].isdigit()}


def can_trace():
    return shutil.which("strace") and subprocess.run(
        ["strace", "-o", "/dev/null", "true"], capture_output=True, check=False).returncode == 0


def main(binary):
    if not can_trace():
        print("strace is not there, or may not trace")
        return SKIPPED
    return 0 if costs_two_writes(binary, "*") and costs_two_writes(binary, "--run=*") else 1


def costs_two_writes(binary, argument):
    few, many = count(binary, argument, TESTS), count(binary, argument, 2 * TESTS)
    names = (few.keys() | many.keys()) - MEMORY - {"total"}
    growth = {name: many.get(name, 0) - few.get(name, 0) for name in sorted(names)}
    growing = {name: calls for name, calls in growth.items() if calls != 0}
    print(f"{argument}: {TESTS} tests more cost {growing}")
    return growing == {"write": 2 * TESTS}


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
