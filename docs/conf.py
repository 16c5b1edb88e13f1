# SPDX-License-Identifier: Apache-2.0
"""How Sphinx makes a site of these pages: "./dev docs"."""
from pygments.lexers.special import TextLexer

project = "Quorvane Deep Header"
author = "the authors of Quorvane Deep Header"
extensions = ["myst_parser"]
exclude_patterns = ["man"]
# Headings can be linked to, as on the pages of a repository.
myst_heading_anchors = 3
html_theme = "sphinx_rtd_theme"
html_copy_source = False
html_show_copyright = False


def setup(app):
    """Nothing highlights the languages of our own."""
    for language in ("qvr", "transcript"):
        app.add_lexer(language, TextLexer)
