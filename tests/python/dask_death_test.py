# SPDX-License-Identifier: Apache-2.0
"""Workers that die, and how much memory those take that live."""
import contextlib
import json
import os
import pathlib
import select
import signal
import subprocess
import threading
import time
import unittest

from dask_programs import TIME, ArchiveTest, mailbox, mails
from distributed import Client, LocalCluster

MEMORY = 64 << 20 # far less than the mailbox that it is for


def readers(path):
    """The processes that have this file open."""
    found = set()
    for link in pathlib.Path("/proc").glob("[0-9]*/fd/*"):
        with contextlib.suppress(OSError): # it may have ended
            if os.readlink(link) == str(path):
                found.add(int(link.parts[2]))
    return found


def kill_readers(path):
    """Opens a pipe, which waits until a worker has opened it, and kills that worker, as -9 does. It
    is stopped first, since it must not see the end of the pipe, and has ended afterwards."""
    with open(path, "wb"):
        victims = readers(path) - {os.getpid()}
        ends = [os.pidfd_open(victim) for victim in victims]
        for end in ends:
            signal.pidfd_send_signal(end, signal.SIGSTOP)
    for end in ends:
        signal.pidfd_send_signal(end, signal.SIGKILL)
        select.select([end], [], [])
        os.close(end)
    return victims


class Deaths(ArchiveTest):
    def setUp(self):
        super().setUp()
        for number, message in enumerate(mails()):
            self.write(f"mail/{number:02}.eml", message)
        self.pipe = self.folder / "mail-pipe"
        os.mkfifo(self.pipe)

    def test_a_worker_that_is_killed_changes_nothing(self):
        process = self.start("learn_archive.py", "--workers", "2", "--partition-files", "3",
                             "--ham", "x=mail", "--spam", f"y={self.pipe}", "--spam", "z=mail")
        self.assertEqual(len(kill_readers(self.pipe)), 1)
        self.pipe.write_bytes(mailbox(mails())) # waits for the next worker
        output, errors = process.communicate(timeout=TIME)
        self.assertEqual(process.returncode, 0, errors)
        whole = self.write("plain.mbox", mailbox(mails()))
        expected, _ = self.run_program("qvrules", "learn", "--ham", "x=mail", "--spam",
                                       f"y={whole}", "--spam", "z=mail", "--table", "/dev/stdout")
        self.assertEqual(output, expected)

    def test_a_part_of_a_table_is_whole_or_not_there(self):
        """The worker dies after it has written rows, more than its buffer takes."""
        self.write("mail/99.mbox", mailbox(mails() * 10))
        process = self.start("scan_archive.py", "--workers", "2", "--config", self.config, "-o",
                             "table.csv", "mail", self.pipe)
        kill_readers(self.pipe)
        self.pipe.write_bytes(mails()[0])
        _, errors = process.communicate(timeout=TIME)
        self.assertEqual(process.returncode, 1, errors)
        rows = (self.folder / "table.csv").read_text().splitlines()
        expected, _ = self.run_program("qvscan", "--config", self.config, "--format", "csv", "--csv",
                                       "verdicts", "mail", status=1)
        self.assertEqual([row.split(",")[0] for row in rows[1:]],
                         [*(row.split(",")[0] for row in expected.splitlines()[1:]),
                          str(self.pipe)])

    def test_a_file_that_kills_every_worker_is_reported(self):
        process = self.start("scan_archive.py", "--workers", "2", "--deaths", "1", "--config",
                             self.config, "-o", "table.csv", "mail", self.pipe)
        deaths = 0

        def kill_all():
            nonlocal deaths
            while True:
                deaths += len(kill_readers(self.pipe))
        # It waits for the next worker when the test ends.
        threading.Thread(target=kill_all, daemon=True).start()
        _, errors = process.communicate(timeout=TIME)
        # Dask writes more when a worker that has just started is to end.
        reports = [line for line in errors.splitlines() if line.startswith("scan_archive: ")]
        self.assertEqual(reports, [
            f"scan_archive: {self.pipe}: cannot be read: workers die of it",
            "scan_archive: 1 input was left out"])
        self.assertEqual(process.returncode, 66)
        self.assertEqual(deaths, 4, "two with the others of its task, two alone")
        rows = (self.folder / "table.csv").read_text().splitlines()
        self.assertEqual(len(rows), 1 + len(mails()), "the others of its task are there")


    def test_a_cluster_that_ends_ends_the_program(self):
        environment = {**os.environ, "DASK_DISTRIBUTED__COMM__TIMEOUTS__CONNECT": "1s"}
        scheduler, address = self.cluster(environment)
        process = self.start("scan_archive.py", "--scheduler", address, self.pipe,
                             env=environment)
        with open(self.pipe, "wb"): # a worker reads it
            scheduler.kill()
            _, errors = process.communicate(timeout=TIME)
        self.assertEqual(process.returncode, 69, errors)
        self.assertIn("scan_archive: the cluster has ended", errors)

    def cluster(self, environment):
        """A scheduler, and its address; it has one worker."""
        file = self.folder / "scheduler.json"
        started = []
        for line in (["dask-scheduler", "--host", "127.0.0.1", "--port", "0", "--no-dashboard"],
                     ["dask-worker", "--nworkers", "1", "--nthreads", "1", "--no-dashboard"]):
            process = subprocess.Popen([*line, "--scheduler-file", str(file)], cwd=self.folder,
                                       env=environment, stderr=subprocess.DEVNULL)
            self.addCleanup(process.wait)
            self.addCleanup(process.kill)
            started.append(process)
        while not file.exists():
            self.assertIsNone(started[0].poll())
            time.sleep(0.1)
        return started[0], json.loads(file.read_text())["address"]


class Memory(ArchiveTest):
    def test_a_worker_needs_little_for_a_large_mailbox(self):
        """Most of it is a hole, which costs no disk."""
        path = self.folder / "large.mbox"
        with path.open("wb") as file:
            for message in mails()[:8]:
                file.write(mailbox([message]))
                file.seek(MEMORY, os.SEEK_CUR)
                file.write(b"\n\n")
        self.assertGreater(path.stat().st_size, 8 * MEMORY)
        for partition in ("1GiB", "100MiB"): # whole, and cut
            with self.subTest(partition), \
                    LocalCluster(n_workers=1, threads_per_worker=1, host="127.0.0.1",
                                 dashboard_address=None, local_directory=str(self.folder)) as own, \
                    Client(own) as client:
                before, = client.run(memory, "VmRSS").values()
                output, _ = self.run_program("scan_archive.py", "--config", self.config,
                                             "--scheduler", own.scheduler_address,
                                             "--partition-bytes", partition, path, status=1)
                self.assertEqual(sum(int(row.split(",")[1]) for row in output.splitlines()[1:]), 8)
                most, = client.run(memory, "VmHWM").values()
                self.assertLess(most - before, MEMORY)


def memory(name):
    """What /proc says of this process, in bytes."""
    with open("/proc/self/status") as status:
        return next(int(line.split()[1]) * 1024 for line in status if line.startswith(name + ":"))


if __name__ == "__main__":
    unittest.main()
