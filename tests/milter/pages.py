# SPDX-License-Identifier: Apache-2.0
"""Recipes of the documentation, which tests follow to the letter."""
import os
import pathlib
import re
import textwrap

BLOCK = re.compile(r"^ *```([a-z]*)\n(.*?)^ *```$", re.S | re.M)


def text_of(page):
    return (pathlib.Path(os.environ["QV_DOCS"]) / page).read_text()


def headings(page):
    return re.findall("^## (.*)$", text_of(page), re.M)


def section(page, heading):
    """The text below a heading of a page, up to the next one."""
    return text_of(page).split(f"\n## {heading}\n")[1].split("\n## ")[0]


def blocks(page, heading, language=None):
    """The blocks of code below a heading; those in a language, "" for no language."""
    return [textwrap.dedent(block) for name, block in BLOCK.findall(section(page, heading))
            if language in (None, name)]
