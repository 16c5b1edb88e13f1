#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""Makes the table of attribute vectors that rules are learned from, with many processes or
machines: learn_archive --ham PATH --spam PATH | qvrules learn --vectors - -o learned.qvr"""

from __future__ import annotations

import argparse
import collections
import csv
import functools
import os
import pathlib
import sys
from array import array
from collections.abc import Iterable, Iterator
from typing import NamedTuple, TextIO

import archive
import cluster
import qvdeepheader

# Vectors do not depend on rules, and no rules ask for no names.
NO_RULES = os.devnull
NOTHING_TO_JUDGE = b""  # instead of a vector


class Source(NamedTuple):
    """Mail of one kind."""

    label: str
    corpus: str
    path: str


def source(label: str, text: str) -> Source:
    """CORPUS=PATH; of a PATH alone the corpus is the folder that it lies in."""
    corpus, equals, path = text.partition("=")
    if equals and corpus and "/" not in corpus:
        return Source(label, corpus, path)
    return Source(label, pathlib.Path(os.path.abspath(text)).parent.name, text)


def vector(message: qvdeepheader.Message, scanner: qvdeepheader.Scanner) -> bytes:
    try:
        attributes = scanner.vector(message)
    except qvdeepheader.ScanError:
        return NOTHING_TO_JUDGE
    return NOTHING_TO_JUDGE if attributes is None else attributes.tobytes()


def count(pieces: tuple[archive.Piece, ...], place: tuple[int, ...],
          setup: archive.Setup) -> archive.Report[bytes]:
    """A task: counts the vectors of these pieces."""
    scanner = archive.scanner(setup)
    problems = archive.Problems()
    vectors = collections.Counter(vector(message, scanner) for _, message
                                  in archive.messages(pieces, setup, problems))
    return archive.Report(vectors, problems.all())


def numbers(vector: bytes) -> array[int]:
    values = array("i")
    values.frombytes(vector)
    return values


def rows(counts: collections.Counter[tuple[bytes, str, str]]) -> Iterator[list[object]]:
    """The rows as "qvrules learn --table" writes them, in its order."""
    def order(key: tuple[bytes, str, str]) -> tuple[list[int], bytes, bool]:
        vector, corpus, label = key
        return numbers(vector).tolist(), os.fsencode(corpus), label != "spam"

    for vector, corpus, label in sorted(counts, key=order):
        values = list(map(str, numbers(vector))) or [""] * len(qvdeepheader.attributes)
        yield ["", *values, label, counts[vector, corpus, label], corpus]


def write(counts: collections.Counter[tuple[bytes, str, str]], file: TextIO) -> None:
    table = csv.writer(file, lineterminator="\n")
    table.writerow(["source", *qvdeepheader.attributes, "label", "count", "corpus"])
    table.writerows(rows(counts))


def arguments() -> argparse.Namespace:
    parser = cluster.Parser(prog="learn_archive", description=__doc__, epilog="Exit status: 0 "
                            "well, 64 usage, 65 an input that is no message, 66 an input that "
                            "cannot be read, 69 no cluster, 70 an internal error, 73 output that "
                            "cannot be written, 78 "
                            "settings.")
    for label in ("ham", "spam"):
        parser.add_argument(f"--{label}", metavar="[CORPUS=]PATH", nargs="+", action="extend",
                            default=[], help=f"{label}, in whatever qvscan takes; the corpus is "
                            "the site that it is from (default: the folder that PATH lies in)")
    parser.add_argument("-o", "--output", metavar="FILE", type=pathlib.Path,
                        help="the table to write (default: standard output)")
    cluster.add_options(parser)
    options = parser.parse_args()
    options.sources = [source(label, text) for label in ("ham", "spam")
                       for text in getattr(options, label)]
    if not options.sources:
        parser.error("give mail: --ham, --spam")
    cluster.require_paths(parser, [each.path for each in options.sources], options)
    return options


def jobs(client: object, options: argparse.Namespace) -> Iterable[cluster.Job]:
    for number, each in enumerate(options.sources):
        yield from cluster.jobs(client, [each.path], (number,), options)


def main() -> int:
    options = arguments()
    # Names in old mail may no longer exist, which rules would learn.
    if options.output:
        options.output.open("a").close()  # fails now rather than after hours
    setup = cluster.setup(NO_RULES, options.config, dns="off")
    counts: collections.Counter[tuple[bytes, str, str]] = collections.Counter()
    outcome = cluster.Outcome("learn_archive")
    with cluster.connected(options) as client:
        task = functools.partial(count, setup=setup)
        for job, report in cluster.results(client, task, jobs(client, options)):
            outcome.add(job, report and report.problems)
            if report:
                kind = options.sources[job.place[0]]
                for vector, messages in report.counts.items():
                    counts[vector, kind.corpus, kind.label] += messages
    with open(options.output or sys.stdout.fileno(), "w", newline="", encoding="utf-8",
              errors="surrogateescape", closefd=options.output is not None) as file:
        write(counts, file)
    return outcome.status(0)


if __name__ == "__main__":
    cluster.run("learn_archive", main)
