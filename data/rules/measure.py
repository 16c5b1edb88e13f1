#!/usr/bin/python3 -B
# SPDX-License-Identifier: Apache-2.0
"""measure.py QVRULES CORPORA PAGE: writes what the default rules do into the tables of PAGE.

Each corpus is judged by rules whose tree was learned without it, and the last third of the corpus
with the most spam by rules learned from all mail but that third. PAGE marks where a table goes by
"<!-- table NAME -->" and "<!-- end -->".
"""
import bz2
import gzip
import lzma
import pathlib
import re
import sys

import training

OPENERS = {".xz": lzma.open, ".gz": gzip.open, ".bz2": bz2.open}
COPIES = ", no reverse names"


def messages(path):
    """The messages of an mbox, each with its separator."""
    with OPENERS.get(path.suffix, open)(path, "rb") as box:
        return re.split(rb"(?<=\n\n)(?=From )", box.read())


def split(boxes, folder):
    """The first two thirds and the last third of each mbox, in the order of the file."""
    parts = ({}, {})
    for label, path in boxes.items():
        mails = messages(path)
        cut = len(mails) * 2 // 3
        for part, name, chosen in ((0, "first", mails[:cut]), (1, "last", mails[cut:])):
            parts[part][label] = pathlib.Path(folder) / f"{label}-{name}.mbox"
            parts[part][label].write_bytes(b"".join(chosen))
    return parts


def percent(rate):
    return f"{100 * rate['rate']:.2f} %"


def share(rate):
    """A rate with its counts and the upper end of its interval."""
    if not rate["of"]:
        return "-"
    return f"{rate['count']:,} of {rate['of']:,}, {percent(rate)} (at most {100 * rate['high']:.2f})"


def brief(rate):
    return f"{100 * rate['rate']:.1f} %" if rate["of"] else "-"


def figures(evaluation, copies):
    for corpus in evaluation["corpora"]:
        if corpus["name"].endswith(COPIES) == copies:
            return corpus
    raise training.TrainingError("the evaluation has no figures for " +
                                 ("copies" if copies else "messages"))


def row(name, evaluation):
    mail, copies = figures(evaluation, False), figures(evaluation, True)
    return (f"| {name} | {brief(mail['judgeable'])} | {share(mail['falsePositives'])} "
            f"| {share(copies['falsePositives'])} | {brief(mail['caught'])} "
            f"| {brief(copies['caught'])} | {brief(mail['passed'])} | {brief(mail['missed'])} "
            f"| {mail['roc']['area']:.3f} |")


def left_out(qvrules, mail, folder):
    """The rows of the table of corpora left out."""
    rows = ["| left out | judgeable | ham called spam | the same, copies | spam caught "
            "| the same, copies | ham called ham | spam called ham | area |",
            "| --- | --- | --- | --- | --- | --- | --- | --- | --- |"]
    rules = pathlib.Path(folder) / "rules.qvr"
    for corpus in mail:
        others = {name: boxes for name, boxes in mail.items() if name != corpus}
        training.learn(qvrules, others, rules)
        rows.append(row(corpus, training.evaluate(qvrules, rules, {corpus: mail[corpus]})))
    largest = max((name for name in mail if len(mail[name]) == len(training.LABELS)),
                  key=lambda name: len(messages(mail[name]["spam"])))
    first, last = split(mail[largest], folder)
    training.learn(qvrules, {**mail, largest: first}, rules)
    rows.append(row(f"last third of {largest}", training.evaluate(qvrules, rules,
                                                                  {largest: last})))
    return rows


def deciders(qvrules, mail):
    """The rows of the table of rules: what each decides on all training mail."""
    rows = ["| rule | tests | spam | ham |", "| --- | --- | --- | --- |"]
    evaluation = training.evaluate(qvrules, training.HERE / "default.qvr", mail)
    found = [rule for rule in evaluation["deciders"] if rule["kind"] == "elite"]
    for rule in sorted(found, key=lambda rule: rule["number"]):
        tests = rule["conditions"].replace(" and ", "`, `")
        rows.append(f"| {rule['number']} | `{tests}` | {rule['reached']['spam']:,} "
                    f"| {rule['reached']['ham']:,} |")
    return rows


def fill(page, tables):
    text = page.read_text(encoding="utf-8")
    for name, rows in tables.items():
        mark = f"<!-- table {name} -->\n"
        pattern = re.escape(mark) + r".*?(?=<!-- end -->)"
        if not re.search(pattern, text, re.DOTALL):
            raise training.TrainingError(f'{page}: no "{mark.strip()}" with an end behind it')
        body = mark + "\n".join(rows) + "\n"
        text = re.sub(pattern, lambda _, body=body: body, text, flags=re.DOTALL)
    page.write_text(text, encoding="utf-8")


def main(arguments):
    if len(arguments) != 3:
        print(__doc__, file=sys.stderr)
        return 64
    qvrules, folder, page = arguments
    mail = training.corpora(folder)
    with training.work_folder() as work:
        tables = {"left-out": left_out(qvrules, mail, work), "rules": deciders(qvrules, mail)}
    fill(pathlib.Path(page), tables)
    return 0


if __name__ == "__main__":
    try:
        sys.exit(main(sys.argv[1:]))
    except training.TrainingError as error:
        sys.exit(f"measure: {error}")
