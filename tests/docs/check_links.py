#!/usr/bin/env python3
"""Checks the links of the documentation: check_links.py FILE.md...

Each link to a file, a picture or a heading leads to one that exists. Links to the network are not followed. Ends with 1
and names what is missing.
"""

import pathlib
import re
import sys

LINK = re.compile(r"\]\(([^)\s]+)\)")
HEADING = re.compile(r"^#+ (.+)$", re.MULTILINE)
FENCE = re.compile(r"^```.*?^```$", re.MULTILINE | re.DOTALL)


def text_of(document):
    return FENCE.sub("", document.read_text(encoding="utf-8"))


def anchors(document):
    """The names that headings get: lower case, without punctuation, blanks become hyphens."""
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in HEADING.findall(text_of(document))}


def dead_links(document):
    for link in LINK.findall(text_of(document)):
        if "://" in link:
            continue
        path, _, anchor = link.partition("#")
        target = document.parent / path if path else document
        if not target.exists() or (anchor and anchor not in anchors(target)):
            yield f"{document}: {link}"


def main():
    dead = [line for name in sys.argv[1:] for line in dead_links(pathlib.Path(name))]
    print("\n".join(dead) or "all links lead somewhere")
    return 1 if dead else 0


if __name__ == "__main__":
    sys.exit(main())
