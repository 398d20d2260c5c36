#!/usr/bin/python3 -B
"""The site as a reader meets it, in a headless Chromium: browser_test.py SITE

The pages are opened as files. Without the browser's Debian packages, or where it doesn't start, every
test is skipped and it says why. The environment's ZEL_TEST_RESULTS names a file for what became of each.
"""

import os
import pathlib
import sys
import unittest

SITE = pathlib.Path(sys.argv.pop()).resolve()
PAGES = sorted(file.relative_to(SITE).as_posix() for file in SITE.rglob("*.html"))
ENGINEERING = {"architecture.html", "language.html", "macos.html", "macos-running.html", "package.html",
               "performance.html"}
PHONE, DESKTOP = 390, 1280
HEIGHT = 900
FEW_SCREENS = 5  # of the desk, for a page of the manual

# What is wrong with the page as it is laid out, one text for each finding.
INSPECT = """
const found = [];
const shown = (element) => element.checkVisibility({ visibilityProperty: true });
const name = (element) => element.tagName + " " + element.textContent.trim().slice(0, 40);

// The page itself never scrolls sideways; a table that is too wide scrolls in its frame.
const root = document.documentElement;
if (root.scrollWidth > root.clientWidth) found.push("wider than the window: " + root.scrollWidth);
for (const table of document.querySelectorAll("table")) {
  const frame = table.parentElement;
  if (table.offsetWidth > frame.clientWidth + 1 && getComputedStyle(frame).overflowX !== "auto")
    found.push("cut off: " + name(table));
}

// Every word of a title stands in one line.
for (const title of document.querySelectorAll("h1, h2, h3, .sidebar-brand-text")) {
  const walker = document.createTreeWalker(title, NodeFilter.SHOW_TEXT);
  while (shown(title) && walker.nextNode()) {
    for (const word of walker.currentNode.data.matchAll(/\\S+/g)) {
      const range = document.createRange();
      range.setStart(walker.currentNode, word.index);
      range.setEnd(walker.currentNode, word.index + word[0].length);
      if (new Set([...range.getClientRects()].map((part) => part.top)).size > 1)
        found.push("broken: " + word[0]);
    }
  }
}

// Colours as [red, green, blue, opacity], blended from the window up.
const canvas = new OffscreenCanvas(1, 1).getContext("2d", { willReadFrequently: true });
const known = new Map();
function parsed(colour) {
  if (!known.has(colour)) known.set(colour, measured(colour));
  return known.get(colour);
}
function measured(colour) {
  canvas.clearRect(0, 0, 1, 1);
  canvas.fillStyle = colour;
  canvas.fillRect(0, 0, 1, 1);
  const [red, green, blue, opacity] = canvas.getImageData(0, 0, 1, 1).data;
  return [red, green, blue, opacity / 255];
}
const over = (upper, lower) => [0, 1, 2].map((i) => upper[i] * upper[3] + lower[i] * (1 - upper[3]));
const papers = new Map([[null, parsed(getComputedStyle(document.body).backgroundColor)]]);
function background(element) {
  if (!papers.has(element)) {
    const own = parsed(getComputedStyle(element).backgroundColor);
    papers.set(element, own[3] === 1 ? own : [...over(own, background(element.parentElement)), 1]);
  }
  return papers.get(element);
}
const linear = (part) => part <= 10 ? part / 3295 : ((part / 255 + 0.055) / 1.055) ** 2.4;
const light = ([red, green, blue]) => 0.2126 * linear(red) + 0.7152 * linear(green) + 0.0722 * linear(blue);

const dark = arguments[0];
const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
while (walker.nextNode()) {
  const element = walker.currentNode.parentElement;
  if (walker.currentNode.data.trim() === "" || element.closest(".visually-hidden") || !shown(element)) continue;
  const style = getComputedStyle(element);
  const behind = background(element);
  const colour = element.closest("svg") ? style.fill : style.color;
  const [ink, paper] = [light(over(parsed(colour), behind)), light(behind)];
  if (dark ? paper > 0.1 : paper < 0.7) found.push("background of " + name(element) + ": " + behind);
  const contrast = (Math.max(ink, paper) + 0.05) / (Math.min(ink, paper) + 0.05);
  if (contrast < 3) found.push("hard to read: " + name(element) + ", contrast " + contrast.toFixed(1));
}
for (const shape of document.querySelectorAll(".picture :is(path, polygon, ellipse)")) {
  const style = getComputedStyle(shape);
  const [red, green, blue, opacity] = parsed(style.fill);
  const filled = light(over([red, green, blue, opacity * style.fillOpacity], background(shape)));
  if (shape.closest(".node, .cluster") && (dark ? filled > 0.1 : filled < 0.7))
    found.push("filled otherwise: " + name(shape.parentElement));
}
return [...new Set(found)];
"""


