#!/usr/bin/env python3
"""Conditionals on the operating system, and the headers of Windows, stand only in files that carry its name; and those
open with one and the same guard, unless the header that they include first has it."""
import re

from tree import Report, read, tracked, without_comments

SYSTEM = re.compile(r'^[ \t]*#[ \t]*(?:if|elif|ifdef|ifndef|elifdef)\b.*\b(_WIN32|_WIN64|_MSC_VER|__MINGW\w*|__linux__|'
                    r'__linux|__unix__|__APPLE__|__FreeBSD__|__CYGWIN__|__GLIBC__)\b', re.M)
# They define macros by the thousand, min and GetMessage among them.
WINDOWS = re.compile(r'^[ \t]*#[ \t]*include[ \t]*[<"]((?:windows|win\w+|ws2\w+|mswsock|psapi|bcrypt|dbghelp|tlhelp32|powrprof|'
                     r'powerbase|shlobj|shellapi|synchapi|processthreadsapi|sysinfoapi|\w+apiset)\.h)[>"]', re.M | re.I)

GUARDS = {'linux': '#ifndef __linux__\n#error "This file is for Linux."\n#endif\n',
          'win': '#ifndef _WIN32\n#error "This file is for Windows."\n#endif\n'}


def is_guarded(code, system):
    first = re.search(r'^#include ["<](.*)[">]', code, re.M)
    return GUARDS[system] in code or first and first.group(1).endswith(f'_{system}.h')


report = Report('platform')
for path in tracked('*.h', '*.cpp'):
    code = without_comments(read(path))
    own = re.search(r'_(linux|win)(_test)?\.(h|cpp)$', path)
    if own and not is_guarded(code, own.group(1)):
        report.wrong(path, 'does not open with the guard: ' + ' '.join(GUARDS[own.group(1)].splitlines()[:2]))
    if not re.search(r'_win(_test)?\.(h|cpp)$', path):
        for match in WINDOWS.finditer(code):
            report.wrong(path, f'includes {match.group(1)}, which belongs in a _win file')
    if not own:
        for match in SYSTEM.finditer(code):
            report.wrong(path, f'a conditional on {match.group(1)}; the system belongs in a _linux or _win file')
report.finish()
