#!/usr/bin/env python3
"""Checks that programs for Windows import nothing but what every Windows has:

    imports.py objdump program.exe...
"""
import re
import subprocess
import sys

# Parts of Windows 10 and later; msvcrt.dll is the runtime of the system itself.
SYSTEM = {"KERNEL32.dll", "msvcrt.dll", "SHELL32.dll", "VERSION.dll"}


def imports(objdump, program):
    headers = subprocess.run([objdump, "-p", program], capture_output=True, text=True,
                             check=True).stdout
    return set(re.findall(r"^\tDLL Name: (.*)$", headers, re.MULTILINE))


def main():
    failed = False
    for program in sys.argv[2:]:
        found = imports(sys.argv[1], program)
        print("%s: %s" % (program, ", ".join(sorted(found))))
        # Without any, the table was not found.
        failed |= not found or bool(found - SYSTEM)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
