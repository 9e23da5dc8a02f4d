#!/usr/bin/env python3
"""A source includes its own header first, a room includes only rooms that it stands on, and no includes run in a circle."""
import os
import re

from tree import Report, read, stem, tracked, without_comments

# The house from the ground up: what each room may include besides itself and the rooms that those build on. Those
# that are drawn and not built yet stand here too, so that nobody builds across them.
STANDS_ON = {
    'base': [],
    'cpu': [],
    'memory': ['base'],
    'units': ['base', 'cpu', 'memory'],
    'numbers': ['units'],
    'search': ['units'],
    'transcode': ['units'],
    'string': ['numbers', 'search', 'transcode'],
    'errors': ['string'],
    'hash': ['string'],
    'synchronize': ['errors'],
    'diagnostics': ['errors'],
    'paths': ['diagnostics', 'hash'],
    'system': ['synchronize', 'paths'],
    'accounting': ['system'],
    'thread': ['system'],
    'monitor': ['system'],
}


def below(room):
    """The rooms that this one may include."""
    return {lower for direct in STANDS_ON[room] for lower in {direct} | below(direct)}


# Public headers of every room stand in one folder; these don't share their stem with a source of their room.
ROOM_OF = {'Fwd': 'all', 'qilsys': 'all'}
ROOM_OF |= dict.fromkeys('Export TCodeUnit ThreadSanitizer'.split(), 'base')
ROOM_OF |= dict.fromkeys('TStringOptions'.split(), 'units')
ROOM_OF |= dict.fromkeys('TMemory MemoryCounter'.split(), 'memory')
ROOM_OF |= dict.fromkeys('Unicode'.split(), 'transcode')
ROOM_OF |= dict.fromkeys('TForeignForms TStringCoreClass TStringCoreOperators TStringStorage'.split(), 'string')
ROOM_OF |= dict.fromkeys('TStackWalker CrashDump'.split(), 'diagnostics')
ROOM_OF |= dict.fromkeys('TPathCore'.split(), 'paths')
ROOM_OF |= dict.fromkeys('StaticRepository'.split(), 'system')
ROOM_OF |= dict.fromkeys('CpuTime JemallocEnable'.split(), 'accounting')
ROOM_OF |= dict.fromkeys('AsyncTask Future Launch'.split(), 'thread')

SOURCES = {}
for path in tracked('main/*.cpp', 'main/*.h'):
    SOURCES.setdefault(stem(path), path.split('/')[1])


def room_of_include(name):
    folder, file = os.path.split(name)
    if folder in STANDS_ON:
        return folder
    return room_of_header(file) if folder == 'qilsys' else None


def room_of_header(file):
    return ROOM_OF.get(stem(file)) or SOURCES.get(stem(file))


def room_of_file(path):
    parts = path.split('/')
    return parts[1] if parts[0] == 'main' else room_of_header(parts[-1])


def check_layering(report, path, includes):
    room = room_of_file(path)
    if room is None:
        report.wrong(path, 'belongs to no room: give it a source of its stem, or a line in ROOM_OF')
    if room in (None, 'all'):
        return
    for name in includes:
        other = room_of_include(name)
        if name.startswith('qilsys/') and other is None or other and other not in below(room) | {room}:
            report.wrong(f'{path}->{name}', f'{room} does not stand on {other}')


def own_headers(path):
    """The header of a source, by its name or stem; that of its class, where the source is a slice of one."""
    room, name = path.split('/')[1], stem(path)
    whole = f'{room}/{os.path.basename(path)[:-len(".cpp")]}.h'
    if os.path.exists(f'main/{whole}'):
        return [whole] + [f'{room}/{name}_platform.h', f'{room}/{name}.h', f'qilsys/{name}.h']
    for length in range(len(name), 2, -1):
        own = [f'{folder}/{name[:length]}{suffix}.h' for folder in (room, 'qilsys') for suffix in ('', '_platform', '_x86', '_cpu')]
        own = [n for n in own if any(os.path.exists(f'{root}/{n}') for root in ('main', 'public'))]
        if own:
            return own
    return []


def check_own_first(report, path, includes):
    own = own_headers(path)
    if own and (not includes or includes[0] not in own):
        report.wrong(path, f'includes {includes[0] if includes else "nothing"} first, not {own[0]}')


def check_circles(report, includes_of):
    """Reports each header from which includes lead back to it."""
    def files(path):
        return [f'{root}/{name}' for name in includes_of.get(path, []) for root in ('main', 'public') if f'{root}/{name}' in includes_of]

    for start in includes_of:
        seen, left = set(), files(start)
        while left:
            path = left.pop()
            if path not in seen:
                seen.add(path)
                left += files(path)
        if start in seen:
            report.wrong(start, 'its includes lead back to it')


report = Report('includes')
includes_of = {}
for path in tracked('main/*.h', 'main/*.cpp', 'public/*.h'):
    includes = re.findall(r'^[ \t]*#[ \t]*include[ \t]*[<"]([^>"]+)[>"]', without_comments(read(path)), re.M)
    includes_of[path] = includes
    check_layering(report, path, includes)
    if path.endswith('.cpp'):
        check_own_first(report, path, includes)
check_circles(report, includes_of)
report.finish()
