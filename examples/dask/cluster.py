# SPDX-License-Identifier: Apache-2.0
"""What the programs of this folder share: their options, the cluster, and tasks on its workers."""

from __future__ import annotations

import argparse
import asyncio
import concurrent.futures
import contextlib
import json
import logging
import os
import sys
import tempfile
import traceback
from collections.abc import Callable, Iterable, Iterator
from typing import Any, NamedTuple, NoReturn

import dask
import qvdeepheader
from dask.utils import parse_bytes
from distributed import Client, KilledWorker, LocalCluster, as_completed
from distributed.diagnostics.plugin import UploadFile

import archive

# Exit statuses, as <sysexits.h> numbers them.
USAGE, UNAVAILABLE, INTERNAL, CANNOT_WRITE, BAD_SETTINGS = 64, 69, 70, 73, 78

# So many tasks for each thread of a worker: one that runs and one that waits. A scheduler that
# knows few tasks stays small, however large the archive is.
_TASKS_AHEAD = 2


class Job(NamedTuple):
    """The pieces of one task. Sorted by `place`, jobs are in the order of the input."""

    place: tuple[int, ...]
    pieces: tuple[archive.Piece, ...]


class Failure(Exception):
    """Ends the program with this text and exit status."""

    def __init__(self, text: str, status: int) -> None:
        super().__init__(text)
        self.status = status


class Parser(argparse.ArgumentParser):
    def error(self, message: str) -> NoReturn:
        self.exit(USAGE, f"{self.prog}: {message}\n\"{self.prog} --help\" shows the options.\n")


def _size(text: str) -> int:
    with contextlib.suppress(ValueError):
        if (size := int(parse_bytes(text))) > 0:
            return size
    raise argparse.ArgumentTypeError(f"a size is a number of bytes such as 64MiB, not '{text}'")


def _count(text: str) -> int:
    if text.isdecimal() and (count := int(text)) > 0:
        return count
    raise argparse.ArgumentTypeError(f"it takes a whole number from 1 on, not '{text}'")


def add_options(parser: argparse.ArgumentParser) -> None:
    parser.add_argument("--config", metavar="FILE",
                        help="the settings file of qvscan and qvmilter; name your relays there")
    group = parser.add_argument_group("the cluster")
    group.add_argument("--scheduler", metavar="ADDRESS",
                       help="an existing cluster, such as tls://192.0.2.7:8786; without it, "
                       "processes of this machine are started. Workers find the archive, the rules "
                       "and this Python package at the same paths")
    group.add_argument("--workers", metavar="N", type=_count, default=os.cpu_count(),
                       help="processes on this machine (default: one for each core)")
    group.add_argument("--memory-limit", metavar="SIZE", type=_size,
                       help="memory of each of them, such as 512MiB (default: all, shared evenly)")
    group.add_argument("--deaths", metavar="N", type=_count, default=5,
                       help="a file that has killed more workers than N is left out (default: "
                       "%(default)s); with --scheduler, the scheduler's allowed-failures counts")
    group.add_argument("--partition-bytes", metavar="SIZE", type=_size, default="64MiB",
                       help="mail for one task; mailboxes that are larger and not packed are cut "
                       "(default: %(default)s)")
    group.add_argument("--partition-files", metavar="N", type=_count, default=1000,
                       help="at most so many files for one task (default: %(default)s)")


def require_paths(parser: argparse.ArgumentParser, paths: Iterable[str],
                  options: argparse.Namespace) -> None:
    """Refuses what workers cannot read."""
    for path in paths:
        if path == "-":
            parser.error("workers cannot read standard input; give files")
        if options.scheduler and not os.path.isabs(path):
            parser.error(f"{path}: with --scheduler, give absolute paths: workers run elsewhere")


def setup(rules: str | None, config: str | None, **changes: str) -> archive.Setup:
    """Rules and settings for the workers, checked before they start. A file is read once, here."""
    qvdeepheader.Scanner(rules=rules, settings=config)
    settings = {**qvdeepheader.settings(config), **changes}
    return archive.Setup(rules, json.dumps(settings, sort_keys=True))


@contextlib.contextmanager
def connected(options: argparse.Namespace) -> Iterator[Any]:
    """A client of the cluster that the options name, or of one that is started for it."""
    if options.scheduler:
        try:
            client = Client(options.scheduler)
        except (OSError, ValueError) as error:
            raise Failure(f"{options.scheduler}: {error}", UNAVAILABLE) from error
        with client:
            # Workers import what tasks are made of, those too that join later.
            client.register_worker_plugin(UploadFile(archive.__file__))
            if not client.nthreads():
                print(f"{options.scheduler}: waiting for a worker", file=sys.stderr)
            yield client
        return
    with tempfile.TemporaryDirectory(prefix="dask-") as folder, dask.config.set({
            "distributed.scheduler.allowed-failures": options.deaths}):
        # Encrypted with keys that only these processes have: whoever can connect to a scheduler can
        # run programs.
        with LocalCluster(n_workers=options.workers, threads_per_worker=1, processes=True,
                          host="127.0.0.1", dashboard_address=None, security=True,
                          # The scheduler serves its health without a dashboard, too: on a free
                          # port, so that several clusters can run.
                          scheduler_kwargs={"dashboard": False,
                                            "dashboard_address": "127.0.0.1:0"},
                          memory_limit=options.memory_limit or "auto", local_directory=folder,
                          silence_logs=logging.ERROR) as cluster, Client(cluster) as client:
            yield client


