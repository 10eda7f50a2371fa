#!/usr/bin/env python3
"""Packs the extension for Visual Studio Code: vsix.py FILE.vsix

The package has the extension and what it needs of npm, at the versions of its lock file, and is the
same byte for byte for the same sources. The exit code is 77 if the npm registry cannot be reached."""
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time
import zipfile
from xml.sax.saxutils import quoteattr

SOURCE = pathlib.Path(__file__).resolve().parents[1] / "editors" / "vscode"
COMMAND = ["npm", "ci", "--omit=dev", "--ignore-scripts", "--no-audit", "--no-fund", "--prefer-offline",
           "--loglevel=error", "--fetch-retries=0", "--fetch-timeout=15000"]
UNREACHABLE = ("ECONN", "EAI_AGAIN", "ENOTFOUND", "EHOSTUNREACH", "ENETUNREACH", "ETIMEDOUT", "ERR_SOCKET",
               "ENOTCACHED", "E403", "E404", "E407", "E50", "CERT")
TYPES = {".json": "application/json", ".js": "application/javascript", ".ts": "text/plain", ".md": "text/markdown",
         ".txt": "text/plain", ".vsixmanifest": "text/xml"}


def manifest(package):
    values = {name: quoteattr(str(package[name])) for name in ("name", "version", "publisher")}
    values["engine"] = quoteattr(package["engines"]["vscode"])
    text = {name: quoteattr(package[name])[1:-1] for name in ("displayName", "description")}
    return """<?xml version="1.0" encoding="utf-8"?>
<PackageManifest Version="2.0.0" xmlns="http://schemas.microsoft.com/developer/vsx-schema/2011">
  <Metadata>
    <Identity Language="en-US" Id=%(name)s Version=%(version)s Publisher=%(publisher)s/>
    <DisplayName>%(displayName)s</DisplayName>
    <Description xml:space="preserve">%(description)s</Description>
    <Categories>%(categories)s</Categories>
    <Properties>
      <Property Id="Microsoft.VisualStudio.Code.Engine" Value=%(engine)s/>
    </Properties>
  </Metadata>
  <Installation>
    <InstallationTarget Id="Microsoft.VisualStudio.Code"/>
  </Installation>
  <Dependencies/>
  <Assets>
    <Asset Type="Microsoft.VisualStudio.Code.Manifest" Path="extension/package.json" Addressable="true"/>
    <Asset Type="Microsoft.VisualStudio.Services.Content.Details" Path="extension/README.md" Addressable="true"/>
  </Assets>
</PackageManifest>
""" % (values | text | {"categories": ",".join(package["categories"])})


def content_types(names):
    endings = sorted({pathlib.PurePosixPath(name).suffix for name in names} - {""})
    rows = "".join('<Default Extension="%s" ContentType="%s"/>' %
                   (ending, TYPES.get(ending, "application/octet-stream")) for ending in endings)
    return ('<?xml version="1.0" encoding="utf-8"?>\n<Types xmlns='
            '"http://schemas.openxmlformats.org/package/2006/content-types">%s</Types>\n' % rows)


def install(folder):
    """Puts the packages of npm beside the extension; ends the program if that is not possible."""
    if shutil.which("npm") is None:
        sys.exit("vsix.py: there is no npm")
    try:
        done = subprocess.run(COMMAND, cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                              stdin=subprocess.DEVNULL, timeout=120, check=False)
    except subprocess.TimeoutExpired:
        print("skipped: the npm registry did not answer within two minutes")
        sys.exit(77)
    if done.returncode == 0:
        return
    code = next((code for code in UNREACHABLE if code in done.stdout), None)
    print("skipped: the npm registry cannot be reached (%s)" % code if code else done.stdout)
    sys.exit(77 if code else 1)


def main(target):
    with tempfile.TemporaryDirectory() as work:
        folder = pathlib.Path(work) / "extension"
        shutil.copytree(SOURCE, folder, ignore=shutil.ignore_patterns("node_modules", "*.vsix"))
        install(folder)
        files = {path.relative_to(work).as_posix(): path.read_bytes()
                 for path in folder.rglob("*") if path.is_file() and ".bin" not in path.parts
                 and path.name != ".package-lock.json" and path.suffix != ".map"}
    package = json.loads(files["extension/package.json"])
    files["extension.vsixmanifest"] = manifest(package).encode()
    files["[Content_Types].xml"] = content_types(files).encode()
    moment = time.gmtime(max(int(os.environ.get("SOURCE_DATE_EPOCH", "0")), 315532800))[:6]
    with zipfile.ZipFile(target, "w") as archive:
        for name in sorted(files):
            entry = zipfile.ZipInfo(name, moment)
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = 0o644 << 16
            archive.writestr(entry, files[name])


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    main(sys.argv[1])
