#!/usr/bin/env python3
"""Compares what a shared library shows to others with the list that is kept of it.

A difference means that the binary interface has changed. An added name is usually meant: a new
class or function. A name that is missing breaks programs that are already built, and the version
of the library has to tell. Where the change is meant, write the list anew and commit it:

    tests/symbols/symbols.py --update tests/symbols/libqix.txt build/dev/src/qix/libqix.so
"""

import argparse
import difflib
import pathlib
import subprocess
import sys


def exported_names(library, nm):
    """The demangled names, sorted, each once: one constructor has several symbols."""
    symbols = subprocess.run(
        [nm, "--dynamic", "--defined-only", "--demangle", "--format=bsd", library],
        check=True, capture_output=True, text=True).stdout
    names = set()
    for line in symbols.splitlines():
        _address, kind, name = line.split(" ", 2)
        # Weak functions are inline ones: each module that calls one makes its own, and whether
        # this library does is up to the optimizer.
        if kind not in "Ww":
            names.add(name)
    return sorted(names)


def describe_difference(kept, found, arguments):
    difference = difflib.unified_diff(
        kept, found, str(arguments.list), str(arguments.library), lineterm="", n=0)
    return "\n".join([
        *difference, "",
        "The exported symbols have changed. If that is meant, run this and commit the list:",
        f'    "{sys.argv[0]}" --update "{arguments.list}" "{arguments.library}"'])


def main():
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--update", action="store_true", help="write the list anew")
    parser.add_argument("--nm", default="nm", help="the program that lists symbols")
    parser.add_argument("list", type=pathlib.Path)
    parser.add_argument("library", type=pathlib.Path)
    arguments = parser.parse_args()

    found = exported_names(arguments.library, arguments.nm)
    if arguments.update:
        arguments.list.write_text("".join(f"{name}\n" for name in found), encoding="utf-8")
        return 0
    kept = arguments.list.read_text(encoding="utf-8").splitlines()
    if kept == found:
        return 0
    print(describe_difference(kept, found, arguments))
    return 1


if __name__ == "__main__":
    sys.exit(main())
