# SPDX-License-Identifier: Apache-2.0
"""The daemon under load: many sessions of many messages while it reloads, and what one message can
make of its memory."""
import threading
import unittest

from milter import SANITIZED, MilterTest
from protocol import ABORT, MailServer

SPAM = "spam; node=7; confidence=0.99; support=10; ips=192.0.2.55"


class Load(MilterTest):
    THREADS = 20
    SESSIONS = 10 # of each thread, one after the other
    MESSAGES = 10 # of each session

    def work(self, daemon, results):
        for _ in range(self.SESSIONS):
            with MailServer(daemon.socket) as session:
                session.client()
                results += [session.message() for _ in range(self.MESSAGES)]

    def test_2000_messages_of_20_sessions_are_judged_while_it_reloads(self):
        daemon = self.daemon().start()
        results = []
        threads = [threading.Thread(target=self.work, args=(daemon, results))
                   for _ in range(self.THREADS)]
        for thread in threads:
            thread.start()
        version = 1
        while version < 4 or any(thread.is_alive() for thread in threads):
            version += 1
            daemon.install(version)
            daemon.reload()
            daemon.wait_for_log(f"rule version {version}")
        for thread in threads:
            thread.join()
        self.assertEqual(results, [SPAM] * 2000)
        self.assertEqual(
            daemon.metric('qvmilter_messages_total{action="header",verdict="spam"}'), 2000)
        self.assertEqual(daemon.metric('qvmilter_reloads_total{result="done"}'), version - 1)


@unittest.skipIf(SANITIZED, "sanitizers take memory of their own")
class Memory(MilterTest):
    # What the manual page promises, in kilobytes: 6 times max-header-bytes.
    BOUND = 6 * 1024

    def grown(self, headers):
        """How many kilobytes the daemon's memory grew at most by a message with these headers; and
        its result."""
        daemon = self.daemon().start()
        with MailServer(daemon.socket) as session:
            session.client().message()
            before = daemon.kilobytes("VmHWM")
            result = session.message(*headers)
        return daemon.kilobytes("VmHWM") - before, result

    def test_a_message_at_the_limits_stays_within_the_bound(self):
        # Names of a hop are what a scan keeps most copies of.
        hop = ("Received", f"from {'a' * 5150} ({'b' * 5150} [198.51.100.7]) by b.example; x")
        grown, result = self.grown([hop] * 100)
        self.assertEqual(result, SPAM + ",198.51.100.7")
        self.assertLess(grown, self.BOUND)

    def test_sessions_keep_no_message_once_it_has_ended_or_was_called_off(self):
        daemon = self.daemon().start()
        sessions = [MailServer(daemon.socket, hears_all=True) for _ in range(20)]
        for session in sessions:
            self.addCleanup(session.close)
            session.client().message()
        before = daemon.kilobytes("VmRSS")
        for number, session in enumerate(sessions):
            session.begin()
            for _ in range(20):
                session.header("X-Filler", "x" * 50000)
            if number % 2:
                self.assertEqual(session.result(), SPAM)
            else:
                session.say(ABORT)
                session.begin() # has a reply, so the step before was taken
        self.assertLess(daemon.kilobytes("VmRSS") - before, self.BOUND)

    def test_10_megabytes_of_headers_and_100000_hops_stay_within_the_bound(self):
        hop = ("Received", "from a.example (a.example [198.51.100.7]) by b.example; x")
        long = ("X-Filler", "x" * 60000)
        for headers in ([long] * 170, [hop] * 100000):
            grown, result = self.grown(headers)
            self.assertEqual(result, "none; error=odd-message")
            self.assertLess(grown, self.BOUND)


if __name__ == "__main__":
    unittest.main()
