# SPDX-License-Identifier: Apache-2.0
"""What programs that root starts do not read: files that others could change."""
import os
import pwd
import signal
import subprocess
import unittest

from milter import EXAMPLES, QVSCAN, MilterTest, check

NOBODY = pwd.getpwnam("nobody").pw_uid
RULES = "root/var/spool/etc/antispam"
MESSAGE = EXAMPLES / "spam-bot-dynamic-name.eml"


@unittest.skipUnless(os.geteuid() == 0, "only root has files of several users")
class Trust(MilterTest):
    def setUp(self):
        self.filter = self.daemon(shared='dns-data = "zone"\ndynamic-patterns = "patterns"')
        self.folder = self.filter.folder
        (self.folder / "zone").write_text("known.example. A 192.0.2.1\n")
        (self.folder / "patterns").write_text("dyn\n")
        for path in self.files():
            path.chmod(0o755 if path.is_dir() else 0o644)
        self.assertEqual(check(self.filter.config, "--check").stderr, "")

    def files(self):
        """Files and folders; a link of the rules may lead nowhere, when they have no names."""
        return [path for path in self.folder.rglob("*") if path.exists()]

    def check_refused(self, place, remedy):
        done = check(self.filter.config, "--check")
        self.assertEqual(done.returncode, 78)
        self.assertIn(f"must not be others' to change: {remedy} {place}\n", done.stderr)
        return done.stderr

    def test_a_file_of_another_user(self):
        for name in ("qv.toml", "zone", "patterns", RULES + "/qv.dt", RULES + "/qv2.dt",
                     RULES + "/README"):
            path = self.folder / name
            os.chown(path, NOBODY, 0)
            said = self.check_refused(path.resolve(), "chown root")
            self.assertIn(f" belongs to the user {NOBODY};", said)
            os.chown(path, 0, 0)

    def test_a_file_that_others_may_write(self):
        for mode in (0o664, 0o646):
            for name in ("qv.toml", "zone", "patterns", RULES + "/qv.dt"):
                path = self.folder / name
                path.chmod(mode)
                said = self.check_refused(path.resolve(), "chmod go-w")
                self.assertIn(f"can be written by others (mode {mode:04o})", said)
                path.chmod(0o644)

    def test_a_folder_in_which_others_can_put_another_file(self):
        for name in ("", "root/var", RULES):
            path = self.folder / name
            path.chmod(0o777)
            self.check_refused(path, "chmod go-w")
            path.chmod(0o1777) # sticky: nobody else can replace what is there
            self.assertEqual(check(self.filter.config, "--check").returncode, 0)
            path.chmod(0o755)
            os.chown(path, NOBODY, 0)
            self.check_refused(path, "chown root")
            os.chown(path, 0, 0)

    def test_a_link_is_as_safe_as_its_own_folder_and_that_of_its_file(self):
        links = self.folder / "links"
        links.mkdir()
        (self.folder / "zone").rename(links / "real")
        (self.folder / "zone").symlink_to(links / "real")
        self.assertEqual(check(self.filter.config, "--check").returncode, 0)
        links.chmod(0o777)
        self.check_refused(links, "chmod go-w")
        (links / "real").rename(self.folder / "real")
        (links / "zone").symlink_to("../real")
        self.filter.configure('dns-data = "links/zone"')
        self.check_refused(links, "chmod go-w")

    def test_the_daemon_does_not_start_and_a_reload_changes_nothing(self):
        path = self.folder / RULES / "qv.dt"
        self.filter.start()
        path.chmod(0o666)
        self.filter.process.send_signal(signal.SIGUSR1)
        self.filter.wait_for_log("must not be others' to change")
        self.assertEqual(self.filter.stop(), 0)

        self.filter.config.chmod(0o666)
        self.assertEqual(check(self.filter.config, "--foreground").returncode, 78)

    def test_its_own_user_may_have_the_files_but_not_the_settings(self):
        for path in self.files():
            os.chown(path, NOBODY, NOBODY)
        os.chown(self.filter.config, 0, 0)
        self.filter.configure('dns-data = "zone"', 'user = "nobody"')
        self.filter.start()
        self.assertEqual(self.filter.stop(), 0)
        os.chown(self.filter.config, NOBODY, NOBODY)
        done = check(self.filter.config, "--foreground")
        self.assertEqual(done.returncode, 78)
        self.assertIn(f"chown root {self.filter.config}", done.stderr)

    def test_who_is_not_root_reads_what_they_like(self):
        self.filter.config.chmod(0o666)
        (self.folder / RULES / "qv.dt").chmod(0o666)
        done = subprocess.run([os.environ["QV_MILTER"], "--config", self.filter.config, "--check"],
                              user="nobody", capture_output=True, text=True, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def scan(self, *arguments, before=()):
        return subprocess.run([*before, QVSCAN, "--dns", "off", *arguments, str(MESSAGE)],
                              capture_output=True, text=True, check=False)

    def test_qvscan_takes_files_that_are_named_and_refuses_those_that_are_found(self):
        for path in self.files():
            os.chown(path, NOBODY, NOBODY)
        named = self.scan("--root", str(self.folder / "root"))
        self.assertIn(named.returncode, (0, 1), named.stderr)
        # The same rules where they are looked for by default, on a private copy of the mounts.
        spool = self.folder / "root/var/spool"
        done = self.scan(before=["unshare", "--mount", "sh", "-c",
                                 f'mount --bind {spool} /var/spool && exec "$@"', "sh"])
        self.assertEqual(done.returncode, 78)
        self.assertIn("must not be others' to change: chown root /var/spool", done.stderr)


if __name__ == "__main__":
    unittest.main()
