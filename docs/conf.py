# SPDX-License-Identifier: Apache-2.0
"""How Sphinx makes a site of these pages: "./dev docs"."""
import html
import pathlib
import re

from pygments.lexers.special import TextLexer
from sphinx.errors import ExtensionError

project = "Quorvane Deep Header"
author = "the authors of Quorvane Deep Header"
extensions = ["myst_parser"]
exclude_patterns = ["man"]
# Headings can be linked to, as on the pages of a repository.
myst_heading_anchors = 3
html_theme = "sphinx_rtd_theme"
html_copy_source = False
html_show_copyright = False


def pictured(app, docname, source):
    """Puts the pictures of our pages where a page says <!-- picture NAME: what it shows -->. They are in the folder
    of the site when this begins, and a reader of the bare Markdown misses nothing. A telephone gets one of its own."""
    folder = pathlib.Path(app.outdir) / "pictures"

    def image(found):
        name, words = found[1], html.escape(found[2])
        if not folder.exists():
            return found[0]  # a site without pictures
        for file in (f"{name}.png", f"{name}-phone.png"):
            if not (folder / file).exists():
                raise ExtensionError(f"{docname}: there is no picture {file}")
        return (f'<picture><source media="(max-width: 600px)" srcset="pictures/{name}-phone.png">'
                f'<img src="pictures/{name}.png" alt="{words}" style="border: 1px solid #ccc"></picture>')

    source[0] = re.sub(r"<!-- picture (\S+): (.*?) -->", image, source[0], flags=re.S)


def setup(app):
    """Nothing highlights the languages of our own."""
    for language in ("qvr", "transcript"):
        app.add_lexer(language, TextLexer)
    app.connect("source-read", pictured)
