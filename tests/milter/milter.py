# SPDX-License-Identifier: Apache-2.0
"""The daemon under test: a qvmilter with rules, settings and a socket of its own, and scripts that
play a mail server (miltertest)."""
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import tempfile
import threading
import time
import unittest
import urllib.error
import urllib.request

QVMILTER = os.environ["QV_MILTER"]
QVRULES = os.environ["QV_RULES"]
QVSCAN = os.environ["QV_SCAN"]
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


def free_port():
    """A TCP port of this machine that nobody listens on."""
    with socket.socket() as listener:
        listener.bind(("127.0.0.1", 0))
        return listener.getsockname()[1]


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

    def __init__(self, shared="", own="", version=1, rules=RULES, folder=None):
        self.folder = pathlib.Path(folder or tempfile.mkdtemp(prefix="qvmilter-"))
        self.folder.chmod(0o755)
        self.root = self.folder / "root"
        self.root.mkdir(exist_ok=True)
        self.config = self.folder / "qv.toml"
        self.socket = self.folder / "qv.sock"
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

    def configure(self, shared="", own=""):
        """Writes the settings file."""
        dns = "" if "dns" in shared else 'dns = "off"\n'
        self.config.write_text(
            f'root = "{self.root}"\n{dns}{shared}\n[milter]\nsocket = "unix:{self.socket}"\n'
            f'metrics = "127.0.0.1:{self.metrics_port}"\n{own}\n')

    def start(self):
        """Starts the daemon and waits until it serves."""
        self.log.clear()
        self.process = subprocess.Popen(
            [QVMILTER, "--config", str(self.config), "--foreground"], stderr=subprocess.PIPE,
            text=True)
        self.reader = threading.Thread(target=self._read, daemon=True)
        self.reader.start()
        self.wait_for_log("info: started")
        return self

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

    def reload(self):
        self.process.send_signal(signal.SIGUSR1)

    def kill(self):
        self.process.kill()
        self._forget()

    def _forget(self):
        status = self.process.wait(timeout=60)
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
            self._wake()
        return self._forget()

    def _wake(self):
        """libmilter looks whether it has to end when somebody connects, or every 5 seconds."""
        while self.process.poll() is None:
            with socket.socket(socket.AF_UNIX) as client:
                client.connect_ex(str(self.socket))
            time.sleep(0.02)

    def remove(self):
        status = self.stop()
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

    def resident_kilobytes(self):
        status = pathlib.Path(f"/proc/{self.process.pid}/status").read_text()
        return int(status.split("VmRSS:")[1].split()[0])


def check(config, *arguments):
    """qvmilter with this settings file, to its end."""
    return subprocess.run([QVMILTER, "--config", str(config), *arguments], capture_output=True,
                          text=True, timeout=60)


class MilterTest(unittest.TestCase):
    """A test with a daemon of its own settings."""

    def daemon(self, **settings):
        daemon = Daemon(**settings)
        self.addCleanup(daemon.remove)
        return daemon

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
