#!/usr/bin/env python3
"""Runs tests in processes of their own and looks at what the reports tell of these, and of flaky tests.

usage: reports.py BINARY
"""

import json
import os
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree
from pathlib import Path

import jsonschema

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "reports"))
from parsers import Schema, mistake  # noqa: E402

EVENTS = jsonschema.Draft7Validator(
    json.loads((HERE / "../../docs/events.schema.json").read_text(encoding="utf-8")))
LEAST_MEMORY = 1 << 20  # bytes; no process of this program has less
FLAKY_LINE = re.compile(r"^::warning file=.*faults\.cpp,line=\d+,title=flaky\.fault::"
                        r"flaky: it failed before it passed%0A.*faults\.cpp:\d+: QIX_CHECK\(!isFirst\) "
                        r"failed$", re.MULTILINE)


def expect(condition, what):
    if not condition:
        sys.exit(str(what))


def run(binary, folder, *arguments):
    """What was printed, the events of the ends by their ids, and the cases by theirs."""
    folder.mkdir()
    events, report = folder / "events", folder / "report.xml"
    schema = "jenkins" if "--junit-schema=jenkins" in arguments else "plain"
    done = subprocess.run(
        [binary, *arguments, f"--output-events={events}", f"--output-junit={report}"], check=False,
        env={**os.environ, "LC_ALL": "C.UTF-8", "QIX_TESTWORKDIR": str(folder)},
        stdin=subprocess.DEVNULL, capture_output=True, timeout=100)
    told = [json.loads(line) for line in events.read_text("utf-8").splitlines()]
    for event in told:
        errors = list(EVENTS.iter_errors(event))
        expect(not errors, f"{event}: {errors}")
    wrong = mistake(report.read_bytes(), Schema(HERE / f"../reports/junit-{schema}.xsd"))
    expect(not wrong, f"{wrong}: {report.read_text()}")
    cases = {f"{case.get('classname')}.{case.get('name')}": case
             for case in xml.etree.ElementTree.parse(report).iter("testcase")}
    return done.stdout.decode(), {e["id"]: e for e in told if e["event"] == "testEnd"}, cases


def properties(case):
    return {each.get("name"): each.get("value") for each in case.iter("property")}


def check_sequential(binary, folder):
    _, ends, cases = run(binary, folder, "--run=comma")
    expect(not {"worker", "peakMemory", "flaky"} & set(ends["comma.fault"]), ends)
    expect(not properties(cases["comma.fault"]), properties(cases["comma.fault"]))


def check_jobs(binary, folder):
    _, ends, cases = run(binary, folder, "--run=comma", "--run=row", "--jobs=2")
    for test in ("comma.fault", "row.fault", "row.fault.good", "row.fault.bad"):
        worker = ends[test]["worker"]
        expect(worker in (1, 2) and "peakMemory" not in ends[test], ends[test])
        expect(properties(cases[test]) == {"worker": str(worker)}, properties(cases[test]))
    expect("worker" not in ends["comma"], ends["comma"])


def check_isolated(binary, folder):
    """Also of a process that has crashed."""
    _, ends, cases = run(binary, folder, "--run=segv", "--run=busy", "--isolate")
    for test in ("segv.before", "segv.fault", "busy.fault"):
        told = properties(cases[test])
        expect(ends[test]["worker"] == 1 and ends[test]["peakMemory"] > LEAST_MEMORY, ends[test])
        expect(int(told["peakMemory"]) == ends[test]["peakMemory"], told)
        expect(float(told["processorSeconds"]) == ends[test]["processorSeconds"], told)
    # It takes 64 megabytes and a tenth of a second.
    busy, quick = ends["busy.fault"], ends["busy.before"]
    expect(busy["peakMemory"] - quick["peakMemory"] > 60 << 20, (busy, quick))
    expect(busy["processorSeconds"] >= 0.1 > quick["processorSeconds"], (busy, quick))


def check_flaky(binary, folder):
    arguments = ["--run=flaky", "--jobs=2", "--retries=1", "--annotate=github"]
    output, ends, cases = run(binary, folder, *arguments)
    expect(FLAKY_LINE.search(output) and "::error" not in output, output)
    end = ends["flaky.fault"]
    expect(end["outcome"] == "ok" and end["flaky"] and "!isFirst" in end["firstFailure"], end)
    expect(end["worker"] == 3, end)
    expect("flaky" not in ends["flaky.before"] and "flaky" not in ends["flaky"], ends)
    case = cases["flaky.fault"]
    expect(properties(case) == {"worker": "3", "flaky": "true"}, properties(case))
    expect("!isFirst" in case.find("flakyFailure").get("message"), case)


def check_flaky_for_jenkins(binary, folder):
    _, _, cases = run(binary, folder, "--run=flaky", "--jobs=2", "--retries=1",
                      "--junit-schema=jenkins")
    expect(cases["flaky.fault"].find("flakyFailure") is not None, "no flakyFailure")


def check_flaky_that_fails(binary, folder):
    output, ends, cases = run(binary, folder, "--run=flaky", "--jobs=2", "--retries=1",
                              "--flaky=fail", "--annotate=github")
    expect(FLAKY_LINE.search(output) and "::error" in output, output)
    expect(ends["flaky.fault"]["outcome"] == "failed" and ends["flaky.fault"]["flaky"], ends)
    expect(cases["flaky.fault"].find("failure") is not None, "no failure")


def main(binary):
    checks = [check_sequential, check_jobs, check_isolated, check_flaky, check_flaky_for_jenkins,
              check_flaky_that_fails]
    with tempfile.TemporaryDirectory() as name:
        for check in checks:
            check(binary, Path(name) / check.__name__)


if __name__ == "__main__":
    main(*sys.argv[1:])
