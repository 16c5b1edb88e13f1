# SPDX-License-Identifier: Apache-2.0
"""The daemon under test: a qvmilter with rules, settings and a socket of its own, and scripts that
play a mail server (miltertest)."""
import atexit
import email
import functools
import json
import os
import pathlib
import re
import shutil
import signal
import socket
import socketserver
import subprocess
import tempfile
import threading
import time
import unittest
import urllib.error
import urllib.request

from protocol import MailServer

# A daemon that root starts refuses settings that others may write.
os.umask(0o022)

QVMILTER = os.environ["QV_MILTER"]
QVRULES = os.environ["QV_RULES"]
QVSCAN = os.environ["QV_SCAN"]
EXAMPLES = pathlib.Path(os.environ["QV_EXAMPLES"])
# The daemon is built with a sanitizer, which takes far more memory and time.
SANITIZED = os.environ.get("QV_SANITIZE", "") != ""
PRELUDE = pathlib.Path(__file__).parent / "prelude.lua"

# A HELO name without a dot is spam, one that is also the reverse name is ham, the rest is neither.
RULES = """version {version}
elite first also-tree
decide 0.99 code 7 support 10 when first_helo_is_domain == no
tree {{
    first_helo_matches_reverse == yes: confidence 0.01 support 30
    first_helo_matches_reverse != yes: confidence 0.5 support 50
}}
"""


def shipped_rules(path):
    """A rule text that is shipped, for Daemon(rules=...)."""
    return pathlib.Path(path).read_text().replace("{", "{{").replace("}", "}}")


DEFAULT_RULES = shipped_rules(os.environ["QV_DEFAULT_TEXT"])

# The line of a message in the log, with `log-details`.
LOGGED = re.compile(r" queue=(?P<queue>\S+) verdict=(?P<verdict>\S+) node=(?P<node>\d+)(?: rule=\"[^\"]*\")?"
                    r" \S+ \S+ vector=(?P<vector>[-0-9,]*)(?: hop=(?P<hop>.*))?$")


@functools.cache
def example_zone():
    """The DNS data of the examples, in a file of our own: a daemon that root starts refuses the files
    of others, and the source may be somebody else's."""
    folder = tempfile.TemporaryDirectory()
    atexit.register(folder.cleanup)
    return shutil.copyfile(EXAMPLES / "dns.zone", pathlib.Path(folder.name) / "dns.zone")


def free_port():
    """A TCP port of this machine that nobody listens on."""
    with socket.socket() as listener:
        listener.bind(("127.0.0.1", 0))
        return listener.getsockname()[1]


class SilentDnsServer:
    """A DNS server that takes questions and never answers, like one behind a broken firewall."""

    def __init__(self):
        self.socket = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.socket.bind(("127.0.0.1", 0))
        self.socket.settimeout(30)
        self.address = f"127.0.0.1@{self.socket.getsockname()[1]}" # as settings name it

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.socket.close()

    def wait_for_question(self):
        self.socket.recv(512)


class FailingDnsServer(socketserver.UDPServer):
    """A DNS server that answers each question with SERVFAIL (RFC 1035 section 4.1.1), but for one name,
    which has an address (section 4.1.3)."""

    class Handler(socketserver.BaseRequestHandler):
        def handle(self):
            packet, answering = self.request
            question = packet[12:packet.index(0, 12) + 5]
            is_known = question[:-4].lower() == self.server.known and question[-4:-2] == b"\0\1"
            head, record = ((b"\x84\x80\0\1\0\1\0\0\0\0",
                             b"\xc0\x0c\0\1\0\1\0\0\0\0\0\4\xc0\0\2\7") if is_known
                            else (b"\x81\x82\0\1\0\0\0\0\0\0", b""))
            answering.sendto(packet[:2] + head + question + record, self.client_address)

    def __init__(self, known=""):
        super().__init__(("127.0.0.1", 0), self.Handler)
        self.known = b"".join(bytes([len(label)]) + label.encode()
                              for label in known.split(".")) + b"\0"
        self.address = f"127.0.0.1@{self.server_address[1]}"
        self.thread = threading.Thread(target=self.serve_forever, kwargs={"poll_interval": 0.05})

    def __enter__(self):
        self.thread.start()
        return self

    def __exit__(self, *_):
        self.shutdown()
        self.thread.join()
        self.server_close()


