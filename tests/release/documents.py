#!/usr/bin/env python3
"""Tests the documents that a run writes of itself beside the manifest, and their signatures:

    documents.py tessaron [--without-signatures]

Python, sha256sum, openssl and the schema of CycloneDX are what they are held against."""
import hashlib
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import uuid

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1]))
sys.dont_write_bytecode = True
import require  # noqa: E402

jsonschema = require.module("jsonschema")

PROGRAM = str(pathlib.Path(sys.argv.pop(1)).resolve())
HAS_SIGNATURES = "--without-signatures" not in sys.argv
sys.argv = [one for one in sys.argv if one not in ("", "--without-signatures")]
SCHEMA = json.loads((pathlib.Path(__file__).resolve().parents[1] /
                     "data/cyclonedx/bom-1.5.SNAPSHOT.schema.json").read_text())
# That of the serial numbers of tessaron's bills.
NAMESPACE = uuid.UUID("4c1e8a57-93d0-4f26-b56b-0e71c2aa38f4")
SCRIPT = """NEW_BUFFER @App FROM_FILE inFile -useBufferRange={0, 32}
NEW_BUFFER @Boot FROM_FILE boot.hex
NEW_CRC @Crc FROM_BUFFER @Boot
FILL_BUFFER @App WITH_CRC @Crc -useAreas={{8, 4}}
WRITE_FILE app.bin WITH_BUFFERS {@App} -setFormat=RawBinary
WRITE_FILE boot.bin WITH_BUFFERS {@Boot} -setFormat=RawBinary
"""
DOCUMENTS = {"--manifest": "m.json", "--provenance": "p.json", "--sbom": "s.json",
             "--checksums": "SUMS"}
ALL = [word for row in DOCUMENTS.items() for word in row]
RUN = ["r.tsn", "inFile=app.hex"]


def tessaron(*arguments, code=0, folder=".", **environment):
    done = subprocess.run([PROGRAM, *arguments], capture_output=True, check=False, cwd=folder,
                          env=dict(os.environ, **environment))
    errors = done.stderr.decode(errors="replace")
    assert done.returncode == code, (arguments, done.returncode, done.stdout, errors)
    return errors.partition("more: tessaron help")[0]


def text(path):
    return pathlib.Path(path).read_text()


def write(path, contents):
    pathlib.Path(path).write_text(contents)


def write_secret(path, contents):
    write(path, contents)
    os.chmod(path, 0o600)


def sha256(path):
    return hashlib.sha256(pathlib.Path(path).read_bytes()).hexdigest()


def resource(path):
    return {"name": path, "digest": {"sha256": sha256(path)}}


def openssl(*arguments, code=0):
    done = subprocess.run(["openssl", *arguments], capture_output=True, text=True, check=False)
    assert done.returncode == code, (arguments, done.stdout, done.stderr)


def check_sums(code=0):
    return subprocess.run(["sha256sum", "--check", "--strict", "SUMS"], capture_output=True,
                          check=False).returncode == code


def version():
    line = subprocess.run([PROGRAM, "--version"], capture_output=True, text=True, check=True).stdout
    return line.split(" ", 1)[1].strip()


def check_resource(test, one, needed):
    """What in-toto's specification of a ResourceDescriptor demands, and SLSA's of a dependency."""
    test.assertLessEqual(set(one), {"name", "uri", "digest", "content", "downloadLocation",
                                    "mediaType", "annotations"})
    test.assertLessEqual(needed, set(one))
    test.assertIsInstance(one["name"], str)
    for digest in one["digest"].values():
        test.assertRegex(digest, "^[0-9a-f]{64}$")


