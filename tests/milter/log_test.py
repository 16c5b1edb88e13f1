# SPDX-License-Identifier: Apache-2.0
"""The logs of the machine: sockets of our own stand for those of syslog and of the journal, in a mount
namespace that only the daemon sees."""
import os
import socket
import unittest

from milter import MilterTest
from protocol import MailServer

# The folder of the sockets is the first argument; the rest is the command to run.
NAMESPACE = """
set -e
folder=$1
shift
mkdir "$folder/dev"
mount -t tmpfs none "$folder/dev"
for name in null zero random urandom; do
    touch "$folder/dev/$name"
    mount --bind "/dev/$name" "$folder/dev/$name"
done
touch "$folder/dev/log"
mount --bind "$folder/syslog" "$folder/dev/log"
mount --rbind "$folder/dev" /dev
mount -t tmpfs none /run
mkdir -p /run/systemd/journal
touch /run/systemd/journal/socket
mount --bind "$folder/journal" /run/systemd/journal/socket
exec "$@"
"""


@unittest.skipUnless(os.geteuid() == 0, "only root may mount")
class Logs(MilterTest):
    def setUp(self):
        self.running = self.daemon()
        self.syslog = self.listen("syslog")
        self.journal = self.listen("journal")
        self.wrapper = ["unshare", "--mount", "sh", "-c", NAMESPACE, "sh", str(self.running.folder)]

    def listen(self, name):
        log = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        self.addCleanup(log.close)
        log.bind(str(self.running.folder / name))
        log.settimeout(30)
        return log

    def judge(self):
        with MailServer(self.running.socket) as session:
            session.client().message(queue_id="4VdW3k")

    def hear(self, log, text):
        """All that came up to the line with this text."""
        heard = []
        while not heard or text not in heard[-1]:
            heard.append(log.recv(65536).decode())
        return heard

    def check_syslog(self):
        """The lines of a start and a message."""
        self.hear(self.syslog, "started: unix:")
        self.judge()
        line, = self.hear(self.syslog, "queue=")
        self.assertRegex(line, r"^<22>.* qvmilter\[\d+\]: message: queue=4VdW3k verdict=spam node=7 "
                               r"action=header time=[0-9.e-]+ms$") # facility mail, level info

    def test_syslog_takes_a_line_a_message(self):
        self.running.configure(own='log = "syslog"')
        self.running.launch(self.wrapper)
        self.check_syslog()
        self.running.configure(own='log = "stderr"')
        self.running.reload()
        line, = self.hear(self.syslog, "nothing was reloaded")
        self.assertTrue(line.startswith("<19>"), line) # level error
        self.running.stop()
        self.assertEqual(self.running.log, [])

    def test_the_journal_takes_an_entry_a_message(self):
        self.running.configure(own='log = "journal"')
        self.running.launch(self.wrapper)
        self.check_journal()
        self.assertEqual(self.running.log, [])

    def check_journal(self):
        self.hear(self.journal, "MESSAGE=started: unix:")
        self.judge()
        entry, = self.hear(self.journal, "queue=")
        self.assertRegex(entry, r"(?m)^MESSAGE=message: queue=4VdW3k verdict=spam node=7 "
                                r"action=header time=[0-9.e-]+ms$")
        self.assertRegex(entry, r"(?m)^PRIORITY=6$")
        self.assertRegex(entry, r"(?m)^SYSLOG_IDENTIFIER=qvmilter$")
        self.running.configure(own="max-scans = 0")
        self.running.reload()
        self.assertIn("PRIORITY=3\n", self.hear(self.journal, "nothing was reloaded")[-1])
        self.running.stop()

    def test_standard_error_that_leads_to_the_journal_is_the_journal(self):
        read, write = os.pipe()
        facts = os.fstat(write)
        os.environ["JOURNAL_STREAM"] = f"{facts.st_dev}:{facts.st_ino}"
        self.addCleanup(os.environ.pop, "JOURNAL_STREAM")
        self.running.launch([*self.wrapper, "sh", "-c", f'exec "$@" 2>&{write}', "sh"],
                            pass_fds=[write])
        os.close(write)
        self.addCleanup(os.close, read)
        self.check_journal()
        self.assertEqual(os.read(read, 4096), b"")

    def test_standard_error_in_the_background_is_syslog(self):
        self.running.configure(own=f'pid-file = "{self.running.pid_file}"')
        done = self.running.start_in_background(self.wrapper)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.check_syslog()
        self.running.stop_in_background()


if __name__ == "__main__":
    unittest.main()
