"""Where statements, guards and variables stand in a source whose comments and literals are masked.

What is found need not be right each time: a change that does not compile costs a build, and no more.
"""

import collections
import re

NO_TYPE = {'return', 'else', 'throw', 'delete', 'new', 'case', 'using', 'namespace', 'goto', 'auto',
           'typename', 'class', 'struct', 'enum', 'const', 'operator', 'public', 'private', 'do'}
CONTROL = {'if', 'while', 'for', 'switch', 'return', 'else', 'case', 'default', 'do', 'try', 'catch',
           'break', 'continue', '__asm__', 'using', 'static_assert', 'public', 'private', 'protected', 'goto'}
TYPE = r'(?:(?:constexpr|static|mutable|inline|unsigned|struct)\s+)*[A-Za-z_][\w:]*(?:<[^;{}()]*?>)?'
DECLARATOR = re.compile(
    rf'(?P<type>{TYPE}(?:\s+const)?\s*[*&]*(?:\s*const)?)\s*(?<=[\s*&])(?P<name>[a-z_]\w*)'
    r'(?=\s*(?:=[^=]|\(|\{|;|:[^:]|,|\)|$))')


def statements(mask, inside):
    """The beginnings and ends, without the semicolon, of simple statements in functions."""
    for match in re.finditer(r'(?:(?<=[;{}])|(?<=[:)]\n))\s*(?=\S)', mask):
        start = match.end()
        word = re.match(r'[\w:]+', mask[start:])
        if not inside[start] or mask[start] in '{}' or (word and word.group() in CONTROL):
            continue
        end = end_of_statement(mask, start)
        if end is not None:
            yield start, end


def end_of_statement(mask, start):
    depth = 0
    for match in re.compile(r'[;(){}[\]]').finditer(mask, start):
        if match[0] == ';' and depth == 0:
            return match.start()
        depth += 1 if match[0] in '({[' else -1 if match[0] in ')}]' else 0
        if depth < 0:
            return None
    return None


def orders(text, mask, inside):
    """Each two statements that stand one behind the other, swapped."""
    found = sorted(set(statements(mask, inside)))
    ends = {start: end for start, end in found}
    for start, end in found:
        second = end + 1 + len(mask[end + 1:]) - len(mask[end + 1:].lstrip())
        if second not in ends or depends(mask[start:end], mask[second:ends[second]]):
            continue
        between = text[end:second]
        yield (start, ends[second],
               text[second:ends[second]] + between + text[start:end], 'order')


def depends(first, second):
    """Whether the second statement uses what the first declares, so that nothing would compile."""
    declared = DECLARATOR.match(first)
    return bool(declared and is_type(declared['type']) and
                re.search(rf'\b{declared["name"]}\b', second))


def is_type(text):
    words = re.findall(r'\w+', text)
    return bool(words) and words[0] not in NO_TYPE and words[-1] not in NO_TYPE - {'const'}


def end_of_block(mask, position):
    depth = 0
    for match in re.compile('[{}]').finditer(mask, position):
        depth += 1 if match[0] == '{' else -1
        if depth < 0:
            return match.start()
    return len(mask)


def guards(mask, inside):
    """Local objects that nobody names again."""
    for start, end in sorted(set(statements(mask, inside))):
        declared = DECLARATOR.match(mask, start, end)
        if not declared or not is_type(declared['type']) or '=' in mask[start:end]:
            continue
        if re.search(r'[*&]\s*$', declared['type']):
            continue
        rest = mask[end:end_of_block(mask, end)]
        if not re.search(rf'\b{declared["name"]}\b', rest):
            yield start, end, '', 'guard'


def plain(kind):
    """What decides whether a variable fits where another one stands."""
    kind = re.sub(r'\b(?:const|constexpr|static|mutable|inline)\b|&', ' ', kind)
    return re.sub(r'\s+', '', kind)


def bodies(mask, inside):
    """The beginning, and the places of the outermost braces, of each function."""
    position = 0
    while position < len(mask):
        if mask[position] == '{' and position + 1 < len(mask) and inside[position + 1] and (
                not inside[position]):
            end = end_of_block(mask, position + 1)
            header = max(mask.rfind(c, 0, position) for c in ';{}') + 1
            yield header, position, end
            position = end
        position += 1


def declared_in(mask, start, end, pattern):
    for match in re.finditer(pattern, mask[start:end]):
        declarator = DECLARATOR.match(mask, start + match.end(), end)
        if declarator and is_type(declarator['type']):
            yield declarator.start('name'), declarator['name'], plain(declarator['type'])


def variables(mask, inside, header):
    """Each variable replaced by the others of its type that are in sight."""
    members = {}
    for source in (header, mask):
        for match in re.finditer(rf'[;{{}}:]\s*({TYPE}(?:\s+const)?\s*[*&]*)\s*(m_\w+)\s*[={{;]',
                                 source):
            members[match[2]] = plain(match[1])
    for header_start, begin, end in bodies(mask, inside):
        known = collections.OrderedDict()
        for place, name, kind in [*declared_in(mask, header_start, begin, r'[(,]\s*'),
                                  *declared_in(mask, begin, end, r'[;{}(]\s*')]:
            known.setdefault(name, (place, kind, end_of_block(mask, max(place, begin + 1))))
        for match in re.finditer(r'(?<![\w.:>~])([a-z_]\w*)\b(?!\s*[(<:]|\w)', mask[begin:end]):
            yield from replacements(match[1], begin + match.start(), known, members)


def replacements(name, place, known, members):
    declared = known.get(name)
    if declared and declared[0] >= place:
        return
    kind = declared[1] if declared else members.get(name)
    if kind is None:
        return
    others = [other for other, (begin, other_kind, end) in known.items()
              if other_kind == kind and begin < place < end]
    others += [other for other, other_kind in members.items() if other_kind == kind]
    for other in others:
        if other != name:
            yield place, place + len(name), other, 'variable'
