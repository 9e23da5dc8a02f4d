#!/usr/bin/env python3
"""Every header, and every source that is not the body of the header of its own name, opens with a sentence.

What such a file is about can't be read from its name alone: a header says what it is for, a slice of a class which part
of it stands there, a source for one system what its sibling does.
"""
import os
import re

from tree import Report, read, tracked

MARKS = {'.h': '///', '.cpp': '//'}


def opening(text, mark):
    """The first paragraph of the comment that the text begins with."""
    words = []
    for line in text.split('\n'):
        if not re.match(rf'{mark}(?!/)', line) or line.strip() == mark:
            break
        words.append(line[len(mark):].strip())
    return ' '.join(words)


def is_sentence(text):
    # One that leads to an example ends in a colon.
    return re.match(r'["`(]?[A-Z0-9`/]', text) and re.search(r'[.:]["`)]?$', text) and len(text.split()) >= 3


def is_body(path):
    """Whether there is a header of this very name, in the same room or among the public ones."""
    name = os.path.splitext(os.path.basename(path))[0]
    return any(os.path.exists(f'{folder}/{name}.h') for folder in (os.path.dirname(path), 'public/qilsys'))


report = Report('openings')
for path in tracked('public/*.h', 'main/*.h', 'main/*.cpp', 'tests/*.h', 'benchmarks/*.h', 'examples/*.h'):
    mark = MARKS[os.path.splitext(path)[1]]
    if mark == '//' and is_body(path):
        continue
    if not is_sentence(opening(read(path), mark)):
        report.wrong(path, f'does not open with a sentence behind "{mark}"')
report.finish()
