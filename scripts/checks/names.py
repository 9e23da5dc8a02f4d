#!/usr/bin/env python3
"""Members of plain structures have bare names, all other members begin with "m_", and no type has both.

A structure is plain if it has nothing but data: no operation of its own besides constructors and operators. What can be
told from a name's own declaration (constants, statics, private members) is held by clang-tidy.
"""
import json
import re
import subprocess

from tree import Report, tracked

# Names that are not ours to choose: those of the interface that the monitor and the process facilities show to hosts,
# and of implementation records that others describe by these names.
PRESCRIBED = ('ResourceManager::CpuConfig ResourceManager::MemoryConfig ResourceManager::GeneralConfig '
              'TSystem::MemoryInfo ProcessTimesSample PeerRecord TCountdownEvent::Impl TStringCore::Exception '
              'TConstCodePointIterator StackFrameInfo').split()


def types_of(files):
    """For each class and structure its kind, where it stands, its data members and its operations."""
    out = subprocess.run(['ctags', '--langmap=C++:+.h', '--language-force=C++', '--c++-kinds=csfpm', '--fields=+neSasK',
                          '--fields-C++=+{properties}', '--output-format=json', '-L', '-', '-f', '-'], check=True, capture_output=True, text=True,
                         input='\n'.join(files)).stdout
    rows = [json.loads(line) for line in out.splitlines()]
    types = {}
    for row in rows:
        if row['kind'] in ('class', 'struct'):
            scope = row.get('scope', '')
            name = f'{scope}::{row["name"]}' if scope else row['name']
            types[row['path'], name] = {'row': row, 'data': [], 'operations': []}
    for row in rows:
        owner = types.get((row['path'], row.get('scope', '')))
        if owner and row['kind'] == 'member' and 'static' not in row.get('properties', ''):
            owner['data'].append(row)
        if owner and row['kind'] in ('function', 'prototype'):
            name = row['scope'].rsplit('::', 1)[-1]
            if row['name'].lstrip('~') != name and not row['name'].startswith('operator'):
                owner['operations'].append(row)
    return types


if __name__ == '__main__':
    report = Report('names')
    for (path, name), type_ in types_of(tracked('public/*.h', 'main/*.h', 'main/*.cpp')).items():
        name = re.sub(r'__anon\w+::', '', name)
        if name in PRESCRIBED:
            continue
        plain = type_['row']['kind'] == 'struct' and not type_['operations']
        marked = [m['name'] for m in type_['data'] if m['name'].startswith('m_')]
        bare = [m['name'] for m in type_['data'] if not m['name'].startswith('m_')]
        if plain and marked:
            report.wrong(f'{path}:{name}', f'a plain structure, whose members need no mark: {", ".join(marked)}')
        elif not plain and marked and bare:
            report.wrong(f'{path}:{name}', f'marks some of its members and not {", ".join(bare)}')
        elif type_['row']['kind'] == 'class' and bare:
            report.wrong(f'{path}:{name}', f'a class, whose members begin with "m_": {", ".join(bare)}')
    report.finish()
