"""The directive for a picture that tools/draw_pictures.py draws."""

import pathlib
import sys

from docutils import nodes
from sphinx.util.docutils import SphinxDirective

PROJECT = pathlib.Path(__file__).parents[2]
sys.path.append(str(PROJECT / "tools"))
import draw_pictures  # noqa: E402


class Picture(SphinxDirective):
    """A drawing of the sources, with its caption: part of the page, so that it has its colours."""

    required_arguments = 1
    has_content = True

    def run(self):
        try:
            drawn = draw_pictures.picture(self.arguments[0], PROJECT)
        except draw_pictures.Refusal as refusal:
            raise self.error(str(refusal))
        figure = nodes.figure("", nodes.raw("", drawn, format="html"))
        caption = " ".join(self.content)
        figure += nodes.caption(caption, caption)
        return [figure]


def setup(app):
    app.add_directive("picture", Picture)
