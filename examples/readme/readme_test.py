#!/usr/bin/env python3
"""README.md shows the program as it stands, and what it prints.

usage: readme_test.py README SOURCE [EMULATOR] PROGRAM
"""
import re
import subprocess
import sys
from pathlib import Path


def block(text, language):
    return re.search(rf'^```{language}\n(.*?)^```$', text, re.M | re.S).group(1)


readme, source, *program = sys.argv[1:]
text = Path(readme).read_text(encoding='utf8')
assert block(text, 'cpp') == Path(source).read_text(encoding='utf8'), 'README shows another program'
# Lines end by the system's own rule.
printed = subprocess.run(program, check=True, capture_output=True, timeout=50).stdout.decode('utf8').replace('\r\n', '\n')
assert block(text, 'text') == printed, f'README shows another output than:\n{printed}'
