# SPDX-License-Identifier: Apache-2.0
"""The tree of the default rules: hand-written branches, and learned ones below one of their leaves.

top.qvr.in holds what is written by hand, with a mark in each node: "@0.99" for a node whose
confidence is set by hand, "@" for one that leads on, "@learned" for the leaf below which branches are
learned. fill() puts figures in the place of the marks and the learned branches below the last.

Corpora differ in how much spam they have, and what sets spam apart at one site may be ordinary at the
next. So a node is surer of spam than the node above it only as far as all corpora but one agree, and
surer of ham only as far as all but two do: two of six have hardly any ham.
"""
import csv
import re

CODES = {"no": 0, "yes": 1, "unknown": 2, "literal": 2, "not-analysed": 3, "n/a": 8}

LEAST_SUPPORT = 0.15    # per cent; the engine enters no node with less
MOST_MESSAGES = 1000    # what a corpus counts for at most in a node
ABOVE = 20              # the node above counts like so many messages
LEAST_MESSAGES = 10     # a corpus with fewer messages in a node has no say in it
DOUBTERS_SPAM, DOUBTERS_HAM = 1, 2
NOT_SURE = 0.94         # for hand-written nodes that lead on: only leaves and elite rules say spam
LEAST_DIFFERENCE = 0.02
# Left out, a corpus never bore out what a learned node said beyond this; so that counts a tenth.
DOUBTED_FROM, DOUBTED_SHARE = 0.25, 0.1


class Test:
    """ "attribute == value" or "attribute != value"."""

    def __init__(self, text):
        self.text = text
        self.attribute, operator, word = text.split()
        self.is_equal = operator == "=="
        self.value = CODES[word] if word in CODES else int(word)

    def __call__(self, vector):
        return (vector[self.attribute] == self.value) == self.is_equal


class Mail:
    """Vectors, and for each of them the spam and ham of each corpus."""

    def __init__(self, rows):
        self.rows = rows

    @staticmethod
    def read(path):
        """A table of "qvrules learn --table", without the messages that have no public relay."""
        rows = {}
        with open(path, newline="", encoding="utf-8") as file:
            for line in csv.DictReader(file):
                corpus, label, count = line.pop("corpus"), line.pop("label"), int(line.pop("count"))
                del line["source"]
                if not line["hop_behind_first"]:
                    continue
                key = tuple(line.values())
                vector = {name: int(code) for name, code in line.items()}
                counts = rows.setdefault(key, (vector, {}))[1].setdefault(corpus, [0, 0])
                counts[0 if label == "spam" else 1] += count
        return Mail(list(rows.values()))

    def that_pass(self, tests):
        return Mail([row for row in self.rows if all(test(row[0]) for test in tests)])

    def without(self, rules):
        return Mail([row for row in self.rows
                     if not any(all(test(row[0]) for test in rule) for rule in rules)])

    def split(self, tests):
        """What the first, the second ... of the tests lets pass, each of what those before left."""
        parts = [[] for _ in tests]
        for row in self.rows:
            for part, test in zip(parts, tests):
                if test(row[0]):
                    part.append(row)
                    break
        return [Mail(part) for part in parts]

    def by_corpus(self):
        """Corpus -> spam and ham."""
        sums = {}
        for _, counts in self.rows:
            for corpus, (spam, ham) in counts.items():
                have = sums.setdefault(corpus, [0, 0])
                have[0] += spam
                have[1] += ham
        return sums

    def counts(self):
        """Spam and ham."""
        both = list(self.by_corpus().values())
        return sum(spam for spam, _ in both), sum(ham for _, ham in both)


class Node:
    def __init__(self, test):
        self.test = test
        self.children = []
        self.mark = ""
        self.lines = []     # of the text after the mark: name and reason
        self.mail = self.estimate = self.confidence = self.support = None

    def leaves(self):
        return [leaf for child in self.children for leaf in child.leaves()] if self.children else [self]


# --- Reading --------------------------------------------------------------------------------------

def learned_tree(text):
    """The tree of a rule text that "qvrules learn" wrote, without its figures."""
    root = Node(None)
    path = [root]
    for line in text[text.index("\ntree ") + 1:].splitlines()[1:]:
        words = line.strip()
        if words == "}":
            path.pop()
            continue
        node = Node(Test(words.split(":")[0]))
        path[-1].children.append(node)
        if words.endswith("{"):
            path.append(node)
    return root


def elite_rules(text):
    """The tests of each deciding rule."""
    text = re.sub(r'"(?:[^"\\]|\\.)*"|#.*', "", text.split("\ntree ")[0])
    return [[Test(words.strip()) for words in rule.split(" and ")]
            for rule in (" ".join(part.split()) for part in
                         re.findall(r"\bwhen\b(.*?)(?=\bdecide\b|\Z)", text, re.DOTALL))]


# --- Confidence -----------------------------------------------------------------------------------

def weighed(corpora):
    """Spam and messages, where no corpus counts for more than MOST_MESSAGES."""
    weights = [min(sum(counts), MOST_MESSAGES) for counts in corpora]
    return (sum(weight * counts[0] / sum(counts) for weight, counts in zip(weights, corpora)),
            sum(weights))


def share_of_spam(mail):
    spam, messages = weighed(list(mail.by_corpus().values()))
    return spam / messages if messages else 0.5


