#!/usr/bin/env python3
"""Packs the extension for Visual Studio Code and tests what is in the package: vsix.py TESSARON FOLDER

Skipped where the npm registry cannot be reached."""
import json
import pathlib
import subprocess
import sys
import xml.etree.ElementTree
import zipfile

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1]))
sys.dont_write_bytecode = True
import require  # noqa: E402

ROOT = pathlib.Path(__file__).resolve().parents[2]
NAMES = {"v": "http://schemas.microsoft.com/developer/vsx-schema/2011"}


def main(program, folder):
    require.require(["npm", "node"])
    package = pathlib.Path(folder, "tessaron.vsix")
    packed = subprocess.run([sys.executable, ROOT / "scripts" / "vsix.py", package], text=True,
                            stdout=subprocess.PIPE, check=False)
    if packed.returncode == 77:
        require.skip(packed.stdout.strip().removeprefix("skipped: "))
    if packed.returncode != 0:
        sys.exit(packed.stdout)
    with zipfile.ZipFile(package) as archive:
        archive.extractall(folder)
        names = set(archive.namelist())
        manifest = xml.etree.ElementTree.fromstring(archive.read("extension.vsixmanifest"))
        types = xml.etree.ElementTree.fromstring(archive.read("[Content_Types].xml"))
    described = json.loads(pathlib.Path(folder, "extension/package.json").read_text())
    identity = manifest.find("v:Metadata/v:Identity", NAMES).attrib
    for key, name in (("Id", "name"), ("Version", "version"), ("Publisher", "publisher")):
        assert identity[key] == described[name], (identity, described)
    for asset in manifest.findall("v:Assets/v:Asset", NAMES):
        assert asset.attrib["Path"] in names, asset.attrib
    contributes = described["contributes"]
    for path in [described["main"], contributes["grammars"][0]["path"], contributes["languages"][0]["configuration"]]:
        assert "extension/" + path.removeprefix("./") in names, path
    endings = {entry.attrib["Extension"] for entry in types}
    assert {pathlib.PurePosixPath(name).suffix for name in names} - {"", ".xml"} <= endings, endings
    return subprocess.run(["node", ROOT / "tests" / "editors" / "vscode_extension.js",
                           pathlib.Path(folder, "extension"), program], timeout=120, check=False).returncode


sys.exit(main(*sys.argv[1:]))
