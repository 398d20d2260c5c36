#!/usr/bin/python3 -B
"""What tools/draw_pictures.py draws of a tree, and what it refuses to draw."""

import importlib.util
import pathlib
import re
import tempfile
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[2]
loader = importlib.util.spec_from_file_location("draw_pictures", PROJECT / "tools" / "draw_pictures.py")
draw_pictures = importlib.util.module_from_spec(loader)
loader.loader.exec_module(draw_pictures)


class TreeTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name).resolve()

    def write(self, name, text=""):
        file = self.root / name
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text, encoding="utf-8")

    def refuses(self, reason, draw, *arguments):
        with self.assertRaises(draw_pictures.Refusal) as caught:
            draw(self.root, *arguments)
        self.assertEqual(str(caught.exception), reason)


class HouseTest(TreeTest):
    def house(self):
        """The drawing's lines that are arrows."""
        return [line for line in draw_pictures.house(self.root) if "->" in line]

    def test_includes_of_one_room_in_another_are_one_arrow(self):
        self.write("plugin/a.h")
        self.write("plugin/b.h")
        self.write("bridge/a.cc", '#include "plugin/a.h"\n  #  include "plugin/b.h"\n#include <x.h>\n')
        self.write("bridge/b.cc", '#include "plugin/a.h"\n#include "bridge/b.h"\n')
        self.write("bridge/b.h")
        self.write("native/a.m", '#import "plugin/a.h"\n')
        self.write("bridge/c.txt", '#include "gone/a.h"\n')
        rooms, arrows = draw_pictures.arrows_of_house(self.root)
        self.assertEqual(rooms, {"plugin", "bridge", "native"})
        self.assertEqual(arrows, {("bridge", "plugin"), ("native", "plugin")})

    def test_folders_in_folders_are_rooms_and_what_is_in_those_belongs_to_them(self):
        self.write("host/a.h", '#include "host/store/b.h"\n#include "host/a.h"\n')
        self.write("host/store/b.h")
        self.write("host/store/deep/c.h", '#include "host/store/b.h"\n')
        self.assertEqual(self.house(), ['"host" -> "host/store"'])

    def test_what_a_room_keeps_to_itself_belongs_to_it(self):
        self.write("host/a.h", '#include "host/internal/b.h"\n')
        self.write("host/internal/b.h", '#include "host/a.h"\n#include "native/c.h"\n')
        self.write("native/c.h")
        self.assertEqual(self.house(), ['"host" -> "native"'])

    def test_the_product_stands_apart(self):
        self.write("plugin/a.h")
        self.write("host/a.h", '#include "plugin/a.h"\n')
        self.write("host/store/b.h")
        self.assertEqual(draw_pictures.house(self.root)[1:], [
            'subgraph "cluster_surroundings" {',
            'label="around the product" class=surroundings style=rounded',
            'subgraph "cluster_host" {', 'label="host/" class=host style=rounded',
            '"host" [label="host"]', '"host/store" [label="store"]', "}", "}",
            'subgraph "cluster_product" {', 'label="the product" class=product style=rounded',
            '"plugin" [label="plugin"]', "}",
            '"host" -> "plugin"'])

    def test_an_arrow_that_others_stand_for_is_left_out(self):
        self.write("native/a.h")
        self.write("plugin/a.h", '#include "native/a.h"\n')
        self.write("bridge/a.h", '#include "plugin/a.h"\n#include "native/a.h"\n')
        self.assertEqual(self.house(), ['"bridge" -> "plugin"', '"plugin" -> "native"'])

    def test_rooms_that_include_each_other_have_one_arrow_and_keep_their_others(self):
        self.write("native/a.h", '#include "native/x/a.h"\n#include "low/a.h"\n')
        self.write("native/x/a.h", '#include "native/a.h"\n#include "low/a.h"\n')
        self.write("low/a.h")
        self.write("plugin/a.h", '#include "native/a.h"\n#include "low/a.h"\n')
        self.assertEqual(self.house(), ['"native" -> "low"', '"native" -> "native/x" [dir=both]',
                                        '"native/x" -> "low"', '"plugin" -> "native"'])

    def test_tests_are_no_room(self):
        self.write("plugin/a.h")
        self.write("tests/a.cc", '#include "plugin/a.h"\n')
        self.write("build/a.cc", '#include "gone.h"\n')
        self.write(".cache/a.cc", '#include "gone.h"\n')
        self.assertEqual(draw_pictures.arrows_of_house(self.root), ({"plugin"}, set()))

    def test_only_tests_include_tests(self):
        self.write("tests/a.h")
        self.write("host/a.cc", '#include "tests/a.h"\n')
        self.refuses('host/a.cc includes "tests/a.h": only tests, examples, bench, fuzz may',
                     draw_pictures.house)

    def test_an_include_of_nothing(self):
        self.write("host/a.cc", '#include "a.h"\n')
        self.write("host/a.h")
        self.refuses('host/a.cc includes "a.h", which is no file of the project',
                     draw_pictures.house)


