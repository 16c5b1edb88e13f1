# SPDX-License-Identifier: Apache-2.0
"""Recipes of the documentation, which tests follow to the letter."""
import pathlib
import re
import textwrap

DOCS = pathlib.Path(__file__).resolve().parents[2] / "docs"
BLOCK = re.compile(r"^ *```([^`\n]*)\n(.*?)^ *```$", re.S | re.M)


def text_of(page):
    return (DOCS / page).read_text()


def headings(page):
    return re.findall("^## (.*)$", text_of(page), re.M)


def section(page, heading):
    """The text below a heading of a page, up to the next one that is not below it."""
    level, text = re.search(rf"^(##+) {re.escape(heading)}\n(.*)", text_of(page), re.S | re.M).groups()
    return re.split(rf"^#{{2,{len(level)}}} ", text, maxsplit=1, flags=re.M)[0]


def blocks_of(text, language=None):
    """The blocks of code in a text; those in a language, "" for no language."""
    return [textwrap.dedent(block) for name, block in BLOCK.findall(text) if language in (None, name)]


def blocks(page, heading, language=None):
    """The blocks of code below a heading."""
    return blocks_of(section(page, heading), language)


def pieces(page, language):
    """All code of a page in a language, each piece with the output that stands right below it."""
    return re.findall(rf"^```{language}\n(.*?)^```\n(?:```\n(.*?)^```\n)?", text_of(page), re.S | re.M)
