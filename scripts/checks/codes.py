#!/usr/bin/env python3
"""Codes of assertions and exceptions are never used twice, and the name beside a code spells that code.

Logs from the field are searched by them, so a code leads to one place, and its name to the same place.
"""
import re

from tree import Report, read, tracked, without_comments

CODE = re.compile(r'\b0x([0-9A-Fa-f]{8})\b')
# A name that ends in a code, and the argument before it.
NAME = re.compile(r'(?:\b0x(?P<code>[0-9A-Fa-f]{8})\s*,\s*)?(?<!\w)(?:u8|u|U|L)?"(?P<name>[A-Za-z_]+_(?P<prefix>0x)?(?P<digits>[0-9A-Fa-f]{8}))"')
# What stands before the code in a name.
BEGINNINGS = ('LogicException_LogicAssert_', 'LogicException_', 'QuillonException_AutoGen_', 'QilsysInvalidErrorInfo_')
# Spelt without "0x", on purpose: the field knows it so.
WITHOUT_PREFIX = 'LogicException_LogicAssert_FCC690FC'
# Calls whose eight digits are a code, with or without a name beside it.
RAISES = re.compile(r'(?:\w*(?:Assert|ASSERT|Error|Exception|Fail|Raise|Require|Throw)\w*)$')


def called_at(text, at):
    """The name of the innermost call whose arguments hold this place, or ''."""
    depth = 0
    for i in range(at - 1, -1, -1):
        if text[i] in ')]}':
            depth += 1
        elif text[i] in '([{':
            if depth == 0:
                return re.search(r'(\w*)\s*$', text[:i]).group(1)
            depth -= 1
        elif text[i] == ';' and depth == 0:
            return ''
    return ''


def check_names(report, path, text):
    """The places of the codes that have a name beside them."""
    named = set()
    for match in NAME.finditer(text):
        where, name = f"{path}:{text.count(chr(10), 0, match.start('name')) + 1}", match['name']
        if not match['code']:
            report.wrong(where, f'"{name}" names a code, but does not stand behind one')
            continue
        named.add(match.start('code'))
        if match['code'] != match['digits']:
            report.wrong(where, f'"{name}" stands behind the code 0x{match["code"]}')
        if not match['prefix'] and name != WITHOUT_PREFIX:
            report.wrong(where, f'"{name}" spells its code without "0x"')
        if not any(re.fullmatch(beginning + '(0x)?[0-9A-Fa-f]{8}', name) for beginning in BEGINNINGS):
            report.wrong(where, f'"{name}" begins as no name of a code does')
    return named


report, places = Report('codes'), {}
for path in tracked('main/*.h', 'main/*.cpp', 'public/*.h', 'examples/*.cpp'):
    text = without_comments(read(path))
    named = check_names(report, path, text)
    for match in CODE.finditer(text):
        if match.start(1) in named or RAISES.search(called_at(text, match.start())):
            line = text.count('\n', 0, match.start()) + 1
            if match.group(1) != match.group(1).upper():
                report.wrong(f'{path}:{line}', f'{match.group(0)} is not in capital digits')
            places.setdefault(match.group(1).upper(), []).append(f'{path}:{line}')
for code, found in places.items():
    for place in found[1:]:
        report.wrong(place, f'0x{code} is the code of {found[0]} already')
report.finish()
