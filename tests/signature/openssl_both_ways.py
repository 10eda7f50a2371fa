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
import subprocess
import sys
import tempfile
import unittest

TOOL = sys.argv[1]
MESSAGES = int(sys.argv[2]) if len(sys.argv) > 2 else 20
del sys.argv[1:]
PASSPHRASE = "correct horse"

# The number of the type, its forms, the keys as `openssl genpkey` makes them, and the options of
# `openssl dgst`. OpenSSL has deterministic ECDSA since 3.2.
Type = collections.namedtuple("Type", "name number forms keys options is_deterministic")
PSS = ["-sha256", "-sigopt", "rsa_padding_mode:pss", "-sigopt", "rsa_pss_saltlen:32", "-sigopt",
       "rsa_mgf1_md:sha256"]
# 2,049 bits: the padded hash is a byte shorter than the modulus.
RSA = [["RSA", "-pkeyopt", "rsa_keygen_bits:%d" % bits] for bits in (2048, 2049, 3072, 4096)]
TYPES = [
    Type("Ed25519", 0, ["raw"], [["ED25519"]], None, True),
    Type("EcdsaP256_Sha256", 1, ["raw", "der"],
         [["EC", "-pkeyopt", "ec_paramgen_curve:P-256"]], ["-sha256"], False),
    Type("EcdsaP384_Sha384", 2, ["raw", "der"],
         [["EC", "-pkeyopt", "ec_paramgen_curve:P-384"]], ["-sha384"], False),
    Type("RsaPss_Sha256", 3, ["raw"], RSA, PSS, False),
    Type("RsaPkcs1_Sha256", 4, ["raw"], RSA, ["-sha256"], True),
]


def run(*command):
    return subprocess.run([str(part) for part in command], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, timeout=60, check=False)


def check_run(*command):
    done = run(*command)
    if done.returncode != 0:
        raise AssertionError("%s ended with %d:\n%s" % (
            command, done.returncode, done.stdout.decode("latin-1")))


def integer(value):
    data = value.to_bytes(value.bit_length() // 8 + 1, "big")
    return bytes([2, len(data)]) + data


def to_der(raw):
    half = len(raw) // 2
    content = b"".join(integer(int.from_bytes(part, "big")) for part in (raw[:half], raw[half:]))
    return bytes([0x30, len(content)]) + content


def to_raw(der, length):
    parts, at = b"", 2
    for _ in range(2):
        end = at + 2 + der[at + 1]
        parts += int.from_bytes(der[at + 2:end], "big").to_bytes(length, "big")
        at = end
    return parts


class Peer:
    """OpenSSL, whose ECDSA signatures are DER."""

    def __init__(self, one, form, folder):
        self.one, self.is_raw_ecdsa = one, form == "raw" and one.name.startswith("Ecdsa")
        self.file = folder / "peer.sig"

    def sign(self, key, message, signature):
        if self.one.options is None:
            check_run("openssl", "pkeyutl", "-sign", "-rawin", "-inkey", key, "-in", message, "-out",
                      signature)
        else:
            check_run("openssl", "dgst", *self.one.options, "-sign", key, "-out", signature, message)
        if self.is_raw_ecdsa:
            length = 48 if "P384" in self.one.name else 32
            signature.write_bytes(to_raw(signature.read_bytes(), length))

    def verify(self, key, message, signature):
        data = signature.read_bytes()
        self.file.write_bytes(to_der(data) if self.is_raw_ecdsa else data)
        if self.one.options is None:
            return run("openssl", "pkeyutl", "-verify", "-rawin", "-pubin", "-inkey", key, "-in",
                       message, "-sigfile", self.file).returncode == 0
        return run("openssl", "dgst", *self.one.options, "-verify", key, "-signature", self.file,
                   message).returncode == 0


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
