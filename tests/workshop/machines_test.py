# SPDX-License-Identifier: Apache-2.0
"""GNU parallel shares shards among machines through ssh, and they get rules, as docs/scale-out.md
says: a private machine plays them, with a real sshd."""
import os
import pathlib
import re
import subprocess
import sys
import unittest

SOURCE, BUILD = pathlib.Path(os.environ["QV_SOURCE"]), pathlib.Path(os.environ["QV_BUILD"])
sys.path.insert(0, str(SOURCE / "tests" / "milter"))

from debian import unpacked
from milter import wait_for
from pages import blocks, section
from private_machine import enter

SSHD = pathlib.Path("/usr/sbin/sshd")
FOLDER = pathlib.Path("/run/ssh")
LOG = FOLDER / "log"
SERVER = f"""HostKey {FOLDER}/host
AuthorizedKeysFile {FOLDER}/user.pub
MaxStartups 100
Subsystem sftp internal-sftp
PidFile none
"""
CLIENT = f"""IdentityFile {FOLDER}/user
UserKnownHostsFile {FOLDER}/known
"""
PAGE = "scale-out.md"
RULES = """version {version}
tree {{
    first_reverse_dynamic == yes: confidence 0.97 support 25
    first_reverse_dynamic != yes: confidence 0.04 support 75
}}
"""


def packages():
    """An sshd is not installed, since that would start it."""
    return "" if SSHD.exists() else unpacked("openssh-server")


def start(hosts):
    """An sshd that answers for these names; its process."""
    FOLDER.mkdir(mode=0o700)
    pathlib.Path("/run/sshd").mkdir()
    for name in ("host", "user"):
        subprocess.run(["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", FOLDER / name],
                       check=True)
    (FOLDER / "config").write_text(SERVER)
    pathlib.Path("/etc/ssh/ssh_config").write_text(CLIENT)
    key = (FOLDER / "host.pub").read_text()
    (FOLDER / "known").write_text("".join(f"{host} {key}" for host in hosts))
    for name, line in (("hosts", "".join(f"127.0.0.1 {host}\n" for host in hosts)),
                       # As the package adds it.
                       ("passwd", "sshd:x:65533:65534::/run/sshd:/usr/sbin/nologin\n")):
        with open(f"/etc/{name}", "a") as file:
            file.write(line)
    shadow = pathlib.Path("/etc/shadow")
    shadow.write_text(re.sub("^root:[^:]*:", "root:*:", shadow.read_text(), # not locked
                             flags=re.M))
    LOG.touch()
    process = subprocess.Popen([SSHD, "-D", "-f", FOLDER / "config", "-E", LOG])
    wait_for(lambda: "Server listening" in LOG.read_text(), "sshd")
    return process


def logins():
    return LOG.read_text().count("Accepted publickey")


class Machines(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.shards, = (block for block in blocks(PAGE, "An archive on many machines")
                       if "--sshlogin" in block)
        cls.rules = [block for block in blocks(PAGE, "Rules on many machines") if "ssh" in block]
        process = start(set(re.findall(r"[a-z0-9]+\.example\.net", cls.shards + cls.rules[0])))
        cls.addClassCleanup(process.wait)
        cls.addClassCleanup(process.terminate)
        # Where ssh finds them: in the path that sshd gives.
        for program in ("qvscan", "qvrules"):
            pathlib.Path("/usr/local/bin", program).symlink_to(BUILD / "bin" / program)

    def test_the_rules_learned_are_the_same_to_the_byte(self):
        before = logins()
        options = re.fullmatch("export PARALLEL='(.*)'\n", self.shards)[1]
        done = subprocess.run(
            [SOURCE / "tests/workshop/shards.sh", "/usr/local/bin", SOURCE / "docs/learning.md"],
            env={**os.environ, "PARALLEL": options, "PARALLEL_HOME": "/run/parallel"},
            capture_output=True, text=True)
        self.assertEqual(done.returncode, 0, done.stderr)
        # Each shard was one login; parallel itself also asks each machine what it has.
        self.assertGreaterEqual(logins() - before, 16)

    def test_rules_are_installed_and_taken_back(self):
        """The two names lead to one machine, so one is enough."""
        install, rollback = (block.replace("mx1.example.net mx2", "mx1") for block in self.rules)
        for version, commands, expected in ((20261101, install, "20261101 is in force"),
                                            (20261108, install, "20261108 is in force"),
                                            (None, rollback, "20261109 is in force")):
            if version:
                (FOLDER / "new.qvr").write_text(RULES.format(version=version))
            done = subprocess.run(["bash", "-ec", commands], cwd=FOLDER, capture_output=True,
                                  text=True)
            self.assertEqual(done.returncode, 0, done.stderr)
            self.assertIn(expected, done.stdout + done.stderr)
        self.assertIn("20261101 and 20261108 it is\n20261109",
                      section(PAGE, "Rules on many machines"))


if __name__ == "__main__":
    enter(packages)
    unittest.main()
