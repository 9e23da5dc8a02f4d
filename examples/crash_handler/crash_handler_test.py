#!/usr/bin/env python3
"""Crashed in each way, the program leaves a dump and the lines of its stacks, and ends as it would have without a handler.

usage: crash_handler_test.py linux|win [EMULATOR] PROGRAM
"""
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
from pathlib import Path

SYSTEM, COMMAND = sys.argv[1], sys.argv[2:]
WINDOWS = SYSTEM == 'win'
# The way, the function that a stack must show, and the signal that ends the process.
WAYS = [('null-write', 'WriteToNull', signal.SIGSEGV),
        ('stack-overflow', 'UseUpTheStack', signal.SIGSEGV),
        ('abort', 'Abort', signal.SIGABRT),
        ('exception', 'ThrowAndCatchNowhere', signal.SIGABRT)]


def run(words):
    # A file, not a pipe: the first program under Wine leaves behind others, which would hold a pipe open.
    with tempfile.TemporaryFile() as out:
        code = subprocess.run(words, stdin=subprocess.DEVNULL, stdout=out, stderr=out, timeout=200).returncode
        out.seek(0)
        return code, out.read().decode(errors='replace')


def check_end(way, code, wanted):
    if WINDOWS:
        assert code != 0, f'{way}: ends well'
    else:
        assert code == -wanted, f'{way}: ends with {code}'


def check_dump(way, dump, function):
    assert dump.read_bytes()[:4] in (b'MDMP', b'\x7fELF'), f'{way}: no dump'
    if not WINDOWS:
        assert dump.stat().st_mode & 0o7777 == 0o600, f'{way}: others can read the dump'
    if not WINDOWS and shutil.which('gdb'):
        _, shown = run(['gdb', '-batch', '-nx', '-ex', 'backtrace -200', '-ex', 'backtrace 30', COMMAND[-1], str(dump)])
        assert function in shown, f'{way}: gdb shows {shown}'


def crash(way, function, wanted):
    with tempfile.TemporaryDirectory() as folder:
        code, said = run([*COMMAND, way, folder])
        left = {path.suffix: path for path in Path(folder).iterdir()}
        assert sorted(left) == ['.dmp', '.txt'], f'{way}: leaves {sorted(left)} and says {said}'
        check_end(way, code, wanted)
        check_dump(way, left['.dmp'], function)
        lines = left['.txt'].read_text()
        # mingw-w64's function that looks for more stack says nothing of how to leave it: its frame is the last.
        wanted = r'thread \d+\n  0x' if WINDOWS and way == 'stack-overflow' else rf'!.*{function}'
        assert re.search(wanted, lines), f'{way}: the lines are\n{lines}'


# The kernel's own dumps are not wanted here.
if not WINDOWS:
    import resource
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
for row in WAYS:
    crash(*row)
code, said = run(COMMAND)
assert code == 2 and 'usage' in said, f'without a way: ends with {code} and says {said}'
