"""The site's own search: it knows sections, and needs no server. docs/_static/search.js asks it."""

import json
import pathlib

from docutils import nodes

LUNR = "/usr/share/javascript/lunr/lunr.min.js"
# What only Sphinx's own search, and its marks in the pages that were found, would need.
UNUSED = ("documentation_options", "doctools", "jquery", "language_data", "searchtools", "sphinx_highlight",
          "underscore", "_sphinx_javascript_frameworks_compat")


def add_files(app, config):
    config.html_static_path.append(LUNR)
    config.html_additional_pages["search"] = "search.html"


def begin(app):
    app.builder.search = False  # Sphinx's own, which knows pages only


def leave_out_scripts(app, page, template, context, doctree):
    context["script_files"] = [file for file in context["script_files"]
                               if pathlib.PurePath(file).stem not in UNUSED]


def sections_of(app, page):
    """The sections of a page as the search has them: where, its title, the page's title, its text."""
    tree = app.env.get_doctree(page)
    title = app.env.titles[page].astext()
    for section in tree.findall(nodes.section):
        own = [part for part in section.children[1:] if not isinstance(part, nodes.section)]
        text = " ".join(block for part in own for block in blocks_of(part))
        anchor = "" if section.parent is tree else f"#{section['ids'][0]}"
        yield [f"{page}.html{anchor}", section[0].astext(), title, " ".join(text.split())]


def blocks_of(part):
    """The texts of its paragraphs, cells and samples. A picture is none."""
    for block in part.findall(nodes.TextElement):
        if not isinstance(block, (nodes.raw, nodes.Inline)):
            yield block.astext()


def write_sections(app, exception):
    if exception is None:
        found = [section for page in sorted(app.env.found_docs) for section in sections_of(app, page)]
        lines = ",\n".join(json.dumps(section, ensure_ascii=False) for section in found)
        # An address in a text is none that the script would load.
        lines = lines.replace("//", "\\/\\/")
        file = pathlib.Path(app.outdir, "_static", "sections.js")
        for unused in UNUSED:
            file.with_name(f"{unused}.js").unlink()
        file.write_text(f"const sections = [\n{lines}\n];\n", encoding="utf-8")


def setup(app):
    app.connect("config-inited", add_files)
    app.connect("builder-inited", begin)
    app.connect("html-page-context", leave_out_scripts)
    app.connect("build-finished", write_sections)
