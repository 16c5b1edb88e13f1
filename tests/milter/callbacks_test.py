# SPDX-License-Identifier: Apache-2.0
"""The daemon as mail servers see it: each order of callbacks, each kind of macros, each action."""
import os
import subprocess
import unittest

from milter import (FailingDnsServer, MilterTest, SilentDnsServer, example_zone,
                    shipped_rules)

SPAM = "X-QV-Deep-Header: spam; node=7; confidence=0.99; support=10; ips=192.0.2.55"
HAM = "X-QV-Deep-Header: ham; node=3; confidence=0.01; support=30; ips=192.0.2.56"
NONE = "X-QV-Deep-Header: none; node=4; confidence=0.5; support=50; ips=192.0.2.55"


class Verdicts(MilterTest):
    def setUp(self):
        self.running = self.daemon().start()

    def test_spam_gets_the_header_and_is_accepted(self):
        self.assertEqual(self.play(self.running, """
            postfix_client("unknown", "192.0.2.55", "localhost")
            message()"""), ["accept", SPAM])

    def test_ham_is_a_client_whose_name_is_its_reverse_name(self):
        self.assertEqual(self.play(self.running, """
            postfix_client("mail.example.org", "192.0.2.56", "mail.example.org")
            message()"""), ["accept", HAM])

    def test_what_is_neither_gets_a_header_too(self):
        self.assertEqual(self.play(self.running, """
            postfix_client("unknown", "192.0.2.55", "mail.example.org")
            message()"""), ["accept", NONE])

    def test_sendmail_names_the_client_in_its_own_macro(self):
        self.assertEqual(self.play(self.running, """
            connect("mail.example.org", "192.0.2.56")
            macros(SMFIC_CONNECT, "j", "mx.example.net", "v", "8.17.1", "_",
                   "mail.example.org [192.0.2.56]", "{client_resolve}", "OK")
            helo("mail.example.org")
            message()"""), ["accept", HAM])

    def test_without_any_macro_the_connection_says_enough(self):
        self.assertEqual(self.play(self.running, """
            connect("mail.example.org", "192.0.2.56")
            helo("mail.example.org")
            message()"""), ["accept", HAM])

    def test_several_messages_of_one_session_are_judged_each(self):
        self.assertEqual(self.play(self.running, """
            postfix_client("unknown", "192.0.2.55", "localhost")
            message()
            message({"X-QV-Deep-Header", "ham"})
            message()"""),
                         ["accept", SPAM, "accept", "removed X-QV-Deep-Header", SPAM, "accept",
                          SPAM])

    def test_a_message_that_is_called_off_leaves_nothing_behind(self):
        for steps in ('sender("<x@example.com>")',
                      'sender("<x@example.com>") recipient("<y@example.com>")',
                      'sender("<x@example.com>") recipient("<y@example.com>") '
                      'header("X-QV-Deep-Header", "ham")'):
            with self.subTest(steps):
                self.assertEqual(self.play(self.running, f"""
                    postfix_client("unknown", "192.0.2.55", "localhost")
                    {steps}
                    abort()
                    message()"""), ["accept", SPAM])

    def test_a_message_that_is_called_off_in_each_state_leaves_the_daemon_well(self):
        for steps in ("", 'helo("x.example")', 'helo("x.example") sender("<x@example.com>")',
                      'helo("x.example") sender("<x@example.com>") header("From", "x@example.com")'):
            with self.subTest(steps):
                self.play(self.running, f"""
                    connect("unknown", "192.0.2.55")
                    {steps}
                    vanish()""")
        self.assertEqual(self.play(self.running, """
            postfix_client("unknown", "192.0.2.55", "localhost")
            message()"""), ["accept", SPAM])

    def test_a_health_check_that_only_connects_is_no_message(self):
        self.play(self.running, 'connect("localhost", "127.0.0.1") close()')
        self.assertEqual(self.running.get("/health"), (200, "ok\n"))
        self.assertFalse([line for line in self.running.log if "verdict" in line])

    def test_the_client_may_have_an_ipv6_address(self):
        answer = self.play(self.running, """
            postfix_client("mail.example.org", "2001:db8::5", "mail.example.org")
            message()""")
        # The walk ends at an IPv6 hop: nothing can be judged.
        self.assertEqual(answer, ["accept", "X-QV-Deep-Header: none; node=0"])

    def test_an_ipv6_client_is_judged_by_its_name_if_the_settings_say_so_from_the_reload_on(self):
        daemon = self.daemon().start()
        script = """
            postfix_client("unknown", "2001:db8::5", "localhost")
            message()"""
        self.assertEqual(self.play(daemon, script), ["accept", "X-QV-Deep-Header: none; node=0"])
        daemon.configure(shared='ipv6 = "judge"')
        daemon.reload()
        daemon.wait_for_log("settings and rules were reloaded")
        self.assertEqual(self.play(daemon, script),
                         ["accept", SPAM.replace("192.0.2.55", "2001:db8::5")])

    def test_all_result_headers_from_outside_are_removed(self):
        for name in ("X-QV-Deep-Header", "x-qv-deep-header", "X-QV-Deep-Header-Reasons"):
            with self.subTest(name):
                answer = self.play(self.running, f"""
                    postfix_client("unknown", "192.0.2.55", "localhost")
                    message({{"{name}", "ham"}}, {{"Subject", "x"}}, {{"{name}", "ham"}})""")
                self.assertTrue(any(line.startswith("removed") for line in answer), answer)
                self.assertIn(SPAM, answer)

    def test_the_rule_that_decided_is_named_after_its_number(self):
        daemon = self.daemon()
        names = daemon.root / "var/spool/etc/antispam/qv.names"
        names.write_text("Names of Quorvane Deep Header rules, format 1\n"
                         "decide 7\nname A bare word ('pc')\n")
        daemon.start()
        script = """
            postfix_client("unknown", "192.0.2.55", "localhost")
            message()"""
        self.assertEqual(self.play(daemon, script), [
            "accept", SPAM.replace("; confidence", "; rule=\"A bare word ('pc')\"; confidence")])
        self.assertIn("verdict=spam node=7 rule=\"A bare word ('pc')\" action=header time=",
                      daemon.wait_for_log("queue="))
        names.unlink()
        daemon.reload()
        daemon.wait_for_log("settings and rules were reloaded")
        self.assertEqual(self.play(daemon, script), ["accept", SPAM])

    def test_names_that_cannot_be_used_are_said_and_left_out(self):
        daemon = self.daemon()
        names = daemon.root / "var/spool/etc/antispam/qv.names"
        names.write_text("Names of Quorvane Deep Header rules, format 1\n"
                         "decide 7\nname X\x1b[2J\r\n\tBcc: x@example.com\n")
        daemon.start()
        self.assertIn(f"warning: rules are shown without names: {names}: line 3: a name takes ",
                      daemon.wait_for_log("without names"))
        self.assertEqual(self.play(daemon, """
            postfix_client("unknown", "192.0.2.55", "localhost")
            message()"""), ["accept", SPAM])
        daemon.reload()
        daemon.wait_for_log("without names", 2)

    def test_one_line_a_message_goes_to_the_log(self):
        self.play(self.running, """
            postfix_client("unknown", "192.0.2.55", "localhost")
            macros(SMFIC_MAIL, "i", "4VdW3k1bZCz9sTq")
            message()""")
        line = self.running.wait_for_log("queue=")
        self.assertIn("info: message: queue=4VdW3k1bZCz9sTq verdict=spam node=7 action=header "
                      "time=", line)


