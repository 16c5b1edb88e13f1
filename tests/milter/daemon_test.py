# SPDX-License-Identifier: Apache-2.0
"""The daemon as operators see it: its start and its end, reloads, its settings, its figures."""
import grp
import os
import pathlib
import pwd
import signal
import socket
import stat
import threading
import time
import unittest

from milter import (SANITIZED, FailingDnsServer, MilterTest, SilentDnsServer, check, free_port,
                    wait_for)
from pages import blocks_of, text_of
from protocol import MailServer

MESSAGE = """
    postfix_client("unknown", "192.0.2.55", "localhost")
    message()"""


class Check(MilterTest):
    def test_settings_and_rules_in_order(self):
        daemon = self.daemon()
        done = check(daemon.config, "--check")
        self.assertEqual((done.returncode, done.stdout, done.stderr),
                         (0, f"{daemon.config}: settings and rules are in order\n", ""))

    def test_what_is_wrong_is_said_with_file_line_and_fix(self):
        cases = (
            ('on-spam = "rejct"', "on-spam: \"rejct\" is not one of header, accept, reject, "
                                  "quarantine, discard"),
            ('on-spma = "reject"', 'unknown key "on-spma"; did you mean "on-spam"?'),
            ('max-sessions = "many"', "max-sessions needs a whole number"),
            ("max-scans = 0", 'max-scans: "0" is not a whole number from 1 to 1000000'),
            ('exempt = ["192.0.2.0/33"]', "exempt: "),
            ('metrics = "192.0.2.1:80"', "is not an address of this machine alone"),
            ('socket-mode = "999"', '"999" is not a mode; write it in octal, as in 660'),
            ('reject-text = "two\\nlines"', "reject-text: it has to be one line"),
        )
        for line, expected in cases:
            with self.subTest(line):
                daemon = self.daemon()
                text = daemon.config.read_text()
                if line.startswith("metrics"):
                    text = "".join(row for row in text.splitlines(True) if "metrics" not in row)
                daemon.config.write_text(text + line + "\n")
                done = check(daemon.config, "--check")
                self.assertEqual(done.returncode, 78)
                self.assertIn(f"{daemon.config}:", done.stderr)
                self.assertIn(expected, done.stderr)

    def test_thresholds_out_of_range_are_refused_with_their_range(self):
        daemon = self.daemon()
        text = daemon.config.read_text()
        for line, expected in (
                ("spam-threshold = 96", 'spam-threshold: "96" is not a probability'),
                ("min-support = -1", 'min-support: "-1" is not a number from 0 to 100'),
                ('score = ["::/0=77"]', "a score is a whole number from 0 to 9")):
            with self.subTest(line):
                daemon.config.write_text(line + "\n" + text)
                done = check(daemon.config, "--check")
                self.assertEqual(done.returncode, 78)
                self.assertIn(f"{daemon.config}:1:", done.stderr)
                self.assertIn(expected, done.stderr)

    def test_settings_are_no_pipe_as_they_are_read_again(self):
        daemon = self.daemon()
        pipe = daemon.folder / "pipe"
        os.mkfifo(pipe)
        done = check(pipe, "--check")
        self.assertEqual((done.returncode, done.stderr),
                         (78, f"qvmilter: {pipe}: is a pipe or a device; a daemon reads its "
                              "settings again at each reload\n"))

    def test_rules_that_are_missing_are_an_error_of_the_check_only(self):
        daemon = self.daemon(rules=None)
        done = check(daemon.config, "--check")
        self.assertEqual(done.returncode, 78)
        self.assertIn(f"no usable rules in {daemon.root}/var/spool/etc/antispam: ", done.stderr)
        self.assertIn("; root in the settings file says below which folder to look", done.stderr)
        daemon.start()
        daemon.wait_for_log("no message is judged until there are rules")
        self.assertEqual(daemon.get("/health"), (503, "no rules\n"))
        daemon.install(1)
        daemon.reload()
        daemon.wait_for_log("rule version 1")
        self.assertEqual(daemon.get("/health"), (200, "ok\n"))

    def test_the_settings_in_the_documents_are_in_order(self):
        daemon = self.daemon()
        for page in ("postfix.md", "scale-out.md"):
            settings = blocks_of(text_of(page), "toml")
            self.assertTrue(settings, page)
            for block in settings:
                daemon.config.write_text(block)
                done = check(daemon.config, "--show-config")
                self.assertEqual((done.returncode, done.stderr), (0, ""), block)

    def test_all_settings_can_be_shown_and_read_back(self):
        daemon = self.daemon()
        shown = check(daemon.config, "--show-config").stdout
        self.assertIn("\n[milter]\n", shown)
        daemon.config.write_text(shown)
        again = check(daemon.config, "--show-config").stdout
        values = [[row.split("#")[0].strip() for row in text.splitlines()]
                  for text in (shown, again)]
        self.assertEqual(*values)


