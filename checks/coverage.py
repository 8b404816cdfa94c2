#!/usr/bin/env python3
"""Prints what the tests of a coverage build reached, a line a folder: coverage.py BUILD [functions]. With "functions" also
every function that no test entered. A template counts once, whatever is made of it."""
import collections
import json
import os
import pathlib
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

ROOT = pathlib.Path(__file__).resolve().parent.parent
COUNTED = ('Source/', 'include/', 'tools/')
BATCH = 16


def gcov(data):
    """What gcov says of some data files, a report of all their sources each."""
    output = subprocess.run(['gcov', '--json-format', '--stdout', '--demangled-names', *data], cwd=ROOT,
                            capture_output=True, text=True, check=True).stdout
    for line in output.splitlines():
        if line.startswith('{'):
            report = json.loads(line)
            yield report['current_working_directory'], report['files']


def read(build):
    """Counts by file: of lines by number, of functions by their first line, with a name for each."""
    lines, functions, names = (collections.defaultdict(dict) for _ in range(3))
    data = sorted(str(path) for path in build.rglob('*.gcda'))
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        batches = [data[i:i + BATCH] for i in range(0, len(data), BATCH)]
        reports = [report for batch in pool.map(lambda part: list(gcov(part)), batches) for report in batch]
    for folder, files in reports:
        for file in files:
            path = os.path.relpath(os.path.normpath(os.path.join(folder, file['file'])), ROOT)
            if not path.startswith(COUNTED):
                continue
            for line in file['lines']:
                number = line['line_number']
                lines[path][number] = lines[path].get(number, 0) + line['count']
            for function in file['functions']:
                number = function['start_line']
                functions[path][number] = functions[path].get(number, 0) + function['execution_count']
                names[path][number] = function['demangled_name']
    for path in lines:  # what gcov counts for the ends of scopes says nothing
        text = (ROOT / path).read_text().split('\n')
        lines[path] = {number: count for number, count in lines[path].items() if any(map(str.isalnum, text[number - 1]))}
    return lines, functions, names


def share(counts):
    return sum(count > 0 for count in counts) / max(len(counts), 1)


def print_folders(lines, functions):
    print(f'{"folder":34}{"lines":>8}{"reached":>10}{"functions":>12}{"entered":>10}')
    folders = sorted({str(pathlib.Path(path).parent) for path in lines})
    for folder in folders + ['']:
        def within(counts):
            return [count for path in counts if not folder or str(pathlib.Path(path).parent) == folder
                    for count in counts[path].values()]
        ofLines, ofFunctions = within(lines), within(functions)
        print(f'{folder or "all":34}{len(ofLines):8}{share(ofLines):10.1%}{len(ofFunctions):12}{share(ofFunctions):10.1%}')


def main(build, *wanted):
    lines, functions, names = read(pathlib.Path(build).resolve())
    print_folders(lines, functions)
    if 'functions' in wanted:
        for path in sorted(functions):
            for number, count in sorted(functions[path].items()):
                if count == 0:
                    print(f'{path}:{number}: {names[path][number]}')


main(*sys.argv[1:])
