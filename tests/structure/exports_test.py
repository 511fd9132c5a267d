"""A module exports one symbol: its entry function. Usage: exports_test.py MODULE..."""

import subprocess
import sys


def exported(module):
    lines = subprocess.run(["nm", "-D", "--defined-only", module], check=True, capture_output=True,
                           text=True).stdout.splitlines()
    return [line.split()[-1] for line in lines]


wrong = [module for module in sys.argv[1:] if exported(module) != ["K3DLLFunc"]]
for module in wrong:
    print(f"{module} exports {exported(module)}, expected K3DLLFunc alone")
sys.exit(1 if wrong else 0)
