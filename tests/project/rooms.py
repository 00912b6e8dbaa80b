#!/usr/bin/env python3
"""Holds the includes of the framework against its architecture.

    tests/project/rooms.py [SOURCE]

src/qix consists of rooms, and a room may know those that stand behind it here. Public headers are
flat, so each is told the room that it belongs to.
"""

import pathlib
import re
import sys

# What each room may know. All may know the test model, text and zel; headers for everybody, as
# qix.h is, belong to no room.
ROOMS = {
    'model': [],
    'text': [],
    'guards': [],
    'runner': ['guards'],
    'testing': ['guards'],
    'checks': ['guards', 'testing'],
    'registration': ['guards', 'testing'],
    'support': ['guards'],
    'reporters': [],
    'selection': ['runner', 'guards'],
    'history': [],
    'options': ['guards', 'history', 'reporters'],
    'planning': ['guards', 'runner', 'registration', 'selection', 'history', 'options'],
    'supervisor': ['guards', 'runner', 'selection', 'options', 'planning'],
    'program': ['guards', 'runner', 'selection', 'history', 'reporters', 'options', 'planning',
                'supervisor'],
}
FOR_ALL = ['model', 'text']

PUBLIC = {
    'model': ['CTestAbortedException', 'CTestFailedException', 'CTestItemGroup',
              'CTestSkippedException', 'CTestSkippedWithReasonException', 'CheckFailure',
              'ILocatedItem', 'ITaggedItem', 'ITestItem', 'ITestItemFactory',
              'ITestListener', 'ITestRunner', 'RunCounts', 'RunInfo', 'SourceLocation',
              'TestInfo', 'TestOutcome', 'export'],
    'text': ['CValueWriter', 'detail/describe', 'detail/logLine', 'detail/message',
             'detail/narrowText'],
    'guards': ['detail/passedCheck'],
    'runner': ['CConsoleTestRunner'],
    'testing': ['CTestItem', 'CTestScope', 'detail/failure', 'detail/info', 'detail/section',
                'detail/subTest', 'log', 'noteFailure', 'subTest'],
    'checks': ['approx', 'detail/attempt', 'detail/check', 'detail/death', 'detail/difference',
               'detail/matching', 'detail/reason', 'googleMockMatchers', 'hidden', 'matchers',
               'matchers/combinations', 'matchers/containers', 'matchers/numbers',
               'matchers/objects', 'matchers/texts'],
    'registration': ['attributes', 'detail/each', 'detail/groupFixture', 'detail/registration',
                     'detail/typed', 'groupFixture', 'combine', 'values'],
    'support': ['CTestFolder', 'secret', 'util'],
    'program': ['main'],
}
WITHOUT_ROOM = ['qix', 'test', 'detail/macros']
# What is written for one operating system stands in a room's folder of that system.
SYSTEM_HEADER = re.compile(r'<(sys/.*|unistd|fcntl|poll|pthread|dirent|pwd|dlfcn)(\.h)?>')


def room_of_header(name):
    return next((room for room, names in PUBLIC.items() if name in names), None)


def includes(path):
    for number, line in enumerate(path.read_text(encoding='utf-8').splitlines(), 1):
        match = re.match(r'\s*#\s*include\s*([<"][^>"]+[>"])', line)
        if match:
            yield number, match.group(1)


def room_of_include(include):
    name = include[1:-1]
    if include.startswith('"'):
        return name.split('/')[0]
    if name.startswith('qix/'):
        return room_of_header(name[len('qix/'):-len('.h')])
    return None


def check_file(path, room, shown):
    for number, include in includes(path):
        other = room_of_include(include)
        if other is not None and other not in [room, *FOR_ALL, *ROOMS[room]]:
            yield f'{shown}:{number}: {room} must not know {other}: {include}'


def check_sources(source):
    for path in sorted((source / 'src' / 'qix').rglob('*.*')):
        if path.suffix not in ('.h', '.cpp'):
            continue
        inside = path.relative_to(source / 'src' / 'qix')
        if inside.parts[0] not in ROOMS:
            yield f'{path}: stands in no room'
            continue
        yield from check_file(path, inside.parts[0], path.relative_to(source))


def check_headers(source):
    for path in sorted((source / 'include' / 'qix').rglob('*.h')):
        name = str(path.relative_to(source / 'include' / 'qix'))[:-len('.h')]
        room = room_of_header(name)
        if room is not None:
            yield from check_file(path, room, path.relative_to(source))
        elif name not in WITHOUT_ROOM:
            yield f'{path}: belongs to no room: tell it in {__file__}'


def check_system(source):
    for path in sorted((source / 'src' / 'qix').rglob('*.*')):
        if 'posix' in path.parts:
            continue
        for number, include in includes(path):
            if SYSTEM_HEADER.fullmatch(include):
                yield f'{path.relative_to(source)}:{number}: belongs into posix/: {include}'


def rooms_of_table(text):
    row = re.compile(r'^\| \[(\w+)\]\(\.\./src/qix/\w+\) \|.*\|([^|]*)\|$', re.MULTILINE)
    for room, known in row.findall(text):
        yield room, sorted(name.strip() for name in known.split(',') if name.strip())


def check_document(source):
    document = source / 'docs' / 'design.md'
    shown = dict(rooms_of_table(document.read_text(encoding='utf-8')))
    for room in sorted({*shown, *ROOMS}):
        if shown.get(room) != sorted(ROOMS.get(room, [])):
            yield f'{document}: {room} may know {ROOMS.get(room)}, and not {shown.get(room)}'


def main():
    source = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else '.').resolve()
    mistakes = [*check_sources(source), *check_headers(source), *check_system(source),
                *check_document(source)]
    print('\n'.join(mistakes) or 'Every include fits the rooms.')
    return 1 if mistakes else 0


if __name__ == '__main__':
    sys.exit(main())
