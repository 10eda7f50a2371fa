#!/usr/bin/env python3
"""Checks the HTML of the book: each link leads to a page and a place in it, nothing is loaded from a
network, and each page of the book is there:  check_html.py HTML BOOK"""
import html.parser
import pathlib
import sys
import urllib.parse


class Page(html.parser.HTMLParser):
    """The places of a page, its links and what it loads."""

    def __init__(self, path):
        super().__init__()
        self.places, self.links, self.loaded = {"", "__top", "top"}, [], []
        self.feed(path.read_text())

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        self.places.update(filter(None, (values.get("id"), values.get("name"))))
        if tag == "a" and values.get("href"):
            self.links.append(values["href"])
        elif tag in ("script", "img", "link", "iframe", "source"):
            self.loaded += filter(None, (values.get("src"), values.get("href")))


def main():
    site, book = map(pathlib.Path, sys.argv[1:])
    pages = {path: Page(path) for path in site.rglob("*.html") if path.name != "404.html"}
    faults = ["no page: %s" % path for path in book.rglob("*.md")
              if site / path.relative_to(book).with_suffix(".html") not in pages]
    links = 0
    for path, page in pages.items():
        name = path.relative_to(site)
        for link in page.links + page.loaded:
            parts = urllib.parse.urlsplit(link)
            if parts.scheme:
                faults += ["%s loads %s" % (name, link)] * (link in page.loaded)
                continue
            links += 1
            target = (path.parent / urllib.parse.unquote(parts.path)).resolve() if parts.path else path
            place = urllib.parse.unquote(parts.fragment)
            if not target.exists():
                faults.append("%s: no file %s" % (name, link))
            elif target in pages and place not in pages[target].places:
                faults.append("%s: no place %s" % (name, link))
    if links < 1000:
        faults.append("only %d links were found" % links)
    print("\n".join(faults) or "%d links in %d pages" % (links, len(pages)))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
