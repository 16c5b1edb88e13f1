#!/usr/bin/python3 -B
# SPDX-License-Identifier: Apache-2.0
"""measure.py QVRULES CORPORA PAGE: writes what the default rules do into the tables of PAGE.

It also draws adapted.svg beside PAGE. PAGE marks where a table goes by "<!-- table NAME -->" and "<!-- end -->":
left-out  each corpus judged by rules whose tree was learned without it, and the last third of the
          corpus with the most spam by rules learned from all mail but that third
envelope  the same corpora, as they are and with the author of each message as its envelope sender,
          by those rules and by a tree alone that may test the envelope sender
adapted   rules learned without a corpus and adapted to its first 100 messages, tenth, quarter and
          half, judging its second half
rules     what each elite rule decides, and what is left for the tree to call spam
messages  what each elite rule decides in each corpus
copies    the same for the copies without reverse names
ipv6      the messages that have no verdict because of an IPv6 relay, judged all the same
"""
import json
import pathlib
import re
import sys

import curve
import mailboxes
import training

COPIES = ", no reverse names"


def percent(rate):
    return f"{100 * rate['rate']:.2f} %"


def share(rate):
    """A rate with its counts and the upper end of its interval."""
    if not rate["of"]:
        return "-"
    return f"{rate['count']:,} of {rate['of']:,}, {percent(rate)} (at most {100 * rate['high']:.2f})"


def brief(rate, digits=1):
    return f"{100 * rate['rate']:.{digits}f} %" if rate["of"] else "-"


def figures(evaluation, copies=False):
    for corpus in evaluation["corpora"]:
        if corpus["name"].endswith(COPIES) == copies:
            return corpus
    raise training.TrainingError("the evaluation has no figures for " +
                                 ("copies" if copies else "messages"))


def table_row(*cells):
    return "| " + " | ".join(cells) + " |"


def heading(*names):
    return [table_row(*names), table_row(*["---"] * len(names))]


def without(mail, corpus):
    return {name: boxes for name, boxes in mail.items() if name != corpus}


# --- Corpora left out ----------------------------------------------------------------------------

def left_out_row(name, evaluation):
    mail, copies = figures(evaluation), figures(evaluation, copies=True)
    return table_row(name, brief(mail["judgeable"]), share(mail["falsePositives"]),
                     share(copies["falsePositives"]), brief(mail["caught"]),
                     brief(copies["caught"]), brief(mail["passed"]), brief(mail["missed"]),
                     f"{mail['roc']['area']:.3f}")


def left_out(qvrules, mail, folder):
    rows = heading("left out", "judgeable", "ham called spam", "the same, copies", "spam caught",
                   "the same, copies", "ham called ham", "spam called ham", "area")
    rules = folder / "rules.qvr"
    for corpus in mail:
        training.learn(qvrules, without(mail, corpus), rules)
        rows.append(left_out_row(corpus,
                                 training.evaluate(qvrules, rules, {corpus: mail[corpus]})))
    largest = max((name for name in mail if len(mail[name]) == len(training.LABELS)),
                  key=lambda name: len(mailboxes.messages(mail[name]["spam"])))
    first, last = mailboxes.thirds(mail[largest], folder)
    training.learn(qvrules, {**mail, largest: first}, rules)
    rows.append(left_out_row(f"last third of {largest}",
                             training.evaluate(qvrules, rules, {largest: last})))
    return rows


# --- Adapted to a site ---------------------------------------------------------------------------

SHARES = {"a tenth": 0.1, "a quarter": 0.25, "half": 0.5}
FIRST = 100  # messages, before the shares


def caught_at_one_in_thousand(corpus):
    return next(point["caught"] for point in corpus["roc"]["caughtAt"]
                if point["falsePositives"] == 0.001)


def adapted_row(corpus, learned_from, mail):
    return table_row(corpus, learned_from, share(mail["falsePositives"]), brief(mail["caught"]),
                     brief(caught_at_one_in_thousand(mail)), f"{mail['roc']['area']:.3f}")


def adapted_steps(qvrules, shipped, corpus, boxes, folder):
    """What was learned from, and the figures of the second half: for the rules as they are, and
    adapted to more and more of the first half."""
    def judged(rules):
        return figures(training.evaluate(qvrules, rules, {corpus: end}, training.SCANNING))

    _, end = mailboxes.beginning_and_end(boxes, folder, 0, 0.5)
    own = folder / "own.qvr"
    yield "nothing", judged(shipped)
    all_messages = sum(len(mailboxes.messages(path)) for path in boxes.values())
    for name, part in {"": FIRST / all_messages, **SHARES}.items():
        beginning, _ = mailboxes.beginning_and_end(boxes, folder, part, 0.5)
        count = sum(len(mailboxes.messages(path)) for path in beginning.values())
        cell = f"{name}: {count:,} messages" if name else f"{count:,} messages"
        try:
            better = training.adapt(qvrules, shipped, {corpus: beginning}, own)
        except training.TrainingError:
            yield f"{cell}, too few of one kind", judged(shipped)
            continue
        yield (cell, judged(own)) if better else (f"{cell}, kept as they were", judged(shipped))


