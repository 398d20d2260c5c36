#!/usr/bin/python3 -B
"""What tools/check_links.py finds, and what it lets pass."""

import importlib.util
import pathlib
import tempfile
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[2]
loader = importlib.util.spec_from_file_location("check_links", PROJECT / "tools" / "check_links.py")
check_links = importlib.util.module_from_spec(loader)
loader.loader.exec_module(check_links)


class TreeTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name).resolve()

    def write(self, name, text):
        file = self.root / name
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text, encoding="utf-8")

    def expect(self, check, *findings):
        self.assertEqual(list(check(self.root)), list(findings))


class ProjectTest(TreeTest):
    def test_links_that_lead_somewhere(self):
        self.write("README.md", "[a](docs/a.md) [b](docs/a.md#a-title) [c](#here)\n# Here\n")
        self.write("docs/a.md", "# A title\n[up](../README.md) <https://example.com/>\n")
        self.expect(check_links.check_project)

    def test_a_file_that_is_missing(self):
        self.write("README.md", "text\n\n[a](docs/a.md)\n")
        self.expect(check_links.check_project,
                    "README.md:3: docs/a.md: there is no such file in the project")

    def test_pages_in_folders_of_the_manual(self):
        self.write("README.md", "[a](docs/b/c.md#there)\n")
        self.write("docs/b/c.md", "# There\n[up](../d.md)\n")
        self.expect(check_links.check_project,
                    "docs/b/c.md:2: ../d.md: there is no such file in the project")

    def test_a_file_outside_of_the_project(self):
        self.write("README.md", "[a](../..)\n")
        self.expect(check_links.check_project,
                    "README.md:1: ../..: there is no such file in the project")

    def test_a_heading_that_is_missing(self):
        self.write("README.md", "[a](#there)\n\n# Here\n")
        self.expect(check_links.check_project, "README.md:1: #there: there is no such heading")

    def test_headings_of_one_name_have_numbers(self):
        self.write("README.md", "[a](#x-1) [b](#x-2)\n\n# X\n\n# X\n")
        self.expect(check_links.check_project, "README.md:1: #x-2: there is no such heading")

    def test_text_in_code_is_no_link(self):
        self.write("README.md", "[a](b.md)\n\n```\n[c](d.md)\n```\n")
        self.write("b.md", "")
        self.expect(check_links.check_project)

    def test_paths_that_are_there(self):
        self.write("a/b.cc", "")
        self.write(".ci/run", "")
        self.write("README.md", "[x](#h)\n# H\n`a/b.cc` `a/` `a` `.ci/run`\n")
        self.expect(check_links.check_project)

    def test_paths_that_are_gone(self):
        self.write("docs/a.md", "[x](a.md)\n\n| a |\n|---|\n| b, `old/b.cc` |\n| `docs/b/` |\n")
        self.expect(check_links.check_project,
                    "docs/a.md:5: old/b.cc: there is no such path in the project",
                    "docs/a.md:6: docs/b/: there is no such path in the project")

    def test_what_is_no_path_of_the_project(self):
        self.write("README.md", "[x](#h)\n# H\n`build/a` `DIR/a.so` `/` `//` `a/b --c` `Mac/` old/b.cc\n")
        self.expect(check_links.check_project)

    def test_what_was_may_be_told(self):
        self.write("CHANGELOG.md", "[x](#h)\n# H\n`old/b.cc`\n")
        self.expect(check_links.check_project)

    def test_contributing_is_a_page(self):
        self.write("CONTRIBUTING.md", "[a](gone.md)\n")
        self.expect(check_links.check_project,
                    "CONTRIBUTING.md:1: gone.md: there is no such file in the project")

    def test_links_in_tables(self):
        self.write("README.md", "| a |\n|---|\n| [x](gone.md) |\n")
        self.expect(check_links.check_project,
                    "README.md:3: gone.md: there is no such file in the project")

    def test_nothing_to_check(self):
        self.write("README.md", "no links\n")
        self.expect(check_links.check_project, f"{self.root}: there are no links to check")


class SiteTest(TreeTest):
    def page(self, content):
        self.write("index.html", f'<a href="#top">up</a><p id="top">{content}</p>')

    def test_a_whole_site(self):
        self.page('<link rel="stylesheet" href="s.css?v=1"><script src="s.js"></script>'
                  '<a href="https://example.com/">away</a><a href="b.html#c">b</a>')
        self.write("b.html", '<h1 id="c">c</h1><img src="data:image/png;base64,AA==">')
        self.write("s.css", "/* https://example.com */ a { background: url('p.png') }")
        self.write("s.js", '// "https://example.com/"\nvar ns = "http://www.w3.org/2000/svg";')
        self.write("p.png", "")
        self.expect(check_links.check_site)

    def test_pages_and_places_that_are_missing(self):
        self.page('<a href="b.html">b</a> <a href="#c">c</a>')
        self.expect(check_links.check_site, "index.html:1: b.html: there is no such page",
                    "index.html:1: #c: there is no such place in the page")

    def test_what_is_loaded_from_elsewhere(self):
        for element, address in [('<script src="https://example.com/s.js"></script>',
                                  "https://example.com/s.js"),
                                 ('<link rel="stylesheet" href="//example.com/s.css">',
                                  "//example.com/s.css"),
                                 ('<img srcset="https://example.com/p.png 2x">',
                                  "https://example.com/p.png"),
                                 ('<img src="gone.png">', "gone.png")]:
            self.page(element)
            self.expect(check_links.check_site,
                        f"index.html:1: loads {address}, which is not in the site")

    def test_what_styles_load(self):
        self.page("")
        for text, address in [("@import '/normalize.css';", "/normalize.css"),
                              ("a { src: url(https://example.com/f.woff) }",
                               "https://example.com/f.woff")]:
            self.write("s.css", text)
            self.expect(check_links.check_site,
                        f"s.css: the style loads {address}, which is not in the site")

    def test_what_styles_in_pages_load(self):
        self.page("<style>a { background: url(//example.com/p.png) }</style>")
        self.expect(check_links.check_site, "index.html:1: the style loads //example.com/p.png, "
                                            "which is not in the site")

    def test_what_scripts_load(self):
        self.page("")
        self.write("s.js", 'load("https://example.com/s.js");')
        self.expect(check_links.check_site, "s.js: the script names https://example.com/s.js")

    def test_no_pages(self):
        self.expect(check_links.check_site, f"{self.root}: there are no pages to check")


if __name__ == "__main__":
    unittest.main()
