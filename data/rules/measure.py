#!/usr/bin/python3 -B
# SPDX-License-Identifier: Apache-2.0
"""measure.py QVRULES CORPORA PAGE: writes what the default rules do into the tables of PAGE.

It also draws adapted.svg beside PAGE. PAGE marks where a table goes by "<!-- table NAME -->" and "<!-- end -->":
left-out     each corpus judged by rules that were learned without it, all of these together, and the
             last third of the corpus with the most spam by rules learned from all mail but that third
calibration  how much spam there is in each tenth of the confidence, all corpora left out in turn
editions     the same against the first edition of the rules
envelope     the same corpora, as they are and with the author of each message as its envelope
             sender, by those rules and by a tree alone that may test the envelope sender
adapted      rules learned without a corpus and adapted to its first 100 messages, tenth, quarter and
             half, judging its second half
rules        each elite rule and each node that says spam, with its reason and what it decides
messages     what each of them decides in each corpus
copies       the same for the copies without reverse names
ipv6         the messages that have no verdict because of an IPv6 relay, judged all the same
ipv6-learned rules learned without a corpus, with and without the mail over IPv6 of the others
"""
import json
import math
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

def caught_at_one_in_thousand(corpus):
    return next(point["caught"] for point in corpus["roc"]["caughtAt"]
                if point["falsePositives"] == 0.001)


def left_out_row(name, mail, copies):
    return table_row(name, brief(mail["judgeable"]), share(mail["falsePositives"]),
                     share(copies["falsePositives"]), brief(mail["caught"]),
                     brief(copies["caught"]), brief(mail["passed"]), brief(mail["missed"]),
                     f"{mail['roc']['area']:.3f}", brief(caught_at_one_in_thousand(mail)))


def rate_of(count, of):
    """A rate with the upper end of its 95 % interval (Wilson)."""
    z = 1.959963984540054
    rate = count / of if of else 0.0
    middle = rate + z * z / (2 * of) if of else 0.0
    margin = z * math.sqrt(rate * (1 - rate) / of + z * z / (4 * of * of)) if of else 0.0
    return {"count": count, "of": of, "rate": rate,
            "high": (middle + margin) / (1 + z * z / of) if of else 1.0}


def curve_together(corpora):
    """The ROC curve of all messages by their confidence, though several rule sets gave it."""
    spam = sum(corpus["caught"]["of"] for corpus in corpora)
    ham = sum(corpus["falsePositives"]["of"] for corpus in corpora)
    steps = {}
    for corpus in corpora:
        before = (0, 0)
        for threshold, *counts in corpus["roc"]["points"]:
            step = steps.setdefault(threshold, [0, 0])
            for label, (count, less) in enumerate(zip(counts, before)):
                step[label] += count - less
            before = counts
    area = caught = lost = at_one_in_thousand = 0
    for _, (more_caught, more_lost) in sorted(steps.items(), reverse=True):
        area += more_lost * (caught + more_caught / 2)
        caught, lost = caught + more_caught, lost + more_lost
        if 1000 * lost <= ham:
            at_one_in_thousand = caught
    area += (ham - lost) * (caught + spam) / 2  # what no rule decides
    return {"area": area / (spam * ham) if spam and ham else 0.0,
            "caughtAt": [{"falsePositives": 0.001, "caught": rate_of(at_one_in_thousand, spam)}]}


def together(corpora):
    """The figures of several corpora that were judged by different rules."""
    names = ("judgeable", "falsePositives", "caught", "passed", "missed")
    sums = {name: rate_of(sum(corpus[name]["count"] for corpus in corpora),
                          sum(corpus[name]["of"] for corpus in corpora)) for name in names}
    return {**sums, "roc": curve_together(corpora)}


def left_out(qvrules, mail, folder):
    """Corpus -> the figures of its messages and of its copies."""
    found, rules = {}, folder / "rules.qvr"

    def judge(name, learned_from, judged):
        training.learn(qvrules, learned_from, rules)
        evaluation = training.evaluate(qvrules, rules, judged)
        found[name] = figures(evaluation), figures(evaluation, copies=True)

    for corpus in mail:
        judge(corpus, without(mail, corpus), {corpus: mail[corpus]})
    found["all of these"] = tuple(together(list(one)) for one in zip(*found.values()))
    largest = max((name for name in mail if len(mail[name]) == len(training.LABELS)),
                  key=lambda name: len(mailboxes.messages(mail[name]["spam"])))
    first, last = mailboxes.thirds(mail[largest], folder)
    judge(f"last third of {largest}", {**mail, largest: first}, {largest: last})
    return found


def left_out_rows(found):
    return heading("left out", "judgeable", "ham called spam", "the same, copies", "spam caught",
                   "the same, copies", "ham called ham", "spam called ham", "area",
                   "spam caught at 0.1 %") + [
        left_out_row(name, mail, copies) for name, (mail, copies) in found.items()]


def calibration(corpora):
    tenths = {}
    for corpus in corpora:
        for tenth in corpus["reliability"]:
            spam, messages, confidence = tenths.get(tenth["from"], (0, 0, 0.0))
            of = tenth["spam"]["of"]
            tenths[tenth["from"]] = (spam + tenth["spam"]["count"], messages + of,
                                     confidence + of * tenth["meanConfidence"])
    return heading("confidence", "messages", "mean confidence", "spam there really is") + [
        table_row(f"from {tenth:.1f}", f"{messages:,}", f"{100 * confidence / messages:.1f} %",
                  f"{100 * spam / messages:.1f} %")
        for tenth, (spam, messages, confidence) in sorted(tenths.items()) if messages]


