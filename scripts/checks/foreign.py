#!/usr/bin/env python3
"""Every public operation that takes text or units of TCodeUnit takes the platform's other unit type too.

A native form needs a template of the same name and the same parameters, in its own class or namespace or, for the
string, in TForeignForms; and a form of TForeignForms that the string has a native form beside needs a using line, since
the native one hides it.
"""
import json
import re
import subprocess

from tree import Report, read, tracked, without_comments

STRING, FORMS = 'TStringCore', 'TForeignForms'
# The mechanism itself.
MECHANISM = ('public/qilsys/TForeignForms.h', 'public/qilsys/TForeignText.h', 'public/qilsys/TStringStorage.h')
INTEGERS = ('short', 'int', 'long', 'long long', 'unsigned short', 'unsigned int', 'unsigned long', 'unsigned long long')


def declarations(files):
    """What ctags finds: the name, where it stands, its scope, template parameters and parameters."""
    out = subprocess.run(['ctags', '--langmap=C++:+.h', '--language-force=C++', '--c++-kinds=fp', '--fields=+neSa',
                          '--fields-C++=+{template}', '--output-format=json', '-f', '-', *files],
                         check=True, capture_output=True, text=True).stdout
    # What helps the interface stands in namespace qilsys; no name in it is met without it.
    for row in map(json.loads, out.replace('qilsys::', '').splitlines()):
        if row.get('access') not in ('private', 'protected') and not re.search(r'(^|::)(detail|__anon\w*)$', row.get('scope', '')):
            yield row


def split_list(text):
    """The parts between commas that stand in no brackets."""
    parts, depth = [''], 0
    for c in text:
        depth += {'(': 1, '<': 1, '[': 1, ')': -1, '>': -1, ']': -1}.get(c, 0)
        parts += [''] if c == ',' and depth == 0 else []
        parts[-1] += c if c != ',' or depth else ''
    return [p.strip() for p in parts if p.strip()]


def template_names(row):
    """The names of the template parameters, each with what it may be."""
    parameters = split_list(row.get('template', '').strip()[1:-1])
    return dict(reversed(p.replace('...', ' ').rsplit(None, 1)) for p in parameters)


def kind_of(parameter, units):
    """text, unit or buffer if the type is one of `units`; else the type itself, without what does not matter here."""
    typed = re.sub(r'\s*=.*', '', parameter)
    typed = re.sub(r'std::type_identity_t<(.*)>', r'\1', typed)
    word = re.search(r'\b(?:%s)\b' % '|'.join(map(re.escape, units)), typed) if units else None
    if word and '<' not in typed:
        if '*' in typed:
            return 'text' if 'const' in typed else 'buffer'
        return 'text' if '&' in typed else 'unit'
    typed = re.sub(r'\b(?:const|typename)\b|[&]', ' ', typed).strip()
    typed = re.sub(r'(?<=[\w>*\s])\b(?!short\b|int\b|long\b|char\b|double\b|bool\b|float\b)[a-z]\w*$', '', typed).strip() or typed
    typed = re.sub(r'\b(?:CodePointIterator|Iterator)\b', 'iterator', typed)
    typed = re.sub(r'\bList\b', 'std::vector<S>', typed)
    return re.sub(r'\b(?:TStringCore|TString|S)\b', 'string', typed).replace(' ', '')


def kinds(row, units):
    return [kind_of(p, units) for p in split_list(row.get('signature', '()').strip()[1:-1])]


def fits(native, form, generic):
    """Whether a template's parameter stands for that of the native form."""
    return native == form or form in generic and native in [t.replace(' ', '') for t in INTEGERS]


def has_form(row, forms):
    native = kinds(row, ['TCodeUnit'])
    for form in forms:
        names = template_names(form)
        units = [n for n, what in names.items() if re.fullmatch(r'ForeignUnit|TextUnit|TextPointer|class|typename', what)]
        generic = [n for n, what in names.items() if 'integral' in what]
        wanted = kinds(form, units)
        if units and len(wanted) == len(native) and all(map(lambda n, f: fits(n, f, generic), native, wanted)):
            return True
    return False


report = Report('foreign')
headers = tracked('public/*.h')
rows = list(declarations(headers))
templates = [r for r in rows if 'template' in r]
texts = {path: without_comments(read(path)) for path in headers}
EVERYTHING = '\n'.join(texts.values())

for row in rows:
    scope, name = row.get('scope', ''), row['name']
    if 'template' in row or row['path'] in MECHANISM or 'TCodeUnit' not in row.get('signature', ''):
        continue
    operator = re.fullmatch(r'operator\s*([=!<>]+)', name)
    if operator and re.search(rf'\bQILSYS_FOREIGN_COMPARISON\([^()]*(?<![=!<>]){operator.group(1)}\)', EVERYTHING):
        # That makes all pairings of one comparison, which ctags can't see.
        continue
    places = [scope, FORMS] if scope == STRING else [scope]
    if not has_form(row, [t for t in templates if t['name'] == name and t.get('scope', '') in places]):
        report.wrong(f"{row['path']}:{scope + '::' if scope else ''}{name}",
                     f"{row['line']}: {name}{row['signature']} has no form for the other unit type")

# ctags puts a space into `operator+=`.
inherited = {r['name'].replace(' ', '') for r in templates if r.get('scope') == FORMS}
declared = {r['name'].replace(' ', '') for r in rows if r.get('scope') == STRING}
for path in headers:
    if re.search(rf'\bclass\b[^;{{]*\b{STRING}\b[^;{{]*\b(?:qilsys::)?{FORMS}<', texts[path]):
        for name in sorted(inherited & declared):
            if not re.search(rf'\busing (?:qilsys::)?{FORMS}(?:<\w+>)?::{re.escape(name)}\s*;', texts[path]):
                report.wrong(f'{path}:{name}', f'the native forms hide those of {FORMS}: a using line is missing')
report.finish()
