#!/usr/bin/env python3
"""Words that don't belong in the tree: unfinished work, documents that its reader does not have, local paths."""
import re

from tree import Report, tracked

# Bracketed letters keep this list from matching itself.
WORDS = re.compile(r'\b[s]pec(?:s|ification)?\b|\b[P]arts? [1-9]\.[1-9]\b|\b[i]ssue #?[0-9]+\b|\b[T]ODO\b|\b[F]IXME\b|'
                   r'(?-i:\b[X]XX\b)|(?<![\w.])/[w]ork/|/[h]ome/\w|\.\./[s]hared|<{7} |>{7} ', re.I)

report = Report('words')
for path in tracked():
    if WORDS.search(path):
        report.wrong(path, 'the name itself')
    with open(path, encoding='utf8', errors='replace') as file:
        for number, line in enumerate(file, 1):
            if match := WORDS.search(line):
                report.wrong(f'{path}:{number}', f'"{match.group(0)}"')
report.finish()
