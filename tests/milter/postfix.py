# SPDX-License-Identifier: Apache-2.0
"""A real Postfix on loopback with folders of its own, which asks a qvmilter about all mail and
delivers what it accepts to one Maildir. It needs root, as Postfix does."""
import pathlib
import shutil
import smtplib
import subprocess
import tempfile

from mail_server import MailServer, answers, certificate, start_tls
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
smtpd_tls_security_level = may
smtpd_tls_key_file = {key}
smtpd_tls_cert_file = {certificate}
smtpd_tls_received_header = yes
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
"""

LOOK_UP = """
disable_dns_lookups = no
smtpd_peername_lookup = yes
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
tlsmgr unix - - n 1000? 1 tlsmgr
discard unix - - n - - discard
anvil unix - - n - 1 anvil
scache unix - - n - 1 scache
postlog unix-dgram n - n - 1 postlogd
"""


class Postfix(MailServer):
    """It asks the milters at these addresses, as "unix:/path" or "inet:host:port". On a private
    machine it may look up the names of its clients itself, which have their addresses then."""

    def __init__(self, *milters, settings="", looks_up=False, port=None, config=None,
                 default_action="tempfail"):
        self.knows_addresses = looks_up
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="qvpostfix-"))
        self.folder.chmod(0o755)
        self.port = port or free_port()
        self.config = pathlib.Path(config or self.folder / "config")
        for folder in (self.folder / "queue", self.folder / "data", self.folder / "mail", self.config):
            folder.mkdir(mode=0o755, exist_ok=True)
        shutil.chown(self.folder / "data", "postfix")
        (self.folder / "data").chmod(0o700)
        shutil.chown(self.folder / "mail", 65534, 65534)
        self.inbox = self.folder / "mail" / "inbox"
        options = "connect_timeout=5s, command_timeout=10s, content_timeout=20s"
        text = ", ".join(f"{{ {milter}, {options}, default_action={default_action} }}"
                         for milter in milters)
        key, own = certificate(self.folder)
        self.configure(MAIN.format(folder=self.folder, milters=text, key=key, certificate=own) +
                       settings + (LOOK_UP if looks_up else ""))
        (self.config / "master.cf").write_text(MASTER.format(port=f"127.0.0.1:{self.port}"))

    def configure(self, text):
        (self.config / "main.cf").write_text(text)

    def command(self, *words, check=True):
        return subprocess.run([*words[:1], "-c", str(self.config), *words[1:]],
                              capture_output=True, text=True, check=check)

    def start(self):
        self.command("postfix", "check")
        self.command("postfix", "start")
        wait_for(lambda: answers("127.0.0.1", self.port), f"Postfix, see {self.folder}/log")
        return self

    def log(self):
        path = self.folder / "log"
        return path.read_text(errors="replace") if path.exists() else ""

    def stop(self):
        self.command("postfix", "stop", check=False)
        shutil.rmtree(self.folder, ignore_errors=True)

    def client(self, address=None, name=None, login=None, helo="localhost", tls=False):
        """A session with Postfix, which takes it for this client's; the client says no name if
        `helo` is None."""
        source = (address, 0) if self.knows_addresses else None
        session = smtplib.SMTP("127.0.0.1", self.port, source_address=source, timeout=60)
        if tls:
            start_tls(session)
        if address and not self.knows_addresses:
            session.ehlo()
            words = [f"ADDR={address}", f"NAME={name or '[UNAVAILABLE]'}",
                     f"REVERSE_NAME={name or '[UNAVAILABLE]'}"]
            words += [f"LOGIN={login}"] if login else []
            code, text = session.docmd("XCLIENT", " ".join(words))
            if code != 220:
                raise AssertionError(f"XCLIENT: {code} {text}")
        if helo:
            session.ehlo(helo)
        return session

    def delivered(self, count):
        """The messages in the mailbox, as soon as there are so many."""
        def find():
            files = sorted((self.inbox / "new").glob("*")) if self.inbox.exists() else []
            return files if len(files) >= count else None
        return [path.read_bytes() for path in wait_for(find, f"{count} messages:\n" + self.log(),
                                                       120)]

    def newest(self, count):
        """The message of this number; the last one so far."""
        self.delivered(count)
        files = (self.inbox / "new").glob("*")
        return max(files, key=lambda path: path.stat().st_mtime_ns).read_bytes()

    def held(self):
        """Queue numbers of the messages in quarantine."""
        return [path.name for path in (self.folder / "queue" / "hold").rglob("*") if path.is_file()]