class Life(MilterTest):
    def test_the_socket_has_the_mode_and_the_group_that_the_settings_name(self):
        daemon = self.daemon(own='socket-mode = "606"\nsocket-group = "mail"').start()
        self.assertEqual(stat.S_IMODE(daemon.socket.stat().st_mode), 0o606)
        self.assertEqual(daemon.socket.stat().st_gid, grp.getgrnam("mail").gr_gid)

    def test_a_group_that_does_not_exist_is_named(self):
        done = check(self.daemon(own='socket-group = "no-such-group"').config, "--foreground")
        self.assertEqual(done.returncode, 78)
        self.assertIn('socket-group: there is no group "no-such-group"', done.stderr)

    def test_a_socket_that_a_dead_daemon_left_is_replaced(self):
        daemon = self.daemon().start()
        daemon.kill()
        self.assertTrue(daemon.socket.exists())
        daemon.start()
        self.assertEqual(self.play(daemon, MESSAGE)[0], "accept")

    def test_a_socket_that_is_served_is_left_alone(self):
        daemon = self.daemon().start()
        other = self.daemon()
        other.config.write_text(other.config.read_text().replace(str(other.socket),
                                                                 str(daemon.socket)))
        done = check(other.config, "--foreground")
        self.assertEqual(done.returncode, 78)
        self.assertIn("another program serves it", done.stderr)
        self.assertEqual(self.play(daemon, MESSAGE)[0], "accept")

    def test_in_the_background_the_start_ends_when_the_daemon_serves(self):
        daemon = self.daemon()
        daemon.configure(own=f'pid-file = "{daemon.pid_file}"')
        done = daemon.start_in_background()
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(self.play(daemon, MESSAGE)[0], "accept")
        daemon.stop_in_background()

    def test_a_daemon_in_the_background_reads_its_settings_again_wherever_it_was_started(self):
        daemon = self.daemon()
        daemon.configure(own=f'pid-file = "{daemon.pid_file}"')
        done = daemon.start_in_background(config=daemon.config.name, cwd=daemon.folder)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        os.kill(int(daemon.pid_file.read_text()), signal.SIGUSR1)
        wait_for(lambda: daemon.metric('qvmilter_reloads_total{result="done"}') == 1, "the reload")
        daemon.stop_in_background()

    def test_the_file_with_the_process_number_goes_with_the_daemon(self):
        daemon = self.daemon()
        daemon.configure(own=f'pid-file = "{daemon.pid_file}"')
        daemon.start()
        self.assertEqual(int(daemon.pid_file.read_text()), daemon.process.pid)
        self.assertEqual(check(daemon.config, "--foreground").returncode, 78) # a second start
        self.assertEqual(int(daemon.pid_file.read_text()), daemon.process.pid)
        self.assertEqual(daemon.stop(), 0)
        self.assertFalse(daemon.pid_file.exists())

    def test_in_the_background_a_start_that_fails_says_so(self):
        daemon = self.daemon()
        daemon.configure(own='user = "no-such-user"')
        done = check(daemon.config)
        self.assertEqual(done.returncode, 78)
        self.assertIn('there is no user "no-such-user"', done.stderr)

    def test_it_runs_as_the_user_that_the_settings_name_with_nothing_of_its_own(self):
        daemon = self.daemon(own='user = "nobody"').start()
        nobody = pwd.getpwnam("nobody")
        self.assertEqual(set(daemon.status("Uid").split()), {str(nobody.pw_uid)})
        self.assertEqual(set(daemon.status("Gid").split()), {str(nobody.pw_gid)})
        self.assertEqual(set(daemon.status("Groups").split()), {str(nobody.pw_gid)})
        self.assertEqual(int(daemon.status("CapEff"), 16), 0)
        self.assertEqual(self.play(daemon, MESSAGE)[0], "accept")

    def test_what_its_user_may_not_read_is_found_out_at_the_start(self):
        daemon = self.daemon(own='user = "nobody"')
        daemon.config.chmod(0o600)
        done = check(daemon.config, "--foreground")
        self.assertEqual(done.returncode, 78)
        self.assertIn(f"{daemon.config}: ", done.stderr)

    def test_a_socket_that_cannot_be_opened_is_named(self):
        with socket.socket() as taken:
            taken.bind(("127.0.0.1", 0))
            taken.listen()
            daemon = self.daemon()
            address = f"inet:{taken.getsockname()[1]}@127.0.0.1"
            daemon.config.write_text(daemon.config.read_text().replace(f"unix:{daemon.socket}",
                                                                       address))
            done = check(daemon.config, "--foreground")
            self.assertEqual(done.returncode, 78)
            self.assertIn(f"socket: {address}: it cannot be opened", done.stderr)

    def test_term_ends_it_with_0_even_while_sessions_are_open(self):
        daemon = self.daemon().start()
        with socket.socket(socket.AF_UNIX) as client:
            client.connect(str(daemon.socket))
            self.assertEqual(daemon.stop(), 0, "".join(daemon.log))

    @unittest.skipIf(SANITIZED, "sanitizers have to be loaded first")
    def test_term_ends_it_without_waiting_for_libmilter_to_look(self):
        for kind, own in (("unix", ""), ("unix", 'user = "nobody"'), ("inet", "")):
            with self.subTest(kind, own=own):
                daemon = self.daemon(own=own)
                if kind == "inet":
                    daemon.config.write_text(daemon.config.read_text().replace(
                        f"unix:{daemon.socket}", f"inet:{free_port()}@localhost"))
                daemon.launch(env={**os.environ, "LD_PRELOAD": os.environ["QV_PATIENT_LIBRARY"]})
                daemon.wait_for_log("libmilter waits")
                self.assertEqual(daemon.stop(), 0)
                self.assertIn("libmilter has returned\n", daemon.log)

    @unittest.skipIf(SANITIZED, "sanitizers have to be loaded first")
    def test_term_ends_it_even_when_libmilter_never_returns(self):
        daemon = self.daemon()
        daemon.configure(own=f'pid-file = "{daemon.pid_file}"')
        daemon.start(env={**os.environ, "LD_PRELOAD": os.environ["QV_STUCK_LIBRARY"]})
        self.assertTrue(daemon.pid_file.exists())
        self.assertEqual(daemon.stop(), 0, "".join(daemon.log))
        self.assertFalse(daemon.pid_file.exists())

    def test_term_waits_for_a_message_that_waits_for_dns(self):
        with SilentDnsServer() as server:
            daemon = self.daemon(shared=f'dns = "{server.address}"\ndns-timeout = 3').start()
            results = []
            with MailServer(daemon.socket) as session:
                session.client(helo="host.example")
                judged = threading.Thread(target=lambda: results.append(session.message()))
                judged.start()
                server.wait_for_question()
                self.assertEqual(daemon.stop(), 0, "".join(daemon.log))
                judged.join()
            self.assertEqual(results, ["none; error=dns-failure"])

    def test_it_ends_without_an_answer_to_a_status_page_that_nobody_reads(self):
        daemon = self.daemon().start()
        with socket.create_connection(("127.0.0.1", daemon.metrics_port)) as client:
            client.sendall(b"GET /metrics HTTP/1.1\r\n")
            self.assertEqual(daemon.get("/health"), (200, "ok\n"))
            self.assertEqual(daemon.stop(), 0)


