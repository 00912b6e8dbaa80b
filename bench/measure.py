#!/usr/bin/env python3
"""Measures what tools/bench has built and writes the tables and the picture of bench/results.

usage: measure.py BUILD [--quick]      --quick measures less, to try the tool itself
"""

import json
import math
import os
import platform
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

RESULTS = Path(__file__).resolve().parent / "results"
PATIENCE = 20  # seconds for all runs of one kind; a slow rival is run less often, at least once


class Contestant:
    def __init__(self, name, program, arguments=(), progress=True):
        self.name = name
        self.program = program
        self.arguments = list(arguments)
        self.progress = progress  # whether the console tells of each test


QIX = Contestant("qix", "qix", ["*"])
QIX_ITEMS = Contestant("qix, items of one's own", "qixItems", ["*"])
MADE = Contestant("made, neither listed nor run", "made")
LISTS = [Contestant(f"`{option}`", "qix", [option])
         for option in ("--list-tests", "--list-tests=json")]
BARE = Contestant("bare loop of the same writes", "bare")
EMPTY = Contestant("empty program with qix's libraries", "empty", progress=False)
RIVALS = [
    Contestant("GoogleTest", "gtest"),
    Contestant("Catch2 `-d yes`", "catch2", ["-d", "yes"]),
    Contestant("doctest `-d`", "doctest", ["-d"]),
    Contestant("Boost.Test `--log_level=test_suite`", "boost",
               ["--log_level=test_suite", "--color_output=no"]),
    Contestant("GoogleTest `--gtest_brief=1`", "gtest", ["--gtest_brief=1"], progress=False),
    Contestant("Catch2", "catch2", progress=False),
    Contestant("doctest", "doctest", progress=False),
    Contestant("Boost.Test", "boost", ["--color_output=no"], progress=False),
]


class Sample:
    """What one kind of run took: seconds and bytes."""

    def __init__(self):
        self.walls, self.processors, self.memory = [], [], 0

    def add(self, wall, processor, kilobytes):
        self.walls.append(wall)
        self.processors.append(processor)
        self.memory = max(self.memory, kilobytes * 1024)

    @property
    def wall(self):
        return statistics.median(self.walls)

    @property
    def processor(self):
        return statistics.median(self.processors)


class Bench:
    def __init__(self, build, quick):
        self.build = Path(build).resolve() / "bench"
        self.quick = quick

    def program(self, contestant):
        return str(self.build / "run" / f"run_{contestant.program}")

    def environment(self, tests, folder):
        return {**os.environ, "BENCH_TESTS": str(tests), "QIX_TESTWORKDIR": folder,
                "LC_ALL": "C.UTF-8"}

    def run(self, contestant, tests, sample):
        with tempfile.TemporaryDirectory() as folder, \
                open(Path(folder) / "output", "wb") as output:
            done = subprocess.run([str(self.build / "run" / "run_measured"),
                                   self.program(contestant), *contestant.arguments],
                                  stdout=output, stderr=subprocess.PIPE, cwd=folder, check=False,
                                  env=self.environment(tests, folder))
        if done.returncode != 0:
            sys.exit(f"{contestant.program}: exit status {done.returncode}")
        sample.add(*map(float, done.stderr.split()[-3:]))

    def compare(self, contestants, tests, repeats):
        """The contestants take turns, so that what else the machine does hits all of them."""
        samples = {contestant: Sample() for contestant in contestants}
        for _ in range(repeats):
            for contestant, sample in samples.items():
                if sum(sample.walls) < PATIENCE:
                    self.run(contestant, tests, sample)
        return samples


def machine():
    model = next((line.split(":")[1].strip() for line in open("/proc/cpuinfo")
                  if line.startswith("model name")), platform.machine())
    load = os.getloadavg()[0]
    return (f"{model}, {os.cpu_count()} cores, Debian {Path('/etc/debian_version').read_text().strip()}, "
            f"{time.strftime('%Y-%m-%d')}; load average at the start {load:.1f}")


def table(head, rows):
    lines = ["| " + " | ".join(head) + " |", "|---" + "|---:" * (len(head) - 1) + "|"]
    lines += ["| " + " | ".join(row) + " |" for row in rows]
    return "\n".join(lines) + "\n"


def spread(values, scale, digits=0):
    low, middle, high = min(values), statistics.median(values), max(values)
    return f"{middle * scale:.{digits}f} ({low * scale:.{digits}f} to {high * scale:.{digits}f})"


def ratio(value, base):
    return f"{value / base:.2f}"