def adapted(qvrules, mail, folder):
    """The rows, and the chart."""
    rows = heading("site", "adapted to", "ham called spam", "spam caught",
                   "spam caught at 0.1 % false positives", "area")
    lines = {}
    shipped = folder / "rules.qvr"
    for corpus, boxes in mail.items():
        training.learn(qvrules, without(mail, corpus), shipped)
        steps = list(adapted_steps(qvrules, shipped, corpus, boxes, folder))
        rows += [adapted_row(corpus, cell, found) for cell, found in steps]
        lines[corpus] = [found["roc"]["area"] for _, found in steps]
    return rows, curve.chart("Area under the ROC curve on the second half, by the mail adapted to",
                             ["nothing", f"{FIRST} messages", *SHARES], lines)


# --- The author as envelope sender ---------------------------------------------------------------

def as_is_and_rewritten(qvrules, rules, corpus, mail, rewritten):
    """A cell for each rate: its value for the mail as it is, and for the mail as rewritten."""
    both = [figures(training.evaluate(qvrules, rules, {corpus: one[corpus]}, training.SCANNING))
            for one in (mail, rewritten)]
    return [" → ".join(brief(one[name], 2) for one in both)
            for name in ("falsePositives", "passed", "caught")]


def envelope(qvrules, mail, folder):
    rates = ("ham called ham", "spam caught")
    rows = heading("left out", "default rules: ham called spam", *rates,
                   "tree with the envelope sender: ham called spam", *rates)
    rewritten = mailboxes.all_sent_by_author(mail, folder / "sent-by-author")
    allowed = [name for name in training.EXCLUDED if name not in training.ENVELOPE]
    rules, tree = folder / "rules.qvr", folder / "tree.qvr"
    for corpus in mail:
        training.learn(qvrules, without(mail, corpus), rules)
        training.learn_tree(qvrules, without(mail, corpus), tree, allowed)
        rows.append(table_row(corpus,
                              *as_is_and_rewritten(qvrules, rules, corpus, mail, rewritten),
                              *as_is_and_rewritten(qvrules, tree, corpus, mail, rewritten)))
    return rows


# --- Elite rules ---------------------------------------------------------------------------------

def elite_counts(evaluation):
    """Code -> label -> messages that the rule decided as the first that matches."""
    return {rule["number"]: rule["reached"] for rule in evaluation["deciders"]
            if rule["kind"] == "elite"}


def deciders(evaluation):
    rows = heading("rule", "tests", "spam", "ham")
    found = [rule for rule in evaluation["deciders"] if rule["kind"] == "elite"]
    for rule in sorted(found, key=lambda rule: rule["number"]):
        tests = rule["conditions"].replace(" and ", "`, `")
        rows.append(table_row(str(rule["number"]), f"`{tests}`", f"{rule['reached']['spam']:,}",
                              f"{rule['reached']['ham']:,}"))
    together = evaluation["together"]
    by_elite = {label: sum(rule["reached"][label] for rule in found) for label in training.LABELS}
    rows.append(table_row("the tree", "called spam by no elite rule, but by the tree",
                          f"{together['verdictsOnSpam']['spam'] - by_elite['spam']:,}",
                          f"{together['verdictsOnHam']['spam'] - by_elite['ham']:,}"))
    return rows


def counts_by_corpus(qvrules, mail):
    """For messages and for copies: corpus -> code -> label -> messages."""
    messages, copies = {}, {}
    nothing = dict.fromkeys(training.LABELS, 0)
    default = training.HERE / "default.qvr"
    for corpus, boxes in mail.items():
        messages[corpus] = elite_counts(training.evaluate(qvrules, default, {corpus: boxes},
                                                          training.SCANNING))
        both = elite_counts(training.evaluate(qvrules, default, {corpus: boxes}))
        copies[corpus] = {
            code: {label: count[label] - messages[corpus].get(code, nothing)[label]
                   for label in training.LABELS} for code, count in both.items()}
    return messages, copies


