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
import xml.etree.ElementTree
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
        noted["macros.tagged"] = ["tagged"]
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

    def test_each_test_has_its_own_attributes(self):
        tests = {test["id"]: test for test in self.list_json("*", "+", "i")["tests"]}
        source = (Path(__file__).parent / "suite.cpp").read_text().splitlines()
        for name, duration, interactive, tags in [
                ("inner, plain", "short", False, []), ("lasting", "long", False, []),
                ("tagged", "short", False, ["net", 'in "quotes"']), ("asking", "short", True, [])]:
            test = tests["macros." + name.replace(", ", ".")]
            self.assertEqual([test["duration"], test["interactive"], test["tags"]],
                             [duration, interactive, tags], name)
            self.assertTrue(test["file"].endswith("suite.cpp"), test["file"])
            self.assertIn(name, source[test["line"] - 1])
        self.assertEqual(tests["twice"], {"id": "twice", "names": ["twice"], "duration": "short",
                                          "interactive": False, "tags": []})

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
        self.assertEqual(sorted(sum(shards, [])),
                         ["macros.inner.plain", "macros.inner.table", "macros.tagged"])
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


class Bazel(OptionTest):
    """The protocol by which Bazel runs tests."""

    def run_bazel(self, *arguments, **variables):
        """Names of files are relative, as from a program that Bazel did not start."""
        return self.run_suite(*arguments, BAZEL_TEST="1", **variables)

    def run_shard(self, index, total, *arguments, **variables):
        result = self.run_bazel(*arguments, TEST_SHARD_INDEX=str(index),
                                TEST_TOTAL_SHARDS=str(total), **variables)
        self.assertEqual(result.returncode, 0, result.stderr)
        return self.ran()

    def left(self):
        return sorted(file.name for file in self.folder.iterdir())

    def cases(self):
        root = xml.etree.ElementTree.parse(self.folder / "test.xml").getroot()
        return {case.get("classname") + "." + case.get("name"): case
                for case in root.iter("testcase")}

    def test_without_bazel_nothing_is_looked_at(self):
        variables = {name: "file" for name in (
            "TEST_SHARD_STATUS_FILE", "TEST_SHARD_INDEX", "TEST_TOTAL_SHARDS", "XML_OUTPUT_FILE",
            "TEST_PREMATURE_EXIT_FILE", "TESTBRIDGE_TEST_ONLY", "TESTBRIDGE_TEST_RUNNER_FAIL_FAST",
            "TEST_RANDOM_SEED", "TEST_WARNINGS_OUTPUT_FILE", "TEST_TMPDIR",
            "TEST_UNDECLARED_OUTPUTS_DIR")}
        for bazel in ({}, {"BAZEL_TEST": "0"}, {"BAZEL_TEST": ""}):
            result = self.run_suite("--run=macros.inner.plain", **variables, **bazel)
            self.assertEqual((self.ran(), result.returncode), (["plain"], 0))
            self.assertEqual(self.left(), ["ran.txt", "testWork"])
            result = self.run_suite(**variables, **bazel)
            self.assertEqual((self.ran(), result.returncode), ([], 2))

    def test_without_an_argument_all_tests_run(self):
        self.assertEqual(self.run_bazel().returncode, 0)
        everything = self.ran()
        self.run_suite("*")
        self.assertEqual(self.ran(), everything)
        self.run_bazel("+twice")
        self.assertLess(len(self.ran()), len(everything))

    def test_the_shard_status_file_is_touched_whatever_comes(self):
        self.assertEqual(self.run_bazel("--bogus", TEST_SHARD_STATUS_FILE="sharded").returncode, 2)
        self.assertEqual((self.folder / "sharded").read_bytes(), b"")

    def test_shards_are_disjoint_and_complete(self):
        self.run_bazel()
        everything = self.ran()
        shards = [self.run_shard(index, 4) for index in range(4)]
        self.assertEqual(sorted(sum(shards, [])), sorted(everything))
        self.assertTrue(all(shards))
        self.assertEqual(self.run_shard(3, 4, "--shard=1/1"), everything)

    def test_a_filter_counts_before_shards(self):
        self.assertEqual(sum((self.run_shard(index, 2, TESTBRIDGE_TEST_ONLY="macros.inner.plain")
                              for index in range(2)), []), ["plain"])
        self.run_bazel(TESTBRIDGE_TEST_ONLY=":macros.inner.plain:macros.lasting:")
        self.assertEqual(self.ran(), ["plain", "lasting"])
        result = self.run_bazel(TESTBRIDGE_TEST_ONLY="nothing")
        self.assertEqual((result.returncode, self.ran()), (2, []))
        self.assertIn(b"no test matches 'nothing'", result.stderr)

    def test_the_report_is_written_and_survives(self):
        only = {"TESTBRIDGE_TEST_ONLY": "macros.inner", "XML_OUTPUT_FILE": "test.xml"}
        self.assertEqual(self.run_bazel(**only, OPTIONS_FAIL="plain").returncode, 1)
        self.assertIsNotNone(self.cases()["macros.inner.plain"].find("failure"))
        self.assertIsNone(self.cases()["macros.inner.table"].find("failure"))
        self.run_bazel(**only, OPTIONS_KILL="plain")
        self.assertIsNotNone(self.cases()["macros.inner.plain"].find("error"))
        self.assertIsNone(self.cases()["macros.inner.table"].find("error"))

    def test_the_premature_exit_file_is_there_until_a_regular_end(self):
        file = {"TEST_PREMATURE_EXIT_FILE": "premature"}
        one = "--run=macros.inner.plain"
        for arguments, more, status in (
                ([one], {}, 0), ([one], {"OPTIONS_FAIL": "plain"}, 1), (["--help"], {}, 0),
                (["--run=nothing"], {}, 2), (["--bogus"], {}, 2)):
            (self.folder / "premature").write_text("of an earlier run")
            self.assertEqual(self.run_bazel(*arguments, **file, **more).returncode, status)
            self.assertFalse((self.folder / "premature").exists())
        self.run_bazel(one, **file, OPTIONS_KILL="plain")
        self.assertTrue((self.folder / "premature").exists())

    def test_what_concerns_one_run_is_hidden_from_the_tests(self):
        for name, value in (("TEST_PREMATURE_EXIT_FILE", "premature"),
                            ("XML_OUTPUT_FILE", "test.xml"), ("TEST_SHARD_STATUS_FILE", "sharded"),
                            ("TESTBRIDGE_TEST_ONLY", "macros.inner.plain"),
                            ("TESTBRIDGE_TEST_RUNNER_FAIL_FAST", "1")):
            self.run_bazel("--run=macros.inner.plain", **{name: value}, OPTIONS_TELL=name)
            self.assertEqual(self.ran(), ["plain", name + " is not set"])
        self.run_shard(0, 1, "--run=macros.inner.plain", OPTIONS_TELL="TEST_TOTAL_SHARDS")
        self.assertEqual(self.ran(), ["plain", "TEST_TOTAL_SHARDS is not set"])

    def test_fail_fast(self):
        for value, ran in (("1", 1), ("0", 2), ("", 2)):
            self.run_bazel("--run=macros.inner", "--skip=macros.inner.table.*", OPTIONS_FAIL="table",
                           TESTBRIDGE_TEST_RUNNER_FAIL_FAST=value)
            self.assertEqual(len(self.ran()), ran)

    def test_the_seed_makes_the_order_random(self):
        seed = {"TEST_RANDOM_SEED": "7"}
        expected = self.run_suite("--run=macros", "--order=random:7").stdout
        self.assertEqual(self.run_bazel("--run=macros", **seed).stdout, expected)
        self.assertEqual(self.run_bazel("--run=macros", "--order=random", **seed).stdout, expected)
        for order in ("random:8", "declared"):
            self.assertEqual(
                self.run_bazel("--run=macros", "--order=" + order, **seed).stdout,
                self.run_suite("--run=macros", "--order=" + order).stdout)

    def test_warnings_are_appended(self):
        warnings = self.folder / "warnings"
        warnings.write_text("another\n")
        self.run_bazel("--run=macros.lasting", TEST_WARNINGS_OUTPUT_FILE="warnings")
        self.assertEqual(warnings.read_text(), "another\nTOO QUICK: test macros.lasting was quicker "
                                               "than expected (only 0 seconds).\n")

    def test_the_working_folder_is_in_the_temporary_one(self):
        self.run_bazel("--run=macros.inner", TEST_TMPDIR="temporary")
        self.assertEqual(self.left(), ["ran.txt", "temporary"])
        log = next((self.folder / "temporary").glob("*/testLog.txt"))
        self.assertIn("plain", log.read_text())
        self.run_bazel("--run=macros.inner", TEST_TMPDIR="unused", QIX_TESTWORKDIR="wanted")
        self.assertEqual(self.left(), ["ran.txt", "temporary", "wanted"])

    def test_the_log_is_among_the_outputs(self):
        outputs = self.folder / "outputs"
        outputs.mkdir()
        self.run_bazel("--run=macros.inner", TEST_UNDECLARED_OUTPUTS_DIR="outputs",
                       OPTIONS_KILL="plain")
        self.assertIn("macros\n  inner\n", (outputs / "testLog.txt").read_text())
        self.assertEqual(list(self.folder.glob("testWork/*/testLog.txt")), [])
        (outputs / "testLog.txt").unlink()
        (outputs / "testLog.txt").symlink_to("elsewhere")
        result = self.run_bazel("--run=macros.inner", TEST_UNDECLARED_OUTPUTS_DIR="outputs")
        self.assertEqual(result.returncode, 2)
        self.assertIn(b"/outputs/testLog.txt' is refused: it is a symbolic link", result.stderr)

    def test_the_log_of_a_run_inside_a_test_stays_in_its_folder(self):
        (self.folder / "outputs").mkdir()
        result = self.run_bazel("--run=macros.inner.plain", TEST_TMPDIR="temporary",
                                TEST_UNDECLARED_OUTPUTS_DIR="outputs", OPTIONS_NESTED="1")
        self.assertEqual(result.returncode, 0, result.stderr)
        nested = next((self.folder / "temporary").glob("*/nested/testLog.txt"))
        self.assertIn("ofNestedRun", nested.read_text())
        log = (self.folder / "outputs" / "testLog.txt").read_text()
        self.assertIn("plain", log)
        self.assertNotIn("ofNestedRun", log)


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
