#!/usr/bin/env python3
"""Builds a project that has its tests discovered by CTest, and compares what CTest sees and runs with
stored files.

usage: discovery.py [--update] [TEST...]      --update records instead of comparing

The environment tells the rest: QIX_BUILD, CMAKE, CXX, CXXFLAGS.
"""

import difflib
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

HERE = Path(__file__).resolve().parent
CMAKE = os.environ.get("CMAKE", "cmake")
CTEST = str(Path(shutil.which(CMAKE)).parent / "ctest")
UPDATE = "--update" in sys.argv
# What the suite's tests are called that note their names, beside those of the macros.
NAMES = [b";", b"a;b", b"[", b"]", b"[[", b"]]", b"]=]", b"\\", b"\\;", b'"', b"$", b"${CMAKE_COMMAND}",
         b"$<1:x>", b"$ENV{HOME}", b"@CMAKE_COMMAND@", b",", b"#", b"twice", b"twice", b"twice#2",
         b"two  words ", b"line\nend", b"a.b", b"%41", b"", "übergröße".encode(), b"\xFF",
         b"l" * 300, bytes(range(1, 256)), b"alone", b"passes", b"takesLong"]
ENDED = re.compile(r" *\d+/\d+ Test +#\d+: (.*?) \.*[ *]*(Passed|Failed|Skipped)\b")


def run(*command, expect=0, **variables):
    environment = {**os.environ, "LC_ALL": "C.UTF-8", **variables}
    for name in ("QIX_TESTWORKDIR", "CTEST_PARALLEL_LEVEL", "CTEST_OUTPUT_ON_FAILURE"):
        environment.pop(name, None)
    result = subprocess.run(command, env=environment, capture_output=True, check=False)
    output = (result.stdout + result.stderr).decode("utf-8", "replace")
    if expect is not None and result.returncode != expect:
        raise AssertionError(f"{command} ended with {result.returncode}:\n{output}")
    return output


