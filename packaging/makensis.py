#!/usr/bin/env python3
"""makensis as CPack calls it: for an installer that is itself a program of 64 bits, and whose bytes
depend on its files alone. NSIS keeps the times of the files; CPack and NSIS take them in the order
in which a file system lists them.

    makensis.py -VERSION | SCRIPT.nsi
"""
import os
import pathlib
import re
import sys


def file_commands(root):
    """What `File /r` does, in the order of the names."""
    lines, last = [], None
    for path in sorted(root.rglob("*")):
        if not path.is_file():
            continue
        folder = str(pathlib.PureWindowsPath("$INSTDIR", path.relative_to(root).parent))
        if folder != last:
            lines.append('  SetOutPath "%s"\n' % folder)
        lines.append('  File "%s"\n' % path)
        last = folder
    return "".join(lines) + '  SetOutPath "$INSTDIR"\n'


def sort_runs(text, command, reverse):
    """Sorts each run of lines `COMMAND "$INSTDIR\\..."`."""
    return re.sub(r'(?:^ *%s "\$INSTDIR\\.*\n)+' % command,
                  lambda run: "".join(sorted(run[0].splitlines(True), reverse=reverse)), text,
                  flags=re.M)


def sort_script(path):
    """Writes the script anew, beside itself, and returns the path."""
    text = path.read_text(encoding="utf-8")
    root = pathlib.Path(re.search(r'^ *!define INST_DIR "(.*)"$', text, re.M)[1])
    text, count = re.subn(r'^ *File /r "\$\{INST_DIR\}.*\n', lambda _: file_commands(root), text,
                          flags=re.M)
    if count != 1:
        sys.exit("makensis.py: %s has %d lines for the files of the package" % (path, count))
    text = sort_runs(text, "Delete", False)
    # What a folder contains goes first.
    text = sort_runs(text, "RMDir", True)
    made = path.with_name("sorted.nsi")
    made.write_text(text, encoding="utf-8")
    return made


def main():
    arguments = sys.argv[1:]
    if arguments[-1].endswith(".nsi"):
        script = sort_script(pathlib.Path(arguments[-1]))
        arguments[-1] = str(script)
        if "SOURCE_DATE_EPOCH" in os.environ:
            time = int(os.environ["SOURCE_DATE_EPOCH"])
            for path in script.parent.iterdir():
                os.utime(path, (time, time))
    os.execvp("makensis", ["makensis", "-XTarget amd64-unicode", *arguments])


if __name__ == "__main__":
    main()
