#!/usr/bin/env python3
"""A source includes its own header first, and an area includes only areas that it builds on."""
import os
import re

from tree import AREAS, Report, read, stem, tracked, without_comments

# The house from the ground up: what each area may include besides itself.
BUILDS_ON = {
    'memory': set(),
    'qilsys': {'memory'},
    'hash': {'memory', 'qilsys'},
    'synchronize': {'memory', 'qilsys'},
    'paths': {'memory', 'qilsys'},
    'system': {'memory', 'qilsys', 'synchronize', 'paths'},
    'thread': {'memory', 'qilsys', 'synchronize', 'system'},
    'monitor': {'memory', 'qilsys', 'synchronize', 'paths', 'system'},
}

# Public headers of every area stand in one folder; these don't share their stem with a source of their area.
AREA_OF = {
    'Export': 'base', 'TCodeUnit': 'base', 'Fwd': 'base', 'qilsys': 'all',
}
AREA_OF |= dict.fromkeys('AsyncTask AsyncTaskTls Cancel SharedState Future TThreadPool NonThreadPoolWorkerManager'.split(), 'thread')
AREA_OF |= dict.fromkeys('TMemory MemoryCounter CpuTime JemallocEnable'.split(), 'memory')
AREA_OF |= dict.fromkeys('ReferenceCount TEvent TLocks TSemaphore'.split(), 'synchronize')
AREA_OF |= dict.fromkeys('ResourceManager MonitoredProcess ResourceReporter'.split(), 'monitor')
AREA_OF |= dict.fromkeys('THash sha2'.split(), 'hash')
AREA_OF |= dict.fromkeys('TSystem TMath TStackWalker CrashDump StaticRepository'.split(), 'system')
AREA_OF |= dict.fromkeys('TPathCore'.split(), 'paths')

SOURCES = {}
for path in tracked('main/*.cpp', 'main/*.h'):
    SOURCES.setdefault(stem(path), path.split('/')[1])


def area_of_include(name):
    folder, file = os.path.split(name)
    concept = stem(file)
    if folder in AREAS and folder != 'qilsys':
        return folder
    if folder != 'qilsys':
        return None
    return AREA_OF.get(concept) or SOURCES.get(concept) or 'qilsys'


def area_of_file(path):
    parts = path.split('/')
    return parts[1] if parts[0] == 'main' else area_of_include('/'.join(parts[1:]))


def check_layering(report, path, includes):
    area = area_of_file(path)
    if area not in BUILDS_ON:
        return
    for name in includes:
        other = area_of_include(name)
        if other not in BUILDS_ON[area] | {area, 'base', None}:
            report.wrong(f'{path}->{name}', f'{area} does not build on {other}')


def check_own_first(report, path, includes):
    own = [n for n in (f'{folder}/{stem(path)}{suffix}.h' for folder in (path.split('/')[1], 'qilsys')
                       for suffix in ('', '_platform')) if any(os.path.exists(f'{root}/{n}') for root in ('main', 'public'))]
    if own and (not includes or includes[0] not in own):
        report.wrong(path, f'includes {includes[0] if includes else "nothing"} first, not {own[0]}')


report = Report('includes')
for path in tracked('main/*.h', 'main/*.cpp', 'public/*.h'):
    includes = re.findall(r'^[ \t]*#[ \t]*include[ \t]*[<"]([^>"]+)[>"]', without_comments(read(path)), re.M)
    check_layering(report, path, includes)
    if path.endswith('.cpp'):
        check_own_first(report, path, includes)
report.finish()
