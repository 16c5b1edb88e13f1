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
import sys
import time

HERE = pathlib.Path(__file__).resolve().parent
PROGRAMS = pathlib.Path(sys.argv[1])
MESSAGES = int(sys.argv[2]) if len(sys.argv) > 2 else 10000
SESSIONS = 20
TURNS = 5

os.environ.update(QV_MILTER=str(PROGRAMS / "qvmilter"), QV_RULES=str(PROGRAMS / "qvrules"),
                  QV_SCAN=str(PROGRAMS / "qvscan"))
sys.path.insert(0, str(HERE.parent / "tests" / "milter"))
# pylint: disable=wrong-import-position
from milter import Daemon, wait_for
from postfix import Postfix

MESSAGE = HERE.parent / "examples" / "forwarder-many-hops.eml"


def send(postfix, count):
    """Seconds that so many messages took."""
    start = time.monotonic()
    subprocess.run(["smtp-source", "-s", str(SESSIONS), "-m", str(count), "-F", str(MESSAGE),
                    "-f", "a@example.org", "-t", "b@example.net", f"127.0.0.1:{postfix.port}"],
                   check=True, stdout=subprocess.DEVNULL)
    return time.monotonic() - start


def discarding(milter):
    """A Postfix that asks this filter and throws away what it accepts."""
    return Postfix(milter, settings="virtual_transport = discard\n").start()


def main():
    daemon = Daemon(shared='internal = ["127.0.0.0/8"]', own='socket-group = "postfix"').start()
    socket = daemon.folder / "empty.sock"
    empty = subprocess.Popen([str(PROGRAMS / "empty_filter"), f"unix:{socket}"])
    wait_for(socket.exists, "the empty filter")
    socket.chmod(0o666)
    mail_servers = []
    try:
        mail_servers = [discarding(f"unix:{socket}"), discarding(f"unix:{daemon.socket}")]
        for postfix in mail_servers:
            send(postfix, 1)
        wait_for(lambda: daemon.metric("qvmilter_sessions") == 0, "the end of the first session")
        first = daemon.resident_kilobytes()
        times = [[], []]
        for _ in range(TURNS):
            for postfix, taken in zip(mail_servers, times):
                taken.append(send(postfix, MESSAGES // TURNS))
        without, with_ours = (statistics.median(taken) for taken in times)
        print(f"{MESSAGES} messages, {SESSIONS} sessions: {with_ours / without:.3f} times the time "
              f"of an empty filter ({MESSAGES / TURNS / with_ours:.0f} messages a second)")
        last = daemon.resident_kilobytes()
        print(f"resident memory: {first} KiB after 1 message, {last} KiB after {MESSAGES + 1}: "
              f"{last / first:.2f} times")
    finally:
        for postfix in mail_servers:
            postfix.stop()
        empty.terminate()
        daemon.remove()


if __name__ == "__main__":
    main()
