# SPDX-License-Identifier: Apache-2.0
"""A program that uses all of the package, for the check of its types. It is not run."""
import array
import email
import pathlib

import qvdeepheader


def judge(paths: list[pathlib.Path]) -> dict[str, int]:
    scanner = qvdeepheader.Scanner(rules="rules.qvr", settings={"dns": "off", "internal": ["::1"]})
    counts: dict[str, int] = {}
    for answer in scanner.scan_many(qvdeepheader.messages(*paths), threads=2):
        if answer.error is None and answer.confidence is not None:
            counts[answer.verdict] = counts.get(answer.verdict, 0) + answer.node
    return counts


def explain(message: bytes) -> str:
    scanner = qvdeepheader.Scanner(settings=pathlib.Path("site.conf"))
    vector: array.array[int] | None = scanner.vector(message, env_from="a@b.example")
    answer: qvdeepheader.Answer = scanner.scan(email.message_from_bytes(message), client_score=3)
    try:
        because: str = scanner.explain(qvdeepheader.Message(message, "mine"))["explain"]["because"]
    except qvdeepheader.Error as error:
        return f"{error.file}:{error.line}:{error.column}"
    return f"{because} {vector} {answer.addresses[0]}"
