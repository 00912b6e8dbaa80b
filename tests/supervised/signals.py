#!/usr/bin/env python3
"""Sends signals to runs whose tests have processes of their own: they tell what has run, and leave nothing.

usage: signals.py BINARY [TEST...]
       SUPERVISED_KILLS=N    kills so many runs at random moments, by default 20
"""

import os
import random
import signal
import subprocess
import sys
import tempfile
import time
import unittest

from runs import environment_in, left_processes, wait_for

BINARY = None
LONGEST = 60  # seconds; a loaded machine takes its time


class SignalTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="qix signals ")
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def start(self, *arguments):
        process = subprocess.Popen([BINARY, *arguments], env=environment_in(self.folder), stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.kill)
        return process

    def expect_nothing_left(self):
        deadline = time.monotonic() + LONGEST
        while left_processes(self.folder) and time.monotonic() < deadline:
            time.sleep(0.01)
        self.assertEqual(left_processes(self.folder), [])


class Interrupts(SignalTest):
    def expect_end_by(self, number):
        process = self.start("--run=waits", "--jobs=2")
        # The dot of the first test and that of the row.
        wait_for(process, b"> waits .waiting\n.")
        process.send_signal(number)
        told = process.communicate(timeout=LONGEST)[0].decode()
        self.assertIn("the run was interrupted", told)
        self.assertRegex(told, "Tests that were not run: [01]\n")
        self.assertEqual(process.returncode, -number)
        self.expect_nothing_left()

    def test_what_has_run_is_told_after_sigint(self):
        self.expect_end_by(signal.SIGINT)

    def test_what_has_run_is_told_after_sigterm(self):
        self.expect_end_by(signal.SIGTERM)


class Kills(SignalTest):
    def test_nothing_is_left_whenever_the_run_is_killed(self):
        for _ in range(int(os.environ.get("SUPERVISED_KILLS", "20"))):
            pause = random.random() / 5
            with self.subTest(pause=pause):
                process = self.start("--run=waits", "--jobs=2")
                time.sleep(pause)
                process.kill()
                process.communicate(timeout=LONGEST)
                self.assertEqual(process.returncode, -signal.SIGKILL)
                self.expect_nothing_left()


if __name__ == "__main__":
    BINARY = sys.argv.pop(1)
    unittest.main()
