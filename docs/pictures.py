# SPDX-License-Identifier: Apache-2.0
"""pictures.py FOLDER QVRULES: pictures of the pages that qvrules writes, for the site of these documents.

Of each page there are two, NAME.png and NAME-phone.png, both with the width of the screen that they are for, so
that a reader can read them there. The mail is invented.
"""
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile

SOURCE = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(SOURCE / "tests/browser"))
import browser

RULES = SOURCE / "data/rules"
EXAMPLES = SOURCE / "examples"
MESSAGE = "spam-bot-dynamic-name"
SCREEN, PHONE = (800, 1000), (360, 900)
# What is looked at, if it is not the top of the page.
PLACES = {"rules": "#nodes"}
# Of spam and of other mail: examples, and how often such messages come.
SPAM = {"spam-bot-dynamic-name": 40, "spam-bot-no-reverse-name": 25, "helo-localhost": 20, "invented-trail": 10,
        "bytes-beyond-utf8": 8, "helo-recipient-domain": 12, "forged-reverse-name": 6}
HAM = {"postfix-esmtps": 60, "forwarder-many-hops": 40, "mailing-list": 50, "gmail-like": 60, "sendmail": 30,
       "webmail-http": 15, "authenticated-newest-hop": 4, "helo-address-literal": 1}


def mailbox(folder, name, shares, count):
    """A mailbox of `count` messages, the same ones each time."""
    chosen = random.Random(name).choices(list(shares), list(shares.values()), k=count)
    path = folder / f"{name}.mbox"
    path.write_bytes(b"".join(b"From x@example.org Tue May 14 07:12:00 2024\n"
                              + (EXAMPLES / f"{one}.eml").read_bytes() + b"\n" for one in chosen))
    return path


def pages(folder, qvrules):
    """The pages, by the names of their pictures. They are about files in `folder`, so no path of a machine shows."""
    mailbox(folder, "spam", SPAM, 400)
    mailbox(folder, "ham", HAM, 600)
    for file in (RULES / "starter.qvr", RULES / "default.qvr", EXAMPLES / f"{MESSAGE}.eml"):
        shutil.copy(file, folder)
    text = (RULES / "default.qvr").read_text(encoding="utf-8")
    # Above the level that is usual, so the rule is left out.
    (folder / "without-9011.qvr").write_text(text.replace("code 9011", "level 2 code 9011"), encoding="utf-8")
    sorted_mail = ("--spam", "site=spam.mbox", "--ham", "site=ham.mbox")
    for name, *command in (("rules", "show", "starter.qvr", "--message", f"{MESSAGE}.eml"),
                           ("evaluation", "evaluate", "default.qvr", *sorted_mail),
                           ("difference", "diff", "default.qvr", "without-9011.qvr", *sorted_mail)):
        page = folder / f"{name}.html"
        run = subprocess.run([qvrules, *command, "--dns-data", EXAMPLES / "dns.zone", "--format", "html", "-o", page],
                             cwd=folder, check=False)
        if run.returncode not in (0, 1):  # 1: verdicts differ
            sys.exit(f"pictures: qvrules {command[0]} ended with status {run.returncode}")
        yield name, page


def main():
    target, qvrules = pathlib.Path(sys.argv[1]), str(pathlib.Path(sys.argv[2]).resolve())
    target.mkdir(parents=True, exist_ok=True)
    eyes = browser.Browser()
    eyes.command("Emulation.setScrollbarsHidden", hidden=True)
    try:
        with tempfile.TemporaryDirectory() as folder:
            for name, page in pages(pathlib.Path(folder), qvrules):
                for size, ending in ((SCREEN, ""), (PHONE, "-phone")):
                    eyes.open(page.as_uri() + PLACES.get(name, ""), size)
                    eyes.screenshot(target / f"{name}{ending}.png")
        problems = eyes.problems()
    finally:
        eyes.close()
    if problems:
        sys.exit("pictures: " + "\n".join(problems))


if __name__ == "__main__":
    main()