# What the first edition did, measured in the same way: ham called spam, in messages and in copies, spam
# caught in both, and the area. That edition was learned without spamassassin2002_half.
FIRST_EDITION = {
    "lists_driverdev": (2, 11, "34.1 %", "32.9 %", "0.740"),
    "lists_sourceforge": (9, 6, "21.4 %", "21.4 %", "0.795"),
    "lists_vger": (12, 6, "16.8 %", "6.6 %", "0.660"),
    "sf_spamlists": (0, 0, "11.8 %", "11.2 %", "0.788"),
    "spamassassin2002_half": (6, 2, "22.9 %", "18.9 %", "0.770"),
    "trec07p_half": (1, 5, "74.0 %", "59.8 %", "0.926"),
    "last third of trec07p_half": (1, 2, "75.4 %", "63.2 %", "0.966"),
}


def editions(found):
    rows = heading("left out", "ham called spam", "the same, copies", "spam caught",
                   "the same, copies", "area")
    for name, before in FIRST_EDITION.items():
        if name in found:
            mail, copies = found[name]
            now = (mail["falsePositives"]["count"], copies["falsePositives"]["count"],
                   brief(mail["caught"]), brief(copies["caught"]), f"{mail['roc']['area']:.3f}")
            rows.append(table_row(name, *(f"{old} → {new}" for old, new in zip(before, now))))
    return rows


# --- Adapted to a site ---------------------------------------------------------------------------

SHARES = {"a tenth": 0.1, "a quarter": 0.25, "half": 0.5}
FIRST = 100  # messages, before the shares


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


# --- What says spam ------------------------------------------------------------------------------

THRESHOLD = 0.95


def says_spam(evaluation):
    return [rule for rule in evaluation["deciders"]
            if rule["kind"] == "elite" or rule["confidence"] >= THRESHOLD]


def counts_by_number(evaluation):
    """Number -> label -> messages that the rule or node decided."""
    return {rule["number"]: rule["reached"] for rule in says_spam(evaluation)}


def deciders(evaluation):
    rows = heading("rule", "why it says spam", "spam", "ham")
    for rule in sorted(says_spam(evaluation), key=lambda rule: rule["number"]):
        rows.append(table_row(str(rule["number"]), f"**{rule['ruleName']}.** {rule['ruleSentence']}",
                              f"{rule['reached']['spam']:,}", f"{rule['reached']['ham']:,}"))
    return rows


def counts_by_corpus(qvrules, mail):
    """For messages and for copies: corpus -> number -> label -> messages."""
    messages, copies = {}, {}
    nothing = dict.fromkeys(training.LABELS, 0)
    default = training.HERE / "default.qvr"
    for corpus, boxes in mail.items():
        messages[corpus] = counts_by_number(training.evaluate(qvrules, default, {corpus: boxes},
                                                              training.SCANNING))
        both = counts_by_number(training.evaluate(qvrules, default, {corpus: boxes}))
        copies[corpus] = {
            number: {label: count[label] - messages[corpus].get(number, nothing)[label]
                     for label in training.LABELS} for number, count in both.items()}
    return messages, copies


def corpus_table(counts):
    rows = heading("rule", *counts)
    for number in sorted({number for corpus in counts.values() for number in corpus}):
        cells = [corpus.get(number) for corpus in counts.values()]
        rows.append(table_row(str(number), *(f"{cell['spam']:,} / {cell['ham']:,}"
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


def over_ipv6_learned(qvrules, mail, folder):
    """Each corpus left out, judged with `judge`, by rules learned with either value."""
    rows = heading("left out", "ham called spam, learned with `stop` → `judge`", "spam caught",
                   "ham called ham", "spam called ham", "area")
    rules, sums = folder / "rules.qvr", {"stop": [], "judge": []}
    for corpus in mail:
        both = []
        for ipv6, found in sums.items():
            training.learn(qvrules, without(mail, corpus), rules, "--ipv6", ipv6)
            both.append(figures(training.evaluate(
                qvrules, rules, {corpus: mail[corpus]},
                [*training.SCANNING, "--ipv6", "judge"])))
            found.append(both[-1])
        rows.append(learned_row(corpus, both))
    rows.append(learned_row("all of these", [together(found) for found in sums.values()]))
    return rows


def learned_row(name, both):
    lost = [one["falsePositives"] for one in both]
    return table_row(name, " → ".join(str(rate["count"]) for rate in lost) + f" of {lost[0]['of']:,}",
                     *(" → ".join(brief(one[rate]) for one in both)
                       for rate in ("caught", "passed", "missed")),
                     " → ".join(f"{one['roc']['area']:.3f}" for one in both))


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
        found = left_out(qvrules, mail, folder)
        tables = {"left-out": left_out_rows(found), "adapted": adapted_rows,
                  "calibration": calibration([found[corpus][0] for corpus in mail]),
                  "editions": editions(found), "envelope": envelope(qvrules, mail, folder),
                  "ipv6": over_ipv6(qvrules, mail, folder),
                  "ipv6-learned": over_ipv6_learned(qvrules, mail, folder)}
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