def write(name, title, text, tool="tools/bench"):
    RESULTS.mkdir(exist_ok=True)
    (RESULTS / name).write_text(f"# {title}\n\nMeasured by `{tool}` in one run. {MACHINE}.\n\n"
                                + text, "utf-8")


def run_rows(samples, tests):
    base = samples[QIX]
    for contestant, sample in samples.items():
        yield [contestant.name, "yes" if contestant.progress else "no",
               spread(sample.walls, 1e9 / tests), ratio(sample.wall, base.wall),
               f"{sample.processor * 1e9 / tests:.0f}", ratio(sample.processor, base.processor),
               f"{sample.memory / 2**20:.1f}", str(len(sample.walls))]


def measure_runs(bench):
    sizes = [1000, 10_000] if bench.quick else [1000, 10_000, 100_000, 1_000_000]
    contestants = [BARE, QIX_ITEMS, QIX, *RIVALS]
    head = ["Framework", "tells of each test", "ns for each test (lowest to highest)",
            "ratio to qix", "processor ns", "ratio to qix", "peak MiB", "runs"]
    text = ("Tests that do nothing, the whole process from its start to its exit, output to a file. "
            "Each framework registers its tests in a loop, by what its own macro expands to. The "
            "bare loop writes and flushes a log line and a progress character for each test.\n")
    all_samples = {}
    for tests in sizes:
        samples = bench.compare(contestants, tests, 3 if bench.quick else 7)
        all_samples[tests] = samples
        text += f"\n## {tests:,} tests\n\n" + table(head, run_rows(samples, tests))
    text += "\n## qix and the bare loop\n\n" + table(
        ["Tests", "items of one's own: ratio", "processor", "macros: ratio", "processor"],
        [[f"{tests:,}"] + [ratio(getattr(samples[one], what), getattr(samples[BARE], what))
                           for one in (QIX_ITEMS, QIX) for what in ("wall", "processor")]
         for tests, samples in all_samples.items()])
    write("run.md", "Running tests that do nothing", text)
    (RESULTS / "run.svg").write_text(picture(all_samples), "utf-8")


COLOURS = {QIX: "#0b7a3b", QIX_ITEMS: "#6fbf8b", BARE: "#888888"}
RIVAL_COLOURS = ["#d1495b", "#e08e45", "#3f78b5", "#7b5ea7"]


def picture(all_samples):
    """Lines of nanoseconds for each test over the number of tests, both logarithmic."""
    shown = [c for c in all_samples[min(all_samples)] if c.progress]
    colours = {**COLOURS, **dict(zip([c for c in shown if c not in COLOURS], RIVAL_COLOURS))}
    points = {c: [(n, s[c].wall * 1e9 / n) for n, s in all_samples.items()] for c in shown}
    values = [value for line in points.values() for _, value in line]
    low, high = (10 ** f(math.log10(v)) for f, v in ((math.floor, min(values)),
                                                     (math.ceil, max(values))))
    sizes = list(all_samples)

    def x(tests):
        return 70 + 430 * math.log10(tests / sizes[0]) / math.log10(sizes[-1] / sizes[0])

    def y(value):
        return 340 - 300 * math.log10(value / low) / math.log10(high / low)

    parts = ['<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 820 400" '
             'font-family="sans-serif" font-size="13">',
             '<rect width="820" height="400" fill="white"/>',
             '<text x="70" y="22" font-size="15">Nanoseconds for each test that does nothing; '
             'consoles that tell of each test</text>']
    for exponent in range(round(math.log10(low)), round(math.log10(high)) + 1):
        value = 10 ** exponent
        parts.append(f'<path d="M70 {y(value):.1f}H500" stroke="#ddd"/>'
                     f'<text x="62" y="{y(value) + 4:.1f}" text-anchor="end">{value:,}</text>')
    for tests in sizes:
        parts.append(f'<text x="{x(tests):.1f}" y="362" text-anchor="middle">{tests:,}</text>')
    parts.append('<text x="285" y="386" text-anchor="middle">tests in one run</text>')
    order = sorted(shown, key=lambda c: -points[c][-1][1])
    for place, contestant in enumerate(order):
        line = " ".join(f"{x(n):.1f},{y(v):.1f}" for n, v in points[contestant])
        colour, label = colours[contestant], 60 + 30 * place
        parts.append(f'<polyline points="{line}" fill="none" stroke="{colour}" stroke-width="2"/>'
                     f'<path d="M525 {label - 4}h24" stroke="{colour}" stroke-width="3"/>'
                     f'<text x="556" y="{label}">{contestant.name.replace("`", "")}</text>')
    return "\n".join([*parts, "</svg>"]) + "\n"


