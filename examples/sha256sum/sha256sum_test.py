#!/usr/bin/env python3
"""The program prints what the system's own sha256sum prints, and fails where that fails.

usage: sha256sum_test.py PROGRAM
"""
import os
import random
import subprocess
import sys
import tempfile
from pathlib import Path

PROGRAM = sys.argv[1]
bytes_of = random.Random(1).randbytes


def run(tool, names, given):
    return subprocess.run([tool, *names], input=given, capture_output=True, timeout=50)


def compare(what, names, given=b''):
    ours, theirs = run(PROGRAM, names, given), run('sha256sum', names, given)
    assert ours.stdout == theirs.stdout, f'{what}: {ours.stdout} is not {theirs.stdout}'
    assert ours.returncode == theirs.returncode, f'{what}: ends with {ours.returncode}'
    messages = [line.partition(b': ')[2] for line in ours.stderr.splitlines()]
    assert len(messages) == len(theirs.stderr.splitlines()), f'{what}: says {ours.stderr}'
    return messages


with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)
    names = ['plain', 'with space', 'back\\slash', 'new\nline', 'carriage\rreturn', 'ünïcode', 'empty']
    for i, name in enumerate(names):
        Path(name).write_bytes(bytes_of(1 << (3 * i)) if name != 'empty' else b'')
    compare('files', names)
    for name in names:
        compare(f'file {name!r}', [name])
    for size in 0, 1, 63, 64, 65, 65535, 65536, 65537, 1000000:
        compare(f'{size} bytes of standard input', [], bytes_of(size))
    compare('a dash', ['-'], b'given')
    compare('a dash between files', ['plain', '-', 'empty'], b'given')
    assert compare('a missing file', ['plain', 'missing', 'empty']) == [b'missing: No such file or directory']
    assert compare('a folder', ['.', 'plain']) == [b'.: Is a directory']
