#!/usr/bin/env python3
"""Each check of scripts/checks complains about what it is there for, and about nothing else.

usage: checks_test.py [--all]

Every case is a small tree of its own: a line for each complaint that its check must print, all of them and no other. A
case whose tool is missing is left out, but with --all that is a failure.
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

CHECKS = Path(__file__).resolve().parents[2] / 'scripts' / 'checks'
OPENING = '/// What this header is for.\n#pragma once\n'

# A check, the tools it takes besides git, the files of a tree, and the beginnings of the complaints.
CASES = [
    ('codes', [], {
        'main/a/Good.cpp': 'void f() {\n'
                           '  Throw("text", 0x11111111, "QuillonException_AutoGen_0x11111111");\n'
                           '  Throw("text", 0xFCC690FC, u"LogicException_LogicAssert_FCC690FC");\n'
                           '  Use(0x7FFFFFFF), Use(0x7FFFFFFF);  // No codes: 0x11111111 0x11111111\n}\n',
        'main/a/Twice.cpp': 'void f() { Throw("text",\n         0x11111111, "QuillonException_AutoGen_0x11111111"); }\n',
        'main/a/Derived.cpp': 'void f() { QILSYS_LOGIC_ASSERT(g(), "g()", File, 1, 0x22222222); }\n'
                              'void h() { QILSYS_LOGIC_ASSERT(g(0), "g(0)", File, 2, 0x22222222); }\n',
        'main/a/Other.cpp': 'void f() { Throw("text", 0x33333333, "QuillonException_AutoGen_0x33333334"); }\n',
        'main/a/Alone.cpp': 'void f() { Throw("text", Code, u"QuillonException_AutoGen_0x44444444"); }\n',
        'main/a/Bare.cpp': 'void f() { Throw("text", 0x55555555, "LogicException_LogicAssert_55555555"); }\n',
        'main/a/Spelt.cpp': 'void f() { Throw("text", 0x66666666, "LogicExcepton_LogicAssert_0x66666666"); }\n',
        'main/a/Small.cpp': 'void f() { Throw("text", 0xabcdef00, "LogicException_0xabcdef00"); }\n',
    }, ['main/a/Twice.cpp:2: 0x11111111 is the code of main/a/Good.cpp:2',
        'main/a/Derived.cpp:2: 0x22222222 is the code of main/a/Derived.cpp:1',
        'main/a/Other.cpp:1: "QuillonException_AutoGen_0x33333334" stands behind the code 0x33333333',
        'main/a/Alone.cpp:1: "QuillonException_AutoGen_0x44444444" names a code, but',
        'main/a/Bare.cpp:1: "LogicException_LogicAssert_55555555" spells its code without "0x"',
        'main/a/Spelt.cpp:1: "LogicExcepton_LogicAssert_0x66666666" begins as no name',
        'main/a/Small.cpp:1: 0xabcdef00 is not in capital digits']),

    ('foreign', ['ctags'], {
        'public/qilsys/TForeignForms.h': 'namespace qilsys {\ntemplate <class S>\nclass TForeignForms {\n public:\n'
                                         '  template <qilsys::ForeignUnit U>\n  S& put(const U* s, int n = -1);\n'
                                         '  template <ForeignUnit U>\n  S& hidden(U c);\n'
                                         '  template <std::integral N, ForeignUnit U>\n  static S number(N value, U fill);\n'
                                         '  template <NarrowUnit C>\n  S& narrow(const C* s);\n'
                                         '  template <ForeignUnit U>\n  S& half(const TCodeUnit* s, U c);\n};\n}\n',
        'public/qilsys/TStringCore.h': 'class TStringCore : public qilsys::TForeignForms<TStringCore> {\n public:\n'
                                       '  using TForeignForms::half;\n  using TForeignForms::narrow;\n'
                                       '  using TForeignForms::number;\n  using TForeignForms::put;\n'
                                       '  TStringCore& put(const TCodeUnit* s, int n = -1);\n'
                                       '  TStringCore& put(int at, const TCodeUnit* s);\n'
                                       '  TStringCore& hidden(TCodeUnit c);\n'
                                       "  static TStringCore number(long long value, TCodeUnit fill = u' ');\n"
                                       '  TStringCore& narrow(const TCodeUnit* s);\n'
                                       '  TStringCore& half(const TCodeUnit* s, TCodeUnit c);\n'
                                       '  bool operator==(TCodeUnit c) const;\n  bool operator=(TCodeUnit c) const;\n'
                                       '  int length() const;\n'
                                       ' private:\n  void own(const TCodeUnit* s);\n};\nQILSYS_FOREIGN_COMPARISON(bool, ==)\n',
        'public/qilsys/TCType.h': 'namespace TCType {\nbool isOne(TCodeUnit c);\ntemplate <ForeignUnit U>\nbool isOne(U c);\n'
                                  'bool isTwo(TCodeUnit c);\nnamespace detail {\nbool isThree(TCodeUnit c);\n}\n}\n',
    }, ['public/qilsys/TStringCore.h:TStringCore::put: 8: ',
        'public/qilsys/TStringCore.h:TStringCore::narrow: 11: ',
        'public/qilsys/TStringCore.h:TStringCore::half: 12: ',
        'public/qilsys/TStringCore.h:TStringCore::operator =: 14: ',
        'public/qilsys/TStringCore.h:hidden: the native forms hide those of TForeignForms',
        'public/qilsys/TCType.h:TCType::isTwo: 5: ']),

    ('docs', [], {
        'README.md': '# A title\n\n[here](docs/page.md) [there](docs/gone.md) [up](#a-title) [down](docs/page.md#no-such)\n'
                     '`main/a/Thing.h` `Thing.h` `X_win.cpp` `main/a/Gone.h` `main/b`\n\n'
                     '    make test\n    make nonsense  # and make sense\n    cmake --preset release\n    cmake --preset nothing\n',
        'docs/page.md': '# Page\n\n| What | Test |\n|---|---|\n| one | `Suite.Runs` |\n| two | `Suite.Walks` |\n',
        'main/a/Thing.h': OPENING + '// It does not make sense. See Thing, see Nobody, and Missing.h; "Ghost.h" too.\nclass Thing;\n'
                                    'const char* s = "// Literal.h";\n#include <system.h>  // of system.h\n',
        'tests/a/Thing_test.cpp': 'TEST(Suite, Runs) {}\n',
        'Makefile': 'test:\n\ttrue  # by scripts/gone.py\n',
        'CMakePresets.json': '{ "configurePresets": [ { "name": "release" } ] }\n',
    }, ['README.md:3: the link to docs/gone.md leads nowhere', 'README.md:3: docs/page.md has no heading #no-such',
        'README.md:4: there is no main/a/Gone.h', 'README.md:4: there is no main/b',
        'README.md:7: make has no verb nonsense', 'README.md:9: there is no preset nothing',
        'docs/page.md:6: there is no test Suite.Walks', 'main/a/Thing.h:3: there is no Missing.h',
        'main/a/Thing.h:3: there is no Ghost.h', 'main/a/Thing.h:3: there is no Nobody to see',
        'Makefile:2: there is no scripts/gone.py']),

    ('openings', [], {
        'public/qilsys/T.h': '/// T, and what it is\n/// for. One more sentence\n#pragma once\n',
        'main/a/T.cpp': '#include "qilsys/T.h"\n',
        'main/a/TSlice.cpp': '// The slice that is said to be one.\n#include "qilsys/T.h"\n',
        'main/a/TSilent.cpp': '#include "qilsys/T.h"\n',
        'main/a/T_win.cpp': '// sibling\n#include "qilsys/T.h"\n',
        'main/a/Plain.h': '// An internal header that opens so.\n#pragma once\n',
        'main/a/Good.h': '/// An internal header that opens so:\n///\n///     Good()\n#pragma once\n',
    }, ['public/qilsys/T.h: ', 'main/a/TSilent.cpp: ', 'main/a/T_win.cpp: ', 'main/a/Plain.h: ']),

    ('names', ['ctags'], {
        'main/a/T.h': 'struct Plain {\n  int one;\n  Plain();\n  bool operator==(const Plain&) const;\n};\n'
                      'struct Marked {\n  int m_one;\n};\n'
                      'struct Active {\n  void Act();\n  int m_one;\n};\n'
                      'struct Mixed {\n  void Act();\n  int m_one;\n  int two;\n};\n'
                      'class Class {\n  int m_one;\n  static int s_two;\n};\n'
                      'class Bare {\n  int one;\n};\n',
    }, ['main/a/T.h:Marked: a plain structure', 'main/a/T.h:Mixed: marks some', 'main/a/T.h:Bare: a class']),

    ('sizes', ['ctags'], {
        'main/a/Long.cpp': '//\n' * 351,
        'main/a/Fits.cpp': 'int f() {\n' + '//\n' * 43 + '}\nint g() {\n' + '//\n' * 44 + '}\n' + '//\n' * 258,
        'main/a/Long.h': '//\n' * 301,
        'public/qilsys/Fits.h': '//\n' * 700,
        'tests/a/Fits_test.cpp': 'int f() {\n' + '//\n' * 58 + '}\nint g() {\n' + '//\n' * 59 + '}\n',
    }, ['main/a/Long.cpp: 351 lines', 'main/a/Long.h: 301 lines', 'main/a/Fits.cpp:g: 46 lines', 'tests/a/Fits_test.cpp:g: 61 lines']),

    ('headers', ['g++'], {
        'public/qilsys/qilsys.h': '#pragma once\n#include "qilsys/Good.h"\n#include "qilsys/Open.h"\n#include "qilsys/System.h"\n',
        'public/qilsys/Fwd.h': '#pragma once\n#include "qilsys/Good.h"\n',
        'public/qilsys/Good.h': '#pragma once\nint good();\n',
        'public/qilsys/Open.h': 'struct Twice {};\n',
        'public/qilsys/System.h': '#pragma once\n#include <unistd.h>\n',
        'main/a/Good.h': '#pragma once\n#include "qilsys/Good.h"\ninline int Use() { return good(); }\n',
        'main/a/Leans.h': '#pragma once\ninline std::size_t Size() { return 0; }\n',
        'main/a/Leans_win.h': '#pragma once\ninline std::size_t SizeThere() { return 0; }\n',
        'main/a/Leans_linux.h': '#pragma once\ninline std::size_t SizeHere() { return 0; }\n',
    }, ['public/qilsys/Open.h: its first directive', 'public/qilsys/Open.h: does not compile alone and twice:',
        'public/qilsys/System.h->unistd.h: ', 'public/qilsys/Fwd.h: not included',
        'main/a/Leans.h: does not compile alone and twice:', 'main/a/Leans_linux.h: does not compile alone and twice:']),

    ('words', [], {
        'main/a/T.cpp': '// A specific specimen.\n// To' 'do: T' 'ODO\n// As the sp' 'ecification says.\n',
    }, ['main/a/T.cpp:2: ', 'main/a/T.cpp:3: ']),

    ('platform', [], {
        'main/a/T.cpp': '#ifdef _WIN32\n#endif\n#include <windows.h>\n',
        'main/a/T_win.cpp': '#ifndef _WIN32\n#error "This file is for Windows."\n#endif\n#include <windows.h>\n',
        'main/a/T_linux.cpp': '#ifndef __linux__\n#error "This file is for Linux."\n#endif\n#include <winsock2.h>\n',
        'main/a/T_win.h': '#ifndef _WIN32\n#error "Windows only."\n#endif\n',
        'main/a/U_linux.h': '#ifndef __linux__\n#error "This file is for Linux."\n#endif\n',
        'main/a/U_linux.cpp': '#include "a/U_linux.h"\n',
    }, ['main/a/T_win.h: does not open', 'main/a/T.cpp: includes windows.h', 'main/a/T.cpp: a conditional on _WIN32', 'main/a/T_linux.cpp: includes winsock2.h']),

    ('includes', [], {
        'main/units/Low.h': '#pragma once\n#include "string/High.h"\n',
        'main/units/Low.cpp': '#include <vector>\n#include "units/Low.h"\n',
        'main/string/High.h': '#pragma once\n#include "units/Round.h"\n',
        'main/string/High.cpp': '#include "string/High.h"\n',
        'main/string/HighSlice.cpp': '#include <vector>\n',
        'main/units/Round.h': '#pragma once\n#include "units/Square.h"\n',
        'main/units/Square.h': '#pragma once\n#include "units/Round.h"\n',
    }, ['main/units/Low.h->string/High.h: units does not stand on string', 'main/units/Low.cpp: includes vector first',
        'main/string/HighSlice.cpp: includes vector first', 'main/units/Round.h: its includes lead back',
        'main/units/Square.h: its includes lead back']),

    ('lists', [], {
        'cmake/QilsysTargets.cmake': '',
        'main/a/CMakeLists.txt': 'target_sources(x PRIVATE Listed.cpp Pair_${QILSYS_SYSTEM}.cpp)\n',
        'main/a/Listed.cpp': '', 'main/a/Pair_win.cpp': '', 'main/a/Lost.cpp': '',
        'tests/a/CMakeLists.txt': 'tests(Listed_test.cpp Stray_test.cpp Helper.cpp)\n',
        'tests/a/Listed_test.cpp': '', 'tests/a/Stray_test.cpp': '', 'tests/a/Helper.cpp': 'TEST(A, B) {}\n',
    }, ['main/a/Lost.cpp: named in no', 'tests/a/Stray_test.cpp: no Stray.cpp', 'tests/a/Helper.cpp: holds tests']),

    ('msvc', [], {
        'main/a/T.cpp': 'int f() { return __builtin_popcount(1); }\n#include <unistd.h>\n'
                        '#if defined(__GNUC__)\nint g() { return __builtin_popcount(2); }\n#endif\n'
                        'template <class T>\nclass QILSYS_API Marked {};\n',
        'main/a/T_linux.cpp': '#include <unistd.h>\n',
        'tests/a/T_linux_test.cpp': '#include <unistd.h>\n',
        'public/qilsys/State.h': 'class QILSYS_API State {\n  inline static int s_one = 1;\n  std::vector<std::unique_ptr<int>> m_two;\n'
                                 '  int Next() {\n    static int s_three = 0;\n    return ++s_three;\n  }\n};\n',
    }, ['main/a/T.cpp: 1: "__builtin_popcount"', 'main/a/T.cpp: 2: "unistd.h"', 'main/a/T.cpp: a template is marked',
        'public/qilsys/State.h:State: state that each module', 'public/qilsys/State.h:State: state in an inline member',
        'public/qilsys/State.h:State: an exported class gets its copying members']),

    # The half of it that clang does.
    ('msvc', ['clang++', 'x86_64-w64-mingw32-g++-posix'], {
        'main/a/Export.h': '#pragma once\n#define QILSYS_API __declspec(dllexport)\n',
        'main/a/Marked.cpp': '#include "a/Export.h"\nclass QILSYS_API Marked {\n  QILSYS_API void f();\n};\n',
        'main/a/Steps.cpp': 'constexpr int Sum(int n) {\n  int sum = 0;\n  for (int i = 0; i < n; ++i) sum += i % 2;\n  return sum;\n}\n'
                            'constexpr int Few = Sum(100);\nconstexpr int Many = Sum(200000);\n',
        'build/windows/compile_commands.json': '[' + ', '.join(
            f'{{"directory": ".", "file": "main/a/{name}.cpp", "command": "c++ -Imain -c main/a/{name}.cpp"}}'
            for name in ('Marked', 'Steps')) + ']',
    }, ["main/a/Marked.cpp:3: as MSVC: attribute 'dllexport'", 'main/a/Steps.cpp:7: as MSVC: constexpr variable']),
]


def run(check, files, exceptions=''):
    with tempfile.TemporaryDirectory() as tree:
        shutil.copytree(CHECKS, f'{tree}/scripts/checks')
        for name, text in {**files, 'scripts/checks/exceptions.txt': exceptions}.items():
            path = Path(tree, name)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding='utf8')
        # What the checks are made of is no part of the case.
        Path(tree, '.gitignore').write_text('/scripts/\n.gitignore\n', encoding='utf8')
        subprocess.run(['git', 'init', '-q', tree], check=True, capture_output=True)
        environment = {**os.environ, 'QILSYS_WINDOWS_PREFIX': f'{tree}/none', 'PYTHONDONTWRITEBYTECODE': '1'}
        for name in 'GIT_DIR', 'GIT_WORK_TREE', 'GIT_INDEX_FILE':
            environment.pop(name, None)
        ended = subprocess.run([sys.executable, f'{tree}/scripts/checks/{check}.py'], capture_output=True, text=True, env=environment)
        return ended.returncode, ended.stdout, ended.stderr


def verify(what, ended, wanted):
    """Says what is wrong with the output, which has one line for each complaint, and what the compiler said indented."""
    code, out, errors = ended
    lines = [line for line in out.splitlines() if re.match(r'[\w./]+\S*( =)?: ', line) and not re.match(r'<stdin>|In file', line)]
    lines = [line for line in lines if not re.search(r':\d+:\d+: ', line)]
    missing = [w for w in wanted if not any(line.startswith(w) for line in lines)]
    surplus = [line for line in lines if not any(line.startswith(w) for w in wanted)]
    problems = [f'does not say: {m}' for m in missing] + [f'says: {s}' for s in surplus]
    problems += [f'ends with {code}'] if code != bool(wanted) else []
    for problem in problems:
        print(f'{what}: {problem}\n{errors}')
    return not problems


def main():
    good = True
    for check, tools, files, wanted in CASES:
        absent = [t for t in ['git', *tools] if not shutil.which(t)]
        if absent:
            print(f'{check}: left out, there is no {", ".join(absent)}')
            good = good and '--all' not in sys.argv
            continue
        good = verify(check, run(check, files), wanted) and good
    untested = {p.stem for p in CHECKS.glob('*.py')} - {check for check, *_ in CASES} - {'tree'}
    for check in sorted(untested):
        print(f'{check}: has no case here')
    word = {'main/a/T.cpp': '// T' 'ODO\n'}
    good = verify('an exception', run('words', word, 'words main/a/T.cpp:1 a reason\n'), []) and good
    good = verify('an exception too many', run('words', {}, 'words main/a/T.cpp:1 a reason\n'),
                  ['main/a/T.cpp:1: its exception for "words" is no longer needed']) and good
    sys.exit(not good or bool(untested))


main()