class CallTest(TreeTest):
    PLACES = {"outer": ["a.cc"], "inner": ["b.h"], "kRow": ["c.def"]}
    STEPS = ((2, "outer", "inner"), (3, "inner", "kRow"))

    def setUp(self):
        super().setUp()
        self.write("a.cc", "int inner(int);\nint outer(int x) {\n  if (x) { return 0; }\n"
                           "  return inner(x);\n}\n")
        self.write("b.h", "inline int inner(int x) { return kRow(x); }\n")
        self.write("c.def", 'ROW(kRow, "text",\n    int)\n')

    def refuses(self, reason):
        super().refuses(reason, draw_pictures.call, self.PLACES, self.STEPS)

    def test_functions_with_their_files_and_steps(self):
        drawn = draw_pictures.call(self.root, self.PLACES, self.STEPS)
        self.assertEqual(drawn[4:], [
            'outer [label=<outer<br/><font point-size="10">a.cc</font>>]',
            'inner [label=<inner<br/><font point-size="10">b.h</font>>]',
            'kRow [label=<kRow<br/><font point-size="10">c.def</font>>]',
            'outer -> inner [label=" 2"]', 'inner -> kRow [label=" 3"]'])

    def test_a_function_that_is_gone(self):
        self.write("b.h", "int inner(int x);\n")
        self.refuses("b.h doesn't define inner")

    def test_a_row_that_is_gone(self):
        self.write("c.def", "// ROW(kRow, x)\nROW(kOther, kRow)\n")
        self.refuses("c.def doesn't define kRow")

    def test_a_call_that_is_gone(self):
        self.write("a.cc", "int outer(int x) { return 0; }\nint other(int x) { return inner(x); }\n")
        self.refuses("a.cc: outer doesn't name inner")

    def test_a_call_in_a_comment_is_none(self):
        self.write("a.cc", "int outer(int x) {\n  return 0;  // as inner does\n}\n")
        self.refuses("a.cc: outer doesn't name inner")

    def test_a_function_of_two_files_stands_in_both(self):
        self.write("d.h", "int inner(int x) { return 0; }\n")
        with self.assertRaisesRegex(draw_pictures.Refusal, "^d.h: inner doesn't name kRow$"):
            draw_pictures.call(self.root, {**self.PLACES, "inner": ["b.h", "d.h"]}, self.STEPS)


class ManualTest(TreeTest):
    def arrows(self, lines):
        return [line for line in lines if "->" in line]

    def test_the_plugin_in_its_folder_carries_its_version(self):
        self.write("plugin/version.h", 'inline constexpr char kVersion[] = "12.3.45";\n')
        drawn = draw_pictures.plugins(self.root)
        self.assertIn('file [label="NSUserDefaultsZEL-12.3.45.xojo_plugin" shape=note class=disk]', drawn)
        self.assertEqual(self.arrows(drawn), ["host -> plugins", "host -> program", "plugins -> file"])

    def test_a_version_that_is_gone(self):
        self.write("plugin/version.h")
        self.refuses("plugin/version.h says no version", draw_pictures.plugins)

    def test_a_getter_asks_one_domain_after_the_other(self):
        self.assertEqual(self.arrows(draw_pictures.search(self.root)), [
            '"getter" -> "arguments"', '"arguments" -> "the program\'s own"',
            '"the program\'s own" -> "suites"', '"suites" -> "global"', '"global" -> "registered"',
            '"registered" -> "nothing"', 'setter -> "the program\'s own"'])

    def test_domains_on_disk_are_marked(self):
        drawn = "\n".join(draw_pictures.search(self.root))
        self.assertEqual(re.findall(r'^"(.+)" \[label=<.*> class=disk\]$', drawn, re.M),
                         ["the program's own", "suites", "global"])

    def test_a_value_travels_from_column_to_column(self):
        drawn = draw_pictures.travel(self.root)
        self.assertEqual([line for line in drawn if '[label="MemoryBlock"]' in line
                          or '[label="NSData"]' in line or '[label="data"]' in line],
                         ['program3 [label="MemoryBlock"]', 'memory3 [label="NSData"]', 'file3 [label="data"]'])
        self.assertIn("program3 -> memory3 -> file3 [dir=both]", drawn)
        self.assertEqual(len(self.arrows(drawn)), 7)


class PictureTest(unittest.TestCase):
    def test_the_projects_own(self):
        for name, text in (("house", "foundation_double"), ("call", "defaults/scalars.cc"),
                           ("plugins", "Plugins"), ("search", "registered"), ("travel", "NSDictionary")):
            drawn = draw_pictures.picture(name, PROJECT)
            self.assertTrue(drawn.startswith("<svg "), drawn[:80])
            self.assertEqual(re.findall(r'\bid="[^"]*"', drawn), [])
            self.assertIn(f">{text}</text>", drawn)
            self.assertEqual(drawn, draw_pictures.picture(name, PROJECT))


if __name__ == "__main__":
    unittest.main()
