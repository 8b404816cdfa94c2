#!/usr/bin/env python3
"""Habits that a pattern can hold: each rule names what is forbidden, where, and why."""
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent

# (pattern, files it is looked for in, files that may, why)
RULES = [
    (r'>> 15|\+ 16384|/ 255(?![.\w])', r'^Source/Common/Source/mixing/', r'fixedpoint\.h$',
     'the fixed-point arithmetic of the mixers stands in mixing/fixedpoint.h'),
    (r'switch \((\w+(\.|->))?(\w*[dD]epth|GetDepth\(\))\)', r'^Source/Common/Source/(vimage|offscreen)/', r'withformat\.h$',
     'a decision by depth is made by withFormat or by a table'),
    (r'\b(TODO|FIXME|XXX)\b', r'\.(h|cpp|inl|py|cmake)$|^dev$', r'^checks/habits\.py$', 'unfinished work is not committed'),
    (r'\bnew (?!\()|\bdelete ', r'^tools/', r'$^', 'tools own nothing by hand'),
    (r'\t', r'\.(h|cpp|inl|py|cmake|md)$|^dev$', r'$^', 'tabs'),
]


def main():
    listed = subprocess.run(['git', '-C', ROOT, 'ls-files', '-co', '--exclude-standard'],
                            capture_output=True, text=True, check=True).stdout.split()
    problems = []
    for path in listed:
        if not re.search(r'\.(h|cpp|inl|py|cmake|md)$|^dev$', path):
            continue
        lines = (ROOT / path).read_text().split('\n')
        for pattern, where, allowed, why in RULES:
            if not re.search(where, path) or re.search(allowed, path):
                continue
            for number, line in enumerate(lines, 1):
                if re.search(pattern, line) and not line.lstrip().startswith(('//', '///', '*')):
                    problems.append(f'{path}:{number}: {line.strip()}  ({why})')
    print('\n'.join(problems) or 'the habits are kept')
    return 1 if problems else 0


sys.exit(main())
