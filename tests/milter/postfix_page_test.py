# SPDX-License-Identifier: Apache-2.0
"""docs/postfix.md, followed to the letter on a private machine with a Postfix and without packages: every
block of the page is run, or put where the page says. What stands in for something is listed in STAND_INS.
What the page says of packages, tests/package/trial_test.py follows."""
import email
import errno
import os
import pathlib
import re
import signal
import socket
import subprocess
import unittest

import seccomp

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


def calls_of(groups):
    """The system calls of groups as a unit names them, "@privileged @resources"."""
    shown = subprocess.run(["systemd-analyze", "syscall-filter", *groups.split()], check=True,
                           capture_output=True, text=True).stdout
    members = set(re.findall(r"^ +([@\w-]+)$", shown, re.M))
    nested = {name for name in members if name.startswith("@")}
    return (members - nested) | (calls_of(" ".join(nested)) if nested else set())


def filter_of(filters):
    """What a unit's SystemCallFilter lines let a process call."""
    allowed = set()
    for groups in filters:
        calls = calls_of(groups.removeprefix("~"))
        allowed = allowed - calls if groups.startswith("~") else allowed | calls
    rules = seccomp.SyscallFilter(seccomp.ERRNO(errno.EPERM))
    for call in allowed:
        try:
            rules.add_rule(seccomp.ALLOW, call)
        except (OSError, RuntimeError, ValueError):
            pass # a call that this machine does not have
    return rules


class Page(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.addClassCleanup(NameServer().stop)
        HERE.mkdir()
        for path in SOURCE.iterdir():
            (HERE / path.name).symlink_to(path)
        run(block(START, "./dev install"))
        run(block(START, "useradd").splitlines()[0]) # once, for all tests

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

    def start_by_hand(self):
        run("\n".join(block(START, "useradd").splitlines()[1:]))

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
        counts = {FIRST: 7, START: 5, "Postfix in a chroot": 3, "Under systemd": 2, "Started by root": 1,
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
        self.start_by_hand()
        self.assertEqual(pathlib.Path(SOCKET).owner(), "qvmilter")
        self.connect(START)
        self.check_first_message(postfix)

    def test_a_postfix_in_a_chroot_finds_the_socket(self):
        heading = "Postfix in a chroot"
        postfix = self.postfix(chroot=True)
        self.use(heading, "/var/spool/postfix/qvmilter/qvmilter.sock")
        run(block(heading, "mkdir"))
        run(block(START, "useradd").splitlines()[2])
        self.connect(heading)
        self.check_first_message(postfix)

    def test_the_unit_starts_it(self):
        postfix = self.postfix()
        self.use(START, SOCKET)
        self.start_by_hand()
        self.assertIn("take `user` out", section(PAGE, "Under systemd"))
        CONFIG.write_text(CONFIG.read_text().replace('user = "qvmilter"\n', ""))
        run(block("Under systemd", "pkill"))
        wait_for(lambda: not processes(), "the end of the filter that was started by hand")
        unit = "/usr/local/lib/systemd/system/qvmilter.service"
        self.assertTrue(pathlib.Path("/etc/systemd/system/multi-user.target.wants/qvmilter.service")
                        .is_symlink())
        done = subprocess.run(["systemd-analyze", "verify", "--man=no", unit], capture_output=True,
                              text=True)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        lines = re.findall(r"^(\w+)=(.*)$", pathlib.Path(unit).read_text() +
                           block("Under systemd", "[Service]"), re.M)
        settings = dict(lines)
        self.start_as(settings, [value for name, value in lines if name == "SystemCallFilter"])
        self.assertEqual(pathlib.Path(SOCKET).group(), "postfix")
        self.connect(START)
        self.check_first_message(postfix)
        self.assertIn("`systemctl reload qvmilter`", section(PAGE, "Reload"))
        run(settings["ExecReload"].replace("$MAINPID", str(*processes())))
        wait_for(lambda: "were reloaded" in LOG.read_text(), "the reload")

    def start_as(self, unit, filters):
        """What systemd does: the program with the unit's user, group, mask, folder and system calls."""
        folder = pathlib.Path("/run") / unit["RuntimeDirectory"]
        run(f"install -d -o {unit['User']} -g {unit['Group']} -m {unit['RuntimeDirectoryMode']} "
            f"{folder}")
        rules = filter_of(filters)
        self.start(*unit["ExecStart"].split(), user=unit["User"], group=unit["Group"],
                   extra_groups=[], umask=int(unit["UMask"], 8), preexec_fn=rules.load)

    def start(self, *command, **settings):
        """A qvmilter in the foreground, whose log is a file."""
        with open(LOG, "w") as log:
            process = subprocess.Popen(command, stderr=log, **settings)
        self.addCleanup(process.wait)
        self.addCleanup(stop, SOCKET)
        try:
            wait_for(lambda: "info: started" in LOG.read_text(), "qvmilter")
        except AssertionError as error:
            raise AssertionError(f"{error}: {LOG.read_text()}") from error

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