def missing():
    """Why there can be no browser; None when one is here."""
    try:
        from selenium import webdriver
        from selenium.webdriver.chrome.service import Service
    except ImportError:
        return "python3-selenium isn't installed"
    for program in ("/usr/bin/chromium", "/usr/bin/chromedriver"):
        if not os.access(program, os.X_OK):
            return f"{program} isn't there"
    options = webdriver.ChromeOptions()
    options.binary_location = "/usr/bin/chromium"
    # The pages are the project's own; a sandbox would need rights that not everybody has.
    for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage"):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    try:
        BrowserTest.browser = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
    except Exception as reason:  # whatever keeps it from starting
        return f"Chromium doesn't start: {str(reason).splitlines()[0]}"
    return None


class BrowserTest(unittest.TestCase):
    browser = None

    @classmethod
    def setUpClass(cls):
        reason = missing()
        if reason is not None:
            raise unittest.SkipTest(reason)

    @classmethod
    def tearDownClass(cls):
        if cls.browser is not None:
            cls.browser.quit()

    def setUp(self):
        self.show_as(DESKTOP, "light")

    def show_as(self, width, colours):
        self.browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
            "width": width, "height": HEIGHT, "deviceScaleFactor": 1, "mobile": width == PHONE})
        self.browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {
            "features": [{"name": "prefers-color-scheme", "value": colours},
                         {"name": "prefers-reduced-motion", "value": "reduce"}]})

    def open(self, address):
        self.browser.get(f"file://{SITE}/{address}")

    def find(self, selector):
        return self.browser.find_element("css selector", selector)

    def ask(self, script, *arguments):
        return self.browser.execute_script(script, *arguments)

    def wait_for(self, script):
        from selenium.webdriver.support.wait import WebDriverWait
        WebDriverWait(self.browser, 5, 0.05).until(lambda _: self.ask(script))

    def place(self):
        return self.browser.current_url.removeprefix(f"file://{SITE}/")

    def results(self):
        """What the search page shows, as [title, address]."""
        return self.ask("""return [...document.querySelectorAll("#search-results a")]
                           .map((link) => [link.textContent, link.getAttribute("href")])""")

    def search(self, words):
        self.open("search.html")
        self.find("#search-words").send_keys(words)
        return self.results()

    # --- searching

    def test_the_search_leads_to_the_heading(self):
        self.open("index.html")
        self.find(".sidebar-search").send_keys("setPersistentDomain\n")
        self.wait_for("return document.querySelectorAll('#search-results a').length > 0")
        self.assertEqual(self.results()[0],
                         ["setPersistentDomain", "methods/domains.html#setpersistentdomain"])
        self.find("#search-results a").click()
        self.assertEqual(self.place(), "methods/domains.html#setpersistentdomain")
        top = "document.querySelector('#setpersistentdomain h2').getBoundingClientRect().top"
        self.wait_for(f"return 0 <= {top} && {top} < 100")

    def test_the_search_from_a_page_in_a_folder(self):
        self.open("tasks/errors.html")
        self.find(".sidebar-search").send_keys("companion plugin\n")
        self.wait_for("return document.querySelectorAll('#search-results a').length > 0")
        self.assertEqual(self.results()[0], ["The companion plugin", "companion.html"])

    def test_parts_of_names_and_several_words_are_found(self):
        self.assertEqual(self.search("suite remove")[0],
                         ["removeSuiteNamed", "methods/domains.html#removesuitenamed"])
        self.assertIn(["setURLValue", "methods/texts.html#seturlvalue"], self.search("rlval"))
        self.assertEqual(self.search("window position")[0], ["Window positions", "tasks/windows.html"])

    def test_what_is_nowhere_is_not_found(self):
        self.assertEqual(self.search("removeSuiteNamed xyzzy"), [])
        self.assertEqual(self.find("#search-count").text, "0 sections")

    def test_every_method_is_found_by_its_name(self):
        self.open("methods.html")
        links = self.ask("""return [...document.querySelectorAll("td a")].map((link) =>
                            [link.textContent.split(/[( ]/)[0], link.getAttribute("href")])""")
        self.assertEqual(len(links), 49)
        self.open("search.html")
        for name, address in links:
            found = self.ask("return found(arguments[0]).slice(0, 2).map((section) => section[0])", name)
            self.assertIn(address, found, name)

    # --- links

    def test_the_table_of_methods_leads_to_each(self):
        self.open("methods.html")
        links = self.ask("return [...document.querySelectorAll('td a')].map((link) => link.href)")
        self.assertEqual(len({*links}), 49)
        for page in sorted({link.partition("#")[0] for link in links}):
            self.browser.get(page)
            for link in links:
                if link.startswith(page):
                    anchor = link.partition("#")[2]
                    self.assertIsNotNone(self.ask("return document.getElementById(arguments[0])", anchor), link)

    def test_the_first_page_leads_on(self):
        for text, place in (("First steps", "start.html"), ("Tasks", "tasks.html"),
                            ("Methods", "methods.html"), ("Installing", "install.html")):
            self.open("index.html")
            self.browser.find_element("xpath", f"//article//a[.='{text}']").click()
            self.assertEqual(self.place(), place)

    # --- on a phone

    def test_the_menu_on_a_phone(self):
        self.show_as(PHONE, "light")
        self.open("start.html")
        menu = "return document.querySelector('.sidebar-drawer').getBoundingClientRect()"
        self.assertLessEqual(self.ask(menu + ".right"), 0)
        self.find(".mobile-header .nav-overlay-icon").click()
        self.wait_for(menu + ".left === 0")
        self.browser.find_element("xpath", "//*[@class='sidebar-tree']//a[.='Methods']").click()
        self.assertEqual(self.place(), "methods.html")
        self.assertLessEqual(self.ask(menu + ".right"), 0)

    def test_a_wide_table_scrolls_on_a_phone(self):
        self.show_as(PHONE, "light")
        self.open("methods.html")
        scrolled = self.ask("""const frames = [...document.querySelectorAll(".table-wrapper")];
                               const wide = frames.find((frame) => frame.scrollWidth > frame.clientWidth);
                               wide.scrollLeft = 1000;
                               return wide.scrollLeft;""")
        self.assertGreater(scrolled, 0)

    # --- looks

    def test_every_page_on_a_phone_in_the_dark_and_on_a_desk_by_day(self):
        for page in PAGES:
            self.open(page)
            for width, colours in ((PHONE, "dark"), (DESKTOP, "light")):
                with self.subTest(page=page, width=width, colours=colours):
                    self.show_as(width, colours)
                    self.assertEqual(self.ask(INSPECT, colours == "dark"), [])
            with self.subTest(page=page):
                length = self.ask("return document.documentElement.scrollHeight")
                self.assertTrue(page in ENGINEERING or length <= FEW_SCREENS * HEIGHT, length)

    def test_the_reader_chooses_the_colours(self):
        self.open("start.html")
        colour = "return getComputedStyle(document.body).backgroundColor"
        self.assertEqual(self.ask(colour), "rgb(255, 255, 255)")
        self.find(".content .theme-toggle").click()
        self.assertEqual(self.ask(colour), "rgb(19, 20, 22)")
        self.assertEqual(self.ask(INSPECT, True), [])
        self.ask("localStorage.clear()")

    # Plots are files, which can't know the page's colours.
    def test_a_plot_turns_dark_with_its_page(self):
        filters = {}
        for colours in ("light", "dark"):
            self.show_as(DESKTOP, colours)
            self.open("start.html")
            filters[colours] = self.ask("""const plot = document.createElement("img");
                                           plot.src = "plot.svg";
                                           document.querySelector("article").append(plot);
                                           return getComputedStyle(plot).filter;""")
        self.assertEqual(filters, {"light": "none", "dark": "invert(0.9) hue-rotate(180deg)"})

    def test_comments_have_a_colour_of_their_own(self):
        for colours in ("light", "dark"):
            self.show_as(DESKTOP, colours)
            self.open("start.html")
            comment = self.find(".highlight-xojo .c")
            self.assertEqual(comment.text, "// The first time a program runs, nothing is set, and 0 is read.")
            used = {self.find(f".highlight-xojo .{kind}").value_of_css_property("color")
                    for kind in ("c", "k", "n", "s")}
            self.assertEqual(len(used), 4, colours)

    def test_the_scripts_run_without_a_word(self):
        self.browser.get_log("browser")
        for page in ("index.html", "methods/domains.html", "search.html?q=suite"):
            self.open(page)
            self.assertEqual(self.browser.get_log("browser"), [], page)


