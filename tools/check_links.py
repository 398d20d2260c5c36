#!/usr/bin/python3
"""Checks links without a network: check_links.py PROJECT [SITE]

PROJECT: in README.md, CONTRIBUTING.md, CHANGELOG.md and every page of docs/, every link to a file names one of
the project, and every #anchor a heading of its page. What stands there as code and looks like a path
of the project, `plugin/main.cc` or `host/`, is one too; only CHANGELOG.md may tell of what is gone.
SITE, the pages made of docs/: every link leads to a file of the site and to an element that is
there, and nothing that a page loads (scripts, styles, pictures, fonts) comes from elsewhere.

One line per finding on stderr; exits 1 when there is one, and when there was nothing to check.
"""

import html.parser
import pathlib
import re
import sys
import urllib.parse

from markdown_it import MarkdownIt
from mdit_py_plugins.anchors.index import slugify

# What an element loads by itself, without anybody's click.
LOADED_BY_LINK = {"stylesheet", "icon", "preload", "prefetch", "modulepreload", "manifest"}
LOADING_ATTRIBUTES = {"src", "srcset", "poster", "data"}
# A text in quotes that a script or style could load. Names of XML languages load nothing.
QUOTED_ADDRESS = re.compile(rb"""["'(]((?:https?:)?//(?!www\.w3\.org/)[\w-]+\.[^"')\s]+)""", re.I)
STYLE_ADDRESS = re.compile(r"""url\(\s*["']?([^"')]+)|@import\s+["']([^"']+)""", re.I)
# Folders of the project have small letters; what is built, or is the reader's, isn't of the project.
PROJECT_PATH = re.compile(r"(?!build/)\.?[a-z][a-z0-9_]*/(?:[\w.-]+/)*[\w.-]*")
COMMENT = re.compile(rb"/\*.*?\*/|^\s*//.*?$|(?<=[;{}\s])//\s.*?$", re.S | re.M)


def is_external(address):
    return bool(re.match(r"(?:[a-z][a-z0-9+.-]*:|//)", address, re.I))


class Markdown:
    """A page of the project: its links and paths as (line, text), and its headings' anchors."""

    def __init__(self, file):
        self.links, self.paths, self.anchors = [], [], set()
        tokens = MarkdownIt("commonmark").enable("table").parse(file.read_text(encoding="utf-8"))
        for before, token in zip([None, *tokens], tokens):
            if token.type != "inline":
                continue
            if before.type == "heading_open":
                self._add_anchor(token)
            line = token.map[0] + 1 if token.map else 0
            for child in token.children:
                address = child.attrGet("href") or child.attrGet("src")
                if address:
                    self.links.append((line, address))
                if child.type == "code_inline" and PROJECT_PATH.fullmatch(child.content):
                    self.paths.append((line, child.content))

    def _add_anchor(self, heading):
        title = "".join(part.content for part in heading.children if not part.nesting)
        anchor, number = slugify(title), 0
        while anchor in self.anchors:
            number += 1
            anchor = f"{slugify(title)}-{number}"
        self.anchors.add(anchor)


class Page(html.parser.HTMLParser):
    """A page of the site: what it links to, what it loads, and what can be linked to in it."""

    def __init__(self, file):
        super().__init__()
        self.links, self.loaded, self.anchors, self.styles = [], [], {""}, []
        self._in_style = False
        self.feed(file.read_text(encoding="utf-8"))

    def handle_starttag(self, tag, attributes):
        line = self.getpos()[0]
        found = {name: value or "" for name, value in attributes}
        self._in_style = tag == "style"
        self.anchors.update(found[name] for name in ("id", "name") if name in found)
        for name, value in found.items():
            if name in LOADING_ATTRIBUTES and not value.startswith("data:"):
                self.loaded += [(line, part.split()[0]) for part in value.split(",") if part.strip()]
            elif name == "style":
                self.styles.append((line, value))
            elif name == "href" and tag == "link":
                rel = set(found.get("rel", "").lower().split())
                (self.loaded if rel & LOADED_BY_LINK else self.links).append((line, value))
            elif name in ("href", "action"):
                self.links.append((line, value))

    def handle_endtag(self, tag):
        self._in_style = False

    def handle_data(self, data):
        if self._in_style:
            self.styles.append((self.getpos()[0], data))


