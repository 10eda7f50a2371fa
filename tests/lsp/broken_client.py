#!/usr/bin/env python3
"""Clients that behave badly, and one that behaves: broken_client.py TESSARON"""
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import time
import unittest

PROGRAM = sys.argv.pop(1)
TIMEOUT = 120
URI = "untitled:script.tsn"


def message(method, params=None, number=None):
    json_text = {"jsonrpc": "2.0", "method": method, "params": params or {}}
    if number is not None:
        json_text["id"] = number
    text = json.dumps(json_text).encode()
    return b"Content-Length: %d\r\n\r\n%s" % (len(text), text)


def opened(text, version=1):
    return message("textDocument/didOpen", {"textDocument": {"uri": URI, "version": version, "text": text}})


HELLO = message("initialize", {"capabilities": {}}, 1)
BYE = message("shutdown", number=2) + message("exit")


def messages_in(stream):
    """The messages of a whole stream of the server."""
    found = []
    while stream:
        header, stream = stream.split(b"\r\n\r\n", 1)
        length = int(header.split(b":")[1])
        found.append(json.loads(stream[:length]))
        stream = stream[length:]
    return found


def run(*chunks):
    done = subprocess.run([PROGRAM, "lsp"], input=b"".join(chunks), capture_output=True, timeout=TIMEOUT)
    return done.returncode, messages_in(done.stdout), done.stderr.decode()


