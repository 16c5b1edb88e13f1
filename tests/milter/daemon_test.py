# SPDX-License-Identifier: Apache-2.0
"""The daemon as operators see it: its start and its end, reloads, its settings, its figures."""
import os
import pathlib
import pwd
import re
import signal
import socket
import stat
import subprocess
import textwrap
import unittest

from milter import MilterTest, check, wait_for

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
            ('max-hops = "many"', "max-hops needs a whole number"),
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

    def test_rules_that_are_missing_are_an_error_of_the_check_only(self):
        daemon = self.daemon(rules=None)
        self.assertEqual(check(daemon.config, "--check").returncode, 78)
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
            text = (pathlib.Path(os.environ["QV_DOCS"]) / page).read_text()
            blocks = re.findall(r"```toml\n(.*?)```", textwrap.dedent(text), re.S)
            blocks += [textwrap.dedent(block)
                       for block in re.findall(r"   ```toml\n(.*?)   ```", text, re.S)]
            self.assertTrue(blocks, page)
            for block in blocks:
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
    def test_the_socket_has_the_mode_that_the_settings_name(self):
        daemon = self.daemon(own='socket-mode = "606"').start()
        self.assertEqual(stat.S_IMODE(daemon.socket.stat().st_mode), 0o606)

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
        pid_file = daemon.folder / "pid"
        daemon.configure(own=f'pid-file = "{pid_file}"')
        done = check(daemon.config)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        process = int(pid_file.read_text())
        self.assertEqual(self.play(daemon, MESSAGE)[0], "accept")
        subprocess.run(["kill", "-TERM", str(process)], check=True)
        wait_for(lambda: not pid_file.exists(), "the end of the daemon")

    def test_in_the_background_a_start_that_fails_says_so(self):
        daemon = self.daemon()
        daemon.configure(own='user = "no-such-user"')
        done = check(daemon.config)
        self.assertEqual(done.returncode, 78)
        self.assertIn('there is no user "no-such-user"', done.stderr)

    def test_it_runs_as_the_user_that_the_settings_name(self):
        daemon = self.daemon(own='user = "nobody"').start()
        status = pathlib.Path(f"/proc/{daemon.process.pid}/status").read_text()
        owner = status.split("Uid:")[1].split()[0]
        self.assertEqual(int(owner), pwd.getpwnam("nobody").pw_uid)

    def test_term_ends_it_with_0_even_while_sessions_are_open(self):
        daemon = self.daemon().start()
        with socket.socket(socket.AF_UNIX) as client:
            client.connect(str(daemon.socket))
            self.assertEqual(daemon.stop(), 0, "".join(daemon.log))

    def test_the_service_manager_hears_of_start_reload_and_end(self):
        with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as manager:
            daemon = self.daemon()
            address = str(daemon.folder / "notify")
            manager.bind(address)
            manager.settimeout(30)
            os.environ["NOTIFY_SOCKET"] = address
            self.addCleanup(os.environ.pop, "NOTIFY_SOCKET")
            daemon.start()
            heard = []

            def hear(word):
                while word not in heard:
                    heard.extend(manager.recv(4096).decode().split("\n"))

            hear("READY=1")
            hear("WATCHDOG=1")
            heard.clear()
            daemon.reload()
            hear("RELOADING=1")
            hear("READY=1")
            daemon.process.send_signal(signal.SIGTERM)
            hear("STOPPING=1")


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
        for own, reason in (('on-spam = "reject"\nmax-hops = 0', "max-hops"),
                            ('on-spam = "reject"\nsocket-mode = "600"',
                             "socket-mode cannot change while the program runs; restart it")):
            with self.subTest(own):
                daemon.configure(own=own)
                daemon.log.clear()
                daemon.reload()
                self.assertIn(reason, daemon.wait_for_log("nothing was reloaded"))
                self.assertEqual(self.play(daemon, MESSAGE)[0], "accept")
        self.assertEqual(daemon.metric('qvmilter_reloads_total{result="refused"}'), 2)

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


    def test_2000_messages_of_parallel_sessions_are_judged_while_it_reloads(self):
        daemon = self.daemon().start()
        command = self.command(daemon, """
            for number = 1, 20 do
                postfix_client("unknown", "192.0.2.55", "localhost")
                for index = 1, 25 do
                    message()
                end
                close()
            end""")
        players = [subprocess.Popen(command, stdout=subprocess.PIPE, text=True) for _ in range(4)]
        for version in range(2, 7):
            daemon.install(version)
            daemon.reload()
            daemon.wait_for_log(f"rule version {version}")
        for player in players:
            answers = player.communicate()[0].splitlines()
            self.assertEqual(player.returncode, 0)
            self.assertEqual(answers.count("accept"), 500)
            self.assertEqual(sum(": spam; node=7" in answer for answer in answers), 500)
        self.assertEqual(
            daemon.metric('qvmilter_messages_total{action="header",verdict="spam"}'), 2000)


class Figures(MilterTest):
    def test_messages_are_counted_by_verdict_and_action(self):
        daemon = self.daemon(own='on-spam = "reject"').start()
        for _ in range(3):
            self.play(daemon, MESSAGE)
        self.assertEqual(
            daemon.metric('qvmilter_messages_total{action="reject",verdict="spam"}'), 3)
        self.assertEqual(daemon.metric("qvmilter_scan_seconds_count"), 3)
        self.assertEqual(daemon.metric("qvmilter_rule_version"), 1)
        wait_for(lambda: daemon.metric("qvmilter_sessions") == 0, "the end of the sessions")

    def test_lookups_are_counted_by_result(self):
        daemon = self.daemon(shared='dns = "127.0.0.1@1"\ndns-timeout = 0.2').start()
        self.play(daemon, """
            postfix_client("unknown", "192.0.2.55", "host.example")
            message()""")
        failed = sum(daemon.metric(f'qvmilter_lookups_total{{result="{result}"}}') or 0
                     for result in ("failed", "late"))
        self.assertGreater(failed, 0)
        self.assertEqual(daemon.metric('qvmilter_failures_total{class="dns-failure"}'), 1)

    def test_other_pages_do_not_exist(self):
        daemon = self.daemon().start()
        self.assertEqual(daemon.get("/")[0], 404)


if __name__ == "__main__":
    unittest.main()
