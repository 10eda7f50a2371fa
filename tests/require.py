#!/usr/bin/env python3
"""Runs a test whose tools may be missing:  require.py TOOL... -- COMMAND...

A tool is a program, a file (with a slash) or a module of Perl (Module::Name). If one is missing,
the test is skipped and one line gives the reason; with TESSARON_REQUIRE_ALL=1 it fails instead.
"""
import importlib
import os
import shutil
import subprocess
import sys

SKIPPED = 77
IS_REQUIRED = os.environ.get("TESSARON_REQUIRE_ALL") == "1"


def skip(reason):
    """Ends the test, which cannot run for `reason`."""
    print("%s: %s" % ("required" if IS_REQUIRED else "skipped", reason))
    sys.exit(1 if IS_REQUIRED else SKIPPED)


def is_there(tool):
    if "::" in tool:
        return subprocess.run(["perl", "-M" + tool, "-e", "1"], stderr=subprocess.DEVNULL,
                              check=False).returncode == 0
    return os.path.exists(tool) if "/" in tool else shutil.which(tool) is not None


def require(tools):
    missing = [tool for tool in tools if not is_there(tool)]
    if missing:
        skip("there is no " + ", ".join(missing))


def module(name):
    """A module of Python that Debian packs as python3-NAME; without it the test is skipped."""
    try:
        return importlib.import_module(name)
    except ImportError:
        return skip("there is no python3-" + name)


def lacks(tool):
    """Whether a part of the test is skipped, since `tool` is missing."""
    if IS_REQUIRED or is_there(tool):
        return False
    print("skipped: there is no " + tool)
    return True


def main():
    separator = sys.argv.index("--")
    require(sys.argv[1:separator])
    command = sys.argv[separator + 1:]
    os.execvp(command[0], command)


if __name__ == "__main__":
    main()
