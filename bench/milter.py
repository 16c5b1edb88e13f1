#!/usr/bin/python3 -B
# SPDX-License-Identifier: Apache-2.0
"""What qvmilter costs a Postfix, against a filter that does nothing.

Both filters stand behind a Postfix of their own; the same messages go to one and the other in turns,
with 20 sessions at once. Needs root, as Postfix does.

bench/milter.py FOLDER_WITH_PROGRAMS [MESSAGES]
"""
import os
import pathlib
import statistics
import subprocess
import time

from milter_programs import MESSAGE, PROGRAMS, SESSIONS, messages
from milter import Daemon, example_zone, wait_for
from postfix import Postfix
from protocol import MailServer

MESSAGES = messages(10000)
TURNS = 20 # short ones, so that what else the machine does falls on both alike
IDLE = 1000 # sessions


def send(postfix, count):
    """Seconds that so many messages took."""
    start = time.monotonic()
    subprocess.run(["smtp-source", "-s", str(SESSIONS), "-m", str(count), "-F", str(MESSAGE),
                    "-f", "a@example.org", "-t", "b@example.net", f"127.0.0.1:{postfix.port}"],
                   check=True, stdout=subprocess.DEVNULL)
    return time.monotonic() - start


def processor_seconds(process):
    """What it has used so far, of all processors together."""
    fields = pathlib.Path(f"/proc/{process.pid}/stat").read_text().rsplit(")")[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def session_kilobytes(daemon):
    """Memory of an open session."""
    before = daemon.kilobytes("VmRSS")
    sessions = [MailServer(daemon.socket).client() for _ in range(IDLE)]
    for session in sessions:
        session.flush()
    wait_for(lambda: daemon.metric("qvmilter_sessions") == IDLE, "the sessions")
    used = daemon.kilobytes("VmRSS") - before
    for session in sessions:
        session.close()
    return used / IDLE


def discarding(milter):
    """A Postfix that asks this filter and throws away what it accepts."""
    return Postfix(milter, settings="virtual_transport = discard\n").start()


class Filter:
    """A qvmilter and a Postfix that asks it."""

    def __init__(self, settings=""):
        self.daemon = Daemon(shared='internal = ["127.0.0.0/8"]\n' + settings,
                             own='socket-group = "postfix"').start()
        self.postfix = discarding(f"unix:{self.daemon.socket}")
        send(self.postfix, 1)
        wait_for(lambda: self.daemon.metric("qvmilter_sessions") == 0, "the end of the session")
        self.first = self.daemon.kilobytes("VmRSS")
        self.start = processor_seconds(self.daemon.process)
        self.times = []

    def turn(self):
        self.times.append(send(self.postfix, MESSAGES // TURNS))

    def processor(self):
        """What it used for a message, in seconds."""
        return (processor_seconds(self.daemon.process) - self.start) / (len(self.times) * MESSAGES // TURNS)

    def stop(self):
        self.postfix.stop()
        self.daemon.remove()


def report(ours, asking, without, processor_without):
    ratio = statistics.median(one / other for one, other in zip(ours.times, without))
    rate = MESSAGES / TURNS / statistics.median(ours.times)
    print(f"{MESSAGES} messages, {SESSIONS} sessions: {ratio:.3f} times the time of an empty filter "
          f"({rate:.0f} messages a second)")
    print(f"processor time of the empty filter: {processor_without * 1e6:.0f} us a message")
    for what, one in (("without DNS", ours), ("with answers from the cache", asking)):
        print(f"processor time of qvmilter {what}: {one.processor() * 1e6:.0f} us a message, so one "
              f"core judges {1 / one.processor():.0f} a second")
    last = ours.daemon.kilobytes("VmRSS")
    print(f"resident memory: {ours.first} KiB after 1 message, {last} KiB after {MESSAGES + 1}: "
          f"{last / ours.first:.2f} times; {session_kilobytes(ours.daemon):.1f} KiB for each open "
          "session")


def main():
    filters = [Filter(), Filter(f'dns-data = "{example_zone()}"')]
    ours, asking = filters
    socket = ours.daemon.folder / "empty.sock"
    empty = subprocess.Popen([str(PROGRAMS / "empty_filter"), f"unix:{socket}"])
    wait_for(socket.exists, "the empty filter")
    socket.chmod(0o666)
    baseline = discarding(f"unix:{socket}")
    times = []
    try:
        send(baseline, 1)
        start = processor_seconds(empty)
        for number in range(TURNS):
            if number % 2 == 0:
                times.append(send(baseline, MESSAGES // TURNS))
            ours.turn()
            if number % 2 == 1:
                times.append(send(baseline, MESSAGES // TURNS))
        processor = (processor_seconds(empty) - start) / MESSAGES
        for _ in range(TURNS // 4):
            asking.turn()
        report(ours, asking, times, processor)
    finally:
        baseline.stop()
        empty.terminate()
        for one in filters:
            one.stop()


if __name__ == "__main__":
    main()
