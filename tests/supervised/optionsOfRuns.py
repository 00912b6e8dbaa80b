#!/usr/bin/env python3
"""Runs with options one after the other, in one process and under a supervisor: all that can be seen is equal.

usage: optionsOfRuns.py STEADY RANDOM_TREE 
"""

import sys
import tempfile
from pathlib import Path

from promise import around_difference, run

WAYS = [["--jobs=3"], ["--isolate", "--jobs=2"]]
# The options of the runs in one folder. What runs again in a random tree does other things then.
TREES = range(16)
STOPPING = [[["+++", "--fail-fast"]], [["+++", "--fail-fast=4"]]]
SEQUENCES = [
    [["--fail-fast"], ["--rerun-failed"], ["--order=failed"]],
    [["--fail-fast=3"], ["--rerun-failed", "--fail-fast"], ["--rerun-failed"], ["--rerun-failed"]],
    [["--repeat=3"], ["--rerun-failed", "--repeat=2"]],
    [["--shard=1/2", "--order=random:3"], ["--shard=2/2", "--order=random:3"]],
    [["--skip=rows"], ["--order=failed", "--fail-fast=5"]],
    [["--repeat=3", "--fail-fast=4"]],
    [["--until-fail=3"]],
    [["--until-fail=3", "--order=random:7"]],
]


def runs_of(binary, seed, way, sequence, folder):
    return [run(binary, seed, [*way, *options], folder) for options in sequence]


def mistakes_of(binary, seed, sequences):
    for sequence in sequences:
        with tempfile.TemporaryDirectory(prefix="qix options ") as folder:
            expected = runs_of(binary, seed, [], sequence, Path(folder, "one"))
            for number, way in enumerate(WAYS):
                shown = runs_of(binary, seed, way, sequence, Path(folder, str(number)))
                for options, one, other in zip(sequence, expected, shown):
                    for kind in one:
                        if one[kind] != other[kind]:
                            yield (f"tree {seed} {' '.join(way + options)}: {kind} differs:\n%r\n%r"
                                   % around_difference(one[kind], other[kind]))


def looks_at_children(binary, seed):
    """A group of a class of its own may do other things then, when its children are left out."""
    with tempfile.TemporaryDirectory(prefix="qix options ") as folder:
        return b"as expected" in run(binary, seed, ["+++"], Path(folder, "one"))["output"]


def main(steady, random_tree):
    mistakes = list(mistakes_of(steady, 0, SEQUENCES))
    trees = [seed for seed in TREES if not looks_at_children(random_tree, seed)]
    for seed in trees:
        mistakes += mistakes_of(random_tree, seed, STOPPING)
    print(*mistakes, f"{len(trees)} trees, {len(mistakes)} differences", sep="\n")
    return 1 if mistakes else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
