#!/usr/bin/env python3
"""The program prints what a Unix system's own sha256sum prints, and fails where that fails.

usage: sha256sum_test.py linux|win [EMULATOR] PROGRAM
"""
import os
import random
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

SYSTEM, COMMAND = sys.argv[1], sys.argv[2:]
WINDOWS = SYSTEM == 'win'
# Else Wine takes the names for those of a plain C locale, and keeps standard input from the program.
ENVIRONMENT = {**os.environ, 'LC_ALL': 'C.UTF-8', 'QILSYS_WINE_STDIN': '1'}
# What Windows doesn't allow in a name.
FORBIDDEN = set('\\\n\r')
bytes_of = random.Random(1).randbytes


def run(command, names, given):
    # Files, not pipes: the first program under Wine leaves behind others, which would hold the pipes open.
    with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as err:
        ended = subprocess.run([*command, *names], input=given, stdout=out, stderr=err, timeout=100, env=ENVIRONMENT)
        out.seek(0), err.seek(0)
        return ended.returncode, out.read(), err.read().splitlines()


def compare(what, names, given=b''):
    code, out, messages = run(COMMAND, names, given)
    wanted_code, wanted_out, wanted_messages = run(['sha256sum'], names, given)
    assert out == wanted_out, f'{what}: {out} is not {wanted_out}'
    assert code == wanted_code, f'{what}: ends with {code}'
    assert len(messages) == len(wanted_messages), f'{what}: says {messages}'
    return [line.partition(b': ')[2] for line in messages]


def names_of_files():
    for name in 'plain', 'with space', 'back\\slash', 'new\nline', 'carriage\rreturn', 'ünïcode', '\U0001F40Dsnake', 'empty':
        if WINDOWS and FORBIDDEN & set(name):
            print(f'left out on Windows: {name!r} is no name there')
        else:
            yield name


if not shutil.which('sha256sum'):
    print('left out: there is no sha256sum to compare with; Git for Windows has one in its folder usr/bin')
    sys.exit(77)
with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)
    names = list(names_of_files())
    for i, name in enumerate(names):
        Path(name).write_bytes(bytes_of(1 << (3 * i)) if name != 'empty' else b'')
    # Bytes that streams of text would change: the ends of lines, and what ends a file.
    Path('text').write_bytes(b'one\r\ntwo\n\x1athree\r\n')
    compare('files', [*names, 'text'])
    # The program reads 65536 bytes at a time.
    for size in 0, 1, 65535, 65536, 65537, 1000000:
        compare(f'{size} bytes of standard input', [], bytes_of(size))
    compare('a dash', ['-'], b'given\r\n\x1amore')
    compare('a dash between files', ['plain', '-', 'empty'], b'given')
    assert compare('a missing file', ['plain', 'missing', 'empty']) == [b'missing: No such file or directory']
    # Windows opens no folder in the first place.
    folder_message = b'.: Permission denied' if WINDOWS else b'.: Is a directory'
    assert compare('a folder', ['.', 'plain']) == [folder_message]
