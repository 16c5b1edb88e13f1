# SPDX-License-Identifier: Apache-2.0
"""Mboxes cut and rewritten, to measure rules on variants of the same mail."""
import bz2
import gzip
import lzma
import pathlib
import re

OPENERS = {".xz": lzma.open, ".gz": gzip.open, ".bz2": bz2.open}


def messages(path):
    """The messages of an mbox, each with its separator."""
    with OPENERS.get(path.suffix, open)(path, "rb") as box:
        return re.split(rb"(?<=\n\n)(?=From )", box.read())


def write(folder, name, mails):
    """An mbox of these messages below `folder`, which is created."""
    path = pathlib.Path(folder) / f"{name}.mbox"
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(b"".join(mails))
    return path


def thirds(boxes, folder):
    """The first two thirds and the last third of each mbox, in the order of the file."""
    first, last = {}, {}
    for label, path in boxes.items():
        mails = messages(path)
        cut = len(mails) * 2 // 3
        first[label] = write(folder, f"first/{label}", mails[:cut])
        last[label] = write(folder, f"last/{label}", mails[cut:])
    return first, last


def beginning_and_end(boxes, folder, beginning, end):
    """Of each mbox the share `beginning` from its start, and all after the share `end`, in the order
    of the file."""
    parts = {"beginning": {}, "end": {}}
    for label, path in boxes.items():
        mails = messages(path)
        for part, chosen in (("beginning", mails[:int(len(mails) * beginning)]),
                             ("end", mails[int(len(mails) * end):])):
            parts[part][label] = write(folder, f"{part}/{label}", chosen)
    return parts["beginning"], parts["end"]


def header_field(names):
    """Matches a whole field with one of these names; its value, folding included, is group 1."""
    return re.compile(rb"^(?:" + names + rb")[ \t]*:(.*\n(?:[ \t].*\n)*)",
                      re.IGNORECASE | re.MULTILINE)


AUTHOR = header_field(b"From")
ENVELOPE_SENDER = header_field(b"Return-Path|X-QV-ORIG-ENV-FROM")


def sent_by_author(mail):
    """The message as its gateway would have recorded it if the author had been the envelope sender.

    Of several authors the last counts, as it does in a scan. Without an author there is no envelope
    sender either.
    """
    separator, rest = mail.split(b"\n", 1)
    headers, end, body = rest.partition(b"\n\n")
    headers += b"\n"
    authors = AUTHOR.findall(headers)
    sender = b"Return-Path:" + authors[-1] if authors else b""
    return separator + b"\n" + sender + ENVELOPE_SENDER.sub(b"", headers) + end[1:] + body


def all_sent_by_author(mail, folder):
    """The same corpora, each message with its author as envelope sender."""
    return {corpus: {label: write(folder, f"{corpus}/{label}", map(sent_by_author, messages(path)))
                     for label, path in boxes.items()}
            for corpus, boxes in mail.items()}