class Discovery(unittest.TestCase):
    """All cases share one build, and none changes what another one sees."""

    maxDiff = None

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory(prefix="qix discovery ")
        cls.addClassCleanup(folder.cleanup)
        cls.folder = Path(folder.name).resolve()
        cls.prefix = cls.folder / "prefix"
        run(CMAKE, "--install", os.environ["QIX_BUILD"], "--prefix", str(cls.prefix))
        shutil.copytree(HERE / "project", cls.folder / "project")
        cls.build = cls.folder / "build"
        run(CMAKE, "-G", "Ninja", "-S", str(cls.folder / "project"), "-B", str(cls.build),
            "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O0",
            f"-DCMAKE_PREFIX_PATH={cls.prefix}")
        run(CMAKE, "--build", str(cls.build))

    def ctest(self, *arguments, build=None, **variables):
        """The outcome of each test, and the whole output."""
        output = run(CTEST, "--test-dir", str(build or self.build), *arguments, expect=None,
                     **variables)
        ends = (ENDED.match(line) for line in output.splitlines())
        return sorted(f"{end[2]:8} {end[1]}" for end in ends if end), output

    def show(self, build=None, *arguments):
        """What editors ask for."""
        output = run(CTEST, "--test-dir", str(build or self.build), "--show-only=json-v1",
                     *arguments)
        document = json.loads(output[output.index("{"):])
        graph = document["backtraceGraph"]
        for test in document["tests"]:
            node = graph["nodes"][test.pop("backtrace")] if "backtrace" in test else {}
            place = f"{graph['files'][node['file']]}:{node['line']}" if "line" in node else None
            properties = {entry["name"]: entry["value"] for entry in test.pop("properties")}
            # Older versions of CTest do not tell this one.
            self.assertIn(properties.pop("DEF_SOURCE_LINE", place), (place, None))
            test.update(place=place, properties=properties)
        return document["tests"]

    def compare(self, name, text):
        """Holds the text against what is stored."""
        text = text.replace(str(self.folder), "TMP")
        file = HERE / "expected" / name
        if UPDATE:
            file.write_text(text)
            return
        difference = difflib.unified_diff(file.read_text().splitlines(), text.splitlines(),
                                          "expected", "actual", lineterm="")
        self.assertEqual("\n".join(difference), "")

    def test_each_test_is_known_with_its_properties(self):
        self.compare("tests.json", json.dumps(self.show(), indent=1, ensure_ascii=False) + "\n")

    def test_outcomes(self):
        ends, _ = self.ctest("--parallel", "2")
        self.compare("outcomes.txt", "\n".join(ends) + "\n")

    def test_each_id_runs_its_test_in_a_folder_of_its_own(self):
        notes = self.folder / "notes"
        notes.mkdir()
        self.ctest("--parallel", "2", "-R", "^(names|alone|outcomes|classes|person)",
                   DISCOVERY_NOTES=str(notes), LC_ALL="C")
        # A test without such a folder would have added its name to the file of another one.
        ran = sorted(file.read_bytes() for file in notes.iterdir())
        self.assertEqual(ran, sorted(name + b"\0" for name in NAMES))

    def test_failed_tests_run_again(self):
        self.ctest("-R", "^outcomes")
        ends, _ = self.ctest("--rerun-failed")
        self.assertEqual(ends, ["Failed   outcomes.fails"])
        ends, _ = self.ctest("--rerun-failed", DISCOVERY_REPAIRED="1")
        self.assertEqual(ends, ["Passed   outcomes.fails"])

    def test_labels_choose(self):
        ends, _ = self.ctest("-L", "^long$", "-R", "^(outcomes|classes)")
        self.assertEqual(ends, ["Passed   outcomes.inner.takesLong"])
        ends, _ = self.ctest("-LE", "ours|ong|none", "-R", "^(outcomes|classes)")
        self.assertEqual([end.split()[1] for end in ends],
                         [f"outcomes.{name}" for name in ("fails", "passes", "aborts", "skips")])

    def test_the_emulator_runs_the_program(self):
        calls = self.build / "byGroup" / "start here" / "emulated.txt"
        calls.unlink(missing_ok=True)
        self.ctest("-R", "^by; .*outcomes$")
        self.assertEqual(calls.read_text().splitlines(),
                         ["--list-tests=json +++", "--run=outcomes +++"])

    def test_programs_that_do_not_list_fail_and_tell_why(self):
        _, output = self.ctest("-R", "_NOT_LISTED", "--output-on-failure")
        reasons = re.findall(r"\nThe tests of .*?(?=\n\n *\d+/\d+ |\n\n *Start|\n\n\n)", output,
                             re.DOTALL)
        # Versions of CMake differ in this.
        reasons = [reason.replace("no such file", "No such file") for reason in reasons]
        self.compare("reasons.txt", "\n".join(sorted(reasons)) + "\n")

    def test_configurations(self):
        build = self.folder / "multiConfig"
        run(CMAKE, "-G", "Ninja Multi-Config", "-S", str(self.folder / "project/multiConfig"),
            "-B", str(build), f"-DDISCOVERY_MODULE={self.module()}")
        for configuration in ("Debug", "Release"):
            tests = self.show(build, "-C", configuration)
            self.assertEqual([test["name"] for test in tests],
                             ["a.relative", "a.elsewhere", "b.unlocated", "c",
                              "sleeps_NOT_LISTED"])
            self.assertEqual(tests[0]["properties"]["ENVIRONMENT"],
                             [f"CONFIGURATION={configuration}"])
        _, output = self.ctest("-C", "Debug", "-R", "sleeps", "--output-on-failure", build=build)
        self.assertRegex(output, r"\nIt ended with: .*timeout")
        ends, output = self.ctest("--output-on-failure", build=build)
        self.assertEqual(ends, ["Failed   sleeps_NOT_LISTED", "Failed   tagged_NOT_LISTED"])
        self.assertIn("tagged is not built for the configuration ''", output)

    def module(self):
        return next(self.prefix.rglob("QixDiscoverTests.cmake"))

    def test_wrong_arguments_are_told(self):
        script = self.folder / "wrong.cmake"
        for arguments, message in (
                ("PER suite", "PER is 'test' or 'group', not 'suite'"),
                ("PREFX x", "unknown argument 'PREFX'"),
                ("PREFIX", "PREFIX lacks its value"),
                ("DISCOVERY_TIMEOUT 1m", "DISCOVERY_TIMEOUT is a number of seconds, not '1m'")):
            script.write_text("cmake_minimum_required(VERSION 3.25)\n"
                              f"include([[{self.module()}]])\nqix_discover_tests(t {arguments})\n")
            output = run(CMAKE, "-P", str(script), expect=1)
            self.assertIn(f"qix_discover_tests(t): {message}", " ".join(output.split()))


def main():
    unittest.main(argv=[argument for argument in sys.argv if argument != "--update"], verbosity=2)


if __name__ == "__main__":
    main()
