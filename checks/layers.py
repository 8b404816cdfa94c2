#!/usr/bin/env python3
"""Holds the includes of the library to the folders and brackets of Source/README.md."""
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
SYSTEM_HEADER = re.compile(r'^(sys/.*|unistd\.h|fcntl\.h|pthread\.h|dirent\.h|iconv\.h|pwd\.h|poll\.h|signal\.h|linux/.*|langinfo\.h|'
                           r'locale\.h|time\.h|errno\.h|cerrno|csignal|dlfcn\.h)$')
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.M)


def read_folders():
    """Folder name -> (folders it may include, its public headers, its pattern of joining sources or None)."""
    folders, headers = {}, {}
    current = None
    for line in (ROOT / 'Source/README.md').read_text().splitlines():
        entry = re.match(r'- (\w+) \[([^\]]*)\]', line)
        if entry:
            current = entry[1]
            folders[current] = {name.strip() for name in entry[2].split(',') if name.strip()} | {current}
        public = re.match(r'  Public: (.*)', line)
        if public:
            for name in public[1].split():
                headers[name] = current
    return folders, headers


def folder_of(path):
    parts = path.split('/')
    if parts[:3] == ['Source', 'Common', 'Source']:
        return parts[3]
    return parts[1] if parts[0] == 'Source' else None


def target_folder(kind, name, headers, problems, path):
    """The folder that an include belongs to, or None when it is none of ours."""
    if name.startswith('ovwcmn/'):
        header = name.removeprefix('ovwcmn/')
        if header not in headers:
            problems.append(f'{path}: {name} is listed by no folder of Source/README.md')
        return headers.get(header)
    if kind == '"' and '/' in name:
        return name.split('/')[0]
    return None


def main():
    folders, headers = read_folders()
    problems = []
    listed = subprocess.run(['git', '-C', ROOT, 'ls-files', '-co', '--exclude-standard', 'Source', 'include', 'tools'],
                            capture_output=True, text=True, check=True).stdout.split()
    for path in listed:
        if not re.search(r'\.(h|cpp|inl)$', path):
            continue
        text = (ROOT / path).read_text()
        name = path.removeprefix('include/ovwcmn/')
        own = headers.get(name) if path.startswith('include/') else folder_of(path)
        if path.startswith('include/') and name not in headers:
            problems.append(f'{path}: listed by no folder of Source/README.md')
        for kind, included in INCLUDE.findall(text):
            if path.startswith('tools/'):
                if included.startswith(('Platform/', 'Utility/', 'foundation/', 'vimage/', 'mixing/', 'brush/')):
                    problems.append(f'{path}: a client includes {included}')
                continue
            if SYSTEM_HEADER.match(included) and own != 'Platform':
                problems.append(f'{path}: system header {included} outside Platform')
            target = target_folder(kind, included, headers, problems, path)
            if target and own and target != 'any' and own != 'any' and target not in folders.get(own, set()):
                problems.append(f'{path}: {own} may not include {included} of {target}')
    print('\n'.join(problems) or f'{len(listed)} files keep to the layers')
    return 1 if problems else 0


sys.exit(main())
