# SPDX-License-Identifier: Apache-2.0
"""Sessions as mail servers really hold them, spoken byte by byte: old and new protocol, several clients
and messages, long headers, steps that get lost, mail servers that fall silent."""
import os
import pathlib
import resource
import socket
import time
import unittest

from milter import SANITIZED, MilterTest, SilentDnsServer, wait_for
from protocol import ACCEPT, CHANGE, END, QUIT, REPLY_CODE, MailServer

SPAM = "spam; node=7; confidence=0.99; support=10; ips=192.0.2.55"
MEGABYTE = 1 << 20


class Sessions(MilterTest):
    def setUp(self):
        self.running = self.daemon().start()

    def session(self, **how):
        session = MailServer(self.running.socket, **how)
        self.addCleanup(session.close)
        return session

    def test_a_mail_server_that_waits_for_every_reply_gets_them(self):
        session = self.session(hears_all=True).client()
        self.assertEqual([session.message(), session.message()], [SPAM, SPAM])

    def test_a_header_of_100_kilobytes_is_a_header_like_any_other(self):
        self.assertEqual(self.session().client().message(("X-Long", "x" * 102400)), SPAM)

    def test_a_step_that_is_longer_than_mail_servers_send_ends_its_session_only(self):
        session = self.session().client()
        other = self.session().client()
        with self.assertRaises((EOFError, ConnectionError)):
            session.message(("X-Long", "x" * MEGABYTE))
        self.assertEqual(other.message(), SPAM)

    def test_a_client_that_quits_in_the_middle_of_a_message_is_forgotten(self):
        session = self.session().client()
        session.begin()
        session.say(QUIT)
        session.flush()
        wait_for(lambda: self.running.metric("qvmilter_sessions") == 0, "the end of the session")


class Silence(MilterTest):
    def test_a_mail_server_that_does_not_wait_for_the_result_harms_nobody(self):
        with SilentDnsServer() as server:
            daemon = self.daemon(shared=f'dns = "{server.address}"\ndns-timeout = 0.5').start()
            with MailServer(daemon.socket) as session:
                session.client(helo="host.example").begin()
                session.say(END)
                session.flush()
                server.wait_for_question()
            daemon.wait_for_log("error=dns-failure")
            with MailServer(daemon.socket) as session:
                self.assertEqual(session.client(helo="[192.0.2.55]").message(sender="<>"),
                                 "none; node=4; confidence=0.5; support=50; ips=192.0.2.55")

    # Between two steps libmilter looks for silent sessions every 10 minutes only.
    def test_a_session_that_stops_in_the_middle_of_a_step_ends(self):
        daemon = self.daemon(own="idle-timeout = 1").start()
        with MailServer(daemon.socket) as session:
            self.assertEqual(session.client().message(), SPAM)
            session.socket.sendall(b"\0\0\0\x10M<a@")
            with self.assertRaises(EOFError):
                session.hear()
        wait_for(lambda: daemon.metric("qvmilter_sessions") == 0, "the end of the session")