def target_of(file, address, root):
    """The file that an address in another file leads to, and the anchor; None outside of root."""
    path, _, anchor = address.partition("#")
    path = urllib.parse.unquote(path.partition("?")[0])
    target = (file.parent / path).resolve() if path else file.resolve()
    return (target if target.is_relative_to(root) else None), urllib.parse.unquote(anchor)


def check_project(root):
    alone = [root / name for name in ("README.md", "CONTRIBUTING.md", "CHANGELOG.md")]
    pages = [*alone, *sorted((root / "docs").rglob("*.md"))]
    known = {file.resolve(): Markdown(file) for file in pages if file.exists()}
    for file, page in known.items():
        for line, address in page.links:
            if is_external(address):
                continue
            target, anchor = target_of(file, address, root)
            where = f"{file.relative_to(root)}:{line}: {address}"
            if target is None or not target.exists():
                yield f"{where}: there is no such file in the project"
            elif anchor and (target not in known or anchor not in known[target].anchors):
                yield f"{where}: there is no such heading"
        for line, path in page.paths:
            if file.name != "CHANGELOG.md" and not (root / path).exists():
                yield f"{file.relative_to(root)}:{line}: {path}: there is no such path in the project"
    if not any(page.links for page in known.values()):
        yield f"{root}: there are no links to check"


def style_findings(where, file, text, root):
    for match in STYLE_ADDRESS.finditer(text):
        address = (match.group(1) or match.group(2)).strip()
        if address.startswith(("data:", "#")):
            continue
        target = None if is_external(address) else target_of(file, address, root)[0]
        if target is None or not target.is_file():
            yield f"{where}: the style loads {address}, which is not in the site"


def page_findings(file, page, known, root):
    where = file.relative_to(root)
    for line, address in page.loaded:
        target = None if is_external(address) else target_of(file, address, root)[0]
        if target is None or not target.is_file():
            yield f"{where}:{line}: loads {address}, which is not in the site"
    for line, text in page.styles:
        yield from style_findings(f"{where}:{line}", file, text, root)
    for line, address in page.links:
        if is_external(address):
            continue
        target, anchor = target_of(file, address, root)
        if target is None or not target.is_file():
            yield f"{where}:{line}: {address}: there is no such page"
        elif anchor and target in known and anchor not in known[target].anchors:
            yield f"{where}:{line}: {address}: there is no such place in the page"


def check_site(root):
    known = {file: Page(file) for file in sorted(root.rglob("*.html"))}
    for file, page in known.items():
        yield from page_findings(file, page, known, root)
    for file in sorted(root.rglob("*.css")):
        text = COMMENT.sub(b"", file.read_bytes()).decode("utf-8")
        yield from style_findings(file.relative_to(root), file, text, root)
    for file in sorted(root.rglob("*.js")):
        for match in QUOTED_ADDRESS.finditer(COMMENT.sub(b"", file.read_bytes())):
            yield f"{file.relative_to(root)}: the script names {match.group(1).decode('utf-8')}"
    if not any(page.links for page in known.values()):
        yield f"{root}: there are no pages to check"


def main(arguments):
    if len(arguments) not in (1, 2):
        print("usage: check_links.py PROJECT [SITE]", file=sys.stderr)
        return 2
    roots = [pathlib.Path(argument).resolve() for argument in arguments]
    findings = [finding for check, root in zip((check_project, check_site), roots)
                for finding in check(root)]
    for finding in findings:
        print(finding, file=sys.stderr)
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
