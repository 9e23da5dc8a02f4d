#!/usr/bin/env python3
"""Conditionals on the operating system stand only in files that carry its name."""
import re

from tree import Report, read, tracked, without_comments

SYSTEM = re.compile(r'^[ \t]*#[ \t]*(?:if|elif|ifdef|ifndef|elifdef)\b.*\b(_WIN32|_WIN64|_MSC_VER|__MINGW\w*|__linux__|'
                    r'__linux|__unix__|__APPLE__|__FreeBSD__|__CYGWIN__|__GLIBC__)\b', re.M)

report = Report('platform')
for path in tracked('*.h', '*.cpp'):
    if re.search(r'_(linux|win)\.(h|cpp)$', path):
        continue
    for match in SYSTEM.finditer(without_comments(read(path))):
        report.wrong(path, f'a conditional on {match.group(1)}; the system belongs in a _linux or _win file')
report.finish()