class ServiceManager(MilterTest):
    """The socket of systemd that a service tells its state."""

    def setUp(self):
        self.running = self.daemon()
        self.manager = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        self.addCleanup(self.manager.close)
        self.manager.bind(str(self.running.folder / "notify"))
        self.manager.settimeout(30)
        os.environ["NOTIFY_SOCKET"] = self.manager.getsockname()
        self.addCleanup(os.environ.pop, "NOTIFY_SOCKET")

    def hear(self, word):
        """The first message that begins with this line; what came before counts no more."""
        while True:
            lines = self.manager.recv(4096).decode().split("\n")
            if lines[0] == word:
                return lines[1:]

    def monotonic_microseconds(self):
        return time.clock_gettime_ns(time.CLOCK_MONOTONIC) // 1000

    def test_it_hears_of_the_start_and_that_the_daemon_lives(self):
        self.running.start()
        self.hear("READY=1")
        self.hear("WATCHDOG=1")
        self.hear("WATCHDOG=1")

    def test_it_hears_of_each_reload_and_of_its_end(self):
        self.running.start()
        self.hear("READY=1")
        for own in ("", "max-scans = 0"): # the second one is refused
            self.running.configure(own=own)
            before = self.monotonic_microseconds()
            self.running.reload()
            name, moment = self.hear("RELOADING=1")[0].split("=")
            self.assertEqual(name, "MONOTONIC_USEC")
            self.assertLess(before, int(moment))
            self.assertLess(int(moment), self.monotonic_microseconds())
            self.hear("READY=1")

    def test_it_hears_of_the_end_and_how_long_that_may_take(self):
        self.running.configure(shared='dns-timeout = 40\ndns = "off"')
        self.running.start()
        self.running.process.send_signal(signal.SIGTERM)
        name, time_left = self.hear("STOPPING=1")[0].split("=")
        self.assertEqual(name, "EXTEND_TIMEOUT_USEC")
        self.assertGreater(int(time_left), 40_000_000)


