#!/usr/bin/env python3
"""Makes images with the recipes for MCUboot and compares them with images that are made here, from
the descriptions of the format that MCUboot publishes (docs/design.md, docs/imgtool.md and image.h),
with keys and signatures of OpenSSL:  recipes_mcuboot.py TESSARON RECIPES"""
import hashlib
import shutil
import struct
import subprocess
import unittest

from installed_program import ROOT, InstalledProgram

VERSION = (1, 255, 65535, 4294967295)
VERSION_WORDS = "major=1, minor=255, revision=65535, build=4294967295"
KEY_TYPES = {"ed25519": 0x24, "p256": 0x22}
RECIPE_OF_KEY = {"ed25519": "ed25519", "p256": "ecdsa"}
MAGIC = bytes.fromhex("77c295f360d2ef7f3552500f2cb67980")
WIDE_MAGIC = bytes.fromhex("2de15d29410b8d77679c110f1f8a")  # after the write size in 16 bits
# The TLVs of an image that imgtool signed with a key for P-256 that MCUboot publishes for tests, and
# this key. They are the last bytes of app_signed.hex of github.com/hsanderr/fw-upgrade.
PUBLISHED_TLVS = bytes.fromhex(
    "076996001000200054ac771af5bc0ee0a2591204e634669c29fdbf2f856b4f771d99a11d0133ed4d"
    "01002000e30466f6b8470c1f29070b17f1e2d3e94d445e3f608087fdc711e4382bb538b622004600"
    "304402206c6d69a7ca8ed8608c651b5f76f9c09818cb2e29dd70540a5ab24794f533371f022034fb"
    "3595510d1c6d566f3c9aa709f692026f57aa33209946fa28c8c870447cf1")
PUBLISHED_KEY = bytes.fromhex(
    "3059301306072a8648ce3d020106082a8648ce3d030107034200042acb403ce8feed5ba44995a1a9"
    "1daee8dbbe1937cd14fb2f245737e5953988d994b9d65aebd7cdd5308ad6fe48b24a6a810ee5f07d"
    "8b6834cc3a6afc538efac1")


def sha256(data):
    return hashlib.sha256(data).digest()


def tlv(kind, value):
    return struct.pack("<BBH", kind, 0, len(value)) + value


def tlv_area(magic, *tlvs):
    area = b"".join(tlvs)
    return struct.pack("<HH", magic, 4 + len(area)) + area


def body(app, header_size, counter=None, reserve=b"\xff", load_address=0):
    """What is hashed: header, application and protected TLVs."""
    protected = b""
    if counter is not None:
        protected = tlv_area(0x6908, tlv(0x50, struct.pack("<I", counter)))
    header = struct.pack("<IIHHIIBBHII", 0x96F3B83D, load_address, header_size, len(protected),
                         len(app), 0x20 if load_address else 0, *VERSION, 0)
    return header.ljust(header_size, reserve) + app + protected


