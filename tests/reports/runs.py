#!/usr/bin/env python3
"""Runs a suite with reports, and kills it at random moments.

    tests/reports/runs.py SUITE KILLS
"""

import json
import os
import pathlib
import random
import pwd
import re
import resource
import signal
import subprocess
import sys
import tempfile
import time
import xml.etree.ElementTree

import jsonschema

from parsers import Schema, mistake

NO_UTF8 = '[NON-UTF-8-BYTE-0xFF]'
HERE = pathlib.Path(__file__).parent
EVENTS = jsonschema.Draft7Validator(
    json.loads((HERE / '../../docs/events.schema.json').read_text(encoding='utf-8')))


def start(suite, folder, *arguments, in_child=None, work='work'):
    environment = {**os.environ, 'QIX_TESTWORKDIR': str(folder / work)}
    return subprocess.Popen([suite, *arguments], cwd=folder, env=environment, preexec_fn=in_child,
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE)


def expect(condition, what):
    if not condition:
        sys.exit(what)


def events_of(path):
    """All complete lines; one that was cut off by a kill has no end."""
    data = path.read_bytes()
    return [json.loads(line) for line in data.decode('utf-8').split('\n')[:-1]]


def check_cut_events(data):
    """Whatever byte a kill cuts them at: lines with an end are whole, and tell what was running."""
    for size in range(len(data) + 1):
        running = []
        for line in data[:size].split(b'\n')[:-1]:
            event = json.loads(line)
            if event['event'] == 'testBegin':
                expect(all(event['id'].startswith(outer + '.') for outer in running), str(event))
                running.append(event['id'])
            elif event['event'] == 'testEnd':
                expect(running.pop() == event['id'], str(event))
            elif event['event'] in ('runBegin', 'runEnd'):
                expect(not running, f'{running} at {event}')
    expect(event['event'] == 'runEnd', str(event))


def check_events(events, every):
    for event in events[::every]:
        errors = list(EVENTS.iter_errors(event))
        expect(not errors, f'{event} does not fit the schema: {errors}')


def check_long_texts(data):
    """What is long is cut in its middle, and what XML forbids is seen."""
    case = next(case for case in xml.etree.ElementTree.fromstring(data).iter('testcase')
                if case.get('name') == 'talksALot')
    message, output = case.find('failure').text.split('\n\nOutput:\n')
    for text, letter in ((message, 'm'), (output, 'o')):
        expect(len(text) < 2 ** 16 + 100 and ' bytes left out]' in text and letter * 1000 in text,
               f'{len(text)}: {text[:100]}')
    expect(message.endswith(f'{NO_UTF8}[NON-XML-CHAR-0x1][NON-XML-CHAR-0xFFFE] ]]>'), message[-99:])
    expect(output.endswith('\xff[NON-XML-CHAR-0x1]\n'), output[-99:])


def check_whole(suite, folder):
    for schema in ('plain', 'jenkins'):
        run = start(suite, folder, '--skip=Many', '--output-junit=report.xml',
                    '--output-events=events', f'--junit-schema={schema}', '--annotate=github')
        output, errors = run.communicate()
        expect((run.returncode, errors) == (1, b''), f'{run.returncode} {output} {errors}')
        data = (folder / 'report.xml').read_bytes()
        wrong = mistake(data, Schema(HERE / f'junit-{schema}.xsd'))
        expect(not wrong, f'{wrong}:\n{data.decode()}')
        expect(b'tests="9" failures="3" errors="0"' in data, data.decode())
        expect(b'number%20-1' not in data, 'tests of a run inside a test are reported')
        check_long_texts(data)
        expect(b'type="aborted" message="no verdict"' in data, data.decode())
        expect(b'message="not on this machine"' in data, data.decode())
        expect(b'name="hasRows.second"' in data, data.decode())
    annotations = re.findall(rb'^::error file=.*suite.cpp,line=\d+,title=.*$', output, re.M)
    expect(len(annotations) == 4, f'{annotations} in {output}')
    events = events_of(folder / 'events')
    check_events(events, 1)
    expect(sum(event['event'] == 'runBegin' for event in events) == 1, 'a run inside a test')
    ends = {event['id']: event for event in events if event['event'] == 'testEnd'}
    expect(ends['Results.fails']['output'] == ['a line of <output> ]]> ?>'], str(ends))
    expect(len(ends['Results.fails']['failures']) == 2, str(ends))
    expect(ends['Results.talksALot']['output'] == ['o' * 200000 + '\xff\x01'], 'output')
    expect(ends['Results.isSkipped']['reason'] == 'not on this machine', str(ends))
    expect(ends['Results.hasRows.second']['kind'] == 'subTest', str(ends))
    start(suite, folder, '--skip=Many', '--skip=*talks*', '--output-events=events').communicate()
    check_cut_events((folder / 'events').read_bytes())
    expect({key: events[-1][key] for key in ('event', 'ok', 'failed', 'aborted', 'skipped')} ==
           {'event': 'runEnd', 'ok': 5, 'failed': 3, 'aborted': 1, 'skipped': 1}, str(events[-1]))


