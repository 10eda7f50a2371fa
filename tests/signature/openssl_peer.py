"""OpenSSL as the other side: the keys that it makes, what it signs and what it verifies."""
import collections
import subprocess

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

