#!/usr/bin/env python3
"""Runs script-level cases. A case is a folder with

  script.tsn     the script, unless `arguments` holds other arguments, one per line
  expected.out   standard output; only the banner and the time are masked
  expected.err   standard error, if not empty, without the line that names the pages of diagnostics
  expected.exit  exit code, if not 0
  expected/      files that the run must leave, byte for byte
  absent         names of files, one per line, that the run must not leave
  prepare.sh     makes inputs that cannot be kept as files (permissions, pipes, large files), or takes
                 them from "$TESTS", the folder of all tests
  memory-limit   KiB of address space that the program may use; --no-limits skips such a case,
                 since sanitizers need more
  check.sh       checks the files that the run left; its output must be empty

The program runs in a copy of the folder. --accept stores the actual output as the new expectation.

With --emulated, a case that fails runs a second time: an emulator may fail to start a program, under
much load, which says nothing then. The first failure is printed.

With --fold-line-ends, text files may have the line ends that CmdTessaron writes on Windows, CR LF.
Those that check.sh sees have LF.
"""
import argparse
import os
import pathlib
import re
import resource
import shlex
import shutil
import subprocess
import sys
import tempfile

TESTS = pathlib.Path(__file__).resolve().parents[1]


def masked(text):
    text = re.sub(rb"\A[^\n]* version \d+\.\d+ from [^\n]*\n[^\n]*\n", b"<banner>\n", text)
    return re.sub(rb"(KvTessaron Total Time: )[0-9.e+-]+", rb"\1<time>", text)


def without_pages(text):
    """Standard error without its last line, if that names the pages about the diagnostics."""
    return re.sub(rb"^more: tessaron help .*\r?\n\Z", b"", text, flags=re.M)


def text_of(path, default=b""):
    return path.read_bytes() if path.exists() else default


def lines_of(path, default=()):
    return path.read_text().splitlines() if path.exists() else list(default)


def fold(path, wanted):
    """Gives a file LF, if it is the wanted text with CR LF."""
    if path.is_file() and path.read_bytes() == wanted.replace(b"\n", b"\r\n"):
        path.write_bytes(wanted)


def run(case, command, work, accept, timeout, is_folded):
    """Runs one case and returns a list of faults."""
    faults = []
    shutil.copytree(case, work, dirs_exist_ok=True)
    shutil.rmtree(work / "expected", ignore_errors=True)
    if (case / "prepare.sh").exists():
        subprocess.run(["sh", "prepare.sh"], cwd=work, check=True, env=dict(os.environ, TESTS=str(TESTS)))
    arguments = lines_of(case / "arguments", ["script.tsn"])
    limit = 1024 * int(text_of(case / "memory-limit", b"0"))

    def restrict():
        if limit:
            resource.setrlimit(resource.RLIMIT_AS, (limit, limit))

    try:
        done = subprocess.run(command + arguments, cwd=work, capture_output=True,
                              stdin=subprocess.DEVNULL, timeout=timeout,
                              preexec_fn=restrict)
    except subprocess.TimeoutExpired:
        return ["did not end within %d seconds" % timeout]
    got = {"expected.out": masked(done.stdout), "expected.err": without_pages(done.stderr),
           "expected.exit": b"%d\n" % done.returncode}
    if accept:
        for name, text in got.items():
            (case / name).unlink(missing_ok=True)
            if name == "expected.out" or text not in (b"", b"0\n"):
                (case / name).write_bytes(text)
    for name, text in got.items():
        wanted = text_of(case / name, b"0\n" if name == "expected.exit" else b"")
        if text != wanted:
            faults.append("%s differs: got\n%s\nwanted\n%s" %
                          (name, text.decode("latin-1"), wanted.decode("latin-1")))
    for path in sorted((case / "expected").glob("**/*")):
        name = path.relative_to(case / "expected")
        if is_folded and path.is_file():
            fold(work / name, path.read_bytes())
        if accept and (work / name).exists():
            path.write_bytes((work / name).read_bytes())
        if path.is_file() and text_of(work / name, None) != path.read_bytes():
            faults.append("file %s differs or is missing" % name)
    faults += ["file %s exists" % name for name in lines_of(case / "absent")
               if (work / name).exists()]
    if (case / "check.sh").exists():
        checked = subprocess.run(["sh", "check.sh"], cwd=work, capture_output=True)
        if checked.returncode or checked.stdout or checked.stderr:
            faults.append("check.sh: %s" % (checked.stdout + checked.stderr).decode())
    return faults


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program", help="the path of a program, or a command with its options")
    parser.add_argument("cases", nargs="+", type=pathlib.Path)
    parser.add_argument("--accept", action="store_true")
    parser.add_argument("--no-limits", action="store_true")
    parser.add_argument("--leave-out", action="append", default=[], metavar="CASE",
                        help="name of a case among `cases` that is not run")
    parser.add_argument("--emulated", action="store_true")
    parser.add_argument("--fold-line-ends", action="store_true")
    parser.add_argument("--timeout", type=int, default=300,
                        help="seconds after which a run counts as hanging")
    options = parser.parse_args()
    # A path is one word, whatever characters its folders have.
    is_path = pathlib.Path(options.program).exists()
    command = [options.program] if is_path else shlex.split(options.program)
    if pathlib.Path(command[0]).exists():
        command[0] = str(pathlib.Path(command[0]).resolve())
    unknown = set(options.leave_out) - {case.name for case in options.cases}
    if unknown:
        parser.error("no such case to leave out: " + ", ".join(sorted(unknown)))
    failed = 0
    for case in options.cases:
        if options.no_limits and (case / "memory-limit").exists() or case.name in options.leave_out:
            continue
        for attempts_left in (1, 0) if options.emulated else (0,):
            work = pathlib.Path(tempfile.mkdtemp(prefix="tessaron-%s-" % case.name))
            faults = run(case, command, work, options.accept, options.timeout,
                         options.fold_line_ends)
            if not faults or not attempts_left:
                break
            print("%s: runs again, since %s" % (case.name, "\n".join(faults)))
            shutil.rmtree(work)
        if not faults:
            shutil.rmtree(work)
            continue
        failed += 1
        print("%s: %s\nleft in %s; repeat with: %s %s %s" %
              (case.name, "\n".join(faults), work, shlex.quote(sys.argv[0]),
               shlex.quote(options.program), shlex.quote(str(case))))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