def become_nobody():
    """The administrator may write everywhere."""
    if os.geteuid() == 0:
        os.setuid(pwd.getpwnam('nobody').pw_uid)


def check_unwritable(suite, folder):
    folder.chmod(0o777)
    (folder / 'taken').mkdir()
    locked = folder / 'locked'
    locked.mkdir(mode=0o555)
    for option in ('junit', 'events'):
        for place in ('taken', 'missing/report', '/dev/full', 'locked/report'):
            run = start(suite, folder, '--run=Results.passes', f'--output-{option}={place}',
                        in_child=become_nobody, work='work of nobody')
            output, errors = run.communicate()
            expect(run.returncode == 2 and b' OK, 0 Failed' in output,
                   f'{place}: {run.returncode} {output}')
            expect(errors.count(b'cannot be written: ') == 1, f'{place}: {errors}')


def check_full(suite, folder):
    """No file may have more than so many bytes, so that the reports lose their ends."""
    def limit():
        resource.setrlimit(resource.RLIMIT_FSIZE, (50000, 50000))
    run = start(suite, folder, '--run=Many', '--output-junit=full.xml', '--output-events=full.events',
                in_child=limit)
    output, errors = run.communicate()
    expect(run.returncode == 2 and b'3001 OK, 0 Failed' in output, f'{run.returncode} {output}')
    expect(errors.count(b'cannot be written: File too large') == 2, str(errors))
    data = (folder / 'full.xml').read_bytes()
    wrong = mistake(data, Schema(HERE / 'junit-plain.xsd'))
    expect(not wrong and b'(the whole run)' in data, f'{wrong}: {data!r}')
    check_events(events_of(folder / 'full.events'), 100)


def running_tests(events):
    """What was running behind each event, groups aside."""
    states, running = [[]], []
    for event in events:
        if event['event'] == 'testBegin':
            running = [*running, event]
        elif event['event'] == 'testEnd':
            running = running[:-1]
        states.append([test['id'] for test in running if test['kind'] != 'group'])
    return states


def unfinished_tests(data):
    """What a JUnit report names as not finished."""
    names = []
    for case in xml.etree.ElementTree.fromstring(data).iter('testcase'):
        if case.find('error') is not None:
            names.append(f'{case.get("classname")}.{case.get("name")}')
    return names


def check_killed(suite, folder, kills):
    report, events = folder / 'killed.xml', folder / 'killed.events'
    arguments = ('*', '--output-junit=killed.xml', '--output-events=killed.events')
    schema = Schema(HERE / 'junit-plain.xsd')
    longest = 1.0  # seconds; comes down to what a run takes while the machine is as busy as it is
    killed = named = 0
    while killed < kills:
        report.unlink(missing_ok=True)
        events.unlink(missing_ok=True)
        run = start(suite, folder, *arguments)
        moment = random.uniform(0, longest)
        time.sleep(moment)
        run.send_signal(signal.SIGKILL)
        run.communicate()
        was_killed = run.returncode == -signal.SIGKILL
        longest = longest * 1.01 if was_killed else moment
        if not report.exists():
            continue
        data = report.read_bytes()
        wrong = mistake(data, schema)
        expect(not wrong, f'{wrong}: {data[-5000:]!r}')
        seen = events_of(events)
        check_events(seen, 100)
        whole_run, *unfinished = unfinished_tests(data) or [None]
        # The events are written first, so that the report is one event behind at most.
        expect(unfinished in running_tests(seen)[-2:], f'{unfinished}, but {seen[-2:]}')
        is_complete = bool(seen) and seen[-1]['event'] == 'runEnd'
        expect(is_complete or whole_run == 'report_suite.(the whole run)', f'{whole_run} {seen[-1:]}')
        killed += was_killed
        named += len(unfinished)
    print(f'{killed} runs were killed, {named} of them in a test, which was named.')


def main():
    suite, kills = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder:
        folder = pathlib.Path(folder)
        check_whole(suite, folder)
        check_unwritable(suite, folder)
        check_full(suite, folder)
        check_killed(suite, folder, int(kills))


if __name__ == '__main__':
    main()
