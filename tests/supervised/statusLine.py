#!/usr/bin/env python3
"""Runs tests under a supervisor on a terminal: a line tells what runs, and nothing of it stays.

usage: statusLine.py BINARY [TEST...]
"""

import fcntl
import os
import pty
import re
import select
import struct
import subprocess
import sys
import tempfile
import termios
import time
import unicodedata
import unittest
from pathlib import Path

from runs import environment_in, kill_left_processes

BINARY = None
LONGEST = 60  # seconds; a loaded machine takes its time
SECONDS = re.compile(r" \d+ s")
DOORS = ["first", "second", "third", "last"]


def width_of(character):
    return 2 if unicodedata.east_asian_width(character) in "WF" else 1


class Screen:
    """A terminal, as far as a run makes use of one."""

    def __init__(self, columns, rows):
        self.columns, self.rows = columns, rows
        self.lines = [""]  # all that there has ever been; the last rows of them are to be seen
        self.row = self.column = 0
        self.saved = (0, 0)
        self.rest = b""

    def feed(self, data):
        text = (self.rest + data).decode(errors="surrogateescape")
        # An escape sequence or a character that has come in parts waits for the rest of it.
        complete = re.sub(r"(\x1b\[?|[\udc80-\udcff]{1,3})$", "", text)
        self.rest = text[len(complete):].encode(errors="surrogateescape")
        for part in re.findall(r"\x1b\[K|\x1b.|.", complete, re.DOTALL):
            self.obey(part)

    def obey(self, part):
        if part in ("\n", "\x1bD"):
            self.row += 1
            self.lines += [""] * (self.row + 1 - len(self.lines))
        elif part == "\x1bM":
            self.row -= 1
        elif part == "\r":
            self.column = 0
        elif part == "\x1b7":
            self.saved = self.row, self.column
        elif part == "\x1b8":
            self.row, self.column = self.saved
        elif part == "\x1b[K":
            self.lines[self.row] = self.lines[self.row][:self.column]
        else:
            assert part.isprintable(), part
            if self.column + width_of(part) > self.columns:
                self.column = 0
                self.obey("\n")
            line = self.lines[self.row].ljust(self.column)
            end = self.column + width_of(part)
            # What is wide stands there with something of no width behind it.
            self.lines[self.row] = line[:self.column] + part.ljust(width_of(part), "\0") + line[end:]
            self.column = end

    def text(self):
        return "\n".join(line.rstrip() for line in self.lines).replace("\0", "").rstrip("\n")


class StatusLine(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="qix status ")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.addCleanup(lambda: kill_left_processes(folder.name))

    def start(self, columns=80, rows=12, out=None, err=None, **variables):
        self.leader, follower = pty.openpty()
        self.addCleanup(os.close, self.leader)
        fcntl.ioctl(follower, termios.TIOCSWINSZ, struct.pack("HHHH", rows, columns, 0, 0))
        self.screen = Screen(columns, rows)
        self.raw = b""
        environment = {**environment_in(self.folder), "DOORS": str(self.folder), "TERM": "xterm", **variables}
        self.process = subprocess.Popen([BINARY, "--run=doors", "--jobs=2", "--color=never"], env=environment,
                                        stdin=subprocess.DEVNULL, stdout=out or follower, stderr=err or follower)
        for cleanup in (self.process.wait, self.process.kill):
            self.addCleanup(cleanup)
        os.close(follower)

    def read(self):
        """What comes next; false at the end."""
        ready, _, _ = select.select([self.leader], [], [], LONGEST)
        self.assertTrue(ready, f"nothing comes behind {self.screen.text()!r}")
        try:
            data = os.read(self.leader, 65536)
        except OSError:
            return False  # this is how the end of a terminal shows
        self.raw += data
        self.screen.feed(data)
        return bool(data)

    def await_line(self, text):
        """A whole line of the screen, but for the seconds."""
        deadline = time.monotonic() + LONGEST
        while text not in [SECONDS.sub("", line) for line in self.screen.text().split("\n")]:
            self.assertLess(time.monotonic(), deadline, self.screen.text())
            self.assertTrue(self.read(), self.screen.text())

    def open(self, *names):
        for name in names:
            (self.folder / name).touch()

    def finish(self):
        self.open(*DOORS)
        while self.read():
            pass
        return self.process.wait(LONGEST)

    def run_without_terminal(self):
        """What the same run shows where there is no line."""
        with tempfile.TemporaryDirectory(prefix="qix status ") as folder:
            for name in DOORS:
                Path(folder, name).touch()
            result = subprocess.run([BINARY, "--run=doors", "--color=never"], stdin=subprocess.DEVNULL,
                                    env={**environment_in(folder), "DOORS": folder}, capture_output=True, check=False)
        self.assertEqual(result.stderr, b"")
        return result.stdout

    def test_it_tells_what_has_ended_and_what_runs(self):
        self.start()
        self.await_line("[0/4] doors.first, doors.second")
        self.open("second")
        self.await_line("[1/4, 1 failed] doors.first, doors.große%20Tür%20門が開くまで待つ")
        self.open("first")
        self.await_line("[2/4, 1 failed] doors.große%20Tür%20門が開くまで待つ, doors.last")
        self.assertEqual(self.finish(), 1)
        expected = Screen(self.screen.columns, self.screen.rows)
        expected.feed(self.run_without_terminal().replace(b"\n", b"\r\n"))
        self.assertEqual(self.screen.text(), expected.text())

    def test_it_tells_for_how_long(self):
        self.start()
        while " 1 s, " not in self.screen.text():
            self.assertTrue(self.read(), self.screen.text())
        self.finish()

    def test_it_stays_within_the_width_and_leaves_characters_whole(self):
        for columns in (58, 57, 56, 55, 40, 39, 10, 2):
            with self.subTest(columns=columns):
                for path in self.folder.glob("*"):
                    if path.is_file():
                        path.unlink()
                self.open("second")
                self.start(columns)
                while columns > 9 and b"\x1bD\r[1/4, 1" not in self.raw:
                    self.assertTrue(self.read())
                self.finish()
                # Bytes that are no characters are an error here.
                shown = [line.decode() for line in re.findall(rb"\x1b7\x1bD\r([^\x1b]+)\x1b\[K", self.raw)]
                longest = max(sum(map(width_of, line)) for line in shown)
                self.assertIn(longest, (columns - 1, columns - 2))  # what is wide may not fit in

    def test_there_is_none_without_a_terminal(self):
        with tempfile.TemporaryFile() as err:
            self.start(err=err)
            self.finish()
            self.assertNotIn(b"\x1b", self.raw)
            err.seek(0)
            self.assertEqual(err.read(), b"")

    def test_there_is_none_on_a_terminal_that_cannot(self):
        self.start(TERM="dumb")
        self.finish()
        self.assertNotIn(b"\x1b", self.raw)

    def test_output_that_goes_elsewhere_has_nothing_of_it(self):
        with tempfile.TemporaryFile() as out:
            self.start(out=out)
            self.await_line("[0/4] doors.first, doors.second")
            self.finish()
            self.assertEqual(self.screen.text(), "")
            out.seek(0)
            self.assertEqual(out.read(), self.run_without_terminal())


if __name__ == "__main__":
    BINARY = sys.argv.pop(1)
    unittest.main()
