#!/usr/bin/env python3
"""No file over 700 lines, no function over 60: what is larger is more than one concept."""
import json
import subprocess

from tree import Report, read, tracked

MOST_LINES, MOST_LINES_OF_FUNCTION = 700, 60

report = Report('sizes')
files = tracked('*.h', '*.cpp', '*.py', 'scripts/*')
for path in files:
    lines = read(path).count('\n')
    if lines > MOST_LINES:
        report.wrong(path, f'{lines} lines, more than {MOST_LINES}')

tags = subprocess.run(['ctags', '--langmap=C++:+.h', '--language-force=C++', '--c++-kinds=f', '--fields=+ne',
                       '--output-format=json', '-L', '-', '-f', '-'], check=True, capture_output=True, text=True,
                      input='\n'.join(f for f in files if f.endswith(('.h', '.cpp')))).stdout
for row in map(json.loads, tags.splitlines()):
    if 'end' in row and row['end'] - row['line'] + 1 > MOST_LINES_OF_FUNCTION:
        report.wrong(f"{row['path']}:{row['name']}", f"{row['end'] - row['line'] + 1} lines at {row['line']}, "
                     f'more than {MOST_LINES_OF_FUNCTION}')
report.finish()
