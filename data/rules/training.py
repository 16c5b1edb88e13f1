# SPDX-License-Identifier: Apache-2.0
"""The training mail of the default rules, and how the programs are called on it.

A folder of corpora holds one folder for each corpus, with an mbox of wanted mail (ham.mbox) and one
of unwanted mail (spam.mbox). Each of them may be packed, and one may be missing.
"""
import csv
import json
import pathlib
import subprocess
import tempfile

import branches

HERE = pathlib.Path(__file__).resolve().parent
TOP = HERE / "top.qvr"
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


def left_out(names):
    return [word for name in names for word in ("--exclude", name)]


def learn_tree(qvrules, mail, output, excluded):
    """Writes a tree learned from `mail` and its copies."""
    run(qvrules, "learn", *WITH_COPIES, *left_out(excluded), *mail_options(mail), "-o", str(output))


def shape_of_branches(qvrules, table, folder):
    """Which tests tell spam from ham among machines with an ordinary name, on consumer lines or not: what
    the spam of consumer lines has besides its origin, other spam has, too."""
    ordinary, shape = folder / "ordinary.csv", folder / "shape.qvr"
    messages = kept = 0
    with open(table, newline="", encoding="utf-8") as whole, \
            open(ordinary, "w", newline="", encoding="utf-8") as part:
        rows = csv.DictReader(whole)
        chosen = csv.DictWriter(part, rows.fieldnames)
        chosen.writeheader()
        labels = set()
        for row in rows:
            if not row["hop_behind_first"]:
                continue
            messages += int(row["count"])
            if row["first_helo_dynamic"] == str(branches.CODES["no"]):
                kept += int(row["count"])
                labels.add(row["label"])
                chosen.writerow(row)
    if len(labels) < len(LABELS):
        return branches.Node(None)
    run(qvrules, "learn", "--vectors", str(ordinary), *left_out((*EXCLUDED, "first_reverse_dynamic")),
        "--prune", "none", "--min-node-support", str(branches.LEAST_SUPPORT * messages / kept),
        "-o", str(shape))
    return list(branches.tree_nodes(shape.read_text(encoding="utf-8")))[0][0]


def learn(qvrules, mail, output, *options):
    """Writes the hand-written rules with branches learned from `mail` and its copies."""
    with work_folder() as name:
        folder = pathlib.Path(name)
        table = folder / "table.csv"
        run(qvrules, "learn", *WITH_COPIES, *options, *mail_options(mail), "--table", str(table))
        text = branches.with_branches(TOP.read_text(encoding="utf-8"),
                                      shape_of_branches(qvrules, table, folder),
                                      branches.Mail.read(table))
    pathlib.Path(output).write_text(text, encoding="utf-8")


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
