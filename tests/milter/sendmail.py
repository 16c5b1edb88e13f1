# SPDX-License-Identifier: Apache-2.0
"""A real Sendmail on a private machine, set up as docs/sendmail.md says: it asks a qvmilter about all
mail, and delivers what it accepts to one mailbox."""
import contextlib
import mailbox
import pathlib
import shutil
import smtplib
import subprocess

from mail_server import MailServer, answers, certificate, start_tls
from milter import wait_for
from pages import blocks
from private_machine import ADDRESS, NAME

PACKAGES = ("sendmail-bin", "sendmail-base", "sendmail-cf", "m4", "sasl2-bin", "libsasl2-modules")
USER, PASSWORD = "alice", "secret"
MAILBOX = pathlib.Path("/var/mail/nobody")
QUEUE = pathlib.Path("/var/spool/mqueue")
SOCKET = "/run/qvmilter/qvmilter.sock"
PROGRAM = "/usr/libexec/sendmail/sendmail"
PAGE = ("sendmail.md", "Connect the filter")

# It takes any mail from anyone, and delivers it to one user before it replies to the end of data.
BEFORE = f"""divert(0)dnl
define(`_USE_ETC_MAIL_')dnl
include(`/usr/share/sendmail/cf/m4/cf.m4')dnl
OSTYPE(`debian')dnl
DOMAIN(`debian-mta')dnl
FEATURE(`no_default_msa')dnl
FEATURE(`promiscuous_relay')dnl
FEATURE(`accept_unresolvable_domains')dnl
FEATURE(`accept_unqualified_senders')dnl
DAEMON_OPTIONS(`Family=inet, Name=MTA, Port=smtp, Addr={ADDRESS}')dnl
define(`confDELIVERY_MODE', `interactive')dnl
define(`confDOMAIN_NAME', `{NAME}')dnl
define(`confTO_IDENT', `0s')dnl
define(`confSERVER_CERT', `/etc/mail/certificate.pem')dnl
define(`confSERVER_KEY', `/etc/mail/key.pem')dnl
define(`confCACERT', `/etc/mail/certificate.pem')dnl
define(`confCACERT_PATH', `/etc/mail')dnl
"""
AFTER = """MAILER_DEFINITIONS
MAILER(`local')dnl
MAILER(`smtp')dnl
LOCAL_RULE_0
R$* <@ $+ > $*	$#local $: nobody
"""


class Sendmail(MailServer):
    """`settings` are lines of sendmail.mc."""

    def __init__(self, settings=""):
        for user in ("smmta", "smmsp"):
            subprocess.run(["useradd", "--system", user], check=False, capture_output=True)
        for folder in ("/run/sendmail/mta", "/var/lib/sendmail/host_status", QUEUE):
            pathlib.Path(folder).mkdir(parents=True, exist_ok=True)
        QUEUE.chmod(0o700)
        pathlib.Path("/etc/mail/aliases").write_text(f"nobody: {MAILBOX}\n")
        pathlib.Path("/etc/mail/sendmail.mc").write_text(
            BEFORE + settings + "".join(blocks(*PAGE, "")) + AFTER)
        for command in blocks(*PAGE, "sh"):
            subprocess.run(["sh", "-ec", command], check=True, capture_output=True)
        subprocess.run([PROGRAM, "-bi"], check=True, capture_output=True) # reads the aliases
        subprocess.run(["saslpasswd2", "-p", "-c", "-u", NAME, USER], check=True, input=PASSWORD,
                       text=True)
        certificate("/etc/mail")
        self.process = None

    def start(self):
        self.process = subprocess.Popen([PROGRAM, "-bD"])
        wait_for(lambda: answers(ADDRESS, 25), "Sendmail")
        return self

    def stop(self):
        self.process.terminate()
        self.process.wait()
        MAILBOX.unlink(missing_ok=True)
        shutil.rmtree(QUEUE)

    @staticmethod
    def client(address, helo, tls=False, login=False):
        """A session of a client with this address, which says no name if `helo` is None."""
        session = smtplib.SMTP(ADDRESS, source_address=(address, 0), timeout=60)
        if tls:
            start_tls(session)
        if helo:
            session.ehlo(helo)
        if login:
            session.user, session.password = USER, PASSWORD
            session.auth("CRAM-MD5", session.auth_cram_md5)
        return session

    def newest(self, count):
        """The message of this number; the last one so far."""
        def find():
            if not MAILBOX.exists():
                return None
            with contextlib.closing(mailbox.mbox(MAILBOX)) as box:
                return box.get_bytes(count - 1) if len(box) == count else None
        return wait_for(find, f"{count} messages")

    @staticmethod
    def held():
        """What lists the messages in quarantine."""
        return subprocess.run([PROGRAM, "-bp", "-qQ"], check=True, capture_output=True,
                              text=True).stdout