class Reload(MilterTest):
    def test_settings_and_rules_change_together(self):
        daemon = self.daemon().start()
        self.assertEqual(self.play(daemon, MESSAGE)[0], "accept")
        daemon.configure(own='on-spam = "reject"')
        daemon.install(2)
        daemon.reload()
        daemon.wait_for_log("settings and rules were reloaded: rule version 2")
        self.assertEqual(self.play(daemon, MESSAGE), ["replycode"])

    def test_a_reload_that_is_wrong_changes_nothing_and_says_why(self):
        daemon = self.daemon().start()
        for own, reason in (('on-spam = "reject"\nmax-scans = 0', "max-scans"),
                            ('on-spam = "reject"\nsocket-mode = "600"',
                             "socket-mode cannot change while the program runs; restart it")):
            with self.subTest(own):
                daemon.configure(own=own)
                daemon.log.clear()
                daemon.reload()
                self.assertIn(reason, daemon.wait_for_log("nothing was reloaded"))
                self.assertEqual(self.play(daemon, MESSAGE)[0], "accept")
        self.assertEqual(daemon.metric('qvmilter_reloads_total{result="refused"}'), 2)

    def test_newer_rules_that_are_damaged_leave_the_old_ones_in_force(self):
        daemon = self.daemon(own="rule-check = 1").start()
        daemon.damage(2)
        daemon.wait_for_log("newer rules cannot be loaded, the old ones stay: no usable rules in")
        daemon.reload()
        daemon.wait_for_log("nothing was reloaded: no usable rules in ")
        self.assertIn(": spam; node=7", self.play(daemon, MESSAGE)[1])
        self.assertEqual(daemon.metric("qvmilter_rule_version"), 1)
        self.assertEqual(daemon.get("/health"), (200, "ok\n"))
        daemon.install(3)
        daemon.wait_for_log("newer rules were loaded: rule version 3")

    def test_a_session_keeps_the_settings_that_it_began_with(self):
        daemon = self.daemon().start()
        daemon.configure(own='on-spam = "reject"')
        script = f"""
            postfix_client("unknown", "192.0.2.55", "localhost")
            message()
            os.execute("kill -USR1 {daemon.process.pid}")
            repeat
                local page = io.popen("curl -s http://127.0.0.1:{daemon.metrics_port}/metrics")
                local text = page:read("*a")
                page:close()
            until text:find('reloads_total{{result="done"}} 1', 1, true)
            message()
            close()
            postfix_client("unknown", "192.0.2.55", "localhost")
            message()"""
        answer = self.play(daemon, script)
        self.assertEqual([line for line in answer if not line.startswith("X-")],
                         ["accept", "accept", "replycode"])

    def test_newer_rules_are_found_without_being_asked(self):
        daemon = self.daemon(own="rule-check = 1").start()
        daemon.install(2)
        self.assertIn("rule version 2", daemon.wait_for_log("newer rules were loaded"))
        self.assertEqual(daemon.metric("qvmilter_rule_version"), 2)


