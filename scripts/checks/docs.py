#!/usr/bin/env python3
"""What a page or a comment names is there: files, folders, verbs of make, presets, tests, and where links lead."""
import os
import re

from tree import Report, comments, read, tracked, without_comments

FILE = re.compile(r'(?<![\w/.*{}>-])((?:[\w.-]+/)*[\w-]+\.(?:h|cpp|py|md|cmake|in|txt))(?![\w/{]|\.\w)')
FOLDERS = ('benchmarks', 'cmake', 'docs', 'examples', 'fuzz', 'main', 'public', 'scripts', 'tests')
PLACE = re.compile(r'(?<![\w/.~<-])((?:%s)/[\w./-]*\w)(?![\w<*{(])' % '|'.join(FOLDERS))
# Names that stand for any: X.cpp, X_win.h, NAME_tests.
PLACEHOLDER = re.compile(r'(?:^|/)(?:X|NAME)(?:_|\.)')
LINK = re.compile(r'\[[^\]\n]*\]\(([^)\s]+)\)')
# Files of a build, and of others beside the headers that the tree includes.
ELSEWHERE = re.compile(r'^build/|(?:^|/)(?:CMakeCache|compile_commands|vcpkg|strings|math|stdio|stdlib|psapi)\.\w+$')
SEE = re.compile(r'\b[Ss]ee ([A-Z]\w+)(?![\w./])')

FILES = set(tracked())
BASENAMES = {os.path.basename(f) for f in FILES}
CODE = '\n'.join(without_comments(read(f)) for f in tracked('*.h', '*.cpp'))
INCLUDED = set(re.findall(r'#[ \t]*include[ \t]*<([^>]+)>', CODE))
IDENTIFIERS = set(re.findall(r'\w+', CODE))
PLACES = {'/'.join(f.split('/')[:n]) for f in FILES for n in range(1, f.count('/') + 2)}
VERBS = set(re.findall(r'^([a-z-]+):', read('Makefile'), re.M)) if 'Makefile' in FILES else set()
PRESETS = set(re.findall(r'"name": "([\w-]+)"', read('CMakePresets.json'))) if 'CMakePresets.json' in FILES else set()


def is_there(name, folder):
    """A name without a folder is that of any file; with one, it counts from the tree's root, a root of includes or the page."""
    if '/' not in name:
        return name in BASENAMES
    return any(os.path.normpath(os.path.join(root, name)) in PLACES for root in ('', 'main', 'public', 'tests', 'fuzz', 'benchmarks', folder))


def check_names(report, path, line, text):
    folder = os.path.dirname(path)
    for match in FILE.finditer(text):
        name = match.group(1)
        if not (is_there(name, folder) or name in INCLUDED or PLACEHOLDER.search(name) or ELSEWHERE.search(name)):
            report.wrong(f'{path}:{line}', f'there is no {name}')
    for match in PLACE.finditer(text):
        name = match.group(1)
        if not (FILE.fullmatch(name) or name in PLACES or PLACEHOLDER.search(name)):
            report.wrong(f'{path}:{line}', f'there is no {name}')


    for name in SEE.findall(text):
        if name not in IDENTIFIERS and f'{name}.md' not in BASENAMES:
            report.wrong(f'{path}:{line}', f'there is no {name} to see')


def anchors(page):
    """The anchors that headings give: small letters, blanks as dashes, and no other marks."""
    headings = re.findall(r'^#+ +(.+?) *$', read(page), re.M)
    return {re.sub(r'[^\w -]', '', h.replace('`', '').lower()).replace(' ', '-') for h in headings}


def check_link(report, path, line, target):
    if re.match(r'[a-z]+:', target):
        return
    name, _, anchor = target.partition('#')
    page = os.path.normpath(os.path.join(os.path.dirname(path), name)) if name else path
    if page not in PLACES:
        report.wrong(f'{path}:{line}', f'the link to {target} leads nowhere')
    elif anchor and page.endswith('.md') and anchor not in anchors(page):
        report.wrong(f'{path}:{line}', f'{page} has no heading #{anchor}')


def check_commands(report, path, line, text):
    for verbs in re.findall(r'(?:^[#\s]*|`)make ((?:[a-z][a-z-]*|[A-Z_]+=\S+)(?: [A-Z_]+=\S+)*)(?=[`\n,]| +#|$)', text):
        for verb in [v for v in verbs.split() if '=' not in v and VERBS and v not in VERBS]:
            report.wrong(f'{path}:{line}', f'make has no verb {verb}')
    for preset in re.findall(r'--preset[ =]([\w-]+)', text):
        if PRESETS and preset not in PRESETS:
            report.wrong(f'{path}:{line}', f'there is no preset {preset}')


def check_tests(report, path, text):
    """In a table with a column of tests, each name in it is that of a suite, a case, a parameter set or a file of tests."""
    column = None
    for number, row in enumerate(text.split('\n'), 1):
        cells = [c.strip() for c in row.strip('|').split('|')] if row.startswith('|') else []
        tests = [i for i, c in enumerate(cells) if c.startswith('Test')]
        if not cells:
            column = None
        elif column is None:
            column = tests[0] if tests else -1
        elif 0 <= column < len(cells):
            for name in re.findall(r'`([^`]+)`', cells[column]):
                parts = [name] if FILE.fullmatch(name) else re.findall(r'\w+', name)
                for part in parts:
                    if not FILE.fullmatch(part) and not re.search(rf'\b{part}\b', TESTS):
                        report.wrong(f'{path}:{number}', f'there is no test {name}')


report = Report('docs')
TESTS = '\n'.join(read(p) for p in tracked('tests/*.cpp', 'tests/*.h', 'tests/*CMakeLists.txt'))
for path in tracked('*.md'):
    text = read(path)
    for line, content in enumerate(text.split('\n'), 1):
        check_names(report, path, line, LINK.sub('', content))
        check_commands(report, path, line, content)
        for target in LINK.findall(content):
            check_link(report, path, line, target)
    check_tests(report, path, text)
for path in tracked('*.h', '*.cpp', '*.py', '*.cmake', '*CMakeLists.txt', 'Makefile', 'scripts/*', '.ci/*', '.clang*'):
    for line, content in comments(path):
        check_names(report, path, line, content)
        if not path.endswith(('.h', '.cpp')):
            check_commands(report, path, line, content)
report.finish()
