#!/usr/bin/env python3
"""Signs and verifies by the statements of scripts:  statements.py CmdTessaron tessaron

With OpenSSL as the other side for each type and form; a release that is proved with the private key and
with the public one alone; passphrases by files, pipes and descriptors; and that nothing of a private
key or its passphrase is left in anything that a run writes, prints or keeps in memory."""
import hashlib
import json
import os
import pathlib
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
from openssl_peer import PASSPHRASE, TYPES, Peer, check_run  # noqa: E402

CLASSIC, PROGRAM = (pathlib.Path(path).resolve() for path in sys.argv[1:3])
del sys.argv[1:3]
KEYS = pathlib.Path(__file__).resolve().parent / "keys"
KEY_OF = {"Ed25519": "ed25519", "EcdsaP256_Sha256": "p256", "EcdsaP384_Sha384": "p384",
          "RsaPss_Sha256": "rsa", "RsaPkcs1_Sha256": "rsa"}
CASES = [(one, form) for one in TYPES for form in one.forms]

SIGN = """NEW_BUFFER @App FROM_FILE_BINARY app.bin
NEW_SIGNATURE @Sig FROM_BUFFER @App -setType=givenType -setKeyFile=givenKey -setSignatureForm=givenForm
NEW_BUFFER @Out EMPTY -useBufferRange={0, lengthOf(@Sig)}
FILL_BUFFER @Out WITH_SIGNATURE @Sig -useAreas={{0, lengthOf(@Sig)}}
WRITE_FILE ours.sig WITH_BUFFERS { @Out } -setFormat=RawBinary
"""
VERIFY = """NEW_BUFFER @App FROM_FILE_BINARY app.bin
NEW_SIGNATURE @Sig FROM_FILE theirs.sig
VERIFY_SIGNATURE @Sig FROM_BUFFER @App -setType=givenType -setKeyFile=givenKey -setSignatureForm=givenForm
"""


