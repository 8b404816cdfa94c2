"""Only what the interface exports is visible: reads the dynamic symbol table of the library given."""
import re
import subprocess
import sys

OURS = re.compile(r'^(vtable for |typeinfo for |typeinfo name for |non-virtual thunk to |VTT for )?'
                  r'((XC|vx|xc|xcw)\w*)(::|\(|<|\[|$)')
OPERATORS = re.compile(r'^operator(<<|>>)\(XCArchive&, ')
# What public headers instantiate or derive from: the pixel formats behind the depths, the arrays' size check.
IN_HEADERS = re.compile(r'ovw::(vimage::(DepthVariant<|Bit1|Bit2|Density8|CoverageGrey16|Rgb24|Rgba32)|foundation::elementBytes)')
STANDARD = re.compile(r'^(typeinfo (name )?for |vtable for )?([\w:<>,&\* ]+ )?std::')
RETURNING = re.compile(r'^[\w:<>,&\* ]+ ((XC|vx|xc|xcw)\w*)(::|\(|<)')


def main(library):
    listed = subprocess.run(['nm', '-D', '--defined-only', '-C', library], capture_output=True, text=True, check=True).stdout
    names = [line.split(' ', 2)[2] for line in listed.splitlines() if line.count(' ') >= 2]
    # The standard library marks its own templates as visible; they are weak and harmless.
    allowed = (OURS, OPERATORS, RETURNING, IN_HEADERS, STANDARD)
    leaked = [name for name in names if not any(pattern.search(name) for pattern in allowed)]
    print(f'{len(names)} symbols, {len(leaked)} of them not of the interface')
    print('\n'.join(leaked))
    return 1 if leaked or not any(name.startswith('XCVOffscreen') for name in names) else 0


sys.exit(main(sys.argv[1]))
