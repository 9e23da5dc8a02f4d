#!/usr/bin/env python3
"""Nothing that MSVC would refuse: a scan for extensions of other compilers, and clang in its place.

The scan goes over all code that may be built for Windows; what stands under a conditional on the compiler is that
compiler's. What -Wpedantic refuses is left to the builds, which take warnings for errors. Where clang and the Windows
build are at hand, clang then reads the sources of the library as MSVC would, with
its rules for exported classes; only its word on our own files counts, since the headers around them are mingw-w64's.
"""
import json
import os
import re
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

from tree import Report, read, tracked, without_comments

NAMES_OF_GNU = (r'__builtin_\w+|__attribute__|__extension__|__asm__|__typeof__|__thread|__restrict__|'
                r'__PRETTY_FUNCTION__|__alignof__|__gnu_cxx|__cxxabiv1|__sync_\w+|__atomic_\w+|vector_size')
NAMES_OF_POSIX = (r'ssize_t|off_t|pid_t|mode_t|useconds_t|u_?int|ulong|ushort|strn?casecmp|strsep|strsignal|v?asprintf|'
                  r'usleep|nanosleep|gettimeofday|clock_gettime|localtime_r|gmtime_r|strtok_r|setenv|unsetenv|mkstemp|mkdtemp|'
                  r'environ|getopt|M_PI|M_E|alloca|bzero|bcopy|getpid|getppid|kill|fork|waitpid|sysconf|dlopen|dlsym')
PREDEFINED = r'__x86_64__|__aarch64__|__BYTE_ORDER__|__SIZEOF_\w+__|__CHAR_BIT__|__(?:INT|LONG|SHRT)\w*_MAX__'
HEADERS = (r'unistd|dlfcn|strings|dirent|poll|sched|pthread|semaphore|alloca|getopt|termios|cxxabi|cpuid|x86intrin|'
           r'features|endian|langinfo|(?:sys|net|netinet|arpa|bits|ext|linux|asm)/[\w/]+')

RULES = [(rf'(?<![\w:.>])({NAMES_OF_GNU})\b', 'an extension of GCC and clang'),
         (rf'(?<![\w.>"])(?<!\w::)({NAMES_OF_POSIX})\b(?=[^\w"]*[ (;*>&,)])', 'POSIX, not C++'),
         (rf'({PREDEFINED})(?![^\n]*\b_M_\w)', 'predefined by GCC and clang only'),
         (rf'#[ \t]*include[ \t]*<((?:{HEADERS})(?:\.h)?)>', 'a header that MSVC does not have'),
         (r'#[ \t]*(pragma (?:GCC|clang)\b)', 'a directive that MSVC does not know'),
         (r'#[^\n]*\b(__has_(?:builtin|feature))\b', 'a question that MSVC\'s preprocessor cannot read'),
         (r'(\[\[(?:gnu|clang)::\w+)', 'an attribute of another compiler'),
         (r'(,[ \t]*##[ \t]*__VA_ARGS__)', 'a comma that vanishes')]
RULES = [(re.compile(pattern), reason) for pattern, reason in RULES]
MARKED_TEMPLATE = re.compile(r'\btemplate\s*<[^;{}]*>\s*(?:requires\b[^;{}]*)?(?:class|struct|\[\[\w+\]\]|static|inline)?\s*QILSYS_API\b[^\n]*')
EXTERN_TEMPLATE = re.compile(r'\bextern\s+template\s+(?:class|struct)\s+(?!QILSYS_API_DECLARED\b)[^;]*;')
EXPORTED_CLASS = re.compile(r'\b(?:class|struct)\s+QILSYS_API\s+(?:\[\[\w+\]\]\s*)?(\w+)\b[^;{(]*\{')
UNCOPYABLE = re.compile(r'\b(?:vector|list|deque|map|unordered_map|array|optional)<[^;()]*\b(?:unique_ptr|thread|promise)\b')
LONGEST_LITERAL = 16380


def is_about_compiler(condition):
    return re.search(r'__GNUC__|__clang__|_MSC_VER|__MINGW', condition)


def without_literals(code):
    return re.sub(r'"(?:\\.|[^"\\\n])*"', lambda m: '"' + ' ' * (len(m.group(0)) - 2) + '"', code)


def without_guarded(code):
    """The code without what stands in any branch of a conditional on the compiler; lines are kept."""
    kept, guards = [], []
    for line in code.split('\n'):
        directive = re.match(r'[ \t]*#[ \t]*(if|ifdef|ifndef|elif|else|endif)\b(.*)', line)
        word = directive and directive.group(1)
        if word in ('if', 'ifdef', 'ifndef'):
            guards.append(bool(is_about_compiler(directive.group(2))))
        elif word == 'elif' and guards:
            guards[-1] = guards[-1] or bool(is_about_compiler(directive.group(2)))
        kept.append('' if any(guards) else line)
        if word == 'endif' and guards:
            guards.pop()
    return '\n'.join(kept)


