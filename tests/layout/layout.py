#!/usr/bin/env python3
"""Compares the layout of the public classes, as the compilers list it, with stored files.

Virtual tables and bases come from g++, fields from clang++, as each lists only one of them well.
With --update the files are written instead: read them before they are committed. The other
arguments are those that `ctest -V -R layout` shows.
"""

import argparse
import pathlib
import re
import subprocess
import sys
import tempfile


def list_classes(source):
    return re.findall(r"^\s*SHOW\((.+)\);$", source.read_text(), re.MULTILINE)


def list_tables(args):
    with tempfile.TemporaryDirectory() as folder:
        listing = pathlib.Path(folder, "classes.txt")
        subprocess.run([args.gxx, *args.flags, "-fsyntax-only", f"-fdump-lang-class={listing}",
                        args.source], check=True)
        return listing.read_text()


def list_records(args):
    listing = subprocess.run([args.clangxx, *args.flags, "-fsyntax-only", "-Xclang",
                              "-fdump-record-layouts", args.source],
                             check=True, stdout=subprocess.PIPE, text=True).stdout
    return re.sub(r"\b(?:class|struct|enum|union) ", "", listing)


def block(listing, heading):
    """The lines from a heading to the next empty line, or none."""
    match = re.search(rf"^{re.escape(heading)}\n((?:.+\n)*)", listing, re.MULTILINE)
    return match.group(1).splitlines() if match else []


def bases_of(name, tables):
    bases = []
    for line in block(tables, f"Class {name}"):
        match = re.match(r"(\S.*?) \(0x\S+\) (\d+)(.*)", line)
        if match and match.group(1) != name:
            virtual = " virtual" if "virtual" in match.group(3) else ""
            bases.append(f"{match.group(2):>4} {match.group(1)}{virtual}")
    return bases


def tables_of(name, tables):
    """The entries of each virtual table behind its type information."""
    entries = [re.sub(r"^\d+\s+|\(int \(\*\)\(\.\.\.\)\)", "", line)
               for line in block(tables, f"Vtable for {name}")[1:]]
    headers = [i for i, entry in enumerate(entries) if "& _ZTI" in entry]
    return [entries[start + 1:end] for start, end in zip(headers, headers[1:] + [None])]


def function_of(entry, is_first):
    if entry == "0":
        return "(destructor of an abstract class)" if is_first else "(unused)"
    thunk = re.search(r"::_ZT[hv][^N]*NK?(\w+)$", entry)
    return f"thunk to {last_name_of(thunk.group(1))}" if thunk else entry


def last_name_of(mangled):
    """The last of the names, each with its length before it, that a mangled name begins with."""
    name = ""
    while length := re.match(r"\d+", mangled):
        end = length.end() + int(length.group())
        name, mangled = mangled[length.end():end], mangled[end:]
    return "destructor" if re.match("D[01]E", mangled) else name


def slots_of(name, tables):
    """The functions of each table, in slot order."""
    slots = []
    for table in tables_of(name, tables):
        while table and re.fullmatch(r"-?\d+", table[-1]):
            table.pop()  # an offset that stands in front of the next table
        slots += ["     - table of another base"] if slots else []
        slots += [f"     {function_of(entry, i < 2)}" for i, entry in enumerate(table)]
    return slots


def without_namespaces(text):
    """From clang++ 19 on, some names of types lack their namespace."""
    return re.sub(r"\b\w+::", "", text)


def without_arguments_namespaces(name):
    return re.sub(r"<.*>", lambda arguments: without_namespaces(arguments[0]), name)


def fields_of(name, records):
    names = {re.escape(name), re.escape(without_arguments_namespaces(name))}
    match = re.search(rf"\n +0 \| (?:{'|'.join(names)})(?: \(empty\))?\n((?:.* \| .*\n)*)",
                      records)
    if not match:
        sys.exit(f"clang++ does not list {name}")
    fields = []
    for line in match.group(1).splitlines():
        field = re.match(r" *(\d+) \|   (\S.*)", line)
        if field and not re.search(r"\((?:primary |virtual |primary virtual )?base\)|"
                                   r"vtable pointer\)", field.group(2)):
            fields.append(f"{field.group(1):>4} {field.group(2)}")
        size = re.search(r"\[sizeof=(\d+)", line)
        if size:
            fields.append(f"{size.group(1):>4} (end)")
    return fields


def describe(name, tables, records):
    lines = [name]
    for title, entries in (("bases", bases_of(name, tables)),
                           ("virtual operations", slots_of(name, tables)),
                           ("fields", fields_of(name, records))):
        lines += ["", title, *(entries or ["     none"])]
    return "\n".join(lines) + "\n"


def same(left, right):
    return without_namespaces(left) == without_namespaces(right)


def file_of(folder, name):
    return pathlib.Path(folder, re.sub(r"<.*", "", name).replace("::", ".") + ".txt")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--gxx", default="g++")
    parser.add_argument("--clangxx", default="clang++")
    parser.add_argument("--update", action="store_true")
    parser.add_argument("flags", nargs="*", help="compiler flags, behind --")
    args = parser.parse_args()
    here = pathlib.Path(__file__).resolve().parent
    args.source = here / "classes.cpp"
    names = list_classes(args.source)
    tables, records = list_tables(args), list_records(args)
    expected = {file_of(here / "expected", name): name for name in names}
    failures = 0
    for path, name in expected.items():
        text = describe(name, tables, records)
        if args.update:
            path.write_text(text)
        elif not path.exists() or not same(path.read_text(), text):
            failures += 1
            print(f"The layout of {name} is not that of {path}:\n{text}")
    for path in sorted(set((here / "expected").glob("*.txt")) - set(expected)):
        failures += 1
        print(f"{path} belongs to no class in classes.cpp")
    return 1 if failures or not names else 0


if __name__ == "__main__":
    sys.exit(main())
