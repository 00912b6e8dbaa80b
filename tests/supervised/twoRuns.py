#!/usr/bin/env python3
"""Starts a second run in the working folder of one that is going on: it ends at once and touches nothing.

usage: twoRuns.py BINARY [TEST...]
"""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from runs import environment_in, kill_left_processes, wait_for

BINARY = None
FIRST_RUNS = [["--run=waits"], ["--run=waits", "--jobs=2"], ["--run=waits", "--isolate"], ["+waits"]]
SECOND_RUNS = [["--run=segv.before"], ["--run=segv.before", "--jobs=2"], ["+comma"], ["--rerun-failed"],
               ["--run=segv.before", "--output-junit=report.xml"]]


class TwoRuns(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="qix two runs ")
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.addCleanup(lambda: kill_left_processes(self.folder))

    def run_suite(self, *arguments):
        return subprocess.run([BINARY, *arguments], env=environment_in(self.folder), stdin=subprocess.DEVNULL,
                              capture_output=True, check=False, timeout=100, cwd=self.folder)

    def start_run_that_waits(self, *arguments):
        process = subprocess.Popen([BINARY, *arguments], env=environment_in(self.folder), stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE)
        for cleanup in (process.stdout.close, process.wait, process.kill):
            self.addCleanup(cleanup)
        wait_for(process, b"> waits .waiting\n.")
        return process

    def files(self):
        return {path: path.read_bytes() for path in Path(self.folder).rglob("*") if path.is_file()}

    def test_the_second_one_ends_with_2_and_names_the_first_one(self):
        for arguments in FIRST_RUNS:
            first = self.start_run_that_waits(*arguments)
            files = self.files()
            for second in SECOND_RUNS:
                with self.subTest(first=arguments, second=second):
                    result = self.run_suite(*second)
                    self.assertEqual(result.returncode, 2)
                    self.assertIn(f" is in use: process {first.pid} is running tests in it. Let QIX_TESTWORKDIR "
                                  "name another folder.\n", result.stderr.decode())
                    self.assertNotIn(b"OK", result.stdout)
                    self.assertEqual(self.files(), files)
            # What tests have started stays for a moment, or for ever, and holds nothing.
            first.kill()
            first.wait()
            self.assertEqual(self.run_suite("--run=comma.before").returncode, 0)
            kill_left_processes(self.folder)

    def test_tests_can_be_listed_meanwhile(self):
        self.start_run_that_waits("--run=waits")
        listed = self.run_suite("--list-tests", "--run=comma")
        self.assertEqual(listed.stdout.decode().split(), ["comma.before", "comma.fault", "comma.after"])
        self.assertEqual(listed.returncode, 0)


if __name__ == "__main__":
    BINARY = sys.argv.pop(1)
    unittest.main()
