#!/usr/bin/env python3
"""Makes the manual of CmdTessaron, docs/CmdTessaronManual.txt, of the pages of the book that concern it.

    make_manual.py [--check]    writes it, or compares it with the pages

It is plain ASCII of at most 96 columns. A page is a chapter, its headings are sections, and a link has
the number of the chapter or section behind it."""
import pathlib
import re
import sys
import textwrap

DOCS = pathlib.Path(__file__).resolve().parent
BOOK, MANUAL = DOCS / "book", DOCS / "CmdTessaronManual.txt"
WIDTH = 96
STATEMENTS = ("new-buffer", "fill-buffer", "verify-buffer", "new-crc", "new-hash", "new-signature",
              "verify-signature", "write-file", "print-text", "print-buffer", "print-crc", "print-hash",
              "print-signature", "call-app", "calculate")
PAGES = ["classic/index.md", "classic/failures.md", "classic/differences.md", "language/index.md",
         "language/numbers.md", "language/areas.md", "language/images.md", "language/byte-order.md",
         "language/variables.md", "statements/index.md",
         *("statements/%s.md" % name for name in STATEMENTS), "checksums/index.md",
         "checksums/catalogue.md", "checksums/hashes.md", "signatures/index.md", "classic/reading.md",
         "formats/input.md", "formats/output.md", "classic/messages.md", "classic/syntax.md",
         "classic/self-test.md", "windows.md", "limits.md"]
HEAD = """CmdTessaron
===========

The manual: a script language that prepares images for flash memory

This text is made of the pages of the book on Tessaron that concern CmdTessaron. The book, which
is installed beside it, also describes tessaron, which new builds should call. Both programs run
the same scripts. The chapters on the language describe it as tessaron runs it, and so do their
examples: where one has "tessaron run a.tsn NAME=VALUE", CmdTessaron is called by "CmdTessaron
NAME=VALUE a.tsn". Chapters 1 to 3 say what CmdTessaron does differently. A number in
parentheses is that of a chapter or a section.


Contents

"""
LINK = re.compile(r"\[([^]]*)\]\(([^)]*)\)")
HEADING = re.compile(r"(#+) (.*)")
FENCE = re.compile(r'```\w*(?: title="(.*)")?$')
ITEM = re.compile(r"(-|\d+\.) +(.*)")


def anchor_of(heading):
    """The anchor of a heading, as mkdocs makes it."""
    return re.sub(r"[-\s]+", "-", re.sub(r"[^\w\s-]", "", heading).strip().lower())


def numbers():
    """The number and the title of each page and, by page#anchor, the number of each section."""
    found, titles = {}, []
    for chapter, page in enumerate(PAGES, 1):
        section, in_code = 0, False
        for line in (BOOK / page).read_text().splitlines():
            in_code ^= line.startswith("```")
            heading = not in_code and HEADING.match(line)
            if heading and heading[1] == "#":
                found[page] = str(chapter)
                titles.append(heading[2])
            elif heading:
                section += 1
                found["%s#%s" % (page, anchor_of(heading[2]))] = "%d.%d" % (chapter, section)
    return found, titles


