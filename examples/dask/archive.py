# SPDX-License-Identifier: Apache-2.0
"""Mail archives in pieces: where a large mailbox can be cut, and the messages of one piece. Clients
and workers use it. Nothing here knows of Dask."""

from __future__ import annotations

import collections
import functools
import json
import os
import stat
import threading
from collections.abc import Iterable, Iterator
from typing import Generic, NamedTuple, TypeVar

import qvdeepheader

# In an mbox, a line that follows an empty line and begins with these five bytes begins a message.
_START = b"From "
_MARKS = (b"\n\n" + _START, b"\n\r\n" + _START)
_LONGEST_LEAD = 3  # bytes of a mark before the line
_BLOCK = 4 << 20
# A file with more problems than these is hardly mail.
_MOST_PROBLEMS = 100

NO_MESSAGE, NO_INPUT = 65, 66  # exit statuses, those of qvscan


class Setup(NamedTuple):
    """What a scanner is made from, in a form that can be sent and compared."""

    rules: str | None  # None: those that are installed
    settings: str = "{}"  # a mapping, as JSON


class Piece(NamedTuple):
    """What one worker reads: a file, or some bytes of a large mailbox."""

    path: str
    begin: int = 0
    end: int | None = None  # None: all of the file, whatever it is
    first: int = 1  # the number of the first message in these bytes

    def size(self) -> int:
        """Bytes on disk; 0 when that is not known."""
        return file_size(self.path) if self.end is None else self.end - self.begin

    def source(self, read_as: str) -> str:
        """What reports call a message that was read under this name."""
        if self.end is None:
            return read_as
        number = read_as.rpartition(":")[2]
        return f"{self.path}:{self.first - 1 + int(number)}" if number.isdigit() else self.path


class Problem(NamedTuple):
    """Why something is no message, or cannot be read."""

    source: str
    text: str
    status: int = NO_MESSAGE  # the exit status of a program that ends with it


class Problems:
    """Those of one task. Of a file with very many only the first ones are kept."""

    def __init__(self) -> None:
        self._kept: list[Problem] = []
        self._counts: dict[str, int] = {}

    def add(self, path: str, problem: Problem) -> None:
        self._counts[path] = self._counts.get(path, 0) + 1
        if self._counts[path] <= _MOST_PROBLEMS:
            self._kept.append(problem)

    def all(self) -> list[Problem]:
        return self._kept + [Problem(path, f"{count - _MOST_PROBLEMS} more are no messages")
                             for path, count in self._counts.items() if count > _MOST_PROBLEMS]


Kind = TypeVar("Kind")


class Report(NamedTuple, Generic[Kind]):
    """What a task found: messages of each kind, and what was no message."""

    counts: collections.Counter[Kind]
    problems: list[Problem]


class _PieceError(Exception):
    """A piece of a mailbox that cannot be read to its end."""


def file_size(path: str) -> int:
    """Bytes of a file; 0 when it is something else, or cannot be reached."""
    try:
        status = os.stat(path)
    except OSError:
        return 0
    return status.st_size if stat.S_ISREG(status.st_mode) else 0


def is_plain_mailbox(path: str) -> bool:
    """Whether it is an mbox that is not packed: one that can be cut."""
    try:
        with open(path, "rb") as file:
            begins_like_one = file.read(len(_START)) == _START
    except OSError:
        return False
    return begins_like_one and next(qvdeepheader.messages(path)).source == f"{path}:1"


def starts(path: str, begin: int, end: int) -> tuple[int | None, int]:
    """Where the first of the messages begins that begin in these bytes of an mbox, and how many do.

    That does not depend on what comes before: an empty line ends a header section, too.
    """
    first, count = None, 0
    with open(path, "rb") as file:
        for block in range(begin, end, _BLOCK):
            place, found = _starts_in_block(file.fileno(), block, min(_BLOCK, end - block))
            first = place if first is None else first
            count += found
    return first, count


def _starts_in_block(file: int, begin: int, size: int) -> tuple[int | None, int]:
    # What comes before the first byte of a file counts as empty lines.
    missing = max(_LONGEST_LEAD - begin, 0)
    offset = begin - _LONGEST_LEAD
    data = b"\n" * missing + os.pread(file, size + _LONGEST_LEAD + len(_START), offset + missing)
    places, count = [], 0
    for mark in _MARKS:
        lead = len(mark) - len(_START)
        low = _LONGEST_LEAD - lead
        high = low + size - 1 + len(mark)
        count += data.count(mark, low, high)
        found = data.find(mark, low, high)
        if found >= 0:
            places.append(offset + found + lead)
    return min(places, default=None), count


def cut(path: str, size: int, ranges: Iterable[tuple[int | None, int]]) -> list[Piece]:
    """The pieces of an mbox of this size. `ranges` is what starts() says of its parts, in order."""
    begins, number = [], 1
    for begin, count in ranges:
        if begin is not None:
            begins.append((begin, number))
        number += count
    ends = [begin for begin, _ in begins[1:]] + [size]
    return [Piece(path, begin, end, first) for (begin, first), end in zip(begins, ends)]


def partitions(pieces: Iterable[Piece], most_bytes: int,
               most_pieces: int) -> Iterator[tuple[Piece, ...]]:
    """The pieces in their order, many small ones together."""
    group: list[Piece] = []
    total = 0
    for piece in pieces:
        size = piece.size()
        if group and (len(group) == most_pieces or total + size > most_bytes):
            yield tuple(group)
            group, total = [], 0
        group.append(piece)
        total += size
    if group:
        yield tuple(group)


@functools.lru_cache(maxsize=1)
def scanner(setup: Setup) -> qvdeepheader.Scanner:
    """The scanner of this process, made when it is first asked for."""
    return qvdeepheader.Scanner(rules=setup.rules, settings=json.loads(setup.settings))


def messages(pieces: Iterable[Piece], setup: Setup,
             problems: Problems) -> Iterator[tuple[str, qvdeepheader.Message]]:
    """All messages of the pieces, with their names for reports. Nothing is held in memory but the
    header section of one message."""
    settings = json.loads(setup.settings)
    for piece in pieces:
        try:
            for message in _read(piece, settings):
                source = piece.source(message.source)
                if message.error is None:
                    yield source, message
                else:
                    problems.add(piece.path, Problem(source, message.error, message.exit_status))
        except _PieceError as error:
            problems.add(piece.path, Problem(piece.path, f"cannot be read: {error}", NO_INPUT))


def _read(piece: Piece, settings: dict[str, str]) -> Iterator[qvdeepheader.Message]:
    if piece.end is None:
        yield from qvdeepheader.messages(piece.path, settings=settings)
        return
    # The reader of messages takes its bytes from a pipe.
    read_end, write_end = os.pipe()
    failures: list[Exception] = []
    thread = threading.Thread(target=_feed, args=(piece, piece.end, write_end, failures),
                              daemon=True)
    thread.start()
    try:
        yield from qvdeepheader.messages(f"/dev/fd/{read_end}", settings=settings)
    finally:
        os.close(read_end)
    thread.join()
    if failures:
        raise _PieceError(str(failures[0]))


def _feed(piece: Piece, end: int, write_end: int, failures: list[Exception]) -> None:
    position = piece.begin
    try:
        with open(write_end, "wb", buffering=0), open(piece.path, "rb") as file:
            while position < end:
                sent = os.sendfile(write_end, file.fileno(), position, end - position)
                if sent == 0:
                    raise EOFError(f"it ended at byte {position}, before byte {end}")
                position += sent
    except (OSError, EOFError) as error:
        failures.append(error)
