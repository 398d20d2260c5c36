"""How the documentation site is made of the pages in this folder. tools/docs runs it."""

import pathlib
import re
import sys

here = pathlib.Path(__file__).parent
sys.path.append(str(here / "_ext"))
sys.dont_write_bytecode = True  # nothing is made among the sources

version_header = (here.parent / "plugin" / "version.h").read_text(encoding="utf-8")

project = "NSUserDefaultsZEL"
version = release = re.search(r'"(\d+\.\d+\.\d+)"', version_header).group(1)
html_title = f"{project} {version}"
html_theme = "furo"
html_show_copyright = False
html_copy_source = False
html_use_index = False
html_last_updated_fmt = None
html_static_path = ["_static"]
html_css_files = ["site.css"]
templates_path = ["_templates"]
pygments_style = "default"
pygments_dark_style = "github-dark"
smartquotes = False  # the search takes headings as they are written
extensions = ["myst_parser", "xojo", "pictures", "navigation", "sections", "debian_theme"]
exclude_patterns = ["conf.py"]
myst_heading_anchors = 4
nitpicky = True
