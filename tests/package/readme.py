"""The README's code is the example that is built and run: compares the two texts."""
import pathlib
import re
import sys
import textwrap


def main(root):
    readme = (root / 'README.md').read_text()
    example = (root / 'examples/paint_a_stroke.cpp').read_text()
    shown = [block.strip() for block in re.findall(r'```cpp\n(.*?)```', readme, re.S)]
    region = re.search(r'// \[readme\]\n(.*?)\s*// \[/readme\]', example, re.S)
    built = textwrap.dedent(region[1]).strip()
    if built not in shown:
        print('README.md does not show the marked lines of examples/paint_a_stroke.cpp')
        return 1
    return 0


sys.exit(main(pathlib.Path(sys.argv[1])))