@unittest.skipIf(SANITIZED, "sanitizers take memory of their own")
class OutOfMemory(MilterTest):
    """The system gives the daemon not much more memory while it handles one message, which is far
    longer than that. A thread that libmilter may start still has room for its stack."""
    SIZE = 40 * MEGABYTE
    SPARE = 20 * MEGABYTE

    def starve(self, daemon):
        self.limit(daemon, daemon.kilobytes("VmSize") * 1024 + self.SPARE)

    def limit(self, daemon, size):
        resource.prlimit(daemon.process.pid, resource.RLIMIT_AS, (size, resource.RLIM_INFINITY))

    def headers(self, session, size):
        """So many bytes of headers, all taken when it returns."""
        for _ in range(size // 50000):
            session.header("X-Filler", "x" * 49990)

    def play(self, daemon, is_lost):
        """A message for which memory runs out while its headers come in (those that are lost then
        could be judged without) or when all are there; then another one. The reply to the first,
        and the result of the second."""
        with MailServer(daemon.socket, hears_all=True) as session:
            session.client()
            session.begin()
            session.header("X-QV-Deep-Header", "ham")
            if is_lost:
                self.starve(daemon)
            self.headers(session, self.SIZE)
            if is_lost:
                self.limit(daemon, resource.RLIM_INFINITY)
            else:
                self.starve(daemon)
            first = session.end()
            self.limit(daemon, resource.RLIM_INFINITY)
            return first, session.message()

    def test_the_action_of_a_scan_that_failed_is_that_of_the_settings(self):
        for is_lost in (True, False):
            for action, expected in (("accept", ACCEPT), ("tempfail", REPLY_CODE),
                                     ("reject", REPLY_CODE)):
                with self.subTest(is_lost=is_lost, action=action):
                    daemon = self.daemon(
                        shared='max-header-bytes = 100000000\nmax-headers = 100000',
                        own=f'on-scan-failure = "{action}"').start()
                    (reply, changes), after = self.play(daemon, is_lost)
                    self.assertEqual(reply, expected)
                    self.assertEqual(changes[0][0], CHANGE) # the header from outside goes
                    if action == "accept":
                        self.assertIn(b"none; error=scan-failure", changes[1][1])
                    self.assertEqual(after, SPAM)
                    self.assertIn("error=scan-failure", daemon.wait_for_log("queue="))
                    daemon.wait_for_log("a message could not be handled: ")
                    self.assertEqual(
                        daemon.metric('qvmilter_failures_total{class="scan_failure"}'), 1)


class Crowds(MilterTest):
    def test_the_messages_of_too_many_sessions_are_not_judged(self):
        for action, expected in (("accept", ACCEPT), ("tempfail", REPLY_CODE), ("reject", REPLY_CODE)):
            with self.subTest(action):
                daemon = self.daemon(own=f'max-sessions = 1\non-overload = "{action}"').start()
                with MailServer(daemon.socket) as first:
                    self.assertEqual(first.client().message(), SPAM)
                    with MailServer(daemon.socket) as second:
                        second.client().begin()
                        second.header("X-QV-Deep-Header", "ham")
                        reply, changes = second.end()
                    self.assertEqual(reply, expected)
                    self.assertEqual(changes[0][0], CHANGE)
                    if action == "accept":
                        self.assertIn(b"none; error=overload", changes[1][1])
                    self.assertEqual(first.message(), SPAM)
                self.assertEqual(daemon.metric('qvmilter_failures_total{class="overload"}'), 1)

    def test_a_low_limit_of_open_files_is_raised(self):
        daemon = self.daemon()
        low = lambda: resource.setrlimit(resource.RLIMIT_NOFILE, (64, 4096))
        daemon.start(preexec_fn=low)
        sessions = [MailServer(daemon.socket) for _ in range(200)]
        try:
            self.assertEqual([session.client().message() for session in sessions], [SPAM] * 200)
        finally:
            for session in sessions:
                session.close()

    def test_a_status_page_waits_for_a_free_file_without_toil(self):
        daemon = self.daemon().start()
        self.assertEqual(daemon.get("/health"), (200, "ok\n"))
        process = daemon.process.pid
        wait_for(lambda: daemon.metric("qvmilter_sessions") == 0, "the end of the first session")
        used = {int(name) for name in os.listdir(f"/proc/{process}/fd")}
        free = min(set(range(len(used) + 1)) - used)
        limits = resource.prlimit(process, resource.RLIMIT_NOFILE)
        resource.prlimit(process, resource.RLIMIT_NOFILE, (free, limits[1]))
        with socket.create_connection(("127.0.0.1", daemon.metrics_port)) as client:
            client.sendall(b"GET /health HTTP/1.1\r\nHost: x\r\n\r\n")
            before = self.processor_seconds(process)
            time.sleep(0.5) # the daemon cannot answer
            self.assertLess(self.processor_seconds(process) - before, 0.2)
            resource.prlimit(process, resource.RLIMIT_NOFILE, limits)
            self.assertTrue(client.recv(100).startswith(b"HTTP/1.1 200"))

    def processor_seconds(self, process):
        fields = pathlib.Path(f"/proc/{process}/stat").read_text().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


if __name__ == "__main__":
    unittest.main()