def check_statement(test, statement):
    """The published texts of Statement v1 and SLSA provenance v1, field by field: which there are,
    which are required, and of what type they are."""
    uri = re.compile(r"^[a-z][a-z0-9+.-]*:[!-~]+$")
    test.assertEqual(set(statement), {"_type", "subject", "predicateType", "predicate"})
    test.assertEqual(statement["_type"], "https://in-toto.io/Statement/v1")
    test.assertEqual(statement["predicateType"], "https://slsa.dev/provenance/v1")
    test.assertNotEqual(statement["subject"], [])
    for subject in statement["subject"]:
        check_resource(test, subject, {"digest"})
    predicate = statement["predicate"]
    test.assertEqual(set(predicate), {"buildDefinition", "runDetails"})
    definition, details = predicate["buildDefinition"], predicate["runDetails"]
    test.assertLessEqual({"buildType", "externalParameters"}, set(definition))
    test.assertLessEqual(set(definition), {"buildType", "externalParameters", "internalParameters",
                                           "resolvedDependencies"})
    test.assertRegex(definition["buildType"], uri)
    test.assertIsInstance(definition["externalParameters"], dict)
    for dependency in definition["resolvedDependencies"]:
        check_resource(test, dependency, {"name", "digest"})
    test.assertLessEqual({"builder"}, set(details))
    test.assertLessEqual(set(details), {"builder", "metadata", "byproducts"})
    test.assertLessEqual(set(details["builder"]), {"id", "version", "builderDependencies"})
    test.assertRegex(details["builder"]["id"], uri)
    for name, value in details["builder"]["version"].items():
        test.assertIsInstance(name + value, str)


def check_bill(test, bill):
    """The schema, and what the text of CycloneDX demands besides."""
    jsonschema.Draft7Validator(SCHEMA).validate(bill)
    test.assertEqual((bill["bomFormat"], bill["specVersion"], bill["version"]),
                     ("CycloneDX", "1.5", 1))
    refs = [component["bom-ref"] for component in bill["components"]]
    test.assertEqual(len(refs), len(set(refs)))
    for dependency in bill["dependencies"]:
        test.assertLessEqual({dependency["ref"], *dependency["dependsOn"]}, set(refs))


def graph(bill):
    """The names that each output depends on."""
    names = {one["bom-ref"]: one["name"] for one in bill["components"]}
    return {names[one["ref"]]: {names[ref] for ref in one["dependsOn"]}
            for one in bill["dependencies"]}


