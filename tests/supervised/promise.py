#!/usr/bin/env python3
"""Runs random trees of tests in one process and under a supervisor: all that can be seen is equal.

usage: promise.py BINARY [FIRST [COUNT]]    by default the trees 0 to 23
"""

import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

WAYS = [["--jobs=1"], ["--jobs=2"], ["--jobs=8"], ["--isolate"], ["--isolate", "--jobs=3"]]
# What differs from run to run in a file of events, and what is told of other processes only.
VARYING = re.compile(rb'"(seconds|start)":[^,}]*|"options":\[.*?\]'
                     rb'|,"(worker|peakMemory|processorSeconds)":[0-9.]+')
# The same in a file for JUnit.
VARYING_IN_JUNIT = re.compile(
    rb' (time|timestamp)="[^"]*"'
    rb'|<properties>(<property name="(worker|peakMemory|processorSeconds)"[^>]*>)+</properties>')
SELECTIONS = [[], ["+++"], ["+"], ["--order=random:5", "++"], ["--shard=1/2", "+++", "i"]]


def run(binary, seed, arguments, folder):
    """What a run shows: its output, its errors, its log, its status, and what listeners are told."""
    # What the sanitizers and the coverage need reaches the runs.
    environment = {**os.environ, "LC_ALL": "C.UTF-8", "SUPERVISED_SEED": str(seed),
                   "QIX_TESTWORKDIR": str(folder)}
    for name in ("QIX_SLOT", "BAZEL_TEST"):
        environment.pop(name, None)
    events = folder.with_name(folder.name + ".events")
    junit = folder.with_name(folder.name + ".xml")
    result = subprocess.run([binary, *arguments, "--durations=1", f"--output-events={events}",
                             f"--output-junit={junit}"], env=environment, check=False,
                            stdin=subprocess.DEVNULL, capture_output=True, timeout=100)
    logs = sorted(folder.glob("*/testLog.txt"))
    log = logs[0].read_bytes() if logs else None
    output = result.stdout.split(b"Slowest tests, in seconds:")[0]
    return {"output": output, "errors": result.stderr, "log": log, "status": result.returncode,
            "events": VARYING.sub(b"", events.read_bytes()),
            "report": VARYING_IN_JUNIT.sub(b"", junit.read_bytes()).replace(b"></testcase>", b"/>")}


def around_difference(expected, shown):
    """The parts of both where they begin to differ."""
    if not isinstance(expected, bytes) or not isinstance(shown, bytes):
        return expected, shown
    same = len(os.path.commonprefix([expected, shown]))
    begin = max(same - 200, 0)
    return expected[begin:same + 100], shown[begin:same + 100]


def differing(binary, seed, folder):
    """Each way that shows something else, and what."""
    selection = SELECTIONS[seed % len(SELECTIONS)]
    expected = run(binary, seed, selection, folder / f"{seed}-sequential")
    for number, way in enumerate(WAYS):
        shown = run(binary, seed, [*selection, *way], folder / f"{seed}-{number}")
        for what, value in expected.items():
            if shown[what] != value:
                yield [*selection, *way], what, value, shown[what]


def main(binary, first=0, count=24):
    mistakes = 0
    with tempfile.TemporaryDirectory(prefix="qix supervised ") as name:
        for seed in range(int(first), int(first) + int(count)):
            for arguments, what, expected, shown in differing(binary, seed, Path(name)):
                mistakes += 1
                expected, shown = around_difference(expected, shown)
                print(f"SUPERVISED_SEED={seed} {' '.join(arguments)}: other {what}:")
                print(f"  expected {expected!r}\n  but was  {shown!r}")
    print(f"{count} trees, {mistakes} differences")
    return 1 if mistakes else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
