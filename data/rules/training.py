# SPDX-License-Identifier: Apache-2.0
"""The training mail of the default rules, and how the programs are called on it.

A folder of corpora holds one folder for each corpus, with an mbox of wanted mail (ham.mbox) and one
of unwanted mail (spam.mbox). Each of them may be packed, and one may be missing.
"""
import json
import pathlib
import subprocess
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
ELITE = HERE / "elite.qvr"
LABELS = ("ham", "spam")
SCANNING = ["--config", str(HERE / "training.toml")]
WITH_COPIES = [*SCANNING, "--augment", "no-reverse-name"]

# Left out of the tree. The envelope sender is unknown at most hosts of the training mail, and where
# it is known it separates most spam only from mailing lists. The others speak for spam at one site
# and for ham at another.
ENVELOPE = ("from_matches_envelope", "first_envelope_matches")
EXCLUDED = (
    *ENVELOPE,
    "message_id_matches_reverse",
    "message_id_matches_helo",
    "helo_is_recipient_not_envelope",
    "chain_broken",
)


class TrainingError(Exception):
    """What the user has to correct, in words."""


def corpora(folder):
    """Corpus name -> label -> mbox."""
    found = {}
    for path in sorted(pathlib.Path(folder).glob("*/*.mbox*")):
        label = path.name.split(".")[0]
        if label in LABELS:
            found.setdefault(path.parent.name, {})[label] = path
    if not found:
        raise TrainingError(f"{folder}: no corpus in it; expected CORPUS/ham.mbox and "
                            "CORPUS/spam.mbox, packed or not")
    return found


def mail_options(mail):
    """The options that name these corpora."""
    options = []
    for corpus, boxes in sorted(mail.items()):
        for label, path in sorted(boxes.items()):
            options += [f"--{label}", f"{corpus}={path}"]
    return options


def run(qvrules, *arguments, allowed=(0,), **streams):
    done = subprocess.run([qvrules, *arguments], text=True, stdout=subprocess.PIPE, check=False,
                          **streams)
    if done.returncode not in allowed:
        raise TrainingError(f"qvrules {arguments[0]} failed with status {done.returncode}")
    return done.stdout if allowed == (0,) else done.returncode


def learn_tree(qvrules, mail, output, excluded, *options):
    """Writes a tree learned from `mail` and its copies."""
    left_out = [word for name in excluded for word in ("--exclude", name)]
    run(qvrules, "learn", *WITH_COPIES, *left_out, *options, *mail_options(mail), "-o", str(output))


def learn(qvrules, mail, output):
    """Writes the elite rules with a tree learned from `mail` after them."""
    learn_tree(qvrules, mail, output, EXCLUDED, "--with", str(ELITE))


def adapt(qvrules, rules, mail, output):
    """Adapts rules to a site; false when what comes out would be no better, and nothing is written."""
    status = run(qvrules, "adapt", str(rules), *SCANNING, *mail_options(mail), "-o", str(output),
                 "--force", allowed=(0, 1), stderr=subprocess.DEVNULL)
    return status == 0


def evaluate(qvrules, rules, mail, scanning=tuple(WITH_COPIES)):
    """What `rules` do on `mail`; the copies without reverse names are corpora of their own."""
    return json.loads(run(qvrules, "evaluate", str(rules), *scanning, *mail_options(mail),
                          "--format", "json"))


def work_folder():
    return tempfile.TemporaryDirectory(prefix="qv-training-")
