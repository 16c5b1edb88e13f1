# SPDX-License-Identifier: Apache-2.0
"""docs/postfix.md, followed to the letter on a private machine with a Postfix and without packages: every
block of the page is run, or put where the page says. What stands in for something is listed in STAND_INS.
What the page says of packages, tests/package/trial_test.py follows."""
import email
import os
import pathlib
import re
import signal
import socket
import subprocess
import unittest

from milter import RULES, wait_for
from pages import blocks, headings, section
from postfix import Postfix
from private_machine import NameServer, enter

PAGE = "postfix.md"
FIRST, START = "Five minutes to the first judged message", "Without packages"
SOURCE, BUILD = pathlib.Path(os.environ["QV_SOURCE"]), os.environ["QV_BUILD"]
HERE = pathlib.Path("/run/quorvane") # the folder of the sources, to which the page adds files
CONFIG = pathlib.Path("/etc/qvdeepheader.toml")
SOCKET = "/run/qvmilter/qvmilter.sock"
LOG = pathlib.Path("/run/log")
STAND_INS = {
    # It builds before it does this; here all is built.
    "./dev install --prefix /usr/local": f"cmake --install {BUILD} --prefix /usr/local",
    # Where the page says that it is then.
    "/usr/share/qvdeepheader": "/usr/local/share/qvdeepheader",
    # There is no journal here; the same lines are in a file.
    "journalctl -u qvmilter -o cat": f"cat {LOG}",
    # There is no systemd here that could start it; the test does.
    "systemctl enable --now qvmilter": "systemctl enable qvmilter",
}


def run(script):
    """Runs commands of the page; what they write."""
    for words, stand_in in STAND_INS.items():
        script = script.replace(words, stand_in)
    done = subprocess.run(["sh", "-ec", script], cwd=HERE, capture_output=True, text=True,
                          env={**os.environ, "PATH": "/usr/local/bin:" + os.environ["PATH"]})
    if done.returncode != 0:
        raise AssertionError(f"{script}\n{done.returncode}: {done.stdout}{done.stderr}")
    return done.stdout


def block(heading, start, language=None):
    """The one block below a heading that begins like this."""
    found = [text for text in blocks(PAGE, heading, language) if text.startswith(start)]
    if len(found) != 1:
        raise AssertionError(f"{PAGE}: {len(found)} blocks below \"{heading}\" begin with {start}")
    return found[0]


def processes():
    """The numbers of all qvmilter that run on the private machine."""
    return [int(path.parent.name) for path in pathlib.Path("/proc").glob("[0-9]*/cmdline")
            if b"qvmilter\0" in path.read_bytes()]


def stop(path):
    """Ends the qvmilter with this socket."""
    for number in processes():
        os.kill(number, signal.SIGTERM)

    def is_gone():
        with socket.socket(socket.AF_UNIX) as client: # libmilter looks up when somebody connects
            client.connect_ex(path)
        return not processes()
    wait_for(is_gone, "the end of qvmilter")


