#!/usr/bin/env python3
"""Runs a suite with reports, and kills it at random moments.

    tests/reports/runs.py SUITE KILLS
"""

import json
import os
import pathlib
import random
import re
import signal
import subprocess
import sys
import tempfile
import time

import jsonschema

from parsers import Schema, mistake

HERE = pathlib.Path(__file__).parent
EVENTS = jsonschema.Draft7Validator(
    json.loads((HERE / '../../docs/events.schema.json').read_text(encoding='utf-8')))


def start(suite, folder, *arguments):
    environment = {**os.environ, 'QIX_TESTWORKDIR': str(folder / 'work')}
    return subprocess.Popen([suite, *arguments], cwd=folder, env=environment,
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE)


def expect(condition, what):
    if not condition:
        sys.exit(what)


def events_of(path):
    """All complete lines; one that was cut off by a kill has no end."""
    data = path.read_bytes()
    return [json.loads(line) for line in data.decode('utf-8').split('\n')[:-1]]


def check_events(events, every):
    for event in events[::every]:
        errors = list(EVENTS.iter_errors(event))
        expect(not errors, f'{event} does not fit the schema: {errors}')


def check_whole(suite, folder):
    for schema in ('plain', 'jenkins'):
        run = start(suite, folder, '--skip=Many', '--output-junit=report.xml',
                    '--output-events=events', f'--junit-schema={schema}', '--annotate=github')
        output, errors = run.communicate()
        expect((run.returncode, errors) == (1, b''), f'{run.returncode} {output} {errors}')
        data = (folder / 'report.xml').read_bytes()
        wrong = mistake(data, Schema(HERE / f'junit-{schema}.xsd'))
        expect(not wrong, f'{wrong}:\n{data.decode()}')
        expect(b'tests="7" failures="3" errors="0"' in data, data.decode())
        expect(b'type="aborted" message="no verdict"' in data, data.decode())
        expect(b'message="not on this machine"' in data, data.decode())
        expect(b'name="hasRows.second"' in data, data.decode())
    annotations = re.findall(rb'^::error file=.*suite.cpp,line=\d+,title=.*$', output, re.M)
    expect(len(annotations) == 4, f'{annotations} in {output}')
    events = events_of(folder / 'events')
    check_events(events, 1)
    ends = {event['id']: event for event in events if event['event'] == 'testEnd'}
    expect(ends['Results.fails']['output'] == ['a line of <output> ]]> ?>'], str(ends))
    expect(len(ends['Results.fails']['failures']) == 2, str(ends))
    expect(ends['Results.isSkipped']['reason'] == 'not on this machine', str(ends))
    expect(ends['Results.hasRows.second']['kind'] == 'subTest', str(ends))
    expect({key: events[-1][key] for key in ('event', 'ok', 'failed', 'aborted', 'skipped')} ==
           {'event': 'runEnd', 'ok': 3, 'failed': 3, 'aborted': 1, 'skipped': 1}, str(events[-1]))


def check_unwritable(suite, folder):
    (folder / 'taken').mkdir()
    for option in ('junit', 'events'):
        for place in ('taken', 'missing/report', '/dev/full'):
            run = start(suite, folder, '--run=Results.passes', f'--output-{option}={place}')
            output, errors = run.communicate()
            expect(run.returncode == 2 and b'1 Failed' not in output and b' OK, 0 Failed' in output,
                   f'{place}: {run.returncode} {output}')
            expect(errors.count(b'cannot be written: ') == 1, f'{place}: {errors}')


def check_killed(suite, folder, kills):
    report, events = folder / 'killed.xml', folder / 'killed.events'
    schema = Schema(HERE / 'junit-plain.xsd')
    begin = time.monotonic()
    start(suite, folder, '*', '--output-junit=killed.xml', '--output-events=killed.events').communicate()
    longest = time.monotonic() - begin
    named = 0
    for _ in range(kills):
        report.unlink(missing_ok=True)
        events.unlink(missing_ok=True)
        run = start(suite, folder, '*', '--output-junit=killed.xml', '--output-events=killed.events')
        time.sleep(random.uniform(0, longest))
        run.send_signal(signal.SIGKILL)
        run.communicate()
        if not report.exists() or not events.exists():
            continue
        data = report.read_bytes()
        wrong = mistake(data, schema)
        expect(not wrong, f'{wrong}: {data!r}')
        seen = events_of(events)
        check_events(seen, 100)
        if run.returncode == -signal.SIGKILL and seen and seen[-1]['event'] == 'testBegin':
            expect(b'did not finish' in data, 'an unfinished run looks finished')
            named += seen[-1]['kind'] != 'group' and b'The test did not finish' in data
    print(f'{kills} kills, {named} of them while a test was running, which was named.')


def main():
    suite, kills = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder:
        folder = pathlib.Path(folder)
        check_whole(suite, folder)
        check_unwritable(suite, folder)
        check_killed(suite, folder, int(kills))


if __name__ == '__main__':
    main()