class Settings(MilterTest):
    SCRIPT = """
        postfix_client("unknown", "192.0.2.55", "localhost")
        message({"X-QV-Deep-Header", "ham"})
        """

    def answer(self, script=SCRIPT, **settings):
        return self.play(self.daemon(**settings).start(), script)

    def test_spam_can_be_rejected_with_a_text(self):
        answer = self.answer(self.SCRIPT + 'has_reply("550", "5.7.1", "Go away, 100%% spam")',
                             own='on-spam = "reject"\nreject-text = "Go away, 100% spam"')
        self.assertEqual(answer, ["replycode", "removed X-QV-Deep-Header", "true"])

    def test_spam_can_be_quarantined(self):
        self.assertEqual(self.answer(own='on-spam = "quarantine"'),
                         ["accept", "removed X-QV-Deep-Header", SPAM, "quarantined"])

    def test_spam_can_be_discarded(self):
        self.assertEqual(self.answer(own='on-spam = "discard"'),
                         ["discard", "removed X-QV-Deep-Header"])

    def test_spam_can_be_let_through_without_a_header(self):
        self.assertEqual(self.answer(own='on-spam = "accept"'),
                         ["accept", "removed X-QV-Deep-Header"])

    def test_ham_and_none_have_actions_of_their_own(self):
        daemon = self.daemon(own='on-ham = "accept"\non-none = "reject"').start()
        self.assertEqual(self.play(daemon, """
            postfix_client("mail.example.org", "192.0.2.56", "mail.example.org")
            message()"""), ["accept"])
        self.assertEqual(self.play(daemon, """
            postfix_client("unknown", "192.0.2.55", "mail.example.org")
            message()"""), ["replycode"])

    def test_the_reasons_come_in_a_second_header(self):
        answer = self.answer(own="add-reasons = true")
        self.assertTrue(answer[-1].startswith("X-QV-Deep-Header-Reasons: "), answer)

    def test_an_authenticated_client_is_left_alone_but_cannot_plant_a_result(self):
        script = """
            postfix_client("unknown", "192.0.2.55", "localhost")
            macros(SMFIC_MAIL, "{auth_type}", "PLAIN", "{auth_authen}", "alice")
            message({"X-QV-Deep-Header", "ham"})"""
        self.assertEqual(self.answer(script), ["accept", "removed X-QV-Deep-Header"])
        self.assertEqual(self.answer(script, own="exempt-authenticated = false")[-1], SPAM)

    def test_a_network_can_be_exempted(self):
        self.assertEqual(self.answer(own='exempt = ["192.0.2.0/24"]'),
                         ["accept", "removed X-QV-Deep-Header"])
        self.assertEqual(self.answer(own='exempt = ["198.51.100.0/24"]')[-1], SPAM)

    def test_hops_of_our_own_gateways_are_skipped_ipv6_too(self):
        for gateway, client in (("192.0.2.10", "192.0.2.10"), ("2001:db8::/32", "2001:db8::5")):
            with self.subTest(gateway):
                answer = self.answer(f"""
                    postfix_client("gw.example.net", "{client}", "gw.example.net")
                    message({{"Received", "from localhost (unknown [192.0.2.55]) by "
                             .. "gw.example.net with ESMTP id 1; Tue, 14 May 2024 09:12:02 +0200"}})
                    """, shared=f'internal = ["{gateway}"]')
                self.assertEqual(answer, ["accept", SPAM])

    def test_each_class_of_failure_has_an_action(self):
        classes = (
            ("no-rules", "on-no-rules", {"rules": None}),
            ("odd-message", "on-odd-message", {"shared": "max-headers = 1"}),
            ("dns-failure", "on-dns-failure",
             {"shared": 'dns = "127.0.0.1@1"\ndns-timeout = 0.2'}),
        )
        script = """
            postfix_client("unknown", "192.0.2.55", "host.example")
            message({"Subject", "hello"})
            """
        for name, key, settings in classes:
            for action, expected in (
                    ("accept", ["accept", f"X-QV-Deep-Header: none; error={name}"]),
                    ("tempfail", ["replycode"]), ("reject", ["replycode"])):
                with self.subTest(name, action=action):
                    self.assertEqual(
                        self.answer(script, own=f'{key} = "{action}"', **settings), expected)

    def test_more_scans_than_the_limit_are_not_begun(self):
        with SilentDnsServer() as server:
            daemon = self.daemon(shared=f'dns = "{server.address}"\ndns-timeout = 5',
                                 own="max-scans = 1").start()
            script = """
                postfix_client("unknown", "192.0.2.55", "host.example")
                message()"""
            first = subprocess.Popen(self.command(daemon, script), stdout=subprocess.PIPE,
                                     text=True)
            server.wait_for_question() # it waits for an answer now
            self.assertEqual(self.play(daemon, script),
                             ["accept", "X-QV-Deep-Header: none; error=overload"])
            self.assertEqual(first.communicate()[0].splitlines(),
                             ["accept", "X-QV-Deep-Header: none; error=dns-failure"])

    def test_a_verdict_counts_without_an_answer_of_dns_only_where_the_settings_say_so(self):
        # Names of the message; a list, with a message that has no name to ask for.
        for shared, helo, sender in (
                ("", "host.example", "<a@example.org>"),
                ('dns-list = ["list.example 127.0.0.2=8"]', "[192.0.2.55]", "<>")):
            with self.subTest(shared), SilentDnsServer() as server:
                shared = f'{shared}\ndns = "{server.address}"\ndns-timeout = 0.2'
                script = f"""
                    postfix_client("unknown", "192.0.2.55", "{helo}")
                    sender("{sender}") recipient("<b@example.net>") header("Subject", "hello")
                    finish()"""
                self.assertEqual(self.answer(script, shared=shared),
                                 ["accept", "X-QV-Deep-Header: none; error=dns-failure"])
                self.assertEqual(self.answer(script, shared=shared,
                                             own="trust-failed-lookups = true"),
                                 ["accept", NONE])

    def test_the_rules_that_ask_dns_decide_only_where_every_name_could_be_asked_for(self):
        script = """
            postfix_client("unknown", "192.0.2.55", "nowhere.example")
            sender("<a@example.org>") recipient("<b@example.net>")
            header("Message-ID", "<1@letters.example>") header("From", "<c@author.example>")
            finish()"""
        rules = shipped_rules(os.environ["QV_WITH_DNS_TEXT"])
        self.assertEqual(
            self.answer(script, rules=rules, shared=f'dns-data = "{example_zone()}"\ndns = "auto"'),
            ["accept", 'X-QV-Deep-Header: spam; node=9101; rule="Machine without any real name"; '
                       "confidence=0.96; support=100; ips=192.0.2.55"])
        # The sender's domain is there, and nobody can say whether the announced name is.
        with FailingDnsServer(known="example.org") as server:
            self.assertEqual(self.answer(script, rules=rules, shared=f'dns = "{server.address}"'),
                             ["accept", "X-QV-Deep-Header: none; error=dns-failure"])

    def test_headers_beyond_a_limit_make_a_message_odd(self):
        odd = ["accept", "X-QV-Deep-Header: none; error=odd-message"]
        long_value = '{"A", string.rep("x", 400)}, {"B", string.rep("x", 400)}, ' \
                     '{"C", string.rep("x", 400)}'
        for shared, more in (("max-headers = 2", '{"A", "1"}, {"B", "2"}'),
                             ("max-header-bytes = 1024", long_value)):
            with self.subTest(shared):
                self.assertEqual(self.answer(f"""
                    postfix_client("unknown", "192.0.2.55", "localhost")
                    message({more})""", shared=shared), odd)

    def test_hops_beyond_a_limit_are_not_looked_at(self):
        hop = ('{"Received", "from localhost (unknown [192.0.2.55]) by a.example with SMTP; '
               'Tue, 14 May 2024 09:12:02 +0200"}')
        script = f"""
            postfix_client("gw.example.net", "192.0.2.10", "gw.example.net")
            message({{"Received", "from b.example (b.example [192.0.2.10]) by c.example with SMTP"}},
                    {hop})"""
        shared = 'internal = ["192.0.2.10"]'
        self.assertEqual(self.answer(script, shared=shared)[-1], SPAM)
        self.assertEqual(self.answer(script, shared=shared + "\nmax-hops = 1")[-1],
                         "X-QV-Deep-Header: none; node=0")