class Folder(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        os.chdir(self.folder.name)
        write("app.hex", ":0400000001020304F2\n:00000001FF\n")
        write("boot.hex", ":0400100005060708D2\n:00000001FF\n")
        write("r.tsn", SCRIPT)

    def tearDown(self):
        os.chdir("/")
        self.folder.cleanup()

    def documents(self):
        return {name: pathlib.Path(name).read_bytes() for name in DOCUMENTS.values()}


class Documents(Folder):
    def test_provenance(self):
        tessaron("run", *RUN, *ALL)
        statement = json.loads(text("p.json"))
        check_statement(self, statement)
        self.assertEqual(statement["subject"], [resource("app.bin"), resource("boot.bin")])
        definition = statement["predicate"]["buildDefinition"]
        self.assertEqual(definition["externalParameters"],
                         {"script": "r.tsn", "variables": {"inFile": "app.hex"}})
        self.assertEqual(definition["resolvedDependencies"],
                         [resource("r.tsn"), resource("app.hex"), resource("boot.hex")])
        self.assertEqual(statement["predicate"]["runDetails"]["builder"]["version"],
                         {"tessaron": version()})

    def test_provenance_has_all_that_changes_a_run(self):
        """Options that let more pass, and the date; not those that let less pass."""
        tessaron("run", *RUN, *ALL, "--warn=conflict", "--ignore=tolerated", "--error=overlap",
                 "--werror", SOURCE_DATE_EPOCH="1700000000")
        parameters = json.loads(text("p.json"))["predicate"]["buildDefinition"]["externalParameters"]
        self.assertEqual(parameters["diagnostics"], {"tolerated": "ignored"})
        self.assertEqual(parameters["sourceDateEpoch"], "1700000000")
        self.assertEqual(json.loads(text("s.json"))["metadata"]["timestamp"],
                         "2023-11-14T22:13:20Z")
        check_bill(self, json.loads(text("s.json")))
        tessaron("run", *RUN, *ALL, "--warn=conflict", SOURCE_DATE_EPOCH="soon")
        parameters = json.loads(text("p.json"))["predicate"]["buildDefinition"]["externalParameters"]
        self.assertEqual(parameters["diagnostics"], {"conflict": "warning"})
        self.assertNotIn("sourceDateEpoch", parameters)

    def test_bill_of_materials(self):
        tessaron("run", *RUN, *ALL)
        bill = json.loads(text("s.json"))
        jsonschema.Draft7Validator.check_schema(SCHEMA)
        check_bill(self, bill)
        self.assertEqual(bill["metadata"], {"tools": {"components": [
            {"type": "application", "name": "tessaron", "version": version()}]}})
        self.assertEqual([(one["type"], one["name"], one["hashes"]) for one in bill["components"]],
                         [(kind, name, [{"alg": "SHA-256", "content": sha256(name)}])
                          for kind, name in (("firmware", "app.bin"), ("firmware", "boot.bin"),
                                             ("file", "r.tsn"), ("file", "app.hex"),
                                             ("file", "boot.hex"))])
        self.assertEqual(graph(bill), {"app.bin": {"r.tsn", "app.hex", "boot.hex"},
                                       "boot.bin": {"r.tsn", "boot.hex"}})
        serial = bill["serialNumber"]
        self.assertEqual(serial, uuid.uuid5(NAMESPACE, text("s.json").replace(serial, "")).urn)
        bill["components"][0]["kind"] = "firmware"
        with self.assertRaises(jsonschema.ValidationError):
            check_bill(self, bill)

    def test_outputs_depend_on_what_their_bytes_and_numbers_come_from(self):
        """Also through outputs that are read again, numbers, included files, symbols of the command
        line, and bytes that were replaced after they were written."""
        write("more.tsn", "NEW_BUFFER @More FROM_FILE app.bin -useBufferRange={0, 8}\n")
        write("r.tsn", """NEW_BUFFER @App FROM_FILE app.hex
WRITE_FILE app.bin WITH_BUFFERS {@App} -setFormat=RawBinary
FILL_BUFFER @App WITH_VALUES {0} -useAreas={{0, 4}}
NEW_BUFFER @Boot FROM_FILE boot.hex
NEW_BUFFER @Length FROM_VALUES {lengthOf(@Boot)}
NEW_HASH @Hash FROM_BUFFER @Length -setType=Hash_Sha2_256
NEW_BUFFER @Hash FROM_VALUES {0} -useBufferRange={0, 32}
FILL_BUFFER @Hash WITH_HASH @Hash -useAreas={{0, 32}}
INCLUDE more.tsn
WRITE_FILE length.hex WITH_BUFFERS {@Length}
WRITE_FILE hash.hex WITH_BUFFERS {@Hash}
WRITE_FILE more.hex WITH_BUFFERS {@More}
NEW_BUFFER @Fixed FROM_VALUES {1}
WRITE_FILE fixed.hex WITH_BUFFERS {@Fixed}
NEW_BUFFER @Seen FROM_FILE seen.hex
VERIFY_BUFFER @Seen WITH_VALUES {1, 2, 3, 4}
""")
        shutil.copy("app.hex", "seen.hex")
        tessaron("run", "r.tsn", "--sbom", "s.json", "--ignore=in-place")
        bill = json.loads(text("s.json"))
        check_bill(self, bill)
        always = {"r.tsn", "more.tsn"}
        self.assertEqual(graph(bill), {
            "app.bin": always | {"app.hex"}, "length.hex": always | {"boot.hex"},
            "hash.hex": always | {"boot.hex"}, "more.hex": always | {"app.hex"},
            "fixed.hex": always})
        self.assertIn("seen.hex", [one["name"] for one in bill["components"]])

    def test_checksums(self):
        """Names are written as sha256sum writes and reads them. A pipe, and a file that is gone, can
        not be checked."""
        names = ["plain.bin", "with blank.bin", "b\\ack.bin", "b\\nack.bin", "l\nine.bin",
                 "c\rr.bin", "*star.bin", "-", "h\u00e4.bin", os.fsdecode(b"bad\xff.bin"),
                 os.fsdecode(b"bad\xfe.bin"), "sub/in.bin"]
        os.mkdir("sub")
        script = b"NEW_BUFFER @A FROM_VALUES {BYTE}\n"
        for number, name in enumerate([*names, "gone.bin", "/dev/null"]):
            script += b"NEW_BUFFER @%d FROM_VALUES {%d}\n" % (number, number)
            script += b"WRITE_FILE \"%s\" WITH_BUFFERS {@%d} -setFormat=RawBinary\n" % (
                os.fsencode(name), number)
        pathlib.Path("n.tsn").write_bytes(script + b"CALL_APP rm WITH_ARGUMENTS {gone.bin}\n")
        arguments = ("n.tsn", "BYTE=1", "--ignore=unused-image", "--ignore=backslash-path", *ALL)
        tessaron("run", *arguments)
        wanted = subprocess.run(["sha256sum", "--binary", "--", *["./-" if name == "-" else name
                                                                 for name in names]],
                                stdout=subprocess.PIPE, check=True).stdout
        self.assertEqual(pathlib.Path("SUMS").read_bytes(), wanted)
        self.assertTrue(check_sums())
        write("plain.bin", "changed")
        self.assertTrue(check_sums(code=1))
        # JSON has no bytes that are not UTF-8.
        shown = [re.sub("[\udc80-\udcff]", "\ufffd", name) for name in [*names, os.path.relpath("/dev/null")]]
        statement = json.loads(text("p.json"))
        check_statement(self, statement)
        self.assertEqual([one["name"] for one in statement["subject"]], shown)
        bill = json.loads(text("s.json"))
        check_bill(self, bill)
        self.assertEqual([one["name"] for one in bill["components"]], [*shown, "n.tsn"])

    def test_same_bytes_elsewhere(self):
        tessaron("run", *RUN, *ALL)
        first = self.documents()
        tessaron("run", *RUN, *ALL)
        self.assertEqual(self.documents(), first)
        os.mkdir("elsewhere")
        for name in ("app.hex", "boot.hex", "r.tsn"):
            shutil.copy(name, "elsewhere")
        here = str(pathlib.Path("elsewhere").resolve())
        tessaron("run", "-C", here, here + "/r.tsn", "inFile=" + here + "/app.hex", *ALL)
        os.chdir("elsewhere")
        self.assertEqual(self.documents(), first)
        self.assertTrue(check_sums())

    def test_nothing_to_say(self):
        """A run without outputs has an empty list and an empty bill; nothing could be the subject of
        its provenance."""
        write("none.tsn", "NEW_BUFFER @A FROM_FILE app.hex\n")
        options = ("none.tsn", "--ignore=unused-image", "--sbom", "s.json", "--checksums", "SUMS")
        tessaron("run", *options)
        self.assertEqual(text("SUMS"), "")
        bill = json.loads(text("s.json"))
        check_bill(self, bill)
        self.assertEqual((graph(bill), len(bill["components"])), ({}, 2))
        os.remove("SUMS")
        for command in ("run", "check"):
            self.assertEqual(tessaron(command, *options[:2], "--provenance", "p.json", code=1),
                             "tessaron: error: cannot make the provenance p.json: the run has no "
                             "output that it could be about [cannot-write]\n")
        tessaron("run", *options, "--provenance", "p.json", code=1)
        self.assertFalse(os.path.exists("SUMS") or os.path.exists("p.json"))

    def test_all_or_nothing(self):
        """A statement that fails, a document that cannot be written, or one at the place of another
        file leaves nothing new."""
        write("bad.tsn", SCRIPT + "VERIFY_BUFFER @App WITH_VALUES {9} -useAreas={{0, 1}}\n")
        for script, changed, said in (
                ("bad.tsn", {}, "[verify]"),
                ("r.tsn", {"--sbom": "none/s.json"}, "cannot write none/s.json"),
                ("r.tsn", {"--sbom": "app.hex"}, "the input app.hex is also the bill of materials"),
                ("r.tsn", {"--provenance": "./app.bin"}, "app.bin is also the provenance"),
                ("r.tsn", {"--checksums": "r.tsn"}, "the list of checksums r.tsn is also the script"),
                ("r.tsn", {"--checksums": "p.json"}, "the list of checksums p.json is also the "
                                                     "provenance")):
            options = [word for row in dict(DOCUMENTS, **changed).items() for word in row]
            before = set(os.listdir())
            self.assertIn(said, tessaron("run", script, "inFile=app.hex", *options, code=1))
            self.assertEqual(set(os.listdir()), before, said)

    def test_check(self):
        """Each document is compared with what the run would write, and the difference is named."""
        tessaron("run", *RUN, *ALL)
        self.assertEqual(tessaron("check", *RUN, *ALL), "")
        digest = sha256("app.bin")
        for option, old, new, hint in (
                ("--provenance", '"name": "app.bin"', '"name": "b.bin"',
                 '/subject/0/name is "b.bin", not "app.bin"'),
                ("--provenance", '"script": "r.tsn",', "",
                 "/predicate/buildDefinition/externalParameters/script is missing"),
                ("--provenance", '"script": "r.tsn",', '"script": "r.tsn", "more": 1,',
                 "/predicate/buildDefinition/externalParameters/more is not there in this run"),
                ("--provenance", "  ", " ", "its values are the same, and their text is another"),
                ("--sbom", '"version": 1', '"version": 2', "/version is 2, not 1"),
                ("--sbom", '"version": 1', '"version": ' + "[" * 1000000 + "]" * 1000000,
                 "/version is a list, not 1"),
                ("--sbom", text("s.json"), "[]", "it is a list, not an object"),
                ("--sbom", "{", "", "it is not JSON"),
                ("--checksums", digest, "0" * 64,
                 "line 1 is %s *app.bin, not %s *app.bin" % ("0" * 64, digest))):
            path = DOCUMENTS[option]
            kept = text(path)
            write(path, kept.replace(old, new, 1))
            self.assertEqual(tessaron("check", *RUN, *ALL, code=1).splitlines()[1:], ["    " + hint])
            write(path, kept)
            os.remove(path)
            self.assertIn("cannot open %s: " % path, tessaron("check", *RUN, *ALL, code=1))
            write(path, kept)
        write("app.hex", ":0400000001020305F1\n:00000001FF\n")
        errors = tessaron("check", *RUN, *ALL, code=1)
        for name in ("provenance p.json", "bill of materials s.json", "list of checksums SUMS"):
            self.assertIn("the %s is not what the run writes today [differs]" % name, errors)


@unittest.skipUnless(HAS_SIGNATURES, "the program was built without signatures")
class Signatures(Folder):
    KEYS = {"ed": ["ED25519"], "p256": ["EC", "-pkeyopt", "ec_paramgen_curve:P-256"],
            "p384": ["EC", "-pkeyopt", "ec_paramgen_curve:P-384"],
            "rsa": ["RSA", "-pkeyopt", "rsa_keygen_bits:2048"]}

    def make(self, name, *more):
        """Makes NAME.pem and NAME.pub."""
        kind, *options = self.KEYS.get(name, more)
        openssl("genpkey", "-quiet", "-algorithm", kind, *options, "-out", name + ".pem")
        openssl("pkey", "-in", name + ".pem", "-pubout", "-out", name + ".pub")

    def verify(self, name, document, code=0):
        if name == "ed":
            openssl("pkeyutl", "-verify", "-pubin", "-inkey", "ed.pub", "-rawin", "-in", document,
                    "-sigfile", document + ".sig", code=code)
        else:
            openssl("dgst", "-sha384" if name == "p384" else "-sha256", "-verify", name + ".pub",
                    "-signature", document + ".sig", document, code=code)

    def test_openssl_verifies_each_type(self):
        for name in self.KEYS:
            self.make(name)
            for _ in range(2):
                tessaron("run", *RUN, *ALL, "--sign-manifest", name + ".pem")
                for document in DOCUMENTS.values():
                    self.verify(name, document)
            first = pathlib.Path("m.json.sig").read_bytes()
            tessaron("run", *RUN, "--manifest", "m.json", "--sign-manifest", name + ".pem")
            self.assertEqual(pathlib.Path("m.json.sig").read_bytes(), first)
            for key in (".pem", ".pub"):
                tessaron("check", *RUN, *ALL, "--sign-manifest", name + key)
            write("m.json", text("m.json") + " ")
            self.verify(name, "m.json", code=1)
            self.assertEqual(
                tessaron("check", *RUN, *ALL, "--sign-manifest", name + ".pub", code=1),
                "tessaron: error: m.json.sig is not the signature of m.json by the key %s.pub "
                "[differs]\n" % name)
        tessaron("run", *RUN, *ALL, "--sign-manifest", "ed.pem")
        self.assertIn("is not the signature", tessaron("check", *RUN, *ALL, "--sign-manifest",
                                                       "p256.pub", code=1))
        os.remove("SUMS.sig")
        self.assertIn("cannot open SUMS.sig: ", tessaron("check", *RUN, *ALL, "--sign-manifest",
                                                         "ed.pub", code=1))

    def test_a_passphrase(self):
        self.make("ed")
        openssl("pkcs8", "-topk8", "-in", "ed.pem", "-out", "secret.pem", "-passout", "pass:a b ")
        sign = [*RUN, "--manifest", "m.json", "--sign-manifest", "secret.pem"]
        for contents in ("a b \n", "a b \r\nanother line\n", "a b "):
            write_secret("pass", contents)
            tessaron("run", *sign, "--passphrase-file", "pass")
            self.verify("ed", "m.json")
            os.remove("m.json.sig")
        write_secret("pass", "a b")
        for options, reason in (([], "is encrypted [key]"),
                                (["--passphrase-file", "pass"], "cannot be decrypted: ")):
            self.assertIn("tessaron: error: the key secret.pem " + reason,
                          tessaron("run", *sign, *options, code=1))
        self.assertIn("cannot open none: ",
                      tessaron("run", *sign, "--passphrase-file", "none", code=1))

    def test_a_key_that_cannot_be_used_stops_the_run_before_it_begins(self):
        self.make("ed")
        self.make("small", "RSA", "-pkeyopt", "rsa_keygen_bits:1024")
        self.make("p521", "EC", "-pkeyopt", "ec_paramgen_curve:P-521")
        write("text.pem", "no key\n")
        write("long.pem", "x" * 1000000)
        no_key = "is not a sound key in PEM, or of an unknown algorithm or curve"
        before = set(os.listdir())
        for key, reason in (("ed.pub", "is public, and only a private key signs"),
                            ("small.pem", "has fewer than 2048 or more than 4096 bits"),
                            ("p521.pem", no_key), ("text.pem", no_key), ("long.pem", no_key)):
            self.assertEqual(
                tessaron("run", *RUN, "--manifest", "m.json", "--sign-manifest", key, code=1),
                "tessaron: error: the key %s %s [key]\n" % (key, reason))
        self.assertIn("cannot open none.pem: No such file", tessaron(
            "run", *RUN, "--manifest", "m.json", "--sign-manifest", "none.pem", code=1))
        self.assertIn("--sign-manifest requires --manifest", tessaron(
            "run", *RUN, "--checksums", "SUMS", "--sign-manifest", "ed.pem", code=2))
        write("key.tsn", "NEW_BUFFER @A FROM_VALUES {1}\nWRITE_FILE ed.pem WITH_BUFFERS {@A} "
              "-setFormat=RawBinary\n")
        kept = text("ed.pem")
        for script, manifest, said in (("key.tsn", "m.json", "the output ed.pem is also the key"),
                                       ("r.tsn", "ed.pem", "the manifest ed.pem is also the key")):
            self.assertIn(said, tessaron("run", script, "inFile=app.hex", "--manifest", manifest,
                                         "--sign-manifest", "ed.pem", code=1))
        self.assertIn("the bill of materials m.json.sig is also the signature", tessaron(
            "run", *RUN, "--manifest", "m.json", "--sbom", "m.json.sig", "--sign-manifest",
            "ed.pem", code=1))
        self.assertIn("cannot sign the manifest /dev/stdout: it is not a file", tessaron(
            "run", *RUN, "--manifest", "/dev/stdout", "--sign-manifest", "ed.pem", code=1))
        self.assertEqual(text("ed.pem"), kept)
        self.assertEqual(set(os.listdir()), before | {"key.tsn"})

    def test_nothing_of_the_key_gets_out(self):
        self.make("ed")
        openssl("pkcs8", "-topk8", "-in", "ed.pem", "-out", "secret.pem", "-passout", "pass:horse")
        write_secret("phrase", "horse\n")
        more = ["--depfile", "r.d", "--report", "r.html", "--map", "r.txt"]
        for key, options in (("ed.pem", []), ("secret.pem", ["--passphrase-file", "phrase"])):
            shown = tessaron("run", *RUN, *ALL, *more, "--sign-manifest", key, *options).encode()
            for name in [*DOCUMENTS.values(), "r.d", "r.html", "r.txt"]:
                shown += pathlib.Path(name).read_bytes()
            body = text(key).splitlines()[1]
            for secret in (key, "phrase", "horse", body, sha256(key), sha256("phrase")):
                self.assertNotIn(secret.encode(), shown)


if __name__ == "__main__":
    unittest.main()