def estimate(mail, above):
    """The confidence of a node that this mail reaches."""
    corpora = list(mail.by_corpus().values())
    spam, messages = weighed(corpora)
    together = (spam + ABOVE * above) / (messages + ABOVE)
    opinions = sorted((counts[0] + ABOVE * above) / (sum(counts) + ABOVE) for counts in corpora
                      if sum(counts) >= LEAST_MESSAGES)
    if len(opinions) < 2:
        return above
    if together > above:
        return max(above, min(together, opinions[min(DOUBTERS_SPAM, len(opinions) - 1)]))
    return min(above, max(together, opinions[max(-1 - DOUBTERS_HAM, -len(opinions))]))


def doubted(confidence):
    return min(confidence, DOUBTED_FROM + DOUBTED_SHARE * max(confidence - DOUBTED_FROM, 0))


class Figures:
    """Fills in the nodes of a tree. The support is of all mail; the confidence is of the mail that
    the elite rules leave, as only that comes to the tree."""

    def __init__(self, mail, elite):
        self.mail, self.elite = mail, elite
        self.messages = sum(mail.counts())

    def percent(self, mail):
        return 100 * sum(mail.counts()) / self.messages

    def fill(self, node, mail, left, above, is_learned=False):
        is_learned = is_learned or node.mark == "@learned"
        node.mail, node.support = left, self.percent(mail)
        node.estimate = share_of_spam(left) if node.mark == "@learned" else estimate(left, above)
        by_hand = re.fullmatch(r"@(0\.\d+)", node.mark)
        node.confidence = (float(by_hand[1]) if by_hand else doubted(node.estimate) if is_learned
                           else min(node.estimate, NOT_SURE))
        tests = [child.test for child in node.children]
        for child, part, left_part in zip(node.children, mail.split(tests), left.split(tests)):
            self.fill(child, part, left_part, node.estimate, is_learned)

    def graft(self, leaf, structure, mail):
        """Grows the branches of `structure` below a leaf, as far as there is mail for them."""
        if not structure.children:
            return
        parts = mail.split([child.test for child in structure.children])
        if any(self.percent(part) < LEAST_SUPPORT for part in parts):
            most = max(range(len(parts)), key=lambda at: sum(parts[at].counts()))
            self.graft(leaf, structure.children[most], mail)
            return
        for child, part in zip(structure.children, parts):
            node = Node(child.test)
            leaf.children.append(node)
            self.graft(node, child, part)


def join_alike(node):
    """Takes branches away whose leaves say the same as the node above them."""
    for child in node.children:
        join_alike(child)
    if all(abs(leaf.estimate - node.estimate) < LEAST_DIFFERENCE for leaf in node.leaves()):
        node.children = []


# --- Text -----------------------------------------------------------------------------------------

NODE = re.compile(r"(\s*)(?:tree|([^\s#]+ (?:==|!=) [^\s:]+):) (@\S*)( \{)?")


def template_tree(text):
    """The nodes of the template in their order, the first of them the root."""
    nodes, path = [], []
    for line in text.splitlines():
        found = NODE.fullmatch(line)
        if found:
            node = Node(Test(found[2]) if found[2] else None)
            node.mark = found[3]
            nodes.append(node)
            if path:
                path[-1].children.append(node)
            if found[4]:
                path.append(node)
        elif path and line.strip() == "}":
            path.pop()
    return nodes


def paths(node, tests=()):
    """Each node with the tests that lead to it."""
    yield node, tests
    for child in node.children:
        yield from paths(child, (*tests, child.test))


def figures_text(node):
    spam, ham = node.mail.counts()
    return (f"confidence {node.confidence:.4f} support {node.support:.4f} "
            f"counts {max(spam + ham, 1)} {spam} {ham}")


def branch_lines(node, indent):
    for child in node.children:
        line = f"{indent}{child.test.text}: {figures_text(child)}"
        if child.children:
            yield line + " {"
            yield from branch_lines(child, indent + "    ")
            yield indent + "}"
        else:
            yield line


def filled_in(template, nodes):
    """The template with figures in the place of its marks, and what grew below "@learned"."""
    lines, coming = [], iter(nodes)
    grown, indent = None, ""
    for line in template.splitlines():
        found = NODE.fullmatch(line)
        if grown and (found or line.strip() == "}"):
            lines[-1] += " {"
            lines += [*branch_lines(grown, indent + "    "), indent + "}"]
            grown = None
        if found:
            node = next(coming)
            line = line.replace(found[3], figures_text(node))
            if node.mark == "@learned" and node.children:
                grown, indent = node, found[1]
        lines.append(line)
    return "\n".join(lines) + "\n"


def rules_text(template, structure, mail):
    """The template filled in from this mail; `structure` is a learned tree, without figures."""
    nodes = template_tree(template)
    elite = elite_rules(template)
    figures = Figures(mail, elite)
    learned, tests = next((node, tests) for node, tests in paths(nodes[0])
                          if node.mark == "@learned")
    figures.graft(learned, structure, mail.without(elite).that_pass(tests))
    figures.fill(nodes[0], mail, mail.without(elite), share_of_spam(mail))
    join_alike(learned)
    return filled_in(template, nodes)
