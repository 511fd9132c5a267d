"""A module exports one symbol: its entry function. Usage: exports_test.py SYMBOL MODULE"""

import subprocess
import sys


def exported(module):
    lines = subprocess.run(["nm", "-D", "--defined-only", module], check=True, capture_output=True,
                           text=True).stdout.splitlines()
    return [line.split()[-1] for line in lines]


symbol, module = sys.argv[1:]
found = exported(module)
if found != [symbol]:
    sys.exit(f"{module} exports {found}, expected {symbol} alone")
