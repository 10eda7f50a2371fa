#!/usr/bin/env python3
"""Signs random messages and verifies them with OpenSSL, and the other way round, for each type of
signature and each form, with keys that OpenSSL makes:

    openssl_both_ways.py SIGN_TOOL [MESSAGES]

Prints a table of how many of the signatures were right: those that were made here and verified by
OpenSSL; those of OpenSSL that were verified here; those of the types that always give the same that
were the same; and those with a bit changed, in the message or the signature, that both refused.
"""
import collections
import pathlib
import random
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
from openssl_peer import PASSPHRASE, TYPES, Peer, check_run, run  # noqa: E402

TOOL = sys.argv[1]
MESSAGES = int(sys.argv[2]) if len(sys.argv) > 2 else 20
del sys.argv[1:]


def change_a_bit(path):
    data = bytearray(path.read_bytes())
    data[random.randrange(len(data))] ^= 1 << random.randrange(8)
    path.write_bytes(data)


class BothWays(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="tessaron-signature-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def keys(self, options):
        """A private key, the same encrypted, and its public part; made once."""
        name = options[-1].replace(":", "-")
        private, encrypted, public = (self.folder / (name + ending)
                                      for ending in (".pem", "-encrypted.pem", "-public.pem"))
        if not private.exists():
            check_run("openssl", "genpkey", "-algorithm", *options, "-out", private)
            check_run("openssl", "pkey", "-in", private, "-pubout", "-out", public)
            check_run("openssl", "pkcs8", "-topk8", "-in", private, "-passout", "pass:" + PASSPHRASE,
                      "-out", encrypted)
        return private, encrypted, public

    def both_ways(self, one, form):
        counts = collections.Counter()
        peer = Peer(one, form, self.folder)
        message, ours, theirs = (self.folder / name for name in ("message", "ours", "theirs"))
        keys = [self.keys(options) for options in one.keys]

        def verify(key, signature):
            return run(TOOL, "verify", one.number, form, key, message, signature, PASSPHRASE)

        for index in range(MESSAGES):
            private, encrypted, public = keys[index % len(keys)]
            message.write_bytes(random.randbytes(random.choice((1, 63, 64, 65, 111, 112, 4096, 70001))))
            check_run(TOOL, "sign", one.number, form, random.choice((private, encrypted)), message,
                      ours, PASSPHRASE)
            peer.sign(private, message, theirs)
            counts["ours"] += peer.verify(public, message, ours)
            counts["theirs"] += verify(random.choice((private, encrypted, public)),
                                       theirs).returncode == 0
            counts["same"] += ours.read_bytes() == theirs.read_bytes()
            change_a_bit(random.choice((message, theirs)))
            counts["refused"] += (verify(public, theirs).returncode == 1
                                  and not peer.verify(public, message, theirs))
        same = counts["same"] if one.is_deterministic else "-"
        print("%-18s %-4s %8d %8d %8s %8d" % (one.name, form, counts["ours"], counts["theirs"], same,
                                              counts["refused"]))
        expected = {"ours": MESSAGES, "theirs": MESSAGES, "refused": MESSAGES,
                    "same": MESSAGES if one.is_deterministic else 0}
        self.assertEqual(dict(counts) | {"same": counts["same"]}, expected)

    def test_each_type_and_form(self):
        print("\n%-18s %-4s %8s %8s %8s %8s" % ("%d messages" % MESSAGES, "form", "ours", "theirs",
                                                "same", "refused"))
        for one in TYPES:
            for form in one.forms:
                with self.subTest(type=one.name, form=form):
                    self.both_ways(one, form)


if __name__ == "__main__":
    unittest.main()
