#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""Judges all messages of an archive with many processes or machines."""

from __future__ import annotations

import argparse
import collections
import contextlib
import csv
import functools
import os
import pathlib
import shutil
import sys
import tempfile
from collections.abc import Iterable, Iterator
from typing import IO

import archive
import cluster
import qvdeepheader

# Columns of "qvscan --format csv --csv verdicts".
HEADER = ("source", "verdict", "confidence", "node", "ruleName", "relay", "error")
VERDICTS = ("spam", "ham", "none")
SPAM_FOUND = 1  # the exit status


def row(source: str, message: qvdeepheader.Message,
        scanner: qvdeepheader.Scanner) -> tuple[str, ...]:
    try:
        answer = scanner.scan(message)
    except qvdeepheader.ScanError as error:
        return source, "none", "", "", "", "", str(error)
    confidence = "" if answer.confidence is None else repr(answer.confidence)
    node = str(answer.node) if answer.node else ""
    relay = answer.addresses[0] if answer.addresses else ""
    return source, answer.verdict, confidence, node, answer.name or "", relay, ""


def part_path(parts: str, place: tuple[int, ...]) -> str:
    return os.path.join(parts, "-".join(map(str, place)))


@contextlib.contextmanager
def part(parts: str | None, place: tuple[int, ...]) -> Iterator[IO[str]]:
    """The file for the rows of one task; it has its name when it is complete, so that the task may
    be broken off, done again, or done twice at the same time. Without a folder nothing is kept."""
    if parts is None:
        with open(os.devnull, "w") as nothing:
            yield nothing
        return
    with tempfile.NamedTemporaryFile("w", dir=parts, delete=False, newline="", encoding="utf-8",
                                     errors="surrogateescape") as file:
        yield file
    os.replace(file.name, part_path(parts, place))


def scan(pieces: tuple[archive.Piece, ...], place: tuple[int, ...], setup: archive.Setup,
         parts: str | None) -> archive.Report[str]:
    """A task: judges the messages of these pieces and writes their rows."""
    scanner = archive.scanner(setup)
    problems = archive.Problems()
    verdicts: collections.Counter[str] = collections.Counter()
    with part(parts, place) as file:
        table = csv.writer(file, lineterminator="\n")
        for source, message in archive.messages(pieces, setup, problems):
            values = row(source, message, scanner)
            verdicts[values[1]] += 1
            table.writerow(values)
    return archive.Report(verdicts, problems.all())


@contextlib.contextmanager
def parts_beside(output: pathlib.Path | None) -> Iterator[str | None]:
    """The folder for the parts of a table: workers on other machines reach it where they reach the
    table."""
    if output is None:
        yield None
        return
    with tempfile.TemporaryDirectory(prefix=f".{output.name}-", dir=output.parent) as folder:
        yield folder


def join(parts: str, places: Iterable[tuple[int, ...]], output: pathlib.Path) -> None:
    joined = os.path.join(parts, "table")
    with open(joined, "wb") as table:
        table.write((",".join(HEADER) + "\n").encode())
        for place in sorted(places):
            with open(part_path(parts, place), "rb") as rows:
                shutil.copyfileobj(rows, table)
    os.replace(joined, output)


def arguments() -> argparse.Namespace:
    parser = cluster.Parser(prog="scan_archive", description=__doc__, epilog="Exit status: 0 no "
                            "spam, 1 spam, 64 usage, 65 an input that is no message, 66 an input "
                            "that cannot be read, 69 no cluster, 70 an internal error, 73 output "
                            "that cannot be written, 78 settings or rules.")
    parser.add_argument("paths", metavar="PATH", nargs="+",
                        help="what qvscan takes: mailboxes, messages, folders, archives")
    parser.add_argument("-o", "--output", metavar="FILE", type=pathlib.Path,
                        help="the table of verdicts to write, in the order of the input; without "
                        "it, verdicts are counted on standard output")
    parser.add_argument("--rules", metavar="PATH",
                        help="a rule text, or a folder with compiled rules (default: those that "
                        "are installed)")
    cluster.add_options(parser)
    options = parser.parse_args()
    cluster.require_paths(parser, options.paths, options)
    # Workers may run in other folders.
    options.output = options.output and options.output.absolute()
    options.rules = options.rules and os.path.abspath(options.rules)
    return options


def main() -> int:
    options = arguments()
    setup = cluster.setup(options.rules, options.config)
    verdicts: collections.Counter[str] = collections.Counter()
    outcome = cluster.Outcome("scan_archive")
    places = []
    with parts_beside(options.output) as parts, cluster.connected(options) as client:
        task = functools.partial(scan, setup=setup, parts=parts)
        jobs = cluster.jobs(client, options.paths, (), options)
        for job, report in cluster.results(client, task, jobs):
            outcome.add(job, report and report.problems)
            if report:
                verdicts += report.counts
                places.append(job.place)
        if parts:
            join(parts, places, options.output)
    if not options.output:
        table = csv.writer(sys.stdout, lineterminator="\n")
        table.writerows([("verdict", "messages"), *((name, verdicts[name]) for name in VERDICTS)])
    return outcome.status(SPAM_FOUND if verdicts["spam"] else 0)


if __name__ == "__main__":
    cluster.run("scan_archive", main)
