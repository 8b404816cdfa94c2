#!/usr/bin/env python3
"""Prints what the tests reach, a line a folder, from a report of gcovr in JSON. With "functions" also every function that no
test enters."""
import collections
import json
import pathlib
import sys


def folder_of(path):
    return str(pathlib.Path(path).parent)


def print_folders(files):
    lines, functions = (collections.defaultdict(lambda: [0, 0]) for _ in range(2))
    for file in files:
        code = [line for line in file['lines'] if not line.get('gcovr/noncode')]
        for counts, entries, key in ((lines, code, 'count'), (functions, file.get('functions', []), 'execution_count')):
            for folder in (folder_of(file['file']), 'all'):
                counts[folder][0] += sum(entry[key] > 0 for entry in entries)
                counts[folder][1] += len(entries)
    print(f'{"folder":42}{"lines":>8}{"reached":>10}{"functions":>12}{"entered":>10}')
    for folder, (reached, count) in sorted(lines.items(), key=lambda item: (item[0] == 'all', item[0])):
        entered, known = functions[folder]
        print(f'{folder:42}{count:8}{reached / max(count, 1):10.1%}{known:12}{entered / max(known, 1):10.1%}')


def print_functions(files):
    for file in files:
        for function in file.get('functions', []):
            if function['execution_count'] == 0:
                print(f'{file["file"]}:{function["lineno"]}: {function["name"]}')


def main(report, *wanted):
    files = json.loads(pathlib.Path(report).read_text())['files']
    print_folders(files)
    if 'functions' in wanted:
        print_functions(files)


main(*sys.argv[1:])
