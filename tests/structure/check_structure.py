#!/usr/bin/env python3
"""Compares what the folders declare in their CMakeLists.txt with what their files include.

    check_structure.py [build folder]            checks the rules below
    check_structure.py --table [build folder]    prints the table of docs/architecture.md

The build folder, build/dev if none is given, holds the declarations in structure.json.

- A file includes only headers of its own target and of those that the target declares; a header
  only of those in DEPENDS, since HIDES is for sources.
- Every declared target is included, one of DEPENDS by a header, one of HIDES by sources alone.
- A target depends only on targets declared before it, so there is no cycle.
- A folder of the program is one target, which builds every source of the folder.
- docs/architecture.md shows the table that --table prints.

Of tests, benchmarks and fuzz targets only the first rule is checked.
"""
import argparse
import json
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
PAGE = ROOT / "docs" / "architecture.md"
MARKS = ("<!-- structure -->\n", "<!-- end of structure -->\n")
OUTSIDE = ("tests", "bench", "fuzz")
# Libraries of others whose includes are followed, by the beginning of what is included.
OTHERS = {"boost/": "Boost::headers", "CUnit/": "CUnit::CUnit", "CLI/": "CLI11::CLI11",
          "botan/": "Botan::botan", "nlohmann/": "nlohmann_json::nlohmann_json"}
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*(?:"([^"]+)"|<([^>]+)>)', re.MULTILINE)


def is_header(path):
    return path.endswith(".hpp")


def includes(path):
    """What a file includes in quotes, and in angle brackets."""
    found = INCLUDE.findall((ROOT / path).read_text())
    return [quoted for quoted, _ in found if quoted], [other for _, other in found if other]


class Target:
    def __init__(self, declared):
        self.name, self.folder = declared["target"], declared["folder"]
        self.is_of_program = self.folder.split("/")[0] not in OUTSIDE
        self.is_library = self.name.startswith("tessaron::")
        self.declared = declared["depends"] + declared["hides"]
        # Nothing includes the headers of an executable, so it hides nothing.
        self.shown = declared["depends"] if self.is_library else self.declared
        sources = [pathlib.Path(source).resolve() for source in declared["sources"]]
        # Sources that the build makes are not files of the tree.
        self.sources = [source.relative_to(ROOT).as_posix() for source in sources
                        if source.is_relative_to(ROOT / self.folder) or not self.is_of_program]


class Tree:
    def __init__(self, build):
        entries = json.loads((build / "structure.json").read_text())
        self.targets = [Target(entry) for entry in entries]
        self.program = [target for target in self.targets if target.is_of_program]
        owners = [one for one in self.targets if one.is_of_program or one.is_library]
        self.owners = sorted(owners, key=lambda target: -len(target.folder))

    def owner(self, path):
        """The target of the innermost folder around a file; None for files of tests alone."""
        return next((one for one in self.owners if path.startswith(one.folder + "/")), None)

    def own_files(self, target, ending):
        """The files of the target's folder and of its subfolders without a target."""
        paths = (path.relative_to(ROOT).as_posix()
                 for path in sorted((ROOT / target.folder).rglob("*" + ending)))
        return [path for path in paths if self.owner(path) == target]

    def files(self, target):
        """The sources of a target, its headers and the headers without an owner that they reach."""
        files = [*target.sources]
        if target in self.owners:
            files += self.own_files(target, ".hpp")
        for path in files:
            files += [one for one in includes(path)[0]
                      if (ROOT / one).exists() and not self.owner(one) and one not in files]
        return files

    def uses(self, target):
        """Pairs of a file and what it includes of other targets, by their names."""
        own = [target, *map(self.owner, target.sources)]
        for path in self.files(target):
            quoted, others = includes(path)
            for included in quoted:
                owner = self.owner(included)
                if owner not in own and owner:
                    yield path, owner.name
                elif not owner and target.is_of_program and not configured(path, included):
                    yield path, included
            for included in others:
                yield from ((path, name) for start, name in OTHERS.items()
                            if included.startswith(start))


def configured(path, included):
    """Whether what is included is made of a file beside the one that includes it."""
    return ((ROOT / path).parent / (included + ".in")).exists()


def faults_of_includes(tree, target):
    uses = set(tree.uses(target))
    for path, name in sorted(uses):
        if name not in (target.shown if is_header(path) else target.declared):
            yield "%s includes %s, which %s does not declare%s" % (
                path, name, target.name, " for headers" if name in target.declared else "")
    if not target.is_of_program:
        return
    used = {name for path, name in uses}
    by_headers = {name for path, name in uses if is_header(path) or not target.is_library}
    for name in target.declared:
        if name not in used:
            yield "%s declares %s and does not include it" % (target.name, name)
        elif name in target.shown and name not in by_headers:
            yield "%s shows %s, which no header includes; it belongs in HIDES" % (
                target.name, name)


def faults_of_folders(tree):
    for index, target in enumerate(tree.program):
        before = [one.name for one in tree.program[:index]]
        for name in target.declared:
            if name.startswith("tessaron::") and name not in before:
                yield "%s depends on %s, which is not declared before it" % (target.name, name)
        if target.folder in (one.folder for one in tree.program[:index]):
            yield "%s is a folder of two targets" % target.folder
        own = {*tree.own_files(target, ".cpp")}
        # Of a source for each system, the target has that of its own.
        systems = [name for name in ("Linux.cpp", "Windows.cpp")
                   if any(path.endswith(name) for path in target.sources)]
        foreign = {path for path in own if systems and path not in target.sources
                   and path.endswith(("Linux.cpp", "Windows.cpp"))
                   and not path.endswith(tuple(systems))}
        for path in sorted((own - foreign) ^ {*target.sources}):
            yield "%s is not one of the sources of %s, or not of its folder" % (path, target.name)


def purpose(folder):
    first = (ROOT / folder / "CMakeLists.txt").read_text().splitlines()[0]
    return first[2:] if first.startswith("# ") else ""


def table(tree):
    rows = ["| folder | what it holds | target | depends on |", "| --- | --- | --- | --- |"]
    for target in tree.program:
        names = [name.replace("tessaron::", "") for name in target.declared]
        rows.append("| `%s/` | %s | `%s` | %s |" % (target.folder, purpose(target.folder),
                                                   target.name, ", ".join(names) or "nothing"))
    return "".join(row + "\n" for row in rows)


def faults_of_page(tree):
    for target in tree.program:
        if not purpose(target.folder).endswith("."):
            yield "%s/CMakeLists.txt does not begin with a sentence" % target.folder
    begin, end = MARKS
    page = PAGE.read_text()
    yield from ("%s has %s %d times" % (PAGE.name, mark.strip(), page.count(mark))
                for mark in MARKS if page.count(mark) != 1)
    if begin + table(tree) + end not in page:
        yield "%s does not show the table that --table prints" % PAGE.name


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build", nargs="?", type=pathlib.Path, default=ROOT / "build" / "dev")
    parser.add_argument("--table", action="store_true")
    options = parser.parse_args()
    tree = Tree(options.build)
    if options.table:
        print(*MARKS, sep=table(tree), end="")
        return 0
    faults = [fault for target in tree.targets for fault in faults_of_includes(tree, target)]
    faults += [*faults_of_folders(tree), *faults_of_page(tree)]
    print("\n".join(faults) or "%d targets include what they declare" % len(tree.targets))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
