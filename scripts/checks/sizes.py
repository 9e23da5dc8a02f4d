#!/usr/bin/env python3
"""Files and functions stay as short as they are: what is larger than these limits is more than one concept."""
import json
import subprocess

from tree import Report, read, tracked

# The most lines of a file, by the first pattern that it fits; a little above the longest that there is.
MOST_LINES = [('public/', '.h', 700),  # The string's interface is one class, and is read as a table.
              ('main/', '.h', 300),
              ('main/', '.cpp', 350),
              ('tests/', '', 650),
              ('scripts/', '.txt', 1200),  # The list of exported names.
              ('', '', 450)]
# The same of a function. A model that tests compare with may say its rules in one piece.
MOST_LINES_OF_FUNCTION = [('tests/', '', 60), ('', '', 45)]


def limit(limits, path):
    return next(most for folder, ending, most in limits if path.startswith(folder) and path.endswith(ending))


report = Report('sizes')
files = tracked('*.h', '*.cpp', '*.py', 'scripts/*')
for path in files:
    lines, most = read(path).count('\n'), limit(MOST_LINES, path)
    if lines > most:
        report.wrong(path, f'{lines} lines, more than {most}')

tags = subprocess.run(['ctags', '--langmap=C++:+.h', '--language-force=C++', '--c++-kinds=f', '--fields=+ne',
                       '--output-format=json', '-L', '-', '-f', '-'], check=True, capture_output=True, text=True,
                      input='\n'.join(f for f in files if f.endswith(('.h', '.cpp')))).stdout
for row in map(json.loads, tags.splitlines()):
    lines, most = row.get('end', row['line']) - row['line'] + 1, limit(MOST_LINES_OF_FUNCTION, row['path'])
    if lines > most:
        report.wrong(f"{row['path']}:{row['name']}", f"{lines} lines at {row['line']}, more than {most}")
report.finish()
