"""Which pages there are, and in which order the site lists them."""

import pathlib

DOCS = pathlib.Path(__file__).parents[1]

# The pages below a page, in parts, in the order in which the site lists them. One that isn't there is
# left out.
MANUAL = {
    "index": ["install", "start", "domains", "rules", "tasks", "methods", "values", "differences", "companion"],
    "tasks": [f"tasks/{name}" for name in "windows recent-files sharing export migrating errors".split()],
    "methods": [f"methods/{name}"
                for name in "objects numbers texts data lists keys domains volatile names".split()],
    "values": ["stored", "read-back"],
    "differences": ["linux-store"],
}
# For who works on the plugin, and anything new.
ENGINEERING = ["architecture", "performance", "language", "package", "macos", "macos-running"]

# The last row of the table at the end of the landing page, which only engineers get.
LAST_ROW = "| what a call costs, and beside what | [Performance](performance.md) |\n"


def leave_out_engineering(app, config):
    """With the tag "manual", which users get, only the pages that are for them."""
    if app.tags.has("manual"):
        config.exclude_patterns += [f"{name}.md" for name in engineering_pages()]


def manual_pages():
    return {"index", *(name for names in MANUAL.values() for name in names)}


def engineering_pages():
    names = {file.relative_to(DOCS).with_suffix("").as_posix() for file in DOCS.rglob("*.md")}
    return [*ENGINEERING, *sorted(names - manual_pages() - {*ENGINEERING})]


def list_pages(app, page, source):
    """Ends a page with the lists that the site's sidebar shows."""
    if page == "index":
        if not app.tags.has("manual"):
            source[0] += LAST_ROW
        source[0] += listing(app, MANUAL["index"], ":caption: Manual")
        source[0] += listing(app, engineering_pages(), ":caption: Engineering")
    elif page in MANUAL:
        source[0] += listing(app, MANUAL[page])


def listing(app, pages, *options):
    found = [f"/{page}" for page in pages if page in app.env.found_docs]
    lines = ["", "```{toctree}", ":hidden:", *options, "", *found, "```", ""]
    return "\n".join(lines) if found else ""


def name_project_file(app, env, node, contnode):
    """A link to a page of the project that isn't of the site is no link here, only its text."""
    file = (DOCS / node.get("refdoc", "")).parent / node.get("reftarget", "").partition("#")[0]
    outside = DOCS not in file.resolve().parents
    return contnode if outside and file.is_file() else None


def setup(app):
    app.connect("config-inited", leave_out_engineering)
    app.connect("source-read", list_pages)
    app.connect("missing-reference", name_project_file)
