"""How the documentation site is made of the pages in this folder. tools/docs runs it."""

import pathlib
import re
import sys

from docutils import nodes
from pygments.lexer import RegexLexer, words
from pygments.token import Comment, Keyword, Name, Number, Operator, String, Text
from sphinx.util.docutils import SphinxDirective

# The pages in the order in which the site lists them, before any others. One that isn't there is left
# out.
PAGES = ["reference", "values", "language", "companion", "package", "macos", "macos-running", "architecture"]

IMPORTED_STYLE = re.compile(r"@import url\(/(javascript/[\w./-]+\.css)\);")

here = pathlib.Path(__file__).parent
sys.path.append(str(here.parent / "tools"))
sys.dont_write_bytecode = True  # nothing is made among the sources
import draw_pictures  # noqa: E402

version_header = (here.parent / "plugin" / "version.h").read_text(encoding="utf-8")

project = "NSUserDefaultsZEL"
version = release = re.search(r'"(\d+\.\d+\.\d+)"', version_header).group(1)
html_title = f"{project} {version}"
html_theme = "furo"
html_show_copyright = False
html_copy_source = False
html_use_index = False
smartquotes = False  # the search takes headings as they are written
html_last_updated_fmt = None
extensions = ["myst_parser"]
exclude_patterns = ["conf.py"]
myst_heading_anchors = 4
nitpicky = True


class XojoLexer(RegexLexer):
    """Colours for programs in the Xojo language."""

    name = "Xojo"
    flags = re.IGNORECASE
    tokens = {
        "root": [
            (r"('|//).*?$", Comment),
            (r"\brem\b.*?$", Comment),
            (r'"[^"\n]*"', String),
            (r"&[hbo][0-9a-f]+|\d+(\.\d+)?(e[+-]?\d+)?", Number),
            (
                words(
                    "and as array assigns byref call case catch const dim do downto each else"
                    " elseif end exit false finally for function if is isa loop mod new next nil"
                    " not or print raise return select static step sub then to true try until"
                    " var wend while xor".split(),
                    prefix=r"\b",
                    suffix=r"\b",
                ),
                Keyword,
            ),
            (r"[^\W\d]\w*", Name),
            (r"[-+*/\\^=<>&.]", Operator),
            (r"[(),]", Text),
            (r"\s+", Text),
            (r".", Text),
        ]
    }


class Picture(SphinxDirective):
    """A drawing of the sources, with its caption: part of the page, so that it has its colours."""

    required_arguments = 1
    has_content = True

    def run(self):
        try:
            drawn = draw_pictures.picture(self.arguments[0], here.parent)
        except draw_pictures.Refusal as refusal:
            raise self.error(str(refusal))
        figure = nodes.figure("", nodes.raw("", drawn, format="html"))
        caption = " ".join(self.content)
        figure += nodes.caption(caption, caption)
        return [figure]


def list_pages(app, page, source):
    """Ends the first page with the list that the site's sidebar shows."""
    if page == "index":
        others = sorted(app.env.found_docs - {"index", *PAGES})
        found = [name for name in [*PAGES, *others] if name in app.env.found_docs]
        listing = "\n".join(["```{toctree}", ":hidden:", "", *found, "```"])
        source[0] += f"\n{listing}\n"


def name_project_file(app, env, node, contnode):
    """A link to a page of the project that isn't of the site is no link here, only its text."""
    file = here / node.get("reftarget", "").partition("#")[0]
    outside = here not in file.resolve().parents
    return contnode if outside and file.is_file() else None


def keep_styles_together(app, exception):
    """Debian's theme takes one style sheet from the machine's web server; put it in its place."""
    if exception is None:
        for style in pathlib.Path(app.outdir).rglob("*.css"):
            text = style.read_text(encoding="utf-8")
            style.write_text(IMPORTED_STYLE.sub(imported_style, text), encoding="utf-8")


def imported_style(match):
    return pathlib.Path("/usr/share", match.group(1)).read_text(encoding="utf-8")


def setup(app):
    for language in ("xojo", "declaration"):
        app.add_lexer(language, XojoLexer)
    app.add_directive("picture", Picture)
    app.connect("source-read", list_pages)
    app.connect("missing-reference", name_project_file)
    app.connect("build-finished", keep_styles_together)
