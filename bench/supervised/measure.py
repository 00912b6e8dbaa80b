#!/usr/bin/env python3
"""Measures supervised runs beside other ways of running the same suite in several processes, and
writes bench/results/supervised.md.

usage: measure.py BUILD [--quick]      --quick measures less, to try the tool itself
"""

import importlib.util
import os
import subprocess
import sys
import tempfile
import time
from pathlib import Path

BENCH = Path(__file__).resolve().parent.parent
specification = importlib.util.spec_from_file_location("measure", BENCH / "measure.py")
measure = importlib.util.module_from_spec(specification)
specification.loader.exec_module(measure)

PATIENCE = 20  # seconds for all runs of one kind; a slow one is run less often, at least once
LOOK_SECONDS = 0.005  # between looks at the memory


class Contestant:
    def __init__(self, name, command):
        self.name = name
        self.command = command  # takes the bench, the number of tests and a folder


def program(name, *arguments):
    return lambda bench, _tests, _folder: [str(bench.programs / f"supervised_{name}"), *arguments]


def in_ctest(bench, tests, folder):
    """A test of CTest for each test, two at a time."""
    lines = [f'add_test(test{i} "{bench.programs / "supervised_gtest"}" '
             f'"--gtest_filter=bench.test{i}")\n' for i in range(tests)]
    (Path(folder) / "CTestTestfile.cmake").write_text("".join(lines))
    return ["ctest", "--parallel", "2", "--test-dir", str(folder)]


def in_shards(bench, _tests, _folder):
    one = 'GTEST_TOTAL_SHARDS=2 GTEST_SHARD_INDEX=%d "$1"'
    script = f"{one % 0} & {one % 1}; wait $!"
    return ["sh", "-c", script, "sh", str(bench.programs / "supervised_gtest")]


PLAIN = Contestant("qix `'*'`: without ids and what earlier runs have left", program("qix", "*"))
SEQUENTIAL = Contestant("qix", program("qix", "--color=never"))
JOBS_1 = Contestant("qix `--jobs=1`", program("qix", "--jobs=1"))
JOBS_2 = Contestant("qix `--jobs=2`", program("qix", "--jobs=2"))
ISOLATE = Contestant("qix `--isolate`", program("qix", "--isolate"))
ISOLATE_2 = Contestant("qix `--isolate --jobs=2`", program("qix", "--isolate", "--jobs=2"))
FORKS = Contestant("bare loop: fork, end, wait", program("forks"))
GTEST = Contestant("GoogleTest", program("gtest"))
SHARDS = Contestant("GoogleTest, two shards at a time", in_shards)
CTEST = Contestant("CTest, a GoogleTest process for each test, two at a time", in_ctest)


class Bench:
    def __init__(self, build, quick):
        self.root = Path(build).resolve() / "bench"
        self.programs = self.root / "supervised"
        self.quick = quick

    def compare(self, contestants, tests, microseconds, repeats):
        """The contestants take turns, so that what else the machine does hits all of them. Each has
        a working folder of its own, in which it has run once before."""
        samples = {contestant: measure.Sample() for contestant in contestants}
        with tempfile.TemporaryDirectory() as name:
            for number, contestant in enumerate(contestants):
                folder = Path(name) / str(number)
                folder.mkdir()
                samples[contestant].run = Run(self, contestant, tests, microseconds, folder)
                samples[contestant].memory = samples[contestant].run.look_at_memory()
            for _ in range(repeats):
                for sample in samples.values():
                    if sum(sample.walls) < PATIENCE:
                        wall, used = sample.run.measure()
                        sample.walls.append(wall)
                        sample.processors.append(used)
        return samples


