"""Only what the interface exports is visible: reads the dynamic symbol table of the library given."""
import re
import subprocess
import sys

OURS = re.compile(r'^(vtable for |typeinfo for |typeinfo name for |non-virtual thunk to |VTT for )?'
                  r'((XC|vx|xc|xcw)\w*)(::|\(|<|\[|$)')
RETURNING = re.compile(r'^[\w:<>,&\* ]+ ((XC|vx|xc|xcw)\w*)(::|\(|<)')


def main(library):
    listed = subprocess.run(['nm', '-D', '--defined-only', '-C', library], capture_output=True, text=True, check=True).stdout
    names = [line.split(' ', 2)[2] for line in listed.splitlines() if line.count(' ') >= 2]
    # Templates of the standard library that the compiler emitted beside an exported class are weak and belong to it.
    strangers = [name for name in names if not OURS.match(name) and not RETURNING.match(name)]
    leaked = [name for name in strangers if 'ovw::' in name or not name.startswith(('std::', 'typeinfo', 'vtable'))]
    print(f'{len(names)} symbols, {len(leaked)} of them not of the interface')
    print('\n'.join(leaked))
    return 1 if leaked or not any(name.startswith('XCVOffscreen') for name in names) else 0


sys.exit(main(sys.argv[1]))
