# SPDX-License-Identifier: Apache-2.0
"""What tests do with any mail server: send messages as a client of their choice."""
import pathlib
import smtplib
import ssl
import subprocess

HELLO = (b"From: a@example.org\r\nTo: b@example.net\r\nDate: Sun, 22 Nov 2026 10:00:00 +0000\r\n"
         b"Message-ID: <1@example.org>\r\nSubject: hello\r\n\r\nhello\r\n")


def certificate(folder):
    """The files of a key and a certificate that it signed itself."""
    key, own = pathlib.Path(folder) / "key.pem", pathlib.Path(folder) / "certificate.pem"
    subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2",
                    "-subj", "/CN=mx.example.net", "-keyout", key, "-out", own],
                   check=True, capture_output=True)
    key.chmod(0o600)
    return key, own


def start_tls(session):
    """What a client does that takes any certificate."""
    context = ssl.create_default_context()
    context.check_hostname = False
    context.verify_mode = ssl.CERT_NONE
    session.starttls(context=context)


def answers(host, port):
    """Whether a mail server talks there."""
    try:
        with smtplib.SMTP(host, port, timeout=5):
            return True
    except (OSError, smtplib.SMTPException):
        return False


class MailServer:
    """A fixture derives from it and has client(**how), a session with the mail server."""

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
