#!/usr/bin/env python3
"""Cuts a JUnit report at every byte that was ever written into it.

    tests/reports/cuts.py RECORD SCHEMA

RECORD prints each change of the file. A write may be torn: a process that is killed leaves it up to
any byte, and of a write without order any part of it. The file has to be valid each time, and to
name what was running.
"""

import pathlib
import subprocess
import sys

from parsers import Schema, mistake

PARTS = 4  # of a write are there or not, in every combination


class Report:
    def __init__(self, schema):
        self.schema = schema
        self.bytes = b''
        self.checked = 0

    def check(self, data):
        wrong = mistake(bytes(data), self.schema)
        if wrong:
            sys.exit(f'{wrong} behind {self.checked} cuts:\n{bytes(data)[:20000]!r}')
        self.checked += 1

    def replace(self, data):
        self.bytes = bytearray(data)
        self.check(self.bytes)

    def write(self, offset, data):
        before = bytes(self.bytes)
        # Most of a long record is the same letter.
        step = 1 if len(data) < 5000 else 97
        for size in range(0, len(data) + 1, step):
            self.bytes[offset:offset + size] = data[:size]
            self.check(self.bytes)
        self.bytes[offset:offset + len(data)] = data
        after = bytes(self.bytes)
        for present in range(2 ** PARTS):
            torn = bytearray(before)
            for part in range(PARTS):
                begin = offset + len(data) * part // PARTS
                end = offset + len(data) * (part + 1) // PARTS
                if present >> part & 1:
                    torn[begin:end] = after[begin:end]
            self.check(torn)

    def set(self, offset, data):
        self.bytes[offset:offset + 1] = data
        self.check(self.bytes)


def main():
    record, kind = sys.argv[1:]
    xsd = pathlib.Path(__file__).parent / f'junit-{kind}.xsd'
    lines = subprocess.run([record, kind], check=True, stdout=subprocess.PIPE, text=True).stdout
    report = Report(Schema(xsd))
    for line in lines.splitlines():
        how, *place, data = line.split(' ')
        getattr(report, how)(*map(int, place), bytes.fromhex(data))
        if b'did not finish' not in report.bytes and line != lines.splitlines()[-1]:
            sys.exit('A report that is not complete does not tell it.')
    final = bytes(report.bytes)
    for text, count in ((b'did not finish', 0), (b'<?q', 0), (b'<testcase ', 8),
                        (b'tests="8" failures="3" errors="0"', 1)):
        if final.count(text) != count:
            sys.exit(f'{text!r} is {final.count(text)} times, not {count}, in:\n{final!r}')
    print(f'{report.checked} cuts, each valid; the complete report has {len(final)} bytes.')


if __name__ == '__main__':
    main()
