#!/usr/bin/env python3
"""Packs archives again, so that they depend on their files alone: the entries sorted by name, since
CPack takes them in the order in which a file system lists them, and owned by root.

    repack.py PACKAGE...     .tar.gz, .zip or .deb
"""
import gzip
import io
import re
import sys
import tarfile
import zipfile

AR_MAGIC = b"!<arch>\n"
AR_HEADER = 60


def installed_size(packed):
    """KiB that dpkg-gencontrol(1) states for the files of an archive: each regular file rounded up,
    and one for every other entry. CPack adds what folders take on its file system."""
    with tarfile.open(fileobj=io.BytesIO(packed)) as archive:
        return sum(-(-entry.size // 1024) if entry.isfile() else 1 for entry in archive)


def sorted_tar(packed, size=None):
    """The same archive, compressed by gzip as well, with `size` in a Debian control file."""
    out = io.BytesIO()
    with tarfile.open(fileobj=io.BytesIO(packed)) as source, \
            gzip.GzipFile(fileobj=out, mode="wb", mtime=0) as stream, \
            tarfile.open(fileobj=stream, mode="w", format=tarfile.GNU_FORMAT) as target:
        for entry in sorted(source, key=lambda one: one.name):
            data = source.extractfile(entry).read() if entry.isfile() else b""
            if size is not None and entry.name.endswith("md5sums"):
                # "digest  name", which CPack also writes in its order.
                data = b"".join(sorted(data.splitlines(True), key=lambda line: line.split()[1:]))
            if size is not None and entry.name.endswith("control"):
                data = re.sub(rb"(?m)^(Installed-Size:) .*", b"\\1 %d" % size, data)
            entry.size = len(data)
            entry.uid = entry.gid = 0
            entry.uname = entry.gname = "root"
            target.addfile(entry, io.BytesIO(data))
    return out.getvalue()


def sorted_zip(packed):
    out = io.BytesIO()
    with zipfile.ZipFile(io.BytesIO(packed)) as source, zipfile.ZipFile(out, "w") as target:
        for old in sorted(source.infolist(), key=lambda one: one.filename):
            entry = zipfile.ZipInfo(old.filename, old.date_time)
            entry.external_attr = old.external_attr
            entry.compress_type = zipfile.ZIP_STORED if old.is_dir() else zipfile.ZIP_DEFLATED
            target.writestr(entry, source.read(old), compresslevel=9)
    return out.getvalue()


def ar_members(packed):
    """Name, time and contents of each member (deb(5), ar(5))."""
    at = len(AR_MAGIC)
    while at < len(packed):
        header = packed[at:at + AR_HEADER]
        size = int(header[48:58])
        at += AR_HEADER
        yield header[:16].decode().rstrip(" /"), int(header[16:28]), packed[at:at + size]
        at += size + size % 2


def sorted_deb(packed):
    out = AR_MAGIC
    members = list(ar_members(packed))
    (size,) = (installed_size(data) for name, _, data in members if name.startswith("data.tar"))
    for name, time, data in members:
        if name.startswith("data.tar"):
            data = sorted_tar(data)
        elif name.startswith("control.tar"):
            data = sorted_tar(data, size)
        out += b"%-16s%-12d%-6d%-6d%-8s%-10d`\n" % (name.encode(), time, 0, 0, b"100644", len(data))
        out += data + b"\n" * (len(data) % 2)
    return out


def main():
    for path in sys.argv[1:]:
        with open(path, "rb") as file:
            packed = file.read()
        for suffix, pack in ((".tar.gz", sorted_tar), (".zip", sorted_zip), (".deb", sorted_deb)):
            if path.endswith(suffix):
                packed = pack(packed)
        with open(path, "wb") as file:
            file.write(packed)


if __name__ == "__main__":
    main()