# Seconds; far longer than a daemon takes to end on a loaded machine.
PATIENCE = 120


def wait_for(condition, what, seconds=30):
    """Returns what `condition` returns as soon as it is true."""
    end = time.monotonic() + seconds
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > end:
            raise AssertionError("still waiting for " + what)
        time.sleep(0.01)


class Daemon:
    """A qvmilter in the foreground. `shared` are settings for all programs, `own` those of [milter]."""

    def __init__(self, shared="", own="", version=1, rules=RULES, folder=None,
                 socket=None):
        self.folder = pathlib.Path(folder or tempfile.mkdtemp(prefix="qvmilter-"))
        self.folder.chmod(0o755)
        self.root = self.folder / "root"
        self.root.mkdir(exist_ok=True)
        self.config = self.folder / "qv.toml"
        self.socket = pathlib.Path(socket or self.folder / "qv.sock")
        self.socket.parent.mkdir(exist_ok=True)
        self.pid_file = self.folder / "pid"
        self.metrics_port = free_port()
        self.process = None
        self.log = []
        if rules:
            self.install(version, rules)
        self.configure(shared, own)

    def install(self, version, rules=RULES):
        """Puts rules of this version in force for programs with this root."""
        text = self.folder / "rules.qvr"
        text.write_text(rules.format(version=version))
        subprocess.run([QVRULES, "install", str(text), "--root", str(self.root)], check=True,
                       stdout=subprocess.DEVNULL)

    def damage(self, version):
        """Puts rules of this version there that no program can load."""
        folder = self.root / "var/spool/etc/antispam"
        (folder / "qv.dt").write_bytes(b"\x7f" * 46000)
        (folder / "README").write_text(f"CF_DT_VERSION={version}\n")

    def configure(self, shared="", own=""):
        """Writes the settings file."""
        dns = "" if "dns" in shared else 'dns = "off"\n'
        self.config.write_text(
            f'root = "{self.root}"\n{dns}{shared}\n[milter]\nsocket = "unix:{self.socket}"\n'
            f'metrics = "127.0.0.1:{self.metrics_port}"\n{own}\n')

    def start(self, **how):
        """Starts the daemon and waits until it serves."""
        self.launch(**how)
        self.wait_for_log("info: started")
        self._shake_hands()
        return self

    def launch(self, wrapper=(), **how):
        """Starts the daemon. `wrapper` is a command that runs it."""
        self.log.clear()
        self.process = subprocess.Popen(
            [*wrapper, QVMILTER, "--config", str(self.config), "--foreground"],
            stderr=subprocess.PIPE, text=True, **how)
        self.reader = threading.Thread(target=self._read, daemon=True)
        self.reader.start()

    def _shake_hands(self):
        """libmilter takes a SIGTERM that comes just before it serves for a failure."""
        if self.socket.exists():
            MailServer(self.socket).close()

    def start_in_background(self, wrapper=(), config=None, **how):
        """Starts the daemon, which leaves the terminal; what the start said. The settings have to
        name pid_file."""
        return subprocess.run([*wrapper, QVMILTER, "--config", str(config or self.config)],
                              capture_output=True, text=True, timeout=60, **how)

    def stop_in_background(self):
        os.kill(int(self.pid_file.read_text()), signal.SIGTERM)
        wait_for(lambda: not self.pid_file.exists(), "the end of the daemon")

    def _read(self):
        for line in self.process.stderr:
            self.log.append(line)

    def wait_for_log(self, text, count=1):
        """Until so many lines of the log hold this text; the last of them."""
        def find():
            if self.process.poll() is not None and not self.reader.is_alive():
                raise AssertionError("qvmilter ended:\n" + "".join(self.log))
            found = [line for line in list(self.log) if text in line]
            return found[count - 1] if len(found) >= count else None
        return wait_for(find, f"\"{text}\" in the log:\n" + "".join(self.log))

    def judged(self, number):
        """What the log says of the message of this number. REQUIRES: log-details."""
        return LOGGED.search(self.wait_for_log(" verdict=", number).rstrip("\n")).groupdict()

    def reload(self):
        self.process.send_signal(signal.SIGUSR1)

    def kill(self):
        self.process.kill()
        self._forget()

    def _forget(self):
        try:
            status = self.process.wait(timeout=PATIENCE)
        except subprocess.TimeoutExpired:
            self.process.kill()
            raise AssertionError("qvmilter does not end:\n" + "".join(self.log)) from None
        self.reader.join()
        self.process.stderr.close()
        self.process = None
        return status

    def stop(self):
        """Ends the daemon as the service manager does; its exit status."""
        if self.process is None:
            return None
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGTERM)
        return self._forget()

    def remove(self):
        status = self.stop()
        if self.pid_file.exists(): # a test failed
            self.stop_in_background()
        shutil.rmtree(self.folder, ignore_errors=True)
        return status

    def get(self, path):
        """Status and text of a page of the status server."""
        try:
            with urllib.request.urlopen(f"http://127.0.0.1:{self.metrics_port}{path}") as answer:
                return answer.status, answer.read().decode()
        except urllib.error.HTTPError as error:
            with error:
                return error.code, error.read().decode()

    def metric(self, name):
        """The value of one line of /metrics."""
        for line in self.get("/metrics")[1].splitlines():
            if line.startswith(name + " "):
                return float(line.split()[-1])
        return None

    def status(self, name):
        """One line of the process's status: "VmRSS"."""
        status = pathlib.Path(f"/proc/{self.process.pid}/status").read_text()
        return status.split(f"\n{name}:")[1].split("\n")[0].strip()

    def kilobytes(self, name):
        return int(self.status(name).split()[0])

    def resident_kilobytes(self):
        return self.kilobytes("VmRSS")


