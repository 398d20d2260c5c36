#!/usr/bin/python3 -B
"""The sites that tools/docs made, without a browser: site_test.py SITE MANUAL

SITE has all pages, MANUAL was made with --manual.
"""

import json
import pathlib
import re
import sys
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[2]
DOCS = PROJECT / "docs"
MANUAL = pathlib.Path(sys.argv.pop())
SITE = pathlib.Path(sys.argv.pop())
FENCED = re.compile(r"^ *```.*?^ *```$", re.M | re.S)
HEADING = re.compile(r"^#+ (.+)$", re.M)
ENGINEERING = {"architecture", "language", "macos", "macos-running", "package", "performance"}


def pages():
    return {file.relative_to(DOCS).with_suffix("").as_posix(): file for file in DOCS.rglob("*.md")}


def pages_of(site):
    return {file.relative_to(site).with_suffix("").as_posix() for file in site.rglob("*.html")} - {"search"}


def sections_of(site):
    text = (site / "_static" / "sections.js").read_text(encoding="utf-8")
    return json.loads(text.removeprefix("const sections = ").removesuffix(";\n"))


class SiteTest(unittest.TestCase):
    def test_every_page_is_in_the_site_and_in_its_sidebar(self):
        self.assertEqual(pages_of(SITE), {*pages()})
        first = (SITE / "index.html").read_text(encoding="utf-8")
        for page in pages():
            self.assertIn(f'href="{page}.html"' if page != "index" else 'href="#"', first)

    def test_the_manual_has_the_pages_for_users(self):
        self.assertEqual(pages_of(MANUAL), {*pages()} - ENGINEERING)

    def test_the_landing_page_leads_to_what_a_call_costs(self):
        row = '<td><p><a class="reference internal" href="performance.html">'
        self.assertIn(row, (SITE / "index.html").read_text(encoding="utf-8"))
        self.assertNotIn("performance.html", (MANUAL / "index.html").read_text(encoding="utf-8"))

    # Who has the package has none of the project's tools, nor its sources.
    def test_the_manual_tells_of_no_tools(self):
        for page in pages_of(MANUAL):
            text = (MANUAL / f"{page}.html").read_text(encoding="utf-8")
            for word in ("tools/", "hostrun", "tests/", "native/gnustep"):
                self.assertNotIn(word, text, page)

    def test_the_search_knows_every_heading_of_every_page(self):
        known = {(address.partition(".html")[0], title) for address, title, _, _ in sections_of(SITE)}
        for page, file in pages().items():
            headings = HEADING.findall(FENCED.sub("", file.read_text(encoding="utf-8")))
            self.assertTrue(headings, page)
            for heading in headings:
                self.assertIn((page, heading.replace("`", "").replace("\\", "")), known)

    def test_the_search_has_texts_as_they_are_read(self):
        texts = {address: text for address, _, _, text in sections_of(SITE)}
        self.assertIn("Takes a suite out of the search again. The domain itself stays.",
                      texts["methods/domains.html#removesuitenamed"])
        self.assertNotIn("<svg", texts["domains.html"])

    # Browsers refuse to fetch a file for a page that came from a file; a script they load.
    def test_the_search_needs_no_server(self):
        page = (SITE / "search.html").read_text(encoding="utf-8")
        for script in ("lunr.min.js", "sections.js", "search.js"):
            self.assertIn(f'<script src="_static/{script}"', page)
        self.assertNotIn("searchindex", page)

    def test_every_picture_is_in_its_page(self):
        asked = {}
        for page, file in pages().items():
            text = file.read_text(encoding="utf-8")
            asked[page] = len(re.findall(r"^ *```\{picture\} \w+$", text, re.M))
            made = (SITE / f"{page}.html").read_text(encoding="utf-8")
            self.assertEqual(len(re.findall(r'<svg [^>]*class="picture">', made)), asked[page], page)
        self.assertEqual({page: count for page, count in asked.items() if count > 0},
                         {"architecture": 2, "domains": 1, "index": 1, "values": 1})

    def test_the_domains_stand_in_the_picture_as_in_the_list(self):
        page = (SITE / "domains.html").read_text(encoding="utf-8")
        drawn = re.findall(r">(arguments|the program&#39;s own|suites|global|registered)</text>", page)
        self.assertEqual(drawn, ["arguments", "the program&#39;s own", "suites", "global", "registered"])
        listed = re.findall(r"<strong>(.+?)</strong>", page.partition("<ol")[2].partition("</ol>")[0])
        self.assertEqual(listed, ["arguments", "program's own domain", "Suites", "global domain", "registered"])


if __name__ == "__main__":
    unittest.main()
