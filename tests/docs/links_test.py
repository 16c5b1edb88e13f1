# SPDX-License-Identifier: Apache-2.0
"""links_test.py SOURCE: every link of the documents leads to a file of the sources, and to a heading of
it; every file and every test that CONTRIBUTING.md names is there."""
import pathlib
import re
import sys
import unittest

SOURCE = pathlib.Path(sys.argv.pop(1))
PAGES = sorted([*SOURCE.glob("*.md"), *SOURCE.glob("docs/*.md")])
LINK = re.compile(r"\[[^\]]*\]\(([^)\s]+)\)")
CODE = re.compile(r"^ *```.*?^ *```$", re.M | re.S)


def prose(page):
    return CODE.sub("", page.read_text())


def anchors(page):
    """What a heading is called in a link: its letters and digits in lower case, hyphens for blanks."""
    titles = re.findall(r"^#+ (.*)$", prose(page), re.M)
    return {re.sub(r"[^\w -]", "", title.lower()).replace(" ", "-") for title in titles}


class Links(unittest.TestCase):
    def test_every_link_leads_somewhere(self):
        count = 0
        for page in PAGES:
            for target in LINK.findall(prose(page)):
                path, _, anchor = target.partition("#")
                if path.startswith("https:"):
                    continue
                count += 1
                file = page.parent / path if path else page
                with self.subTest(page=page.name, target=target):
                    self.assertTrue(file.exists())
                    if anchor:
                        self.assertIn(anchor, anchors(file))
        self.assertGreater(count, 50)

    def test_the_recipes_name_what_there_is(self):
        text = (SOURCE / "CONTRIBUTING.md").read_text()
        names = re.findall(r"`([\w.-]+/[\w./-]*|\w+Test\.cpp)`", text)
        self.assertGreater(len(names), 12)
        for name in names:
            with self.subTest(name):
                self.assertTrue((SOURCE / name).exists() or (SOURCE / "tests/adapter" / name).exists())
        build_files = "".join(path.read_text() for path in SOURCE.glob("tests/**/CMakeLists.txt"))
        for test in re.findall(r"`\./dev test -R (\w+)`", text):
            with self.subTest(test):
                self.assertRegex(build_files, rf"\b{test}\b")


if __name__ == "__main__":
    unittest.main()