def body_at(code, start):
    depth = 0
    for at in range(start, len(code)):
        depth += {'{': 1, '}': -1}.get(code[at], 0)
        if depth == 0:
            return code[start + 1:at]
    return code[start + 1:]


def check_exported_class(report, path, name, body):
    subject = f'{path}:{name}'
    if match := re.search(r'\b(?:inline\s+static|static\s+inline)\b(?!\s+constexpr)[^;({]*[;={]', body):
        report.wrong(subject, f'state that each module would have for itself: {match.group(0)}')
    for function in re.finditer(r'\)[^;{}]*\{', body):
        if match := re.search(r'\bstatic\s+(?!constexpr)[^\n]*', body_at(body, function.end() - 1)):
            report.wrong(subject, f'state in an inline member, which each module would have for itself: {match.group(0)}')
    if (match := UNCOPYABLE.search(body)) and not re.search(rf'{name}\(const {name}&\)\s*= delete', body):
        report.wrong(subject, f'an exported class gets its copying members, which {match.group(0)} cannot have: delete them')


def check_text(report, path):
    text = without_comments(read(path))
    for literal in re.findall(r'"(?:\\.|[^"\\\n])*"', text):
        if len(literal) > LONGEST_LITERAL:
            report.wrong(path, f'a literal of {len(literal)} characters; {LONGEST_LITERAL} is the most')
    # Names of headers are no literals.
    code = without_guarded(without_literals(text))
    for pattern, reason in RULES:
        for match in pattern.finditer(code):
            report.wrong(path, f'{code.count(chr(10), 0, match.start()) + 1}: "{match.group(1)}" is {reason}')
    for match in MARKED_TEMPLATE.finditer(code):
        report.wrong(path, f'a template is marked as exported, which has no code of its own: {match.group(0)}')
    if 'QILSYS_API' in code:
        for match in EXTERN_TEMPLATE.finditer(code):
            report.wrong(path, f'an instance that is declared without QILSYS_API_DECLARED: {match.group(0)}')
    for match in EXPORTED_CLASS.finditer(code):
        check_exported_class(report, path, match.group(1), body_at(code, match.end() - 1))


def sources_for_windows(build):
    """The library's sources in the Windows build, each with the definitions and include folders that it gets there."""
    with open(f'{build}/compile_commands.json', encoding='utf8') as file:
        for entry in json.load(file):
            path = os.path.relpath(entry['file'])
            if path.startswith('main/') and path.endswith('.cpp'):
                words = shlex.split(entry['command'])
                flags = [w for w in words if w.startswith(('-D', '-I'))]
                folders = [words[i + 1] for i, w in enumerate(words) if w == '-isystem']
                yield path, flags, folders


def include_folders_of_mingw():
    out = subprocess.run(['x86_64-w64-mingw32-g++-posix', '-E', '-v', '-x', 'c++', '-'], input='', capture_output=True, text=True)
    folders = re.findall(r'^ (/\S+)$', out.stderr, re.M)
    own = subprocess.run(['clang++', '-print-resource-dir'], capture_output=True, text=True).stdout.strip()
    # Clang brings what belongs to a compiler.
    return [f for f in folders if 'c++' in f] + [f'{own}/include'] + [f for f in folders if f.endswith('mingw32/include')]


def read_as_msvc(job):
    path, flags, folders = job
    # MSVC ends a constant evaluation after 100,000 steps.
    command = ['clang++', '--target=x86_64-pc-windows-msvc', '-fms-compatibility-version=19.34', '-std=c++20', '-fsyntax-only',
               '-fconstexpr-steps=100000', '-nostdinc', '-include', 'scripts/checks/msvc_prelude.h', '-ferror-limit=0', '-Wall', '-Wextra', '-Wmicrosoft',
               '-fno-caret-diagnostics', *flags]
    for folder in MINGW + folders:
        command += ['-isystem', folder]
    return subprocess.run([*command, path], capture_output=True, text=True).stderr


report = Report('msvc')
for path in tracked('public/*.h', 'main/*.h', 'main/*.cpp', 'tests/*.h', 'tests/*.cpp', 'examples/*.h', 'examples/*.cpp',
                    'benchmarks/*.h', 'benchmarks/*.cpp', 'fuzz/*.cpp'):
    if not re.search(r'_linux(_test)?\.(h|cpp)$', path):
        check_text(report, path)

BUILD = sys.argv[1] if len(sys.argv) > 1 else 'build/windows'
if os.path.exists(f'{BUILD}/compile_commands.json'):
    MINGW = include_folders_of_mingw()
    found = set()
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        for out in pool.map(read_as_msvc, list(sources_for_windows(BUILD))):
            found |= set(re.findall(r'^(?:\./)?([^:\n]+:\d+):\d+: (?:fatal )?(?:error|warning): (.*)', out, re.M))
    for place, text in sorted(found):
        place = os.path.relpath(place.rsplit(':', 1)[0]) + ':' + place.rsplit(':', 1)[1]
        if not place.startswith('..'):
            report.wrong(place, f'as MSVC: {text}')
report.finish()