class Run:
    def __init__(self, bench, contestant, tests, microseconds, folder):
        self.measured = bench.root / "run" / "run_measured"
        self.command = contestant.command(bench, tests, folder)
        self.command[0] = measure.shutil.which(self.command[0])
        self.folder = folder
        self.environment = {**os.environ, "BENCH_TESTS": str(tests), "LC_ALL": "C.UTF-8",
                            "BENCH_MICROSECONDS": str(microseconds), "QIX_TESTWORKDIR": str(folder)}

    def measure(self):
        with open(self.folder / "output", "wb") as output:
            done = subprocess.run([str(self.measured), *self.command], stdout=output,
                                  stderr=subprocess.PIPE, env=self.environment, check=False)
        if done.returncode != 0:
            sys.exit(f"{self.command}: exit status {done.returncode}\n{done.stderr.decode()}")
        wall, used, _ = map(float, done.stderr.split()[-3:])
        return wall, used

    def look_at_memory(self):
        """The most that all processes had together, a page of several counted once."""
        most = 0
        with open(self.folder / "output", "wb") as output, \
                subprocess.Popen(self.command, stdout=output, stderr=subprocess.DEVNULL,
                                 env=self.environment) as process:
            while process.poll() is None:
                most = max(most, sum(map(memory_of, family_of(process.pid))))
                time.sleep(LOOK_SECONDS)
        return most


def family_of(process):
    family = [process]
    for member in family:
        try:
            family += map(int, Path(f"/proc/{member}/task/{member}/children").read_text().split())
        except OSError:
            pass  # it has ended
    return family


def memory_of(process):
    try:
        lines = Path(f"/proc/{process}/smaps_rollup").read_text().splitlines()
    except OSError:
        return 0
    return next(int(line.split()[1]) * 1024 for line in lines if line.startswith("Pss:"))


def rows(samples, tests, base):
    for contestant, sample in samples.items():
        yield [contestant.name, measure.spread(sample.walls, 1e6 / tests, 1),
               measure.ratio(sample.wall, samples[base].wall),
               f"{sample.processor * 1e6 / tests:.1f}",
               measure.ratio(sample.processor, samples[base].processor),
               f"{sample.memory / 2**20:.1f}", measure.ratio(sample.memory, samples[base].memory),
               str(len(sample.walls))]


def table(samples, tests, base):
    head = ["Way", "µs for each test (lowest to highest)", f"ratio to {base.name.split(':')[0]}",
            "processor µs", "ratio", "peak MiB", "ratio", "runs"]
    return measure.table(head, rows(samples, tests, base)) + "\n"


def main(arguments):
    bench = Bench(arguments[0], "--quick" in arguments)
    repeats = 1 if bench.quick else 5
    few, many = (100, 5000) if bench.quick else (2000, 100_000)
    text = ("Time passed, from the start of the process to its exit, output to a file, each in a "
            "folder in which it has run before. The memory is that of all processes together, pages "
            "that several of them share counted once, looked at every five milliseconds in a run of "
            "its own.\n\n")

    busy = 20 if bench.quick else 400
    text += f"## {busy} tests that use 5 ms of the processor each\n\n"
    text += table(bench.compare([SEQUENTIAL, PLAIN, JOBS_1, JOBS_2, ISOLATE, ISOLATE_2, GTEST,
                                 SHARDS, CTEST], busy, 5000, repeats), busy, SEQUENTIAL)

    text += f"## {many:,} tests that do nothing\n\n"
    text += table(bench.compare([SEQUENTIAL, PLAIN, JOBS_1, JOBS_2, GTEST, SHARDS], many, 0, repeats),
                  many, SEQUENTIAL)

    text += f"## A process for each of {few:,} tests that do nothing\n\n"
    text += table(bench.compare([FORKS, ISOLATE, ISOLATE_2, CTEST], few, 0, repeats), few, FORKS)

    sizes = [1000, 5000] if bench.quick else [10_000, 100_000, 1_000_000]
    text += "## `--jobs=2` by the number of tests that do nothing\n\n"
    lines = []
    for tests in sizes:
        samples = bench.compare([SEQUENTIAL, JOBS_2], tests, 0, 1 if bench.quick else 3)
        lines.append([f"{tests:,}"] + [cell for sample in samples.values() for cell in
                                       (measure.spread(sample.walls, 1e6 / tests, 2),
                                        f"{sample.processor * 1e6 / tests:.2f}",
                                        f"{sample.memory / 2**20:.1f}")])
    text += measure.table(["Tests", "qix: µs for each test", "processor µs", "peak MiB",
                           "`--jobs=2`: µs for each test", "processor µs", "peak MiB"], lines)
    measure.write("supervised.md", "Supervised runs", text)


if __name__ == "__main__":
    main(sys.argv[1:])