class BrokenClient(unittest.TestCase):
    def test_ends(self):
        gone = "tessaron: the client went away"
        cases = {
            "a proper end": ([HELLO, BYE], 0, ""),
            "an end without exit": ([HELLO, message("shutdown", number=2)], 0, ""),
            "exit alone": ([HELLO, message("exit")], 1, ""),
            "nothing": ([], 1, gone + " without a word\n"),
            "silence": ([HELLO, opened("PRINT_TEXT a")], 1, gone + " without a word\n"),
            "half a message": ([HELLO, HELLO[:40]], 1, gone + " within a message\n"),
            "half a header": ([HELLO, b"Content-Len"], 1, gone + " within a message\n"),
            "garbage": ([b"\0\xff garbage\n" * 1000, HELLO, BYE], 0, ""),
            "another protocol": ([b"GET / HTTP/1.1\r\nHost: localhost\r\n\r\n"], 1, gone + " within a message\n"),
            "requests after the end": ([HELLO, message("shutdown", number=2), HELLO, message("exit")], 0, ""),
        }
        for name, (stream, code, words) in cases.items():
            with self.subTest(name):
                got, answers, errors = run(*stream)
                self.assertEqual((got, errors), (code, words))
                if HELLO in stream:
                    self.assertIn("capabilities", str(answers))

    def test_gigantic(self):
        """A message that is too long is left out, in little memory, and the session goes on."""
        size = 400 << 20
        process = subprocess.Popen([PROGRAM, "lsp"], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        process.stdin.write(HELLO + b"Content-Length: %d\r\n\r\n" % size)
        for _ in range(size >> 20):
            process.stdin.write(bytes(1 << 20))
        process.stdin.write(message("shutdown", number=2))
        process.stdin.flush()
        answers = b""
        while b'"id":2' not in answers:
            answers += os.read(process.stdout.fileno(), 65536)
        status = pathlib.Path("/proc/%d/status" % process.pid)
        if status.exists():
            peak = next(int(line.split()[1]) for line in status.read_text().splitlines() if line.startswith("VmHWM"))
            self.assertLess(peak, 200 << 10, "KiB")
        process.communicate(message("exit"), timeout=TIMEOUT)
        self.assertEqual(process.returncode, 0)
        self.assertIn(b"more than 32 MiB", answers)

    def test_reader_that_is_gone(self):
        process = subprocess.Popen([PROGRAM, "lsp"], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        process.stdout.close()
        try:
            for _ in range(1000):
                process.stdin.write(HELLO)
                process.stdin.flush()
            process.stdin.close()
        except BrokenPipeError:
            pass
        self.assertEqual(process.wait(TIMEOUT), 1)


@unittest.skipUnless(os.path.exists("/proc/self/stat"), "processor times are in /proc")
class QuickServer(unittest.TestCase):
    """Times are those of the processor, so that other load does not count."""

    def setUp(self):
        self.process = subprocess.Popen([PROGRAM, "lsp"], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.addCleanup(self.process.communicate, BYE, timeout=TIMEOUT)
        self.process.stdin.write(HELLO)

    def spent(self):
        fields = pathlib.Path("/proc/%d/stat" % self.process.pid).read_text().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def next(self):
        length = int(self.process.stdout.readline().split(b":")[1])
        self.process.stdout.readline()
        return json.loads(self.process.stdout.read(length))

    def answer(self, number):
        return next(one["result"] for one in iter(self.next, None) if one.get("id") == number)

    def diagnostics(self, version):
        return next(one["params"]["diagnostics"] for one in iter(self.next, None)
                    if one.get("params", {}).get("version") == version)

    def test_edits_of_a_long_script(self):
        lines = []
        for i in range(400):
            lines += ["// part %d" % i, "NEW_BUFFER @A%d FROM_VALUES { 1, 2, 3, 4 }" % i,
                      "NEW_CRC @C%d FROM_BUFFER @A%d -useAreas={{0, 2}} -setType=Catalogue{CRC-16/MODBUS}" % (i, i),
                      "FILL_BUFFER @A%d WITH_CRC @C%d -useAreas={{2, 2}}" % (i, i),
                      "WRITE_FILE a%d.hex WITH_BUFFERS { @A%d }" % (i, i)]
        self.process.stdin.write(opened("\n".join(lines)))
        self.process.stdin.flush()
        self.assertEqual(self.diagnostics(1), [])
        before = self.spent()
        edits = 100
        for i in range(edits):
            # A letter of a name is typed, and taken back.
            place = {"line": 1003, "character": 12}
            end = dict(place, character=12 + i % 2)
            change = {"range": {"start": place, "end": end}, "text": "" if i % 2 else "X"}
            self.process.stdin.write(message("textDocument/didChange", {
                "textDocument": {"uri": URI, "version": i + 2}, "contentChanges": [change]}))
            self.process.stdin.flush()
            found = self.diagnostics(i + 2)
            self.assertEqual([one["code"] for one in found], [] if i % 2 else ["unknown-name"])
        # Sanitizers take several times as long.
        self.assertLess((self.spent() - before) / edits, float(os.environ.get("TESSARON_EDIT_TIME", "0.05")))

    def test_name_with_many_places(self):
        count = 20000
        self.process.stdin.write(opened("NEW_BUFFER @A EMPTY\nNEW_CRC @C FROM_BUFFER @A\n" + "PRINT_CRC @C\n" * count))
        place = {"textDocument": {"uri": URI}, "position": {"line": 1, "character": 9}}
        self.process.stdin.write(message("textDocument/references", place, 3))
        self.process.stdin.write(message("textDocument/rename", dict(place, newName="@D"), 4))
        self.process.stdin.flush()
        self.assertEqual(len(self.answer(3)), count + 1)
        self.assertEqual(len(self.answer(4)["changes"][URI]), count + 1)
        self.assertLess(self.spent(), 30 * float(os.environ.get("TESSARON_EDIT_TIME", "0.05")))

    def test_many_places_at_once(self):
        """The colours of a long line, mentions in a file that is not open, and many changes of one message."""
        count = 10000
        statement = "PRINT_BUFFER @A"
        pathlib.Path("part.tsn").write_text((statement + "\n") * count)
        self.process.stdin.write(opened("NEW_BUFFER @A EMPTY\nINCLUDE part.tsn\n" + (statement + " ") * count))
        ends = [{"line": 2, "character": i * (len(statement) + 1) - 1} for i in range(count, 0, -1)]
        changes = [{"range": {"start": end, "end": dict(end, character=end["character"] + 1)}, "text": "\n"}
                   for end in ends]
        script = {"textDocument": {"uri": URI}}
        references = dict(script, position={"line": 0, "character": 12})

        def ask(number, method, params, *before):
            self.process.stdin.write(b"".join(before) + message("textDocument/" + method, params, number))
            self.process.stdin.flush()
            return self.answer(number)

        colours = ask(3, "semanticTokens/full", script)
        self.assertEqual(colours["data"][-5:], [0, 13, 2, 4, 0])
        self.assertEqual(len(ask(4, "references", references)), 2 * count + 1)
        change = message("textDocument/didChange", {
            "textDocument": {"uri": URI, "version": 2}, "contentChanges": changes})
        colours_of_lines = ask(5, "semanticTokens/full", script, change)
        self.assertEqual(len(colours_of_lines["data"]), len(colours["data"]))
        self.assertEqual(colours_of_lines["data"][-10:-5], [1, 0, 12, 1, 0])
        self.assertLess(self.spent(), 20 * float(os.environ.get("TESSARON_EDIT_TIME", "0.05")))

    def test_values_that_name_things(self):
        count = 20000
        text = "".join("PARAMETER p%d DEFAULT @A%d\n" % (i, i) for i in range(count))
        self.process.stdin.write(opened(text + "".join("NEW_BUFFER p%d EMPTY\n" % i for i in range(count))))
        self.process.stdin.write(message("textDocument/references", {
            "textDocument": {"uri": URI}, "position": {"line": 0, "character": 22}}, 3))
        self.process.stdin.flush()
        self.assertEqual([one["range"]["start"] for one in self.answer(3)],
                         [{"line": 0, "character": 21}, {"line": count, "character": 11}])
        self.assertLess(self.spent(), 20 * float(os.environ.get("TESSARON_EDIT_TIME", "0.05")))

    def test_idle(self):
        self.process.stdin.write(opened("PRINT_TEXT a"))
        self.process.stdin.flush()
        self.diagnostics(1)
        before = self.spent()
        time.sleep(1)
        self.assertEqual(self.spent(), before)


if __name__ == "__main__":
    with tempfile.TemporaryDirectory() as folder:
        PROGRAM = os.path.abspath(PROGRAM)
        os.chdir(folder)
        unittest.main()
