"""The C++ that README.md and the guide show is that of the examples, which are built and run: every block stands in one of
them, between marks, // [name] and // [/name]."""
import pathlib
import re
import sys
import textwrap

REGION = re.compile(r'^ *// \[(\w+)\]\n(.*?)^ *// \[/\1\]', re.S | re.M)


def main(root):
    built = [textwrap.dedent(text)
             for example in root.glob('examples/*.cpp') for _, text in REGION.findall(example.read_text())]
    pages = [root / 'README.md', *sorted(root.glob('docs/guide/*.md'))]
    wrong = [f'{page.relative_to(root)}: {block.split(chr(10))[0]}'
             for page in pages for block in re.findall(r'```cpp\n(.*?)```', page.read_text(), re.S)
             if not any(block in text for text in built)]
    print('\n'.join(['no example has between marks:', *wrong] if wrong else ['the code shown is the code built']))
    return 1 if wrong else 0


sys.exit(main(pathlib.Path(sys.argv[1])))