def jobs(client: Any, paths: Iterable[str], place: tuple[int, ...],
         options: argparse.Namespace) -> Iterator[Job]:
    """The files of these paths, as jobs whose places begin with `place`."""
    pieces = _pieces(client, paths, options.partition_bytes)
    groups = archive.partitions(pieces, options.partition_bytes, options.partition_files)
    for number, group in enumerate(groups):
        yield Job((*place, number), group)


def _pieces(client: Any, paths: Iterable[str], most_bytes: int) -> Iterator[archive.Piece]:
    for path in qvdeepheader.files(*paths):
        size = archive.file_size(path)
        if size > most_bytes and archive.is_plain_mailbox(path):
            yield from _cut(client, path, size, most_bytes)
        else:
            yield archive.Piece(path)


def _cut(client: Any, path: str, size: int, most_bytes: int) -> list[archive.Piece]:
    begins = list(range(0, size, most_bytes))
    ends = begins[1:] + [size]
    ranges = client.map(archive.starts, [path] * len(begins), begins, ends, pure=False)
    try:
        return archive.cut(path, size, client.gather(ranges))
    except (OSError, KilledWorker):
        return [archive.Piece(path)]  # whoever reads it reports what is wrong


def results(client: Any, task: Callable[..., Any],
            todo: Iterable[Job]) -> Iterator[tuple[Job, Any]]:
    """What task(pieces, place) returns for each job, in the order in which they end.

    When too many workers died on a job, its pieces become jobs of their own, one after another, so
    that the others of them are done and the one that kills is known. Its result is None.
    """
    suspects = []
    for job, result in _together(client, task, todo):
        if result is None:
            suspects.append(job)
        else:
            yield job, result
    for job in suspects:
        for number, piece in enumerate(job.pieces):
            yield from _together(client, task, [Job((*job.place, number), (piece,))])


def _together(client: Any, task: Callable[..., Any],
              todo: Iterable[Job]) -> Iterator[tuple[Job, Any]]:
    waiting = iter(todo)
    running: dict[Any, Job] = {}
    done = as_completed()

    def submit_some() -> None:
        wanted = max(sum(client.nthreads().values()), 1) * _TASKS_AHEAD
        while len(running) < wanted and (job := next(waiting, None)) is not None:
            future = client.submit(task, job.pieces, job.place, pure=False)
            running[future.key] = job
            done.add(future)

    submit_some()
    while running:
        future = next(done)
        job = running.pop(future.key)
        try:
            yield job, future.result()
        except KilledWorker:
            yield job, None
        future.release()
        submit_some()


class Outcome:
    """Reports problems while the jobs end, and knows the exit status when all have ended."""

    def __init__(self, program: str) -> None:
        self._program = program
        self._count = 0
        self._first: tuple[tuple[int, ...], int] | None = None  # in the input: place and status

    def add(self, job: Job, problems: Iterable[archive.Problem] | None) -> None:
        """`problems` is None for a file that kills workers."""
        if problems is None:
            problems = [archive.Problem(piece.path, "cannot be read: workers die of it",
                                        archive.NO_INPUT)
                        for piece in job.pieces]
        for problem in problems:
            text = f"{problem.source}: {problem.text}"
            print(f"{self._program}: {printable(text)}", file=sys.stderr)
            self._count += 1
            if self._first is None or job.place < self._first[0]:
                self._first = job.place, problem.status

    def status(self, otherwise: int) -> int:
        if self._first is None:
            return otherwise
        inputs = "input was" if self._count == 1 else "inputs were"
        print(f"{self._program}: {self._count} {inputs} left out", file=sys.stderr)
        return self._first[1]


def printable(text: str) -> str:
    """Without bytes that are no text, and without what moves the cursor."""
    text = text.encode("utf-8", "surrogateescape").decode("utf-8", "replace")
    return "".join(c if c.isprintable() else "\N{REPLACEMENT CHARACTER}" for c in text)


def run(program: str, main: Callable[[], int]) -> NoReturn:
    """Ends the process with what main returns, or with the status of what went wrong."""
    try:
        sys.exit(main())
    except KeyboardInterrupt:
        sys.exit(130)
    except Failure as error:
        status, text = error.status, str(error)
    except (qvdeepheader.SettingsError, qvdeepheader.RulesError) as error:
        status, text = BAD_SETTINGS, str(error)
    except ImportError as error:
        status, text = UNAVAILABLE, f"a worker cannot import what it needs: {error}"
    except (asyncio.CancelledError, concurrent.futures.CancelledError):
        status, text = UNAVAILABLE, "the cluster has ended, and the work with it"
    except OSError as error:
        status, text = CANNOT_WRITE, str(error)
    except Exception:
        status, text = INTERNAL, f"an internal error\n{traceback.format_exc()}"
    print(f"{program}: {text}", file=sys.stderr)
    sys.exit(status)
