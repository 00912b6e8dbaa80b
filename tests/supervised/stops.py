#!/usr/bin/env python3
"""Stops and continues runs whose tests have processes of their own, as Ctrl-Z and fg do, and ends them twice.

usage: stops.py BINARY [TEST...]
"""

import json
import os
import re
import signal
import subprocess
import sys
import tempfile
import time
import unittest
import xml.etree.ElementTree
from pathlib import Path

from runs import environment_in, kill_left_processes, left_processes

BINARY = None
LONGEST = 60  # seconds; a loaded machine takes its time
LIMIT = 4     # seconds for each test
BREAK = 6     # longer than that


def state_of(process):
    """The letter that the system has for it; T is stopped."""
    return Path("/proc", str(process), "stat").read_text().rpartition(")")[2].split()[0]


class RunOfDoors(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="qix doors ")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.addCleanup(lambda: kill_left_processes(folder.name))

    def start(self, *arguments):
        """As shells do, in a group of its own, which is continued by this process."""
        process = subprocess.Popen([BINARY, *arguments], env={**environment_in(self.folder), "DOORS": self.folder},
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                   process_group=0)
        for cleanup in (process.stdout.close, process.wait, process.kill):
            self.addCleanup(cleanup)
        return process

    def await_file(self, name):
        deadline = time.monotonic() + LONGEST
        while not (self.folder / name).exists():
            self.assertLess(time.monotonic(), deadline, f"{name} has not come")
            time.sleep(0.005)
        return (self.folder / name).read_text().strip()

    def open(self, *names):
        for name in names:
            (self.folder / name).touch()

    def expect_nothing_left(self):
        deadline = time.monotonic() + LONGEST
        while left_processes(self.folder) and time.monotonic() < deadline:
            time.sleep(0.01)
        self.assertEqual(left_processes(self.folder), [])


class Stops(RunOfDoors):
    def stop(self, *arguments):
        """A run that has been stopped while two tests were running, and the processes of these."""
        process = self.start("--run=doors", "--jobs=2", *arguments)
        running = [self.await_file(name) for name in ("first.waits", "second.waits", "sleeper")]
        os.killpg(process.pid, signal.SIGTSTP)
        _, status = os.waitpid(process.pid, os.WUNTRACED)
        self.assertTrue(os.WIFSTOPPED(status), status)
        return process, running

    def test_all_of_it_stops_and_continues_and_the_break_does_not_count(self):
        process, running = self.stop(f"--time-limit={LIMIT}", "--durations=4",
                                     f"--output-events={self.folder}/events")
        self.assertEqual([state_of(each) for each in running], ["T", "T", "T"])
        time.sleep(BREAK)
        self.open("first", "second", "third", "last")
        self.assertFalse((self.folder / "third.waits").exists())
        os.killpg(process.pid, signal.SIGCONT)
        told = process.communicate(timeout=LONGEST)[0].decode()
        self.assertIn("\n4 OK, 1 Failed, 0 Aborted, 0 Skipped\n", told)
        self.assertIn("this one fails", told)
        self.assertEqual(process.returncode, 1)
        seconds = re.findall(r"^ *(\d+\.\d+)  doors\.", told, re.MULTILINE)
        self.assertEqual(len(seconds), 4)
        self.assertLess(max(map(float, seconds)), LIMIT)
        events = map(json.loads, (self.folder / "events").read_text().splitlines())
        ends = {event["id"]: event["seconds"] for event in events if event["event"] == "testEnd"}
        self.assertEqual(len(ends), 5)
        self.assertLess(max(ends.values()), LIMIT, "the group's among them")
        self.expect_nothing_left()

    def test_it_can_be_stopped_again(self):
        process, running = self.stop()
        for _ in range(3):
            os.killpg(process.pid, signal.SIGCONT)
            while "T" in map(state_of, running):
                time.sleep(0.005)
            os.killpg(process.pid, signal.SIGTSTP)
            _, status = os.waitpid(process.pid, os.WUNTRACED)
            self.assertTrue(os.WIFSTOPPED(status), status)
            self.assertEqual([state_of(each) for each in running], ["T", "T", "T"])
        self.open("first", "second", "third", "last")
        os.killpg(process.pid, signal.SIGCONT)
        self.assertIn(b"\n4 OK, 1 Failed,", process.communicate(timeout=LONGEST)[0])

    def test_nothing_is_left_when_it_is_killed_meanwhile(self):
        process, _ = self.stop()
        process.kill()
        process.communicate(timeout=LONGEST)
        self.expect_nothing_left()

    def test_it_is_interrupted_once_it_goes_on(self):
        process, _ = self.stop()
        process.send_signal(signal.SIGTERM)
        os.killpg(process.pid, signal.SIGCONT)
        told = process.communicate(timeout=LONGEST)[0].decode()
        self.assertIn("Stopped by SIGTERM. Tests that were not run: ", told)
        self.assertEqual(process.returncode, -signal.SIGTERM)
        self.expect_nothing_left()


class Interrupts(RunOfDoors):
    def test_a_second_signal_ends_it_at_once(self):
        for second in (signal.SIGINT, signal.SIGTERM):
            with self.subTest(second=second):
                (self.folder / "nothing.waits").unlink(missing_ok=True)
                process = self.start("--run=stubborn", "--jobs=2")
                self.await_file("nothing.waits")
                process.send_signal(signal.SIGINT)
                time.sleep(0.2)  # both at the same time would be one
                process.send_signal(second)
                told = process.communicate(timeout=LONGEST)[0].decode()
                self.assertNotIn(" OK, ", told)
                self.assertEqual(process.returncode, -second)
                self.expect_nothing_left()

    def test_reports_hold_what_has_run(self):
        process = self.start("--run=doors", "--jobs=2", f"--output-junit={self.folder}/report.xml",
                             f"--output-events={self.folder}/events")
        # What has ended behind a test that is still running is known and not told yet.
        self.open("second")
        for name in ("first.waits", "third.waits"):
            self.await_file(name)
        process.send_signal(signal.SIGINT)
        told = process.communicate(timeout=LONGEST)[0].decode()
        self.assertIn("Stopped by SIGINT. Tests that were not run: 1\n", told)
        cases = xml.etree.ElementTree.parse(self.folder / "report.xml").iter("testcase")
        ended = {case.get("name"): [child.tag for child in case if child.tag != "properties"] for case in cases}
        self.assertEqual(list(ended.values()), [["failure"]] * 3)
        self.assertIn("this one fails", told)
        self.assertTrue((self.folder / "events").read_text().endswith("\n"))
        self.assertIn('"failed"', (self.folder / "events").read_text())


if __name__ == "__main__":
    BINARY = sys.argv.pop(1)
    unittest.main()
