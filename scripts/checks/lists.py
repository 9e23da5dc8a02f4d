#!/usr/bin/env python3
"""Every source is in a build list, every test, benchmark and program stands by what it is about."""
import os
import re

from tree import Report, read, stem, tracked

report = Report('lists')


def listed_in(folder):
    """The text of the build lists that may name a file of `folder`: its own and those above it."""
    texts = []
    while folder:
        path = os.path.join(folder, 'CMakeLists.txt')
        texts += [read(path)] if os.path.exists(path) else []
        folder = os.path.dirname(folder)
    return '\n'.join(texts)


def is_listed(path):
    names = [os.path.basename(path)]
    names += [re.sub(r'_(linux|win)\.cpp$', '_${QILSYS_SYSTEM}.cpp', names[0])]
    names += [re.sub(r'_(x86|generic)\.cpp$', '_${QILSYS_PROCESSOR}.cpp', names[0])]
    if path.startswith('tests/support/'):
        return any(f'support/{n}' in read(f) for f in tracked('tests/*CMakeLists.txt') for n in names)
    return any(re.search(r'(?<![\w.-])' + re.escape(n) + r'(?![\w.-])', listed_in(os.path.dirname(path))) for n in names)


for path in tracked('main/*.cpp', 'tests/*.cpp', 'benchmarks/*.cpp', 'fuzz/*.cpp', 'examples/*.cpp'):
    # The replay main is named where the function that uses it stands.
    if not is_listed(path) and os.path.basename(path) not in read('cmake/QilsysTargets.cmake'):
        report.wrong(path, 'named in no CMakeLists.txt of its folder or above')

concepts = {}
for path in tracked('main/*.cpp', 'main/*.h', 'public/*.h', 'examples/*.cpp', 'examples/*.h'):
    concepts.setdefault(stem(path), []).append(path)


def is_about(path, area):
    """Whether the stem is a concept of the area, or such a concept cut further: TStringCoreLimits is about TStringCore."""
    for concept, homes in concepts.items():
        if re.match(re.escape(concept) + r'(?![a-z0-9])', stem(path)):
            if any(h.startswith((f'main/{area}/', f'examples/{area}/', 'public/')) for h in homes):
                return True
    return False


for path in tracked('tests/*_test.cpp', 'benchmarks/*_benchmark.cpp'):
    area = os.path.basename(os.path.dirname(path))
    if not is_about(path, area):
        report.wrong(path, f'no {stem(path)}.cpp or .h, nor one that its name begins with, in main/{area}, examples/{area} or public/qilsys')

for path in tracked('tests/*.cpp'):
    if not path.endswith('_test.cpp') and not path.startswith(('tests/support/', 'tests/install/')):
        if re.search(r'^(TEST|TEST_F|TEST_P|TYPED_TEST\w*)\(', read(path), re.M):
            report.wrong(path, 'holds tests, but its name does not end in _test.cpp')
report.finish()