class Results(unittest.TextTestResult):
    """What became of each test, for who counts them: one line each, as the project's other tests have it."""

    def __init__(self, *arguments):
        super().__init__(*arguments)
        self.lines = {}

    def startTest(self, test):
        super().startTest(test)
        self.lines[test.id()] = "passed"

    def addFailure(self, test, error):
        super().addFailure(test, error)
        self.lines[test.id()] = "failed"

    def addError(self, test, error):
        super().addError(test, error)
        self.lines[test.id()] = "failed"

    def addSubTest(self, test, subtest, error):
        super().addSubTest(test, subtest, error)
        if error is not None:
            self.lines[test.id()] = "failed"

    def addSkip(self, test, reason):
        super().addSkip(test, reason)
        # All of a class are skipped at once, under its name.
        for name in unittest.defaultTestLoader.getTestCaseNames(BrowserTest):
            self.lines[f"__main__.BrowserTest.{name}"] = f"skipped: {reason}"


def main():
    tests = unittest.defaultTestLoader.loadTestsFromTestCase(BrowserTest)
    result = unittest.TextTestRunner(resultclass=Results, verbosity=2).run(tests)
    file = os.environ.get("ZEL_TEST_RESULTS")
    if file is not None:
        with open(file, "w", encoding="utf-8") as out:
            for test, became in result.lines.items():
                became, _, reason = became.partition(":")
                print(became, test.removeprefix("__main__.") + (f":{reason}" if reason else ""), file=out)
    return 0 if result.wasSuccessful() else 1


if __name__ == "__main__":
    sys.exit(main())