class Case(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="tessaron-statements-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        for path in KEYS.glob("*.pem"):
            shutil.copy(path, self.folder)
            (self.folder / path.name).chmod(0o600)

    def write(self, name, content):
        path = self.folder / name
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
        path.chmod(0o600)
        return path

    def run_tessaron(self, command, script, *arguments, code=0, **options):
        self.write("script.tsn", script)
        done = subprocess.run([PROGRAM, command, "script.tsn", *arguments], cwd=self.folder,
                              capture_output=True, check=False, timeout=60, **options)
        self.assertEqual(done.returncode, code, done.stderr.decode())
        return done.stderr.decode()

    def run_classic(self, script, *arguments):
        self.write("script.tsn", script)
        done = subprocess.run([CLASSIC, *arguments, "script.tsn"], cwd=self.folder, check=True,
                              capture_output=True, text=True, timeout=60)
        return done.stdout

    def flip(self, name, at):
        data = bytearray((self.folder / name).read_bytes())
        data[at] ^= 0x10
        self.write(name, bytes(data))


class BothWays(Case):
    def test_each_type_and_form(self):
        for one, form in CASES:
            with self.subTest(type=one.name, form=form):
                self.both_ways(one, form)

    def both_ways(self, one, form):
        key = KEY_OF[one.name]
        message = self.write("app.bin", os.urandom(1000))
        private, public = (self.folder / name for name in (key + ".pem", key + "-public.pem"))
        ours, theirs = self.folder / "ours.sig", self.folder / "theirs.sig"
        variables = ["givenType=" + one.name, "givenForm=" + form.capitalize()]
        peer = Peer(one, form, self.folder)

        signatures = []
        for run in (lambda *a: self.run_tessaron("run", *a), self.run_classic):
            run(SIGN, *variables, "givenKey=" + private.name)
            self.assertTrue(peer.verify(public, message, ours))
            signatures.append(ours.read_bytes())
        if one.name != "RsaPss_Sha256":
            self.assertEqual(signatures[0], signatures[1])

        peer.sign(private, message, theirs)
        for name in (private.name, public.name):
            arguments = [VERIFY, *variables, "givenKey=" + name]
            self.run_tessaron("run", *arguments)
            self.assertNotIn("Error", self.run_classic(*arguments))
        for name in ("app.bin", "theirs.sig"):
            self.flip(name, 40)
            arguments = [VERIFY, *variables, "givenKey=" + public.name]
            self.assertIn("[signature]", self.run_tessaron("run", *arguments, code=1))
            self.assertIn("could not be verified", self.run_classic(*arguments))
            self.flip(name, 40)

    def test_a_signature_of_a_digest(self):
        """The two steps with a device that signs digests."""
        self.write("app.bin", os.urandom(5000))
        for name, digest, key, options in (
                ("EcdsaP256_Sha256", "Sha2_256", "p256", ["digest:sha256"]),
                ("EcdsaP384_Sha384", "Sha2_384", "p384", ["digest:sha384"]),
                ("RsaPkcs1_Sha256", "Sha2_256", "rsa", ["digest:sha256"]),
                ("RsaPss_Sha256", "Sha2_256", "rsa", ["digest:sha256", "rsa_padding_mode:pss",
                                                      "rsa_pss_saltlen:32"])):
            with self.subTest(type=name):
                self.run_tessaron("run", """NEW_BUFFER @App FROM_FILE_BINARY app.bin
NEW_HASH @Digest FROM_BUFFER @App -setType=Hash_%s
NEW_BUFFER @Out EMPTY -useBufferRange={0, lengthOf(@Digest)}
FILL_BUFFER @Out WITH_HASH @Digest
WRITE_FILE app.digest WITH_BUFFERS { @Out } -setFormat=RawBinary
""".replace("lengthOf(@Digest)", "48" if "384" in digest else "32") % digest)
                check_run("openssl", "pkeyutl", "-sign", "-inkey", self.folder / (key + ".pem"),
                          *(word for option in options for word in ("-pkeyopt", option)),
                          "-in", self.folder / "app.digest", "-out", self.folder / "theirs.sig")
                self.run_tessaron("run", VERIFY, "givenType=" + name, "givenKey=%s-public.pem" % key,
                                  "givenForm=" + ("Der" if name.startswith("Ecdsa") else "Raw"))


class Release(Case):
    """An image with a slot of 64 bytes for its signature, from 0x1000 on, before the last bytes."""

    SIGN = """NEW_BUFFER @App FROM_FILE_BINARY app.bin
NEW_BUFFER @Flash FROM_BUFFER @App -useBufferRange={0, 0x1080}
FILL_BUFFER @Flash WITH_FILLER { 0xFF }
FILL_BUFFER @Flash WITH_STRING "version 1.2" -useAreas={{0x1040, 11}}
NEW_SIGNATURE @Sig FROM_BUFFER @Flash -useAreas={{0, 0x1000}, {0x1040, 11}} -setType=Ed25519
              -setKeyFile=ed25519.pem
FILL_BUFFER @Flash WITH_SIGNATURE @Sig -useAreas={{0x1000, 64}}
WRITE_FILE flash.bin WITH_BUFFERS { @Flash } -setFormat=RawBinary
"""
    PROVE = """NEW_BUFFER @Flash FROM_FILE_BINARY flash.bin
NEW_SIGNATURE @Sig FROM_STORED @Flash -useAreas={{0x1000, 64}}
VERIFY_SIGNATURE @Sig FROM_BUFFER @Flash -useAreas={{0, 0x1000}, {0x1040, 11}} -setType=Ed25519
                 -setKeyFile=ed25519-public.pem
"""

    def setUp(self):
        super().setUp()
        self.write("app.bin", os.urandom(0x1000))
        self.run_tessaron("run", self.SIGN, "--manifest", "release.json", "--ignore", "unwritten")
        self.policy = ["--ignore", "unwritten"]

    def prove(self, code=0):
        """With the public key alone: nothing else but the image is there."""
        with tempfile.TemporaryDirectory() as folder:
            for name in ("flash.bin", "ed25519-public.pem"):
                shutil.copy(self.folder / name, folder)
            (pathlib.Path(folder) / "prove.tsn").write_text(self.PROVE)
            done = subprocess.run([PROGRAM, "check", "-C", folder, "prove.tsn"],
                                  capture_output=True, text=True, check=False, timeout=60)
            self.assertEqual((done.returncode, "[signature]" in done.stderr), (code, code == 1))

    def test_it_is_proved(self):
        for options in (["--manifest", "release.json"], ["--against-disk"]):
            self.assertEqual(self.run_tessaron("check", self.SIGN, *options, *self.policy), "")
        self.prove()

    def test_a_flipped_byte_is_refused(self):
        for at, what in ((0x123, "the code"), (0x1010, "the slot"), (0x1042, "the version")):
            with self.subTest(what=what):
                self.flip("flash.bin", at)
                for options in (["--manifest", "release.json"], ["--against-disk"]):
                    self.assertIn("[differs]", self.run_tessaron("check", self.SIGN, *options,
                                                                 *self.policy, code=1))
                self.prove(code=1)
                self.flip("flash.bin", at)
        # The last bytes are not signed, and the manifest has them all the same.
        self.flip("flash.bin", 0x107F)
        self.prove()
        self.run_tessaron("check", self.SIGN, "--manifest", "release.json", *self.policy, code=1)

    def test_another_key_is_refused(self):
        shutil.copy(self.folder / "rfc8032-test3.pem", self.folder / "ed25519.pem")
        self.assertIn("[differs]", self.run_tessaron("check", self.SIGN, "--manifest", "release.json",
                                                     *self.policy, code=1))
        self.run_tessaron("run", self.SIGN, *self.policy)
        self.prove(code=1)

    def test_the_manifest_names_the_public_key(self):
        value, = json.loads((self.folder / "release.json").read_text())["values"]
        check_run("openssl", "pkey", "-pubin", "-in", self.folder / "ed25519-public.pem", "-outform",
                  "DER", "-out", self.folder / "public.der")
        digest = hashlib.sha256((self.folder / "public.der").read_bytes()).hexdigest()
        slot = (self.folder / "flash.bin").read_bytes()[0x1000:0x1040]
        self.assertEqual((value["kind"], value["bytes"].lower(), value["publicKey"].lower()),
                         ("signature", slot.hex(), digest))

    def test_a_random_signature_is_proved_by_its_key_alone(self):
        """RSASSA-PSS gives other bytes in each run."""
        sign = self.SIGN.replace("Ed25519", "RsaPss_Sha256").replace("ed25519", "rsa").replace(
            "{{0x1000, 64}}", "{{0x2000, 256}}").replace("0x1080}", "0x2100}")
        self.run_tessaron("run", sign, "--manifest", "release.json", *self.policy)
        self.assertIn("[differs]", self.run_tessaron("check", sign, "--manifest", "release.json",
                                                     *self.policy, code=1))
        self.PROVE = self.PROVE.replace("Ed25519", "RsaPss_Sha256").replace(
            "{{0x1000, 64}}", "{{0x2000, 256}}").replace("ed25519-public", "rsa-public")
        shutil.copy(self.folder / "rsa-public.pem", self.folder / "ed25519-public.pem")
        self.PROVE = self.PROVE.replace("rsa-public", "ed25519-public")
        self.prove()
        self.flip("flash.bin", 0x2001)
        self.prove(code=1)


class WithPassphrase(Case):
    SCRIPT = """NEW_BUFFER @A FROM_VALUES { 1, 2, 3 }
NEW_SIGNATURE @S FROM_BUFFER @A -setType=Ed25519 -setKeyFile=givenKey
"""

    def run_with(self, passphrase_file, code=0, key="ed25519-aes.pem", **options):
        return self.run_tessaron("run", self.SCRIPT, "givenKey=" + key, "--passphrase-file",
                                 str(passphrase_file), code=code, **options)


class Passphrases(WithPassphrase):
    def test_files(self):
        for text, code in ((PASSPHRASE, 0), (PASSPHRASE + "\n", 0), (PASSPHRASE + "\r\nmore", 0),
                           (PASSPHRASE + " ", 1), ("", 1), ("\n" + PASSPHRASE, 1),
                           ("#" * 0x10001, 1)):
            with self.subTest(text=text[:20]):
                self.assertEqual("error" in self.run_with(self.write("passphrase", text), code),
                                 code == 1)
        for path in ("missing", "."):
            self.assertIn("[cannot-open]", self.run_with(path, 1))
        # A key that is not encrypted ignores it, but it has to be there.
        self.run_with(self.write("passphrase", "other"), key="ed25519.pem")
        self.run_with("missing", 1, key="ed25519.pem")


class Descriptors(WithPassphrase):
    """Pipes that the caller of the program has opened."""

    def pipe_with(self, content):
        reader, writer = os.pipe()
        self.addCleanup(os.close, reader)
        os.write(writer, content)
        os.close(writer)
        return reader, "/dev/fd/%d" % reader

    def test_pipes(self):
        passphrase, path = self.pipe_with(PASSPHRASE.encode())
        key, key_path = self.pipe_with((KEYS / "ed25519-aes.pem").read_bytes())
        self.assertEqual(self.run_with(path, key=key_path, pass_fds=[passphrase, key]), "")
        self.assertIn("[cannot-open]", self.run_with("/dev/fd/77", 1))
        os.mkfifo(self.folder / "fifo")
        self.assertIn("[cannot-open]", self.run_with("fifo", 1))


def secrets_of(path):
    """The parts of a private key as bytes: its numbers, and what its lines of base64 hold."""
    text = subprocess.run(["openssl", "pkey", "-in", path, "-noout", "-text"], check=True,
                          capture_output=True, text=True).stdout
    parts = {}
    for name, digits in re.findall(r"^(priv|privateExponent|prime1|prime2|exponent1|exponent2|"
                                   r"coefficient):\n((?: +[0-9a-f:]+\n)+)", text, re.M):
        parts[name] = bytes.fromhex(re.sub(r"[\s:]", "", digits)).lstrip(b"\0")
    return parts


def traces_of(path):
    """Texts and bytes that show a part of the key: 16 bytes of each in any form, and each line."""
    traces = {}
    for name, data in secrets_of(path).items():
        for at in range(0, len(data) - 15, 16):
            part = data[at:at + 16]
            traces[name + " as bytes"] = part
            traces[name + " backwards"] = part[::-1]
            traces[name + " in hexadecimal"] = part.hex().encode()
    lines = path.read_text().splitlines()[1:-1]
    traces.update({"line %d" % i: line.encode() for i, line in enumerate(lines) if len(line) > 20})
    return traces


class Secrets(Case):
    SCRIPT = """NEW_BUFFER @A EMPTY -useBufferRange={0, 0x400}
FILL_BUFFER @A WITH_FILLER { 0xFF }
FILL_BUFFER @A WITH_VALUES { 1 } -useAreas={{0, 1}}
NEW_SIGNATURE @S FROM_BUFFER @A -useAreas={{0, 1}} -setType=givenType -setKeyFile=givenKey
NEW_HASH @K FROM_KEY givenKey -setType=Hash_Sha2_256
FILL_BUFFER @A WITH_SIGNATURE @S -useAreas={{0x100, lengthOf(@S)}}
PRINT_SIGNATURE @S
PRINT_HASH @K
PRINT_BUFFER @A
WRITE_FILE out.hex WITH_BUFFERS { @A }
WRITE_FILE out.txt WITH_BUFFERS { @A } -setFormat=HexDump
"""
    OPTIONS = ["--manifest", "m.json", "--report", "r.html", "--map", "m.svg", "--depfile", "d.d"]

    def expect_none(self, traces, text, where):
        lowered = text.lower()
        for name, trace in traces.items():
            found = lowered if name.endswith("hexadecimal") else text
            self.assertNotIn(trace, found, "%s in %s" % (name, where))

    def test_what_a_run_leaves(self):
        failures = ["", "VERIFY_SIGNATURE @S FROM_BUFFER @A -setType=givenType -setKeyFile=givenKey\n",
                    "NEW_SIGNATURE @T FROM_BUFFER @A -setType=givenType -setKeyFile=damaged.pem\n"]
        self.write("passphrase", PASSPHRASE + "\n")
        for one, key in (("Ed25519", "ed25519"), ("EcdsaP256_Sha256", "p256"),
                         ("EcdsaP384_Sha384", "p384"), ("RsaPkcs1_Sha256", "rsa"),
                         ("RsaPss_Sha256", "rsa-scrypt")):
            path = self.folder / (key + ".pem")
            lines = path.read_text().splitlines(True)
            self.write("damaged.pem", "".join(lines[:2] + ["!" + lines[-2]] + lines[-1:]))
            traces = traces_of(path) if key != "rsa-scrypt" else traces_of(self.folder / "rsa.pem")
            traces["passphrase"] = PASSPHRASE.encode()
            for extra in failures:
                with self.subTest(key=key, extra=extra):
                    self.write("script.tsn", self.SCRIPT + extra)
                    own = {entry.name for entry in self.folder.iterdir()}
                    done = self.run_everything(one, path, code=1 if extra else 0)
                    self.expect_none(traces, done.stdout + done.stderr, "standard streams")
                    left = {entry.name for entry in self.folder.iterdir()} - own
                    # A run that fails leaves nothing.
                    self.assertEqual(len(left), 0 if extra else 6, left)
                    for name in left:
                        self.expect_none(traces, (self.folder / name).read_bytes(), name)
                        (self.folder / name).unlink()

    def run_everything(self, one, path, code=0):
        done = subprocess.run([PROGRAM, "run", "script.tsn", "givenType=" + one, "givenKey=" + path.name,
                               "--passphrase-file", "passphrase", *self.OPTIONS],
                              cwd=self.folder, capture_output=True, check=False, timeout=60)
        self.assertEqual(done.returncode, code, done.stderr.decode())
        return done

    def test_what_is_listed(self):
        """Key files and passphrases are no inputs."""
        self.write("passphrase", PASSPHRASE + "\n")
        self.write("script.tsn", self.SCRIPT)
        self.run_everything("RsaPss_Sha256", self.folder / "rsa-scrypt.pem")
        manifest = json.loads((self.folder / "m.json").read_text())
        self.assertEqual(manifest["inputs"], [])
        digests = [hashlib.sha256((self.folder / name).read_bytes()).hexdigest()
                   for name in ("rsa-scrypt.pem", "passphrase")]
        for name in ("m.json", "r.html", "d.d", "m.svg"):
            text = (self.folder / name).read_text().lower()
            for word in (*digests, "passphrase"):
                self.assertNotIn(word, text, name)
        self.assertNotIn("rsa-scrypt", (self.folder / "d.d").read_text())


class WhileItRuns(Case):
    """A run that has signed, and waits for an input."""

    def start(self, key, **options):
        """Returns once the statements before the input have run."""
        sign = ("NEW_SIGNATURE @S FROM_BUFFER @A -setType=%s -setKeyFile=%s\n" % key) if key else ""
        self.write("script.tsn", "NEW_BUFFER @A FROM_VALUES { 1, 2, 3 }\n" + sign +
                   "WRITE_FILE out.hex WITH_BUFFERS { @A }\nPRINT_TEXT {signed}\n"
                   "NEW_BUFFER @B FROM_FILE_BINARY fifo\n")
        self.write("passphrase", PASSPHRASE + "\n")
        if not (self.folder / "fifo").exists():
            os.mkfifo(self.folder / "fifo")
        writer = os.open(self.folder / "fifo", os.O_RDWR)
        self.addCleanup(os.close, writer)
        given = ["--passphrase-file", "passphrase"] if "aes" in sign else []
        process = subprocess.Popen([PROGRAM, "run", "-q", "script.tsn", *given], cwd=self.folder,
                                   stdout=subprocess.PIPE, **options)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        self.assertEqual(process.stdout.readline(), b"signed\n")
        return process

    def test_temporary_files(self):
        process = self.start(("Ed25519", "ed25519-aes.pem"))
        process.kill()
        process.wait()
        left, = self.folder.glob(".out.hex.*")
        traces = {**traces_of(self.folder / "ed25519.pem"), "passphrase": PASSPHRASE.encode()}
        self.assertFalse([name for name, trace in traces.items() if trace in left.read_bytes()])

    def test_memory(self):
        """Once it has signed, the key is no longer there; the passphrase may serve another one."""
        for key, plain in ((("Ed25519", "ed25519-aes.pem"), "ed25519.pem"),
                           (("EcdsaP256_Sha256", "p256-sec1.pem"), "p256-sec1.pem"),
                           (("RsaPss_Sha256", "rsa.pem"), "rsa.pem")):
            with self.subTest(key=key):
                process = self.start(key)
                traces, memory = traces_of(self.folder / plain), self.memory_of(process)
                self.assertIn(b"NEW_SIGNATURE", memory)
                self.assertFalse([name for name, trace in traces.items() if trace in memory])

    def memory_of(self, process):
        parts = []
        try:
            with open("/proc/%d/mem" % process.pid, "rb") as memory:
                for line in pathlib.Path("/proc/%d/maps" % process.pid).read_text().splitlines():
                    first, last, rights = re.match(r"(\w+)-(\w+) (\S+)", line).groups()
                    size = int(last, 16) - int(first, 16)
                    # Sanitizers reserve terabytes, which the program does not see.
                    if rights.startswith("rw") and size < 1 << 28:
                        memory.seek(int(first, 16))
                        parts.append(memory.read(size))
        except PermissionError:
            self.skipTest("only the superuser may read the memory of such a process")
        return b"".join(parts)

    def test_core_files(self):
        def dumps(key):
            limits = resource.RLIM_INFINITY, resource.RLIM_INFINITY
            process = self.start(key, preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_CORE,
                                                                            limits))
            process.send_signal(signal.SIGSEGV)
            return os.WCOREDUMP(os.waitpid(process.pid, 0)[1])

        if not dumps(None):
            self.skipTest("this machine writes no core files")
        self.assertFalse(dumps(("Ed25519", "ed25519.pem")))


if __name__ == "__main__":
    unittest.main()