class Facts(MilterTest):
    """What the mail server knows of a message besides its headers reaches the rules."""
    RULES = """version {{version}}
elite first also-tree
decide 0.99 code 7 support 10 when {condition}
tree {{{{
    chain_broken == yes: confidence 0.01 support 50
    chain_broken != yes: confidence 0.5 support 50
}}}}
"""

    def fires(self, condition, sender, recipients, header_from, helo="mail.example.org"):
        daemon = self.daemon(rules=self.RULES.format(condition=condition)).start()
        answer = self.play(daemon, f"""
            postfix_client("unknown", "192.0.2.55", "{helo}")
            sender("{sender}")
            {" ".join(f'recipient("{recipient}")' for recipient in recipients)}
            {" ".join(f'header("From", "{address}")' for address in header_from)}
            finish()""")
        self.assertIn(answer[1].split(";")[0].split()[-1], ("spam", "none"))
        return "node=7" in answer[1]

    def test_envelope_sender_and_author(self):
        matches = "from_matches_envelope == yes"
        for sender, header_from, expected in (
                ("<a@example.org>", ["a@example.org"], True),
                ("<a@example.com>", ["a@example.org"], False),
                ("<>", ["a@example.org"], False),
                # The last one counts, as where the library reads the headers itself.
                ("<a@example.org>", ["a@example.com", "a@example.org"], True),
                ("<a@example.org>", ["a@example.org", "a@example.com"], False)):
            with self.subTest(sender=sender, header_from=header_from):
                self.assertEqual(
                    self.fires(matches, sender, ["<b@example.net>"], header_from), expected)

    def test_first_recipient(self):
        condition = "helo_is_recipient_not_envelope == yes"
        for recipients, expected in ((["<b@example.net>", "<c@example.com>"], True),
                                     (["<c@example.com>", "<b@example.net>"], False)):
            with self.subTest(recipients):
                self.assertEqual(self.fires(condition, "<a@example.org>", recipients,
                                            ["a@example.org"], helo="mail.example.net"), expected)

    def test_scores_of_the_client_and_of_relays(self):
        # A relay of good reputation ends the walk: what it hands over is not judged.
        relay = ('{"Received", "from localhost (unknown [198.51.100.7]) by a.example with SMTP; '
                 'Tue, 14 May 2024 09:12:02 +0200"}')
        zone = self.daemon().folder / "zone"
        zone.write_text("55.2.0.192.list.example. A 127.0.0.2\n"
                        "7.100.51.198.list.example. A 127.0.0.2\n")
        listed = f'dns-list = ["list.example 127.0.0.2=%d"]\ndns-data = "{zone}"'
        for shared, expected in (
                ('score = ["192.0.2.55=8"]', "none; node=0"),
                ('score = ["192.0.2.55=5"]', "spam; node=7; confidence=0.99; support=10; "
                                             "ips=192.0.2.55,198.51.100.7"),
                ('score = ["198.51.100.7=8"]', SPAM.split(": ")[1]),
                (listed % 8, "none; node=0"),
                (f'score = ["192.0.2.55=5"]\n{listed % 8}', SPAM.split(": ")[1])):
            with self.subTest(shared):
                answer = self.play(self.daemon(shared=shared).start(), f"""
                    postfix_client("unknown", "192.0.2.55", "localhost")
                    message({relay})""")
                self.assertEqual(answer, ["accept", f"X-QV-Deep-Header: {expected}"])


if __name__ == "__main__":
    unittest.main()
