#!/usr/bin/env python3
"""Every public header compiles alone and twice, and brings in nothing but the C++ library and what its interface shows.

A header of the operating system that the C++ library includes for itself can't be helped; so what counts is what our
headers name, and what the few dependency headers that they may name pull in. Where the compiler for Windows is at hand,
each compiles alone there too, and all of them together bring in neither windows.h nor its macros. Internal headers
compile alone too, those for one system by the compiler for it.
"""
import os
import re
import shutil
import subprocess
from concurrent.futures import ThreadPoolExecutor

from tree import Report, read, tracked, without_comments

# Headers of dependencies whose types stand in the interface.
DEPENDENCIES = re.compile(r'grpcpp/support/status_code_enum\.h')
CXX = os.environ.get('CXX', 'g++')
FLAGS = ['-std=c++20', '-Ipublic', '-Wall', '-Wextra', '-Wpedantic', '-Wshadow', '-Wconversion', '-Werror']
# Internal headers see what the library's own sources see.
INTERNAL = ['-Imain', '-DQILSYS_BUILDING', '-DNOMINMAX', '-DWIN32_LEAN_AND_MEAN']
CXX_LIBRARY = re.compile(r'/include/(x86_64-linux-gnu/|aarch64-linux-gnu/)?c\+\+/')
COMPILER = re.compile(r'/lib/(gcc|llvm)')
SYSTEM = re.compile(r'/include/(?:[\w-]+-linux-gnu/)?((?:sys|net|netinet|arpa|linux|asm)/[\w/.-]+|unistd\.h|pthread\.h|'
                    r'semaphore\.h|dlfcn\.h|fcntl\.h|poll\.h|signal\.h|link\.h|spawn\.h|sched\.h|windows\.h|winsock2\.h)$')


def check_contents(report, headers):
    """qilsys.h includes all, and Fwd.h names every exported class that stands in no other."""
    everything, names = read('public/qilsys/qilsys.h'), read('public/qilsys/Fwd.h')
    for path in headers:
        include = path.removeprefix('public/')
        if f'#include "{include}"' not in everything and include != 'qilsys/qilsys.h':
            report.wrong(path, 'not included by qilsys/qilsys.h')
        for kind, name in re.findall(r'^(class|struct) (?:QILSYS_API |\[\[\w+\]\] )+(\w+)\b(?!::)[^;:]*[:{]', read(path), re.M):
            if not re.search(rf'^ *{kind} {name};', names, re.M):
                report.wrong(f'{path}:{name}', 'not declared in qilsys/Fwd.h')


MINGW = 'x86_64-w64-mingw32-g++-posix'
MINGW_PREFIX = os.environ.get('QILSYS_WINDOWS_PREFIX', os.path.expanduser('~/.cache/qilsys/windows'))
# The guards of windows.h and its nearest, and names that it is known to take from others.
WINDOWS_MACROS = re.compile(r'^#define (_WINDOWS_|_INC_WINDOWS|_WINDEF_|_WINBASE_|_WINUSER_|_WINSOCK2API_|min|max|near|far|'
                            r'CreateEvent|GetMessage|SendMessage|GetObject|Yield|interface|ERROR)\b.*', re.M)


def compile(code, *flags, compiler=CXX):
    return subprocess.run([compiler, *FLAGS, *flags, '-x', 'c++', '-fsyntax-only', '-'], input=code, capture_output=True, text=True)


def check_alone(report, headers, flags, compiler, what):
    """Each header by itself, and a second time."""
    alone = lambda path: compile(f'#include "{path.split("/", 1)[1]}"\n' * 2, *flags, compiler=compiler)
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        for path, result in zip(headers, pool.map(alone, headers)):
            if result.returncode:
                report.wrong(path, f'does not compile {what}:\n' + result.stderr[:1500])


def check_for_windows(report, headers, internal):
    flags = ['-D_WIN32_WINNT=0x0A00', '-isystem', f'{MINGW_PREFIX}/include']
    check_alone(report, headers, flags, MINGW, 'alone and twice for Windows')
    internal = [path for path in internal if not path.endswith('_linux.h')]
    check_alone(report, internal, [*flags, *INTERNAL], MINGW, 'alone and twice for Windows')
    macros = compile('#include "qilsys/qilsys.h"\n', *flags, '-dM', '-E', compiler=MINGW).stdout
    for match in WINDOWS_MACROS.finditer(macros):
        report.wrong('public/qilsys/qilsys.h', f'brings in windows.h or a name of it: {match.group(0)}')


def standard_headers():
    """Names of the C++ library: <vector>, <cstdio>, but no <stdio.h>."""
    out = subprocess.run([CXX, '-std=c++20', '-E', '-v', '-x', 'c++', '-'], input='', capture_output=True, text=True).stderr
    folders = re.findall(r'^ (/\S*/c\+\+/\d+)$', out, re.M)
    return {n for f in folders for n in os.listdir(f) if re.fullmatch(r'[a-z_]+[0-9]?[a-z]*', n)}


def system_headers_of(include):
    """Headers of the operating system that `include` reaches by a way that does not lead through the C++ library."""
    found, trail = [], []
    for line in compile(f'#include <{include}>\n', '-H').stderr.splitlines():
        if match := re.match(r'(\.+) (\S+)', line):
            depth, path = len(match.group(1)), os.path.normpath(match.group(2))
            trail[depth - 1:] = [path]
            if SYSTEM.search(path) and not any(CXX_LIBRARY.search(p) or COMPILER.search(p) for p in trail):
                found.append(' -> '.join(trail))
    return found


def check_text(report, path, standard, dependencies):
    text = without_comments(read(path))
    first = re.search(r'^[ \t]*#.*$', text, re.M)
    if not first or first.group(0).split() != ['#pragma', 'once']:
        report.wrong(path, 'its first directive is not #pragma once')
    for name in re.findall(r'^[ \t]*#[ \t]*include[ \t]*[<"]([^>"]+)[>"]', text, re.M):
        if name.startswith('qilsys/'):
            if not os.path.exists(f'public/{name}'):
                report.wrong(f'{path}->{name}', 'not a public header')
        elif DEPENDENCIES.fullmatch(name):
            dependencies.add(name)
        elif name not in standard:
            report.wrong(f'{path}->{name}', 'neither ours, nor the C++ library, nor a dependency of the interface')


report, dependencies, standard = Report('headers'), set(), standard_headers()
headers = tracked('public/*.h')
for path in headers:
    check_text(report, path, standard, dependencies)
for name in sorted(dependencies):
    for trail in system_headers_of(name):
        report.wrong(name, f'brings in a header of the operating system: {trail}')

check_contents(report, headers)
internal = tracked('main/*.h')
check_alone(report, headers, [], CXX, 'alone and twice')
check_alone(report, [path for path in internal if not path.endswith('_win.h')], INTERNAL, CXX, 'alone and twice')
if shutil.which(MINGW) and os.path.isdir(MINGW_PREFIX):
    check_for_windows(report, headers, internal)
report.finish()
