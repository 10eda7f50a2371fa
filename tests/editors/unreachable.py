#!/usr/bin/env python3
"""Tests that install_packages.py skips with a reason where the npm registry cannot be reached, as
behind a proxy that refuses, and fails without a lock file."""
import http.server
import os
import pathlib
import shutil
import socket
import subprocess
import sys
import tempfile
import threading
import unittest

FOLDER = pathlib.Path(__file__).resolve().parent


class Refusing(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        self.send_response(403)
        self.end_headers()

    def log_message(self, *arguments):
        pass


def install(folder, registry):
    """Exit code and words of the installation with an empty cache."""
    environment = {name: value for name, value in os.environ.items()
                   if "proxy" not in name.lower() and name != "TESSARON_REQUIRE_ALL"}
    environment |= {"npm_config_registry": registry, "npm_config_cache": folder + "/cache"}
    done = subprocess.run([sys.executable, FOLDER / "install_packages.py"], cwd=folder, text=True,
                          env=environment, capture_output=True, check=False)
    return done.returncode, done.stdout


class Unreachable(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        for name in ("package.json", "package-lock.json"):
            shutil.copy(FOLDER / name, self.folder.name)

    def test_refusing_server(self):
        with http.server.HTTPServer(("127.0.0.1", 0), Refusing) as server:
            threading.Thread(target=server.serve_forever, daemon=True).start()
            code, words = install(self.folder.name, "http://127.0.0.1:%d/" % server.server_port)
            server.shutdown()
        self.assertEqual((code, words), (77, "skipped: the npm registry cannot be reached (E403)\n"))

    def test_no_server(self):
        with socket.socket() as free:
            free.bind(("127.0.0.1", 0))
            code, words = install(self.folder.name, "http://127.0.0.1:%d/" % free.getsockname()[1])
        self.assertEqual(code, 77, words)
        self.assertIn("ECONNREFUSED", words)

    def test_no_lock_file(self):
        pathlib.Path(self.folder.name, "package-lock.json").unlink()
        code, words = install(self.folder.name, "http://127.0.0.1:9/")
        self.assertEqual(code, 1, words)


if __name__ == "__main__":
    unittest.main()
