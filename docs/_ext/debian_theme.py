"""What Debian's package of the theme lacks, mended in the site that was made with it."""

import pathlib
import re

IMPORTED_STYLE = re.compile(r"@import url\(/(javascript/[\w./-]+\.css)\);")
DARK = re.compile(r'^  body\[data-theme="dark"\] \{\n(.*?)\}', re.M | re.S)
IMPORTED_SCRIPT = 'import Gumshoe from "./gumshoe-patched.js";\n'


class ThemeError(Exception):
    """The theme isn't the one that is mended here."""


def mend(app, exception):
    if exception is None:
        out = pathlib.Path(app.outdir, "_static")
        for style in out.rglob("*.css"):
            text = style.read_text(encoding="utf-8")
            style.write_text(IMPORTED_STYLE.sub(imported_style, text), encoding="utf-8")
        follow_the_system(out / "styles" / "furo.css")
        bundle(out / "scripts")


def imported_style(match):
    """One style sheet is taken from the machine's web server; put it in its place."""
    return pathlib.Path("/usr/share", match.group(1)).read_text(encoding="utf-8")


def follow_the_system(style):
    """The colours for a reader whose system is dark were lost when the style sheet was compiled."""
    text = style.read_text(encoding="utf-8")
    dark = DARK.search(text)
    if dark is None or "prefers-color-scheme" in text:
        raise ThemeError(f"{style} has other colours than expected")
    rule = f'body:not([data-theme="light"]) {{\n{dark.group(1)}}}'
    style.write_text(f"{text}\n@media screen and (prefers-color-scheme: dark) {{\n{rule} }}\n", encoding="utf-8")


def bundle(scripts):
    """The script imports another one, which a page that came from a file must not: make it one."""
    main, imported = scripts / "furo.js", scripts / "gumshoe-patched.js"
    text = main.read_text(encoding="utf-8")
    if not text.startswith(IMPORTED_SCRIPT):
        raise ThemeError(f"{main} begins otherwise than expected")
    main.write_text(imported.read_text(encoding="utf-8") + text.removeprefix(IMPORTED_SCRIPT), encoding="utf-8")
    imported.unlink()


def setup(app):
    app.connect("build-finished", mend)