class Figures(MilterTest):
    LOOKUPS = 'qvmilter_lookups_total{result="%s"}'
    FAILURES = 'qvmilter_failures_total{class="%s"}'
    RELOADS = 'qvmilter_reloads_total{result="%s"}'
    # A client whose name is asked for, in a message whose other names are not.
    NAMED = """
        postfix_client("unknown", "192.0.2.55", "{}")
        sender("<>") recipient("<b@example.net>") header("Subject", "hello") finish()"""

    def test_messages_are_counted_by_verdict_and_action(self):
        daemon = self.daemon(own='on-spam = "reject"').start()
        for _ in range(3):
            self.play(daemon, MESSAGE)
        self.assertEqual(
            daemon.metric('qvmilter_messages_total{action="reject",verdict="spam"}'), 3)
        self.assertEqual(daemon.metric("qvmilter_scan_seconds_count"), 3)

    def test_messages_of_exempted_clients_are_counted_by_themselves(self):
        daemon = self.daemon(own='exempt = ["192.0.2.0/24"]').start()
        self.play(daemon, MESSAGE)
        self.assertEqual(daemon.metric("qvmilter_exempted_total"), 1)
        self.assertEqual(daemon.metric("qvmilter_scan_seconds_count"), 0)
        self.assertIn("info: message: queue=- exempt=network", daemon.wait_for_log("queue="))

    def test_sessions_are_counted_while_they_are_open(self):
        daemon = self.daemon().start()
        with MailServer(daemon.socket) as session:
            session.client().message()
            self.assertEqual(daemon.metric("qvmilter_sessions"), 1)
        wait_for(lambda: daemon.metric("qvmilter_sessions") == 0, "the end of the session")

    def test_lookups_are_counted_by_result(self):
        zone = pathlib.Path(self.daemon().folder) / "zone"
        zone.write_text("known.example. A 192.0.2.55\n")
        with SilentDnsServer() as silent, FailingDnsServer() as failing:
            for shared, helo, result in (
                    (f'dns-data = "{zone}"', "known.example", "answered"),
                    (f'dns-data = "{zone}"', "missing.example", "does_not_exist"),
                    (f'dns = "{failing.address}"\ndns-timeout = 30', "host.example", "failed"),
                    (f'dns = "{silent.address}"\ndns-timeout = 0.2', "host.example", "late")):
                with self.subTest(result):
                    daemon = self.daemon(shared=shared).start()
                    self.assertEqual(daemon.metric(self.LOOKUPS % result), 0)
                    self.play(daemon, self.NAMED.format(helo))
                    self.assertEqual(daemon.metric(self.LOOKUPS % result), 1)
                    self.assertEqual(daemon.metric("qvmilter_dns_seconds_count"), 1)

    def test_failures_are_counted_by_class_from_0_on(self):
        cases = (
            ("no_rules", {"rules": None}),
            ("dns_failure", {"shared": 'dns = "127.0.0.1@1"\ndns-timeout = 0.2'}),
            ("odd_message", {"shared": "max-headers = 1"}),
        )
        for name, settings in cases:
            with self.subTest(name):
                daemon = self.daemon(**settings).start()
                self.assertEqual(daemon.metric(self.FAILURES % name), 0)
                self.play(daemon, """
                    postfix_client("unknown", "192.0.2.55", "host.example")
                    message({"Subject", "hello"})""")
                self.assertEqual(daemon.metric(self.FAILURES % name), 1)

    def test_reloads_and_the_rules_in_force_are_shown(self):
        loaded = "qvmilter_rules_loaded_timestamp_seconds"
        daemon = self.daemon().start()
        first = daemon.metric(loaded)
        self.assertGreater(first, pathlib.Path(daemon.config).stat().st_mtime)
        self.assertEqual(daemon.metric(self.RELOADS % "done"), 0)
        self.assertEqual(daemon.metric(self.RELOADS % "refused"), 0)
        daemon.reload()
        daemon.wait_for_log("rule version 1")
        self.assertEqual(daemon.metric(loaded), first) # they are the same rules
        daemon.install(2)
        daemon.reload()
        daemon.wait_for_log("rule version 2")
        self.assertGreater(daemon.metric(loaded), first)
        self.assertEqual(daemon.metric("qvmilter_rule_version"), 2)
        self.assertEqual(daemon.metric(self.RELOADS % "done"), 2)

    def test_other_pages_do_not_exist(self):
        daemon = self.daemon().start()
        self.assertEqual(daemon.get("/")[0], 404)


if __name__ == "__main__":
    unittest.main()