class Page(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.addClassCleanup(NameServer().stop)
        HERE.mkdir()
        for path in SOURCE.iterdir():
            (HERE / path.name).symlink_to(path)
        run(block(START, "./dev install"))

    def postfix(self, chroot=False):
        """A Postfix whose files are where the page has them."""
        postfix = Postfix(port=25, config="/etc/postfix")
        self.addCleanup(subprocess.run, ["umount", "/var/spool/postfix"], check=True)
        self.addCleanup(postfix.stop)
        subprocess.run(["mount", "--bind", postfix.folder / "queue", "/var/spool/postfix"],
                       check=True)
        master = pathlib.Path("/etc/postfix/master.cf")
        if chroot:
            master.write_text(master.read_text().replace("inet n - n - - smtpd",
                                                         "inet n - y - - smtpd"))
        return postfix.start()

    def use(self, heading, path):
        """Settings of the page, and a qvmilter that serves with them at this socket."""
        CONFIG.write_text("\n".join(blocks(PAGE, heading, "toml")))
        self.addCleanup(stop, path)

    def connect(self, heading):
        with open("/etc/postfix/main.cf", "a") as main:
            main.write(block(heading, "smtpd_milters", ""))
        run(block(START, "postfix reload"))

    def check_first_message(self, postfix):
        """Sends the message of the page. The new settings of Postfix come into force soon."""
        def judged():
            run(block(FIRST, "curl"))
            self.sent = getattr(self, "sent", 0) + 1
            return email.message_from_bytes(postfix.newest(self.sent))["X-QV-Deep-Header"]
        header = wait_for(judged, "a judged message")
        self.assertEqual(f"X-QV-Deep-Header: {header}\n", block(FIRST, "X-QV", ""))

    def test_no_block_is_left_out(self):
        """The other tests, and the trial of the packages, use so many."""
        counts = {FIRST: 7, START: 5, "Postfix in a chroot": 3, "Under systemd": 1, "Started by root": 1,
                  "The log": 3}
        self.assertEqual({heading: len(blocks(PAGE, heading)) for heading in headings(PAGE)
                          if blocks(PAGE, heading)}, counts)

    def test_settings_that_others_may_write_are_refused(self):
        CONFIG.write_text("\n".join(blocks(PAGE, START, "toml")))
        self.addCleanup(CONFIG.chmod, 0o644)
        CONFIG.chmod(0o664)
        with self.assertRaises(AssertionError) as refusal:
            run(block(FIRST, "qvmilter"))
        self.assertIn(block("Started by root", "qvmilter"), str(refusal.exception))

    def test_five_minutes_are_enough(self):
        postfix = self.postfix()
        self.use(START, SOCKET)
        self.assertIn("in order", run(block(FIRST, "qvmilter")))
        run(block(START, "mkdir"))
        self.connect(START)
        self.check_first_message(postfix)

    def test_a_postfix_in_a_chroot_finds_the_socket(self):
        heading = "Postfix in a chroot"
        postfix = self.postfix(chroot=True)
        self.use(heading, "/var/spool/postfix/qvmilter/qvmilter.sock")
        run(block(heading, "mkdir"))
        run(block(START, "mkdir").splitlines()[1])
        self.connect(heading)
        self.check_first_message(postfix)

    def test_the_unit_starts_it(self):
        postfix = self.postfix()
        self.use(START, SOCKET)
        run(block("Under systemd", "useradd"))
        unit = "/usr/local/lib/systemd/system/qvmilter.service"
        self.assertTrue(pathlib.Path("/etc/systemd/system/multi-user.target.wants/qvmilter.service")
                        .is_symlink())
        done = subprocess.run(["systemd-analyze", "verify", "--man=no", unit], capture_output=True,
                              text=True)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        settings = dict(re.findall(r"^(\w+)=(.*)$", pathlib.Path(unit).read_text(), re.M))
        self.start_as(settings)
        self.connect(START)
        self.check_first_message(postfix)
        self.assertIn("`systemctl reload qvmilter`", section(PAGE, "Reload"))
        run(settings["ExecReload"].replace("$MAINPID", str(*processes())))
        wait_for(lambda: "were reloaded" in LOG.read_text(), "the reload")

    def start_as(self, unit):
        """What systemd does: the program with the unit's user, group, mask and folder."""
        folder = pathlib.Path("/run") / unit["RuntimeDirectory"]
        run(f"install -d -o {unit['User']} -g {unit['Group']} -m {unit['RuntimeDirectoryMode']} "
            f"{folder}")
        self.start("setpriv", f"--reuid={unit['User']}", f"--regid={unit['Group']}",
                   "--init-groups", "sh", "-c", f"umask {unit['UMask']}; exec {unit['ExecStart']}")

    def start(self, *command):
        """A qvmilter in the foreground, whose log is a file."""
        with open(LOG, "w") as log:
            process = subprocess.Popen(command, stderr=log)
        self.addCleanup(process.wait)
        self.addCleanup(stop, SOCKET)
        wait_for(lambda: "info: started" in LOG.read_text(), "qvmilter")

    def test_the_log_becomes_a_table_that_rules_are_compared_on(self):
        postfix = self.postfix()
        self.use(START, SOCKET)
        with open(CONFIG, "a") as config:
            config.write(re.search("`(log-details = 1)`", section(PAGE, "The log")).group(1) + "\n")
        run("mkdir -p /run/qvmilter")
        self.start("/usr/local/bin/qvmilter", "--config", str(CONFIG), "--foreground")
        self.connect(START)
        self.check_first_message(postfix)
        shown, logged = block("The log", "message:", ""), LOG.read_text()
        self.assertIn(" message: queue=", logged)
        self.assertEqual(re.findall(r"(\w+)=", shown),
                         re.findall(r"(\w+)=\S", logged.split(" message: ")[1])[:6])
        run(block("The log", "qvscan"))
        (HERE / "my.qvr").write_text(RULES.format(version=9))
        explain, diff = block("The log", "qvrules").splitlines()
        self.assertIn("Consumer line that begins the trail", run(explain))
        self.assertIn("\n1 message: 1 unsorted\n", run(diff))


if __name__ == "__main__":
    enter()
    unittest.main()
