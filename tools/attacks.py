"""Which tests tools/coverage runs, and how it is told of what no test can reach."""

import pathlib
import re

ROOT = pathlib.Path(__file__).resolve().parent.parent
# Kinds of tests that look at other things than what the libraries do, and build much for it.
LEFT_OUT = ('install', 'project', 'globals', 'reference', 'symbols', 'docs', 'syscalls')


def test_targets(tree):
    """The targets that build the other kinds of tests of a tree."""
    folders = sorted((tree / 'tests').glob('*/CMakeLists.txt'))
    return [f'tests/{f.parent.name}/all' for f in folders if f.parent.name not in LEFT_OUT]


def reasons_in(path):
    """The reason for each key of a file: a key is a line, its reason is indented below it."""
    entries = re.findall(r'^(?!#)(\S.*)\n((?:    .*\n)+)', path.read_text(), re.M)
    return {key: ' '.join(reason.split()) for key, reason in entries}