def corpus_table(counts):
    rows = heading("rule", *counts)
    for code in sorted({code for corpus in counts.values() for code in corpus}):
        cells = [corpus.get(code) for corpus in counts.values()]
        rows.append(table_row(str(code), *(f"{cell['spam']:,} / {cell['ham']:,}"
                                           if cell and any(cell.values()) else "-"
                                           for cell in cells)))
    return rows


# --- Mail over IPv6 ------------------------------------------------------------------------------

def ended_at_ipv6(record):
    """Whether the scan found nothing to judge because an IPv6 relay ended its walk."""
    explained = record["explain"]
    return not explained["values"] and any(hop["role"] == "ipv6End" for hop in explained["trail"])


def not_judged_over_ipv6(qvrules, path):
    """How many messages the mbox has, and those of them that IPv6 leaves without a verdict."""
    lines = training.run(qvrules, "explain", str(training.HERE / "default.qvr"), str(path),
                         *training.SCANNING, "--ipv6", "stop", "--format", "json").splitlines()
    mails = mailboxes.messages(path)
    if len(lines) != len(mails):
        raise training.TrainingError(f"{path}: {len(mails)} messages, {len(lines)} explained")
    return len(mails), [mail for mail, line in zip(mails, lines) if ended_at_ipv6(json.loads(line))]


def figures_with(qvrules, ipv6, corpus, boxes):
    return figures(training.evaluate(qvrules, training.HERE / "default.qvr", {corpus: boxes},
                                     [*training.SCANNING, "--ipv6", ipv6]))


def ipv6_row(qvrules, corpus, boxes, folder):
    left, shares = {}, []
    for label in training.LABELS:
        total, found = not_judged_over_ipv6(qvrules, boxes[label]) if label in boxes else (0, [])
        shares.append(f"{len(found):,} of {total:,}, {100 * len(found) / total:.1f} %"
                      if total else "-")
        if found:
            left[label] = mailboxes.write(folder, f"{corpus}/{label}", found)
    if not left:
        return table_row(corpus, *shares, *["-"] * 6)
    mail = figures_with(qvrules, "judge", corpus, left)
    lost = [figures_with(qvrules, ipv6, corpus, boxes)["falsePositives"]
            for ipv6 in ("stop", "judge")]
    return table_row(corpus, *shares, brief(mail["judgeable"]),
                     *(share(mail[name]) for name in ("falsePositives", "caught", "passed", "missed")),
                     " → ".join(f"{rate['count']:,} of {rate['of']:,}" for rate in lost))


def over_ipv6(qvrules, mail, folder):
    return heading("corpus", "ham without a verdict", "spam without a verdict",
                   "judgeable with `judge`", "of these: ham called spam", "spam caught",
                   "ham called ham", "spam called ham",
                   "all mail: ham called spam, `stop` → `judge`") + [
        ipv6_row(qvrules, corpus, boxes, folder / "ipv6") for corpus, boxes in mail.items()]


def fill(page, tables):
    text = page.read_text(encoding="utf-8")
    for name, rows in tables.items():
        mark = f"<!-- table {name} -->\n"
        pattern = re.escape(mark) + r".*?(?=<!-- end -->)"
        if not re.search(pattern, text, re.DOTALL):
            raise training.TrainingError(f'{page}: no "{mark.strip()}" with an end after it')
        body = mark + "\n".join(rows) + "\n"
        text = re.sub(pattern, lambda _, body=body: body, text, flags=re.DOTALL)
    page.write_text(text, encoding="utf-8")


def main(arguments):
    if len(arguments) != 3:
        print(__doc__, file=sys.stderr)
        return 64
    qvrules, corpora, page = arguments
    mail = training.corpora(corpora)
    with training.work_folder() as name:
        folder = pathlib.Path(name)
        adapted_rows, drawing = adapted(qvrules, mail, folder)
        tables = {"left-out": left_out(qvrules, mail, folder), "adapted": adapted_rows,
                  "envelope": envelope(qvrules, mail, folder),
                  "ipv6": over_ipv6(qvrules, mail, folder)}
    evaluation = training.evaluate(qvrules, training.HERE / "default.qvr", mail)
    messages, copies = counts_by_corpus(qvrules, mail)
    tables.update({"rules": deciders(evaluation), "messages": corpus_table(messages),
                   "copies": corpus_table(copies)})
    fill(pathlib.Path(page), tables)
    pathlib.Path(page).with_name("adapted.svg").write_text(drawing, encoding="utf-8")
    return 0


if __name__ == "__main__":
    try:
        sys.exit(main(sys.argv[1:]))
    except training.TrainingError as error:
        sys.exit(f"measure: {error}")
