#!/usr/bin/python3 -B
# SPDX-License-Identifier: Apache-2.0
"""What becomes of the memory of qvmilter while a client that speaks the milter protocol sends it 100,000
messages in one session after the other, and then as many in 20 sessions at once. Sessions that are open
at the same time take memory of their own, so these are compared with their own first messages, too.

bench/milter_memory.py FOLDER_WITH_PROGRAMS [MESSAGES]
"""
import email
import threading

from milter_programs import MESSAGE, SESSIONS, messages
from milter import Daemon
from protocol import MailServer

MESSAGES = messages(100000)
SESSION_LENGTH = 50 # messages


def play(daemon, headers, count):
    """So many messages with these headers, of several clients."""
    while count > 0:
        with MailServer(daemon.socket) as session:
            session.client(address=f"192.0.2.{count % 200 + 1}", helo=f"host{count}.example.org")
            for _ in range(min(count, SESSION_LENGTH)):
                session.message(*headers)
        count -= SESSION_LENGTH


def play_at_once(daemon, headers, count):
    threads = [threading.Thread(target=play, args=(daemon, headers, count // SESSIONS))
               for _ in range(SESSIONS)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()


def report(daemon, what, first):
    now = daemon.resident_kilobytes()
    print(f"{what}: {now} KiB ({(now / first - 1) * 100:+.1f} %)", flush=True)


def main():
    headers = email.message_from_bytes(MESSAGE.read_bytes()).items()
    daemon = Daemon().start()
    try:
        play(daemon, headers, 1)
        first = daemon.resident_kilobytes()
        report(daemon, "resident memory after 1 message", first)
        play(daemon, headers, MESSAGES)
        report(daemon, f"after {MESSAGES} more", first)
        play_at_once(daemon, headers, MESSAGES // 10)
        report(daemon, f"after {MESSAGES // 10} more in {SESSIONS} sessions at once", first)
        play_at_once(daemon, headers, MESSAGES)
        report(daemon, f"after {MESSAGES} more in {SESSIONS} sessions at once", first)
    finally:
        daemon.remove()


if __name__ == "__main__":
    main()
