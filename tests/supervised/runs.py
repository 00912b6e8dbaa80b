"""What the tests of this folder have in common: runs, and the processes that they leave."""

import os
import signal
from pathlib import Path


def environment_in(folder):
    """Others may run these tests on the same machine: all that a run has started is known by the folder."""
    return {**os.environ, "LC_ALL": "C.UTF-8", "QIX_TESTWORKDIR": folder}


def left_processes(folder):
    """What a run in the folder has started and is still there."""
    mark = f"QIX_TESTWORKDIR={folder}\0".encode()
    left = []
    for process in Path("/proc").glob("[0-9]*"):
        try:
            is_left = mark in (process / "environ").read_bytes()
        except OSError:
            continue
        if is_left:
            left.append(process.name)
    return left


def kill_left_processes(folder):
    """Ends what a run in the folder has left; those that have ended meanwhile are no mistake."""
    while left := left_processes(folder):
        for process in left:
            try:
                os.kill(int(process), signal.SIGKILL)
            except ProcessLookupError:
                pass


def wait_for(process, text):
    """Reads what the run prints up to this text."""
    seen = b""
    while not seen.endswith(text):
        byte = process.stdout.read(1)
        if not byte:
            raise AssertionError(f"the run has ended behind {seen!r}")
        seen += byte
    return seen
