"""What the tests of this folder have in common: runs, and the processes that they leave."""

import os
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