class Page:
    """Makes text of the Markdown of one page."""

    def __init__(self, name, found):
        self.name, self.found, self.out = name, found, []

    def inline(self, text):
        def linked(match):
            words, target = match[1], match[2]
            if "://" in target:
                return "%s (%s)" % (words, target)
            path, _, anchor = target.partition("#")
            folder = (BOOK / self.name).parent
            page = str((folder / path).resolve().relative_to(BOOK)) if path else self.name
            number = self.found.get(page + "#" + anchor if anchor else page)
            return "%s (%s)" % (words, number) if number else words
        text = LINK.sub(linked, text).replace("**", "")
        text = re.sub(r"\(([^()]*) \((\d[\d.]*)\)\)", r"(\1, \2)", text)
        return re.sub(r"`` ?(.*?) ?``|`([^`]*)`", lambda match: match[1] or match[2], text)

    def paragraph(self, text, indent="", first=None):
        self.out += textwrap.wrap(self.inline(text), WIDTH, break_long_words=False,
                                  break_on_hyphens=False, subsequent_indent=indent,
                                  initial_indent=indent if first is None else first)

    def code(self, title, lines):
        if title:
            self.out.append(("    == %s " % title).ljust(84, "="))
        for line in lines:
            folded = textwrap.wrap(line, WIDTH, initial_indent="    ", drop_whitespace=False,
                                   subsequent_indent=" " * 12, break_on_hyphens=False)
            self.out += [part.rstrip() for part in folded] or [""]
        if title:
            self.out.append("    " + "=" * 80)

    def table(self, rows):
        rows = [[self.inline(cell.strip()) for cell in row.strip().strip("|").split(" |")]
                for row in rows]
        heads, body = rows[0], rows[2:]
        columns = list(zip(heads, *body))
        widths = [max(map(len, column)) for column in columns]
        words = [max(len(word) for cell in column for word in cell.split() or [""])
                 for column in columns]
        room = WIDTH - 4 - 3 * (len(widths) - 1)
        if sum(words) > room:
            self.records(heads, body)
            return
        while sum(widths) > room:
            widest = max(range(len(widths)), key=lambda i: (widths[i] > words[i], widths[i]))
            widths[widest] -= 1
        for row in [heads, ["-" * width for width in widths], *body]:
            cells = [textwrap.wrap(cell, width, break_on_hyphens=False) or [""]
                     for cell, width in zip(row, widths)]
            for number in range(max(map(len, cells))):
                line = "   ".join((cell[number] if number < len(cell) else "").ljust(width)
                                  for cell, width in zip(cells, widths))
                self.out.append("    " + line.rstrip())

    def records(self, heads, body):
        """The rows of a table that is too wide, each with the heads of its columns."""
        for row in body:
            self.out.append("    " + row[0])
            texts = ["%s %s" % pair for pair in list(zip(heads, row))[1:] if pair[1]]
            self.out += textwrap.wrap(", ".join(texts), WIDTH, initial_indent=" " * 8,
                                      subsequent_indent=" " * 8, break_on_hyphens=False)

    def heading(self, level, text):
        key = self.name if level == "#" else "%s#%s" % (self.name, anchor_of(text))
        title = "%s %s" % (self.found[key] + ("." if level == "#" else ""), text)
        # Two empty lines in front of a section, three in front of a chapter.
        self.out += ([""] * 2 if level == "#" else [""]) + [title, ("=" if level == "#" else "-") *
                                                            len(title)]

    def block(self, lines):
        """A run of lines without an empty one, outside of code."""
        heading = HEADING.match(lines[0])
        if heading:
            self.heading(heading[1], heading[2])
        elif lines[0].startswith("|"):
            self.table(lines)
        elif not lines[0].startswith("!["):
            texts = [[]]
            for line in lines:
                if ITEM.match(line):
                    texts.append([])
                texts[-1].append(line.strip())
            for text in filter(None, texts):
                item = ITEM.match(text[0])
                if item:
                    mark = "  * " if item[1] == "-" else "  %s " % item[1]
                    self.paragraph(" ".join([item[2]] + text[1:]), " " * len(mark), mark)
                else:
                    self.paragraph(" ".join(text))

    def text(self):
        lines = (BOOK / self.name).read_text().splitlines() + [""]
        block, code, title = [], None, None
        for line in lines:
            fence = FENCE.match(line)
            if code is not None and line == "```":
                self.code(title, code)
                code = None
            elif code is not None:
                code.append(line)
            elif fence:
                code, title = [], fence[1]
            elif line:
                block.append(line)
            elif block:
                self.block(block)
                block = []
            if not line and code is None and (not self.out or self.out[-1]):
                self.out.append("")
        return "\n".join(self.out).rstrip() + "\n"


def manual():
    found, titles = numbers()
    text = HEAD + "".join("%6d. %s\n" % row for row in enumerate(titles, 1))
    return text + "".join("\n" + Page(name, found).text() for name in PAGES)


def main():
    text = manual()
    if "--check" not in sys.argv:
        MANUAL.write_text(text)
    elif MANUAL.read_text() != text:
        sys.exit("docs/CmdTessaronManual.txt is not what docs/make_manual.py makes of the book")
    wrong = [number for number, line in enumerate(text.splitlines(), 1)
             if len(line) > WIDTH or not line.isascii() or "\t" in line]
    if wrong:
        sys.exit("lines of the manual are not plain text of at most %d columns: %s" % (WIDTH, wrong))


if __name__ == "__main__":
    main()
