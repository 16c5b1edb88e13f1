# SPDX-License-Identifier: Apache-2.0
"""The learned branches of the default rules, which grow below the last leaf of top.qvr.

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
LEAST_DIFFERENCE = 0.02
# Corpora that were left out did not bear out what a node said beyond this; so that counts a tenth.
DOUBTED_FROM, DOUBTED_SHARE = 0.25, 0.1


class Test:
    """ "attribute == value" or "attribute != value"."""

    def __init__(self, text):
        self.text = text
        self.attribute, operator, word = text.split()
        self.is_equal = operator == "=="
        self.value = CODES[word] if word in CODES else int(word)

    def negated(self):
        return Test(self.text.replace("==", "!=") if self.is_equal else self.text.replace("!=", "=="))

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
                vector = {name: int(code) for name, code in line.items()}
                found = rows.setdefault(tuple(vector.values()), (vector, {}))[1]
                found.setdefault(corpus, [0, 0])[0 if label == "spam" else 1] += count
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
        """Spam and ham of each corpus."""
        sums = {}
        for _, found in self.rows:
            for corpus, (spam, ham) in found.items():
                have = sums.setdefault(corpus, [0, 0])
                have[0] += spam
                have[1] += ham
        return list(sums.values())

    def counts(self):
        """Spam and ham."""
        return tuple(map(sum, zip(*self.by_corpus()))) or (0, 0)


class Node:
    def __init__(self, test):
        self.test = test
        self.children = []
        self.mail = self.estimate = None

    def leaves(self):
        return [leaf for child in self.children for leaf in child.leaves()] if self.children else [self]


# --- Reading --------------------------------------------------------------------------------------

NODE = re.compile(r"(\s*)(?:tree|([^\s#]+ (?:==|!=) [^\s:]+):)((?: [a-z]+(?: [\d.e+-]+)+)*)( \{)?")


def tree_nodes(text):
    """The nodes of a rule text in their order, each with the tests that lead to it. A brace follows the
    figures of its node, not a name."""
    path = []
    for line in text[text.index("\ntree ") + 1:].splitlines():
        found = NODE.fullmatch(line)
        if found:
            node = Node(Test(found[2]) if found[2] else None)
            if path:
                path[-1].children.append(node)
            yield node, [above.test for above in (*path, node) if above.test]
            if found[4]:
                path.append(node)
        elif line.strip() == "}":
            path.pop()


def elite_rules(text):
    """The tests of each deciding rule."""
    text = re.sub(r'"(?:[^"\\]|\\.)*"|#.*', "", text[:text.index("\ntree ")])
    return [[Test(words.strip()) for words in " ".join(rule.split()).split(" and ")]
            for rule in re.findall(r"\bwhen\b(.*?)(?=\bdecide\b|\Z)", text, re.DOTALL)]


# --- Confidence -----------------------------------------------------------------------------------

def weighed(corpora):
    """Spam and messages, where no corpus counts for more than MOST_MESSAGES."""
    weights = [min(sum(counts), MOST_MESSAGES) for counts in corpora]
    return (sum(weight * counts[0] / sum(counts) for weight, counts in zip(weights, corpora)),
            sum(weights))


def share_of_spam(mail):
    spam, messages = weighed(mail.by_corpus())
    return spam / messages if messages else 0.5


def estimate(mail, above):
    """The confidence of a node that this mail reaches, below a node with the confidence `above`."""
    corpora = mail.by_corpus()
    spam, messages = weighed(corpora)
    together = (spam + ABOVE * above) / (messages + ABOVE)
    opinions = sorted((counts[0] + ABOVE * above) / (sum(counts) + ABOVE) for counts in corpora
                      if sum(counts) >= LEAST_MESSAGES)
    if len(opinions) < 2:
        return above
    if together > above:
        return max(above, min(together, opinions[min(DOUBTERS_SPAM, len(opinions) - 1)]))
    return min(above, max(together, opinions[max(-1 - DOUBTERS_HAM, -len(opinions))]))


def confidence(node):
    return min(node.estimate, DOUBTED_FROM + DOUBTED_SHARE * max(node.estimate - DOUBTED_FROM, 0))


# --- Growing --------------------------------------------------------------------------------------

class Branches:
    """What grows below a leaf that `mail` reaches, of `messages` in all."""

    def __init__(self, shape, mail, messages):
        self.messages = messages
        self.root = Node(None)
        self.root.mail, self.root.estimate = mail, share_of_spam(mail)
        self.grow(self.root, shape)
        join_alike(self.root)

    def percent(self, mail):
        return 100 * sum(mail.counts()) / self.messages

    def grow(self, node, shape):
        """Adds the tests of `shape` as far as there is mail on all their sides."""
        tests = [child.test for child in shape.children]
        parts = node.mail.split(tests)
        while tests and any(self.percent(part) < LEAST_SUPPORT for part in parts):
            most = max(range(len(parts)), key=lambda at: sum(parts[at].counts()))
            shape = shape.children[most]
            tests = [child.test for child in shape.children]
            parts = node.mail.split(tests)
        if len(tests) == 2:
            tests[1] = tests[0].negated()  # a value that no message had goes there, too
        for test, below, part in zip(tests, shape.children, parts):
            child = Node(test)
            child.mail, child.estimate = part, estimate(part, node.estimate)
            node.children.append(child)
            self.grow(child, below)

    def figures(self, node):
        spam, ham = node.mail.counts()
        return (f"confidence {confidence(node):.4f} support {self.percent(node.mail):.4f} "
                f"counts {max(spam + ham, 1)} {spam} {ham}")

    def lines(self, indent, node=None):
        for child in (node or self.root).children:
            line = f"{indent}{child.test.text}: {self.figures(child)}"
            if child.children:
                yield line + " {"
                yield from self.lines(indent + "    ", child)
                yield indent + "}"
            else:
                yield line


def join_alike(node):
    """Takes branches away whose leaves say the same as the node above them."""
    for child in node.children:
        join_alike(child)
    if all(abs(leaf.estimate - node.estimate) < LEAST_DIFFERENCE for leaf in node.leaves()):
        node.children = []


def with_branches(top, shape, mail):
    """The text `top` with branches of this mail below its last leaf; `shape` says what they test.

    Their figures are of the mail that the elite rules leave, as only that comes to the tree.
    """
    _, tests = list(tree_nodes(top))[-1]
    grown = Branches(shape, mail.without(elite_rules(top)).that_pass(tests), sum(mail.counts()))
    lines = top.splitlines()
    last = max(at for at, line in enumerate(lines) if NODE.fullmatch(line))
    found = NODE.fullmatch(lines[last])
    lines[last] = lines[last].replace(found[3], " " + grown.figures(grown.root))
    if grown.root.children:
        end = next(at for at in range(last, len(lines)) if lines[at].strip() == "}")
        lines[end - 1] += " {"
        lines[end:end] = [*grown.lines(found[1] + "    "), found[1] + "}"]
    return "\n".join(lines) + "\n"