def padded(image, size, align, sectors, image_ok):
    wide = max(8, align)
    magic = MAGIC if align <= 8 else struct.pack("<H", align) + WIDE_MAGIC
    flags = bytes([image_ok]).ljust(wide, b"\xff") + magic.rjust(-(-16 // wide) * wide, b"\xff")
    assert len(image) + 3 * sectors * align + 3 * wide + len(flags) <= size
    return image.ljust(size - len(flags), b"\xff") + flags


class Mcuboot(InstalledProgram):
    def setUp(self):
        super().setUp()
        self.install()
        for key in KEY_TYPES:
            for name in (key + ".pem", key + "-public.pem"):
                shutil.copy(ROOT / "tests" / "signature" / "keys" / name, self.work)
                (self.work / name).chmod(0o600)

    def openssl(self, *arguments, data=None):
        return subprocess.run(["openssl", *arguments], cwd=self.work, input=data, check=True,
                              stdout=subprocess.PIPE).stdout

    def image(self, signed, key, signature=None):
        """An image with its TLVs, signed by OpenSSL unless there is a signature."""
        digest = sha256(signed)
        if signature is None:
            (self.work / "digest").write_bytes(digest)
            signature = self.openssl("pkeyutl", "-sign", "-rawin", "-inkey", key + ".pem", "-in",
                                     "digest")
        public = self.openssl("pkey", "-in", key + ".pem", "-pubout", "-outform", "DER")
        return signed + tlv_area(0x6907, tlv(0x10, digest), tlv(0x01, sha256(public)),
                                 tlv(KEY_TYPES[key], signature))

    def script(self, key, app, more_app="", slot=0x08020000, header_size=0x20, at=None,
               counter=None, more=""):
        """A script that signs an application and writes signed.bin."""
        (self.work / "app.bin").write_bytes(app)
        at = slot + header_size if at is None else at
        text = "NEW_BUFFER @App FROM_FILE_BINARY app.bin -changeStartAddressTo=%d %s\n" % (
            at, more_app)
        text += ("INCLUDE mcuboot-header.tsn WITH { image=@App, result=@Body, slot=%d, "
                 "headerSize=%d,\n    %s%s }\n" % (slot, header_size, VERSION_WORDS, more))
        name = "@Body"
        if counter is not None:
            name = "@Counted"
            text += ("INCLUDE mcuboot-counter.tsn WITH { image=@Body, result=@Counted, "
                     "counter=%d }\n" % counter)
        return text + (
            "INCLUDE mcuboot-%s.tsn WITH { image=%s, result=@Signed, key=%s.pem }\n"
            "WRITE_FILE signed.bin WITH_BUFFERS {@Signed} -setFormat=RawBinary\n"
            % (RECIPE_OF_KEY[key], name, key))

    def verifying(self, key, tlvs="endOf(@Release) - 144"):
        return ("NEW_BUFFER @Release FROM_FILE_BINARY signed.bin -changeStartAddressTo=0x08020000\n"
                "INCLUDE mcuboot-verify-%s.tsn WITH { image=@Release, tlvs=%s, "
                "key=%s-public.pem }\n" % (RECIPE_OF_KEY[key], tlvs, key))

    def test_ed25519(self):
        app = bytes(range(1, 200))
        self.assert_made(self.script("ed25519", app, header_size=0x200), {
            "signed.bin": self.image(body(app, 0x200), "ed25519")})
        # A security counter, and an application that ends with addresses without bytes.
        self.assert_made(
            self.script("ed25519", app, "-useBufferRange={0, 202}", slot=0, counter=4294967295),
            {"signed.bin": self.image(body(app + b"\xff" * 3, 0x20, 4294967295), "ed25519")})
        # Zeros where the header goes, and an image that runs in RAM.
        self.assert_made(
            self.script("ed25519", bytes(64) + app, header_size=64, at=0x08020000,
                        more=", loadAddress=0x20000000, flags=0x20"),
            {"signed.bin": self.image(body(app, 64, None, b"\0", 0x20000000), "ed25519")})

    def test_ecdsa(self):
        """The lengths of the signatures differ, as they are in DER."""
        lengths = set()
        for app in (b"%d" % number for number in range(8)):
            self.assertEqual(self.run_script(self.script("p256", app, counter=1)), (0, ""))
            signed = body(app, 0x20, 1)
            made = (self.work / "signed.bin").read_bytes()
            signature = made[len(signed) + 80:]
            self.assertEqual(made, self.image(signed, "p256", signature))
            (self.work / "signature").write_bytes(signature)
            self.openssl("dgst", "-sha256", "-verify", "p256-public.pem", "-signature",
                         "signature", data=signed)
            lengths.add(len(signature))
        self.assertGreater(len(lengths), 1)

    def test_a_signature_made_elsewhere(self):
        """The private key is not needed here."""
        app = b"application"
        signed = body(app, 0x20)
        signature = self.openssl("dgst", "-sha256", "-sign", "p256.pem", data=signed)
        (self.work / "signature").write_bytes(signature)
        script = self.script("p256", app).replace("INCLUDE mcuboot-ecdsa.tsn WITH {", (
            "NEW_SIGNATURE @Signature FROM_FILE signature\n"
            "INCLUDE mcuboot-tlvs.tsn WITH { signature=@Signature, type=0x22,"))
        self.assert_made(script.replace("key=p256.pem", "key=p256-public.pem"),
                         {"signed.bin": self.image(signed, "p256", signature)})

    def test_tlvs_of_imgtool(self):
        """All but the digest of the image, which is another one here."""
        (self.work / "signature").write_bytes(PUBLISHED_TLVS[80:])
        self.openssl("pkey", "-pubin", "-inform", "DER", "-out", "key.pem", data=PUBLISHED_KEY)
        self.assert_made(
            "NEW_BUFFER @Body FROM_VALUES { 1 }\n"
            "NEW_SIGNATURE @Signature FROM_FILE signature\n"
            "INCLUDE mcuboot-tlvs.tsn WITH { image=@Body, result=@Signed, signature=@Signature,\n"
            "    type=0x22, key=key.pem }\n"
            "WRITE_FILE signed.bin WITH_BUFFERS {@Signed} -setFormat=RawBinary\n",
            {"signed.bin": b"\1" + PUBLISHED_TLVS[:8] + sha256(b"\1") + PUBLISHED_TLVS[40:]})

    def test_slots(self):
        """The smallest slot that takes the image, and one that is a byte smaller. What the trailer
        has depends on how many bytes the flash writes at once."""
        image = bytes(range(100, 200))
        (self.work / "image.bin").write_bytes(image)
        for recipe, align, sectors, image_ok, trailer in (
                ("slot", 1, 128, 0xFF, 432), ("slot", 4, 128, 0x01, 1584),
                ("slot", 8, 300, 0x01, 7248), ("slot", 8, 0, 0xFF, 48),
                ("slot-wide", 16, 128, 0x01, 6224), ("slot-wide", 32, 10, 0xFF, 1120)):
            script = (
                "NEW_BUFFER @Signed FROM_FILE_BINARY image.bin -changeStartAddressTo=0x08020000\n"
                "INCLUDE mcuboot-%s.tsn WITH { image=@Signed, result=@Slot, slotSize=%%d + 100,\n"
                "    align=%d, sectors=%d, imageOk=%d }\n"
                "WRITE_FILE slot.bin WITH_BUFFERS {@Slot} -setFormat=RawBinary\n"
                % (recipe, align, sectors, image_ok))
            for size in (trailer, trailer + 777):
                self.assert_made(script % size, {
                    "slot.bin": padded(image, size + 100, align, sectors, image_ok)})
            code, output = self.run_script(script % (trailer - 1))
            self.assertEqual((code, "[conflict]" in output), (1, True), output)
            wrong = script.replace("align=%d" % align, "align=%d" % (16 if align <= 8 else 8))
            code, output = self.run_script(wrong % 100000)
            self.assertEqual((code, "[number-range]" in output), (1, True), output)

    def test_every_byte_is_verified(self):
        for key in KEY_TYPES:
            self.assertEqual(self.run_script(self.script(key, b"app", counter=1)), (0, ""))
            made = (self.work / "signed.bin").read_bytes()
            script = self.verifying(key, "0x08020020 + 3 + 12")
            self.assertEqual(self.run_script(script), (0, ""))
            for i, byte in enumerate(made):
                changed = made[:i] + bytes([byte ^ 1 << i % 8]) + made[i + 1:]
                (self.work / "signed.bin").write_bytes(changed)
                code, output = self.run_script(script)
                is_refused = code == 1 and ("[verify]" in output or "[signature]" in output)
                self.assertTrue(is_refused, "%s: byte %d: %s" % (key, i, output))

    def test_verifying_refuses_other_keys_and_lengths(self):
        other = self.openssl("genpkey", "-algorithm", "ed25519")
        (self.work / "other.pem").write_bytes(other)
        self.openssl("pkey", "-in", "other.pem", "-pubout", "-out", "other-public.pem")
        self.assertEqual(self.run_script(self.script("ed25519", b"app")), (0, ""))
        made = (self.work / "signed.bin").read_bytes()
        script = self.verifying("ed25519")
        self.assertEqual(self.run_script(script), (0, ""))
        self.assertEqual(
            self.run_script(script.replace("ed25519-public.pem", "other-public.pem"))[0], 1)
        for changed in (made[:-1], made + b"\0", made[-144:], b""):
            (self.work / "signed.bin").write_bytes(changed)
            self.assertEqual(self.run_script(script)[0], 1, changed)
        # In a slot, what follows the TLVs is not looked at.
        (self.work / "signed.bin").write_bytes(made.ljust(500, b"\xff") + MAGIC)
        self.assertEqual(self.run_script(self.verifying("ed25519", "0x08020000 + 35")), (0, ""))

    def test_the_private_key_makes_the_same_again(self):
        for key in KEY_TYPES:
            self.assertEqual(self.run_script(self.script(key, b"app"), "--manifest", "m"), (0, ""))
            check = ("check", "s.tsn", "--manifest", "m", "--against-disk")
            self.assertEqual(self.tessaron(*check), (0, ""))
            made = (self.work / "signed.bin").read_bytes()
            (self.work / "signed.bin").write_bytes(made[:-1] + bytes([made[-1] ^ 1]))
            self.assertEqual(self.tessaron(*check)[0], 1)

    def test_what_is_refused(self):
        app = b"\1" + bytes(100)
        sound = self.script("ed25519", app, counter=1)
        for change, word in (
                # The application begins where the header goes, partly, or not after it.
                (("StartAddressTo=134348832", "StartAddressTo=134348800"), "[verify]"),
                (("StartAddressTo=134348832", "StartAddressTo=134348831"), "[verify]"),
                (("StartAddressTo=134348832", "StartAddressTo=134348833"), "[verify]"),
                (("StartAddressTo=134348832", "StartAddressTo=0"), "[number-range]"),
                (("headerSize=32", "headerSize=31"), "[number-range]"),
                (("INCLUDE mcuboot-ed25519.tsn", "INCLUDE mcuboot-counter.tsn WITH { "
                  "image=@Counted, result=@More, counter=2 }\nINCLUDE mcuboot-ed25519.tsn"),
                 "[verify]"),
                (("key=ed25519.pem", "key=p256.pem"), "[key]"),
                (("key=ed25519.pem", "key=ed25519-public.pem"), "[key]"),
                (("major=1", "major=256"), "[number-range]"),
                (("minor=255", "minor=256"), "[number-range]"),
                (("revision=65535", "revision=65536"), "[value-size]"),
                (("NEW_BUFFER @App FROM_FILE_BINARY app.bin", "NEW_BUFFER @App EMPTY"), "@App"),
                (("WRITE_FILE", "INCLUDE mcuboot-ecdsa.tsn WITH { image=@Body, result=@Other, "
                  "key=p256.pem }\nWRITE_FILE"), "[duplicate-name]")):
            self.assertEqual(self.run_script(sound), (0, ""))
            self.assertIn(change[0], sound)
            code, output = self.run_script(sound.replace(*change))
            self.assertEqual((code != 0, word in output), (True, True), (change, output))


if __name__ == "__main__":
    unittest.main()
