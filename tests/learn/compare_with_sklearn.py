#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""Compares the learner with scikit-learn's on one-hot columns.

    compare_with_sklearn.py LEARN_PROBE

Both learn from the same random vectors in which spam follows a planted rule. A split of a one-hot
column is the test "attribute equals value", so at the same size our training impurity must be equal
or better.
"""

import subprocess
import sys
import tempfile

import numpy
from sklearn.tree import DecisionTreeClassifier

ATTRIBUTES = 38
DNS = (3, 14, 29)


def attribute_names(probe):
    """The column names in order: asked of the probe one by one, so that no copy goes stale."""
    names = []
    while len(names) < ATTRIBUTES:
        with tempfile.NamedTemporaryFile("w", suffix=".csv") as table:
            table.write(",".join(["source"] + names) + "\n")
            table.flush()
            run = subprocess.run([probe, table.name, "gini", "1", "0"], capture_output=True, text=True)
            names.append(run.stderr.split("the column '")[1].split("'")[0])
    return names


def planted_mail(seed, rows):
    random = numpy.random.default_rng(seed)
    vectors = numpy.zeros((rows, ATTRIBUTES), dtype=int)
    for attribute in range(ATTRIBUTES):
        if attribute not in (4, 30, 34, 35):
            values = random.choice([0, 1, 2, 3, 8, 11], size=random.integers(2, 6), replace=False)
            vectors[:, attribute] = random.choice(values, size=rows)
    vectors = numpy.unique(vectors, axis=0)
    rows = len(vectors)
    score = (
        2.0 * (vectors[:, 10] == vectors[0, 10])
        + 1.5 * ((vectors[:, 5] == vectors[1, 5]) & (vectors[:, 33] != vectors[2, 33]))
        - 1.2 * (vectors[:, 19] == vectors[3, 19])
        + random.normal(0, 0.7, rows)
    )
    share = 1 / (1 + numpy.exp(-2.0 * (score - 0.8)))
    messages = random.integers(1, 5000, rows)
    spam = random.binomial(messages, share)
    return vectors, spam, messages - spam


def write_table(path, names, vectors, spam, ham):
    with open(path, "w", encoding="ascii") as table:
        table.write(",".join(["source"] + names + ["label", "count"]) + "\n")
        for vector, spam_count, ham_count in zip(vectors, spam, ham):
            text = ",".join(map(str, vector))
            table.write(f"x,{text},spam,{spam_count}\nx,{text},ham,{ham_count}\n")


def one_hot(vectors):
    columns = []
    for attribute in range(ATTRIBUTES):
        if attribute not in DNS:
            for value in numpy.unique(vectors[:, attribute]):
                columns.append(vectors[:, attribute] == value)
    return numpy.array(columns, dtype=numpy.float32).T


def impurity_of(tree, columns, spam, ham, criterion):
    """Training impurity from the leaves' exact counts, not from the library's own sums."""
    leaves = tree.apply(columns)
    total = 0.0
    for leaf in numpy.unique(leaves):
        s = spam[leaves == leaf].sum()
        h = ham[leaves == leaf].sum()
        n = s + h
        if s and h:
            p = s / n
            per = 2 * p * (1 - p) if criterion == "gini" else -p * numpy.log2(p) - (1 - p) * numpy.log2(1 - p)
            total += n * per
    return total / (spam.sum() + ham.sum())


def compare(probe, names, seed, criterion, nodes, support):
    vectors, spam, ham = planted_mail(seed, 900)
    with tempfile.NamedTemporaryFile("w", suffix=".csv") as table:
        write_table(table.name, names, vectors, spam, ham)
        run = subprocess.run([probe, table.name, criterion, str(nodes), str(support)],
                             capture_output=True, text=True, check=True)
    leaves, size, ours = run.stdout.split()
    leaves, size, ours = int(leaves), int(size), float(ours)
    columns = one_hot(vectors)

    def theirs(max_leaves):
        oracle = DecisionTreeClassifier(criterion=criterion, max_leaf_nodes=max_leaves,
                                        min_weight_fraction_leaf=support / 100, random_state=0)
        oracle.fit(numpy.vstack([columns, columns]), numpy.repeat([1, 0], len(vectors)),
                   sample_weight=numpy.concatenate([spam, ham]))
        return oracle.tree_.node_count, impurity_of(oracle, columns, spam, ham, criterion)

    # As many nodes as we wrote; and, when the budget did not cut the growth short, as many leaves.
    rivals = [theirs((size + 1) // 2)]
    if size < nodes - 1:
        rivals.append(theirs(leaves))
    good = True
    for count, impurity in rivals:
        is_good = ours <= impurity * (1 + 1e-9)
        good &= is_good
        print(f"seed {seed} {criterion:8} ours {ours:.9f} in {size} nodes, scikit-learn "
              f"{impurity:.9f} in {count}{'' if is_good else '   WORSE'}")
    return good


def main():
    probe = sys.argv[1]
    names = attribute_names(probe)
    good = True
    for seed in range(4):
        for criterion in ("entropy", "gini"):
            for nodes, support in ((10, 0.0), (60, 0.0), (300, 0.15), (497, 0.5), (497, 2.0)):
                good &= compare(probe, names, seed, criterion, nodes, support)
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
