"""What the checks share: the tracked files, the exceptions, and the report."""
import os
import re
import subprocess
import sys

os.chdir(os.path.join(os.path.dirname(__file__), '..', '..'))


def tracked(*patterns):
    """Files that git knows, or would take in, and that still exist."""
    out = subprocess.run(['git', 'ls-files', '-co', '--exclude-standard', '-z', '--', *patterns],
                         check=True, capture_output=True, text=True).stdout
    return sorted(f for f in set(out.split('\0')) if f and os.path.exists(f))


def read(path):
    with open(path, encoding='utf8') as file:
        return file.read()


def without_comments(text):
    """The code of a C++ text with comments blanked out and lines kept."""
    pattern = r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"'
    def blank(match):
        found = match.group(0)
        return found if found.startswith('"') else re.sub(r'[^\n]', ' ', found)
    return re.sub(pattern, blank, text, flags=re.S)


def comments(path):
    """The comments of a source or a script, each line with its number."""
    # A mark inside a literal begins no comment.
    literal = r'"(?:\\.|[^"\\\n])*"'
    if path.endswith(('.h', '.cpp')):
        pattern = re.compile(rf'{literal}|(?P<comment>//+[^\n]*)')
    else:
        pattern = re.compile(rf"{literal}|'(?:\\.|[^'\\\n])*'|(?P<comment>(?<!\S)#(?!!)[^\n]*)")
    for number, line in enumerate(read(path).split('\n'), 1):
        yield from ((number, m['comment']) for m in pattern.finditer(line) if m['comment'])


def stem(path):
    """The concept that a file is about: its name without extension, role and system."""
    name = os.path.splitext(os.path.basename(path))[0]
    return re.sub(r'_(linux|win)$', '', re.sub(r'_(test|benchmark|fuzz)$', '', name))


def _exceptions(check):
    found = {}
    for line in read('scripts/checks/exceptions.txt').splitlines():
        if line.strip() and not line.startswith('#'):
            name, subject, reason = line.split(None, 2)
            if name == check:
                found[subject] = reason
    return found


class Report:
    """Collects what is wrong; an exception takes its subject out, and must be needed."""

    def __init__(self, check):
        self.check, self.excepted, self.used, self.problems = check, _exceptions(check), set(), []

    def wrong(self, subject, text):
        if subject in self.excepted:
            self.used.add(subject)
        else:
            self.problems.append(f'{subject}: {text}')

    def finish(self):
        for subject in sorted(set(self.excepted) - self.used):
            self.problems.append(f'{subject}: its exception for "{self.check}" is no longer needed')
        print('\n'.join(self.problems))
        sys.exit(bool(self.problems))