def measure_start(bench):
    contestants = [EMPTY, QIX, *[rival for rival in RIVALS if rival.progress]]
    samples = bench.compare(contestants, 1, 20 if bench.quick else 200)
    rows = []
    for contestant, sample in samples.items():
        low, _, high = statistics.quantiles(sample.walls, n=4)
        rows.append([contestant.name, f"{sample.wall * 1e3:.2f}",
                     f"{low * 1e3:.2f} to {high * 1e3:.2f}",
                     ratio(sample.wall, samples[EMPTY].wall), f"{min(sample.walls) * 1e3:.2f}",
                     ratio(min(sample.walls), min(samples[EMPTY].walls))])
    write("start.md", "Starting and ending with one test",
          "The whole process. Loading wxWidgets is what the empty program does as well.\n\n"
          + table(["Program", "median ms", "middle half", "ratio to empty", "lowest ms",
                   "ratio to empty"], rows))


def measure_lists(bench):
    tests = 10_000 if bench.quick else 100_000
    samples = bench.compare([MADE, *LISTS], tests, 3 if bench.quick else 15)
    base = samples[MADE]
    rows = [[contestant.name, spread(sample.walls, 1e9 / tests), ratio(sample.wall, base.wall),
             f"{sample.processor * 1e9 / tests:.0f}", ratio(sample.processor, base.processor),
             f"{sample.memory / 2**20:.1f}"] for contestant, sample in samples.items()]
    write("lists.md", "Listing tests",
          f"{tests:,} tests, the whole process. The first row registers and makes them only.\n\n"
          + table(["Tests are", "ns for each test (lowest to highest)", "ratio to making",
                   "processor ns", "ratio to making", "peak MiB"], rows))


def measure_calls(bench):
    tests = 1000 if bench.quick else 100_000
    with tempfile.TemporaryDirectory() as folder:
        counts = Path(folder) / "counts"
        command = ["strace", "-c", "-f", "-o", str(counts), bench.program(QIX), "*"]
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL,
                       env=bench.environment(tests, folder))
        text = counts.read_text()
    write("calls.md", "System calls",
          f"A run of {tests:,} tests: two writes for each, the line of the log and the progress "
          "character. Nothing else grows with their number but `brk`, by which the tests get their "
          f"memory.\n\n```text\n$ strace -c -f qix '*'\n{text}```\n")


def run_checks(bench):
    """The repetitions of each part of a test, by its name in the program."""
    with tempfile.TemporaryDirectory() as folder:
        found = Path(folder) / "found.json"
        subprocess.run([str(bench.build / "checks" / "checks"), f"--benchmark_out={found}",
                        "--benchmark_repetitions=5"], check=True, cwd=folder,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        runs = json.loads(found.read_text())["benchmarks"]
    parts = {}
    for run in runs:
        if run["run_type"] == "iteration":
            parts.setdefault(run["name"].split("/")[0], []).append(run)
    return parts


def times(runs):
    return spread([run["cpu_time"] for run in runs], 1, 1)


def allocations(runs):
    return f"{statistics.median(run['allocations'] for run in runs):.2f}"


def measure_checks(bench):
    names = {"passingCheck": "a passing check", "failingCheck": "a failing check",
             "recordedLine": "a recorded line", "subTest": "a sub-test that passes"}
    parts = run_checks(bench)
    rows = [[text, times(parts[name]), allocations(parts[name])] for name, text in names.items()]
    write("checks.md", "What the parts of a test cost",
          "Inside a test that the console runner runs, with standard output at `/dev/null`.\n\n"
          + table(["Part", "processor ns (lowest to highest)", "allocations"], rows))


def run_memory(bench, tests):
    """Bytes for each test that is registered, and for each after the run."""
    with tempfile.TemporaryDirectory() as folder:
        found = subprocess.run([str(bench.build / "memory" / "memory")], check=True, cwd=folder,
                               stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True,
                               env=bench.environment(tests, folder))
    return found.stderr.split()


def measure_memory(bench):
    rows = [[f"{tests:,}", *run_memory(bench, tests)] for tests in (10_000, 100_000)]
    write("memory.md", "Memory of a test",
          "Bytes on the heap for each test that is registered as by `QIX_TEST`. Its object is made "
          "when it is needed; the registration stays, for those of plug-ins are compared with it.\n\n"
          + table(["Tests", "registered", "after the run"], rows))


def main(arguments):
    bench = Bench(arguments[0], "--quick" in arguments)
    measure_runs(bench)
    measure_start(bench)
    measure_lists(bench)
    if shutil.which("strace"):
        measure_calls(bench)
    measure_checks(bench)
    measure_memory(bench)


MACHINE = machine()

if __name__ == "__main__":
    main(sys.argv[1:])
