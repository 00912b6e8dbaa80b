#!/usr/bin/env python3
"""Runs the suite of this folder with options, as scripts and servers do.

usage: options.py BINARY [TEST...]
"""

import json
import os
import pty
import re
import signal
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

BINARY = None
MARK = re.compile(rb"\[NON-UTF-8-BYTE-0x([0-9A-F]{2})\]")
PASSED_ON = re.compile(r"(A|UB|T|L)SAN_OPTIONS|LD_LIBRARY_PATH|LLVM_PROFILE_FILE|GCOV_.*")


def decoded_id(component):
    """The bytes of a name, from its part of an id."""
    if component == "%":
        return b""
    return re.sub(rb"%([0-9A-F]{2})", lambda match: bytes([int(match[1], 16)]), component.encode())


def decoded_name(name):
    """The bytes of a name, from the text that stands for it in JSON."""
    return MARK.sub(lambda match: bytes([int(match[1], 16)]), name.encode())


class OptionTest(unittest.TestCase):
    """A folder for each test, in which the suite starts."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="qix options ")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.ran_file = self.folder / "ran.txt"

    def run_suite(self, *arguments, **variables):
        kept = {name: value for name, value in os.environ.items() if PASSED_ON.fullmatch(name)}
        environment = {**kept, "LC_ALL": "C", "OPTIONS_RAN": str(self.ran_file), **variables}
        self.ran_file.unlink(missing_ok=True)
        return subprocess.run([BINARY, *arguments], cwd=self.folder, env=environment,
                              stdin=subprocess.DEVNULL, capture_output=True, check=False)

    def ran(self):
        return self.ran_file.read_text().splitlines() if self.ran_file.exists() else []

    def list_ids(self, *arguments, **variables):
        result = self.run_suite("--list-tests", *arguments, **variables)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(self.ran(), [])
        return result.stdout.decode().splitlines()

    def list_json(self, *arguments):
        return json.loads(self.run_suite("--list-tests=json", *arguments).stdout.decode())


class RoundTrip(OptionTest):
    """Each id that is listed runs exactly its test."""

    def test_each_id_runs_its_test(self):
        ids = self.list_ids("*", "+", "i")
        self.assertEqual(len(ids), len(set(ids)))
        by_hand = [test_id for test_id in ids if not test_id.startswith("macros.")]
        noted = {test_id: [str(number)] for number, test_id in enumerate(by_hand)}
        noted["macros.inner.table"] = ["table", "row one", "row two", "row two", "row r w"]
        noted["macros.inner.plain"] = ["plain"]
        noted["macros.lasting"] = ["lasting"]
        noted["macros.asking"] = ["asking"]
        self.assertEqual(sorted(noted), sorted(ids))
        self.assertGreater(len(by_hand), 255 + 10)
        for test_id in ids:
            result = self.run_one(test_id)
            self.assertEqual(self.ran(), noted[test_id], test_id[:100])
            self.assertEqual(result.returncode, 0, test_id[:100])

    def run_one(self, test_id):
        if len(test_id) < 100000:
            return self.run_suite("--run=" + test_id)
        # The system takes no argument that is so long.
        (self.folder / "ids.txt").write_text(test_id + "\n")
        return self.run_suite("--run-file=ids.txt")

    def test_ids_and_names_tell_the_same(self):
        document = self.list_json("*", "+", "i")
        tests = document["tests"]
        self.assertEqual(document["count"], len(tests))
        self.assertEqual([test["id"] for test in tests], self.list_ids("*", "+", "i"))
        for test in tests:
            names = [re.sub("#[0-9]+$", "", part) for part in test["id"].split(".")]
            self.assertEqual([decoded_id(name) for name in names],
                             [decoded_name(name) for name in test["names"]])
            self.assertRegex(test["id"], r"\A[\w%.#-]+\Z")
        every_byte = bytes(range(1, 256))
        self.assertIn([every_byte, every_byte],
                      [[decoded_name(name) for name in test["names"]] for test in tests])

    def test_digest_tells_of_all_shards(self):
        whole = self.list_json()
        first, second = self.list_json("--shard=1/2"), self.list_json("--shard=2/2")
        self.assertEqual(first["count"] + second["count"], whole["count"])
        self.assertEqual({whole["digest"]}, {first["digest"], second["digest"]})
        self.assertNotEqual(self.list_json("--skip=twice")["digest"], whole["digest"])


class SubTests(OptionTest):
    """Ids that go on below a test."""

    def check(self, expected, *arguments):
        result = self.run_suite(*arguments)
        self.assertEqual(self.ran(), expected)
        return result

    def test_named_rows_run_alone(self):
        table = "macros.inner.table"
        result = self.check(["table", "row one"], f"--run={table}.one")
        self.assertIn(b"\n4 OK, 0 Failed, 0 Aborted, 0 Skipped\n", result.stdout)
        self.check(["table", "row two"], f"--run={table}.two#2")
        self.check(["table", "row two", "row two"], f"--run={table}.t*")
        self.check(["table", "row r w"], f"--run={table}.r%20w")
        self.check(["table", "row two", "row two", "row r w"], f"--skip={table}.one",
                   f"--run={table}")
        self.check(["table", "row one", "row two", "row two", "row r w"], f"--run={table}.one",
                   f"--run={table}")
        self.assertEqual(self.check(["table"], f"--run={table}.three").returncode, 2)

    def test_items_that_run_their_children_themselves(self):
        own = {"OPTIONS_OWN": "1"}
        self.run_suite("--run=own", **own)
        self.assertEqual(self.ran(), ["before", "own.second", "row", "before", "own.first", "row"])
        self.run_suite("--run=own.first", **own)
        self.assertEqual(self.ran(), ["before", "before", "own.first"])
        self.run_suite("--run=own", "--skip=own.first", **own)
        self.assertEqual(self.ran(), ["before", "own.second", "row", "before", "row"])
        self.run_suite("--order=random:1", "--run=own", **own)
        self.assertEqual(self.ran(), ["before", "own.second", "row", "before", "own.first", "row"])


class Memory(OptionTest):
    """What a run leaves for the next one."""

    def rerun(self, *arguments, **variables):
        result = self.run_suite("--rerun-failed", *arguments, **variables)
        return self.ran(), result

    def test_failed_tests_run_again_until_they_pass(self):
        self.assertEqual(self.run_suite("--run=twice*", OPTIONS_FAIL="265").returncode, 1)
        ran, result = self.rerun(OPTIONS_FAIL="265")
        self.assertEqual((ran, result.returncode), (["265"], 1))
        ran, result = self.rerun()
        self.assertEqual((ran, result.returncode), (["265"], 0))
        ran, result = self.rerun()
        self.assertEqual((ran, result.returncode), ([], 0))
        self.assertIn(b"Nothing that is selected failed", result.stdout)

    def test_what_killed_the_process_runs_again(self):
        result = self.run_suite("--run=macros", OPTIONS_KILL="plain")
        self.assertEqual(result.returncode, -signal.SIGKILL)
        self.assertEqual(self.ran(), ["table", "row one", "row two", "row two", "row r w", "plain"])
        self.assertEqual(self.rerun()[0], ["plain"])

    def test_what_was_let_in_once_is_let_in_again(self):
        self.run_suite("--run=macros", "+", OPTIONS_FAIL="lasting")
        self.assertEqual(self.rerun()[0], ["lasting"])

    def test_failed_rows_fail_their_test(self):
        self.run_suite("--run=macros", OPTIONS_FAIL="row one")
        self.assertEqual(self.rerun()[0][0], "table")

    def test_early_end_of_a_rerun_forgets_nothing(self):
        self.run_suite("--run=macros.inner", OPTIONS_FAIL="plain")
        self.assertEqual(self.list_ids("--rerun-failed"), ["macros.inner.plain"])
        self.rerun("--skip=macros.inner.plain")
        self.assertEqual(self.list_ids("--rerun-failed"), ["macros.inner.plain"])

    def test_without_a_record_everything_runs(self):
        ran, result = self.rerun("--run=macros.inner.plain")
        self.assertEqual(ran, ["plain"])
        self.assertIn(b"No run has been recorded", result.stdout)

    def test_runs_without_options_are_recorded_behind_one_with(self):
        before = self.run_suite("+macros", OPTIONS_FAIL="plain")
        self.assertEqual(list(self.folder.glob("testWork/*/testHistory-*.bin")), [])
        self.run_suite("--run=macros.inner", OPTIONS_FAIL="table")
        after = self.run_suite("+macros", OPTIONS_FAIL="plain")
        self.assertEqual((before.stdout, before.stderr, before.returncode),
                         (after.stdout, after.stderr, after.returncode))
        self.assertEqual(self.rerun()[0], ["plain"])
        self.assertEqual(self.run_suite("+nothing").returncode, 0)
        self.assertEqual(self.run_suite("+").stdout, b"\n0 OK, 0 Failed, 0 Aborted, 0 Skipped\n\n")

    def test_garbage_is_told_and_replaced(self):
        self.run_suite("--run=macros", OPTIONS_FAIL="plain")
        history = next(self.folder.glob("testWork/*/testHistory-*.bin"))
        history.write_bytes(b"garbage" * 100)
        ran, result = self.rerun("--run=macros.inner.plain")
        self.assertEqual((ran, result.returncode), (["plain"], 0))
        self.assertRegex(result.stderr, rb"\AError: what earlier runs have left in '.*' is not "
                                        rb"used: it is no such file\n\Z")
        self.assertEqual(self.run_suite("--run=macros").stderr, b"")

    def test_failed_come_first(self):
        self.run_suite("--run=macros.inner", OPTIONS_FAIL="plain")
        self.run_suite("--run=macros.inner", "--order=failed")
        self.assertEqual(self.ran()[:2], ["plain", "table"])

    def test_times_of_a_file_are_used_from_the_folder_of_the_start(self):
        self.run_suite("--run=macros")
        next(self.folder.glob("testWork/*/testHistory-*.bin")).rename(self.folder / "times.bin")
        shards = [self.list_ids("--run=macros", "--times=times.bin", f"--shard={k}/2")
                  for k in (1, 2)]
        self.assertEqual(sorted(sum(shards, [])), ["macros.inner.plain", "macros.inner.table"])
        self.run_suite("--run=macros", "--order=longest", "--times=times.bin")
        self.assertEqual(self.ran()[0], "table")

    def test_durations_name_the_slowest(self):
        output = self.run_suite("--run=macros", "--durations=1").stdout.decode()
        self.assertRegex(output, r"\nSlowest tests, in seconds:\n +[0-9.]+  macros\.inner\.\w+\n\Z")


class SkipStatus(OptionTest):
    """What --skip-status says only when it is true."""

    def status(self, *arguments):
        return self.run_suite("--skip-status=77", "--run=macros.inner.plain", *arguments,
                              OPTIONS_SKIP="plain").returncode

    def test_a_run_without_its_output_or_its_report_is_not_skipped(self):
        self.assertEqual(self.status(), 77)
        self.assertEqual(self.status("--output-junit=/dev/full"), 2)
        with open("/dev/full", "wb") as full:
            result = subprocess.run(
                [BINARY, "--skip-status=77", "--run=macros.inner.plain"], cwd=self.folder,
                env={**os.environ, "OPTIONS_SKIP": "plain"}, stdin=subprocess.DEVNULL, stdout=full,
                stderr=subprocess.DEVNULL, check=False)
        self.assertEqual(result.returncode, 2)


class Colors(OptionTest):
    """What a terminal sees."""

    def on_terminal(self, *arguments, **variables):
        """What is printed when standard output is a terminal."""
        leader, follower = pty.openpty()
        environment = {"LC_ALL": "C", "LD_LIBRARY_PATH": os.environ.get("LD_LIBRARY_PATH", ""),
                       **variables}
        with subprocess.Popen([BINARY, *arguments], cwd=self.folder, env=environment,
                              stdin=subprocess.DEVNULL, stdout=follower) as process:
            os.close(follower)
            output = b""
            try:
                while data := os.read(leader, 65536):
                    output += data
            except OSError:
                pass  # this is how the end of a terminal shows
            process.wait()
        os.close(leader)
        return output.replace(b"\r\n", b"\n")

    def test_options_bring_colors_to_a_terminal_and_nothing_else(self):
        plain = self.run_suite("--run=macros", OPTIONS_FAIL="plain").stdout
        colored = self.on_terminal("--run=macros", OPTIONS_FAIL="plain")
        self.assertIn(b"\x1b[32m.\x1b[0m", colored)
        self.assertIn(b"\x1b[31mTEST FAILED: macros.inner.plain\x1b[0m\n", colored)
        self.assertEqual(re.sub(rb"\x1b\[\d+m", b"", colored), plain)
        self.assertNotIn(b"\x1b", plain)

    def test_the_environment_and_the_option_decide(self):
        run = "--run=macros.inner.plain"
        self.assertNotIn(b"\x1b", self.on_terminal(run, NO_COLOR="1"))
        self.assertIn(b"\x1b", self.on_terminal(run, NO_COLOR=""))
        self.assertNotIn(b"\x1b", self.on_terminal(run, "--color=never"))
        self.assertIn(b"\x1b", self.on_terminal(run, "--color=always", NO_COLOR="1"))
        self.assertIn(b"\x1b", self.run_suite(run, CLICOLOR_FORCE="1").stdout)
        self.assertNotIn(b"\x1b", self.run_suite(run, CLICOLOR_FORCE="0").stdout)

    def test_without_options_nothing_is_colored(self):
        self.assertNotIn(b"\x1b", self.on_terminal("+macros", CLICOLOR_FORCE="1"))


def main():
    global BINARY
    BINARY = str(Path(sys.argv[1]).resolve())
    unittest.main(argv=sys.argv[:1] + sys.argv[2:], verbosity=2)


if __name__ == "__main__":
    main()
