#!/usr/bin/python3
"""The site that tools/docs made: site_test.py SITE. Its search knows every heading of every page."""

import json
import pathlib
import re
import sys
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[2]
SITE = pathlib.Path(sys.argv.pop())
FENCED = re.compile(r"^```.*?^```$", re.M | re.S)
HEADING = re.compile(r"^#+ (.+)$", re.M)


class SiteTest(unittest.TestCase):
    def setUp(self):
        text = (SITE / "searchindex.js").read_text(encoding="utf-8")
        self.index = json.loads(text.removeprefix("Search.setIndex(").removesuffix(")"))

    def test_every_page_is_in_the_site(self):
        pages = sorted(file.stem for file in (PROJECT / "docs").glob("*.md"))
        self.assertIn("reference", pages)
        self.assertEqual(sorted(self.index["docnames"]), pages)
        first = (SITE / "index.html").read_text(encoding="utf-8")
        for page in pages:
            self.assertTrue((SITE / f"{page}.html").is_file(), page)
            if page != "index":
                self.assertIn(f'href="{page}.html"', first)

    def test_the_search_knows_every_heading(self):
        known = {"".join(title.split()) for title in self.index["alltitles"]}
        for file in (PROJECT / "docs").glob("*.md"):
            headings = HEADING.findall(FENCED.sub("", file.read_text(encoding="utf-8")))
            self.assertTrue(headings, file)
            for heading in headings:
                self.assertIn("".join(heading.replace("`", "").split()), known, file)

    # Browsers refuse to fetch a file for a page that came from a file; a script they load.
    def test_the_search_needs_no_server(self):
        page = (SITE / "search.html").read_text(encoding="utf-8")
        self.assertIn('<script src="searchindex.js"', page)

    def test_every_picture_is_in_its_page(self):
        asked = {}
        for file in (PROJECT / "docs").glob("*.md"):
            text = file.read_text(encoding="utf-8")
            asked[file.stem] = len(re.findall(r"^```\{picture\} \w+$", text, re.M))
            page = (SITE / f"{file.stem}.html").read_text(encoding="utf-8")
            self.assertEqual(len(re.findall(r'<svg [^>]*class="picture">', page)), asked[file.stem], file)
        self.assertEqual(asked["architecture"], 2)


if __name__ == "__main__":
    unittest.main()