def check(config, *arguments):
    """qvmilter with this settings file, to its end."""
    return subprocess.run([QVMILTER, "--config", str(config), *arguments], capture_output=True,
                          text=True, timeout=60)


def one_line(value):
    """The value of a header without its folding."""
    return re.sub(r"\s+", " ", value).strip()


class MilterTest(unittest.TestCase):
    """A test with a daemon of its own settings."""

    def scanned(self, daemon, message):
        """What qvscan says of a message as it was delivered: its JSON record."""
        path = daemon.folder / "delivered.eml"
        path.write_bytes(message)
        done = subprocess.run([QVSCAN, "--config", str(daemon.config), "--format", "json",
                               "--explain", str(path)], capture_output=True, text=True)
        return json.loads(done.stdout)

    def check_same_judgement(self, daemon, delivered, number):
        """The daemon, on its message of this number, and qvscan, on the same as it was delivered,
        found the same. Returns what the daemon logged."""
        logged, record = daemon.judged(number), self.scanned(daemon, delivered)
        header = email.message_from_bytes(delivered)["X-QV-Deep-Header"]
        self.assertTrue(header.startswith(f"{record['verdict']}; node={record['node']}"), header)
        self.assertEqual(re.findall("ips=(.*)", header), [record["ips"]] if record["ips"] else [])
        self.assertEqual((logged["verdict"], int(logged["node"])),
                         (record["verdict"], record["node"]))
        is_judged = record["explain"]["values"] is not None
        attributes = record["explain"]["attributes"] if is_judged else [""] * 38
        self.assertEqual(logged["vector"], ",".join(map(str, attributes)))
        return logged

    def daemon(self, **settings):
        daemon = Daemon(**settings)
        self.addCleanup(self._remove, daemon)
        return daemon

    def _remove(self, daemon):
        """A sanitizer that found something tells by the exit status."""
        self.assertIn(daemon.remove(), (None, 0), "".join(daemon.log))

    def command(self, daemon, script):
        """The command that runs a script (the functions are in prelude.lua) against the daemon."""
        path = daemon.folder / "script.lua"
        path.write_text(PRELUDE.read_text() + script)
        return ["miltertest", "-s", str(path), "-D", f"address=unix:{daemon.socket}"]

    def play(self, daemon, script):
        """Runs a script; what it writes."""
        command = self.command(daemon, script)
        done = subprocess.run(command, capture_output=True, text=True, timeout=120)
        if done.returncode != 0:
            again = subprocess.run([*command, "-v"], capture_output=True, text=True, timeout=120)
            self.fail(f"miltertest: {done.returncode}\n{again.stdout}\n{again.stderr}\n"
                      f"{''.join(daemon.log)}")
        return done.stdout.splitlines()
