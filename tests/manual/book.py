"""The pages of the book as tests read them."""
import re

CELLS = re.compile(r" *(?<!\\)\| *")


def rows_of(page):
    """The rows of all tables of a page, as lists of the texts of their cells, without marks of code."""
    rows = []
    for line in page.read_text().splitlines():
        if line.startswith("| ") and not line.startswith("| ---"):
            rows.append([cell.replace("`", "") for cell in CELLS.split(line.rstrip())[1:-1]])
    return rows
