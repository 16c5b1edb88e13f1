# SPDX-License-Identifier: Apache-2.0
"""A real Postfix on loopback with folders of its own, which asks a qvmilter about all mail and
delivers what it accepts to one Maildir. It needs root, as Postfix does."""
import pathlib
import shutil
import smtplib
import subprocess
import tempfile

from milter import free_port, wait_for

MAIN = """
compatibility_level = 3.6
queue_directory = {folder}/queue
data_directory = {folder}/data
command_directory = /usr/sbin
daemon_directory = /usr/lib/postfix/sbin
mail_owner = postfix
setgid_group = postdrop
maillog_file = {folder}/log
maillog_file_prefixes = {folder}
myhostname = mx.example.net
mydestination =
inet_interfaces = 127.0.0.1
inet_protocols = all
mynetworks = 127.0.0.0/8
disable_dns_lookups = yes
smtpd_peername_lookup = no
smtpd_authorized_xclient_hosts = 127.0.0.0/8
smtpd_sasl_auth_enable = yes
smtpd_relay_restrictions = reject_unauth_destination
virtual_mailbox_domains = static:all
virtual_mailbox_maps = static:inbox/
virtual_mailbox_base = {folder}/mail
virtual_uid_maps = static:65534
virtual_gid_maps = static:65534
virtual_minimum_uid = 1
alias_maps =
alias_database =
minimal_backoff_time = 1s
maximal_backoff_time = 1s
queue_run_delay = 1s
smtpd_milters = {milters}
milter_default_action = tempfail
"""

MASTER = """
{port} inet n - n - - smtpd
cleanup unix n - n - 0 cleanup
qmgr unix n - n 300 1 qmgr
rewrite unix - - n - - trivial-rewrite
bounce unix - - n - 0 bounce
defer unix - - n - 0 bounce
trace unix - - n - 0 bounce
verify unix - - n - 1 verify
flush unix n - n 1000? 0 flush
proxymap unix - - n - - proxymap
virtual unix - n n - - virtual
error unix - - n - - error
retry unix - - n - - error
discard unix - - n - - discard
anvil unix - - n - 1 anvil
scache unix - - n - 1 scache
postlog unix-dgram n - n - 1 postlogd
"""


class Postfix:
    """It asks the milters at these addresses, as "unix:/path" or "inet:host:port"."""

    def __init__(self, *milters, settings=""):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="qvpostfix-"))
        self.folder.chmod(0o755)
        self.port = free_port()
        for name in ("queue", "data", "mail", "config"):
            (self.folder / name).mkdir(mode=0o755)
        shutil.chown(self.folder / "data", "postfix")
        (self.folder / "data").chmod(0o700)
        shutil.chown(self.folder / "mail", 65534, 65534)
        self.inbox = self.folder / "mail" / "inbox"
        options = "connect_timeout=5s, command_timeout=10s, content_timeout=20s"
        text = ", ".join(f"{{ {milter}, {options}, default_action=tempfail }}"
                         for milter in milters)
        self.configure(MAIN.format(folder=self.folder, milters=text) + settings)
        (self.folder / "config" / "master.cf").write_text(MASTER.format(port=f"127.0.0.1:{self.port}"))

    def configure(self, text):
        (self.folder / "config" / "main.cf").write_text(text)

    def command(self, *words, check=True):
        return subprocess.run([*words[:1], "-c", str(self.folder / "config"), *words[1:]],
                              capture_output=True, text=True, check=check)

    def start(self):
        self.command("postfix", "check")
        self.command("postfix", "start")
        wait_for(self._answers, f"Postfix, see {self.folder}/log")
        return self

    def _answers(self):
        try:
            with smtplib.SMTP("127.0.0.1", self.port, timeout=5):
                return True
        except (OSError, smtplib.SMTPException):
            return False

    def log(self):
        path = self.folder / "log"
        return path.read_text(errors="replace") if path.exists() else ""

    def stop(self):
        self.command("postfix", "stop", check=False)
        shutil.rmtree(self.folder, ignore_errors=True)

    def client(self, address=None, name=None, login=None, helo="localhost"):
        """A session with Postfix, which takes it for this client's."""
        session = smtplib.SMTP("127.0.0.1", self.port, local_hostname=helo, timeout=60)
        session.ehlo(helo)
        if address:
            words = [f"ADDR={address}", f"NAME={name or '[UNAVAILABLE]'}",
                     f"REVERSE_NAME={name or '[UNAVAILABLE]'}"]
            words += [f"LOGIN={login}"] if login else []
            code, text = session.docmd("XCLIENT", " ".join(words))
            if code != 220:
                raise AssertionError(f"XCLIENT: {code} {text}")
            session.ehlo(helo)
        return session

    def send(self, message, sender="a@example.org", recipient="b@example.net", **client):
        """Sends one message; the reply to it."""
        session = self.client(**client)
        try:
            for code, text in (session.mail(sender), session.rcpt(recipient)):
                if code >= 400:
                    return code, text.decode()
            code, text = session.data(message)
            return code, text.decode()
        finally:
            session.close()

    def delivered(self, count):
        """The messages in the mailbox, as soon as there are so many."""
        def find():
            files = sorted((self.inbox / "new").glob("*")) if self.inbox.exists() else []
            return files if len(files) >= count else None
        return [path.read_bytes() for path in wait_for(find, f"{count} messages:\n" + self.log(),
                                                       120)]

    def held(self):
        """Queue numbers of the messages in quarantine."""
        return [path.name for path in (self.folder / "queue" / "hold").rglob("*") if path.is_file()]
