#!/usr/bin/env python3
"""Function and file lengths of the library and its tools, by brace matching (about 5 % off)."""
import collections
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
P90, OVER_40_PERCENT, LONGEST, FILE_LINES, HEADER_LINES = 30, 4.0, 80, 700, 320

# Longer than the budget, and why.
ALLOWED = {
}

NOT_A_FUNCTION = re.compile(r'\b(if|for|while|switch|catch|else|do|return|namespace|class|struct|enum)\b')
HEAD = re.compile(r'\)\s*(const|noexcept|override|final|->\s*[\w:<>&\* ]+|:\s*[^?]*)?\s*$')


def without_comments_and_texts(text):
    text = re.sub(r'//[^\n]*', '', text)
    text = re.sub(r'/\*.*?\*/', lambda match: '\n' * match.group().count('\n'), text, flags=re.S)
    return re.sub(r'"(\\.|[^"\\\n])*"|\'(\\.|[^\'\\\n])*\'', '""', text)


def function_lengths(text):
    """(lines, first line) of every outermost function body."""
    lines = without_comments_and_texts(text).split('\n')
    stack, found = [], []
    for number, line in enumerate(lines):
        for column, character in enumerate(line):
            if character == '{':
                before = (' '.join(lines[max(0, number - 6):number]) + ' ' + line[:column]).rstrip()
                before = re.split(r'[;{}]', before)[-1]
                stack.append((number, bool(HEAD.search(before)) and not NOT_A_FUNCTION.search(before)))
            elif character == '}' and stack:
                start, is_function = stack.pop()
                if is_function and not any(entry[1] for entry in stack):
                    found.append((number - start + 1, start + 1))
    return found


def main():
    listed = subprocess.run(['git', '-C', ROOT, 'ls-files', '-co', '--exclude-standard', '*.h', '*.cpp', '*.inl'],
                            capture_output=True, text=True, check=True).stdout.split()
    problems, all_lengths, by_folder = [], [], collections.defaultdict(list)
    for path in listed:
        if path.startswith(('tests/', 'benchmarks/', 'examples/', 'fuzz/')):
            continue
        text = (ROOT / path).read_text()
        limit = HEADER_LINES if path.startswith('include/') else FILE_LINES
        if text.count('\n') > limit and path not in ALLOWED:
            problems.append(f'{path}: {text.count(chr(10))} lines, the budget is {limit}')
        for length, line in function_lengths(text):
            all_lengths.append(length)
            by_folder[str(pathlib.Path(path).parent)].append((length, f'{path}:{line}'))
            if length > LONGEST and f'{path}:{line}' not in ALLOWED:
                problems.append(f'{path}:{line}: a function of {length} lines, the budget is {LONGEST}')
    all_lengths.sort()
    p90 = all_lengths[int(0.9 * len(all_lengths))]
    over_40 = 100 * sum(length > 40 for length in all_lengths) / len(all_lengths)
    for folder, lengths in sorted(by_folder.items()):
        longest = ', '.join(f'{where.rsplit("/", 1)[-1]} {length}' for length, where in sorted(lengths)[:-6:-1])
        print(f'{folder}: {longest}')
    print(f'{len(all_lengths)} functions: median {all_lengths[len(all_lengths) // 2]}, p90 {p90}, over 40 lines {over_40:.1f} %')
    if p90 > P90:
        problems.append(f'p90 is {p90}, the budget is {P90}')
    if over_40 > OVER_40_PERCENT:
        problems.append(f'{over_40:.1f} % of the functions have over 40 lines, the budget is {OVER_40_PERCENT} %')
    print('\n'.join(problems))
    return 1 if problems else 0


sys.exit(main())
