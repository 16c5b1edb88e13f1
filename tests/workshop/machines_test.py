# SPDX-License-Identifier: Apache-2.0
"""GNU parallel shares shards among machines through ssh, as docs/scale-out.md says: a private machine
plays them, with a real sshd."""
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
from pages import blocks
from private_machine import enter

SSHD = pathlib.Path("/usr/sbin/sshd")
FOLDER = pathlib.Path("/run/ssh")
LOG = FOLDER / "log"
SERVER = f"""HostKey {FOLDER}/host
AuthorizedKeysFile {FOLDER}/user.pub
MaxStartups 100
PidFile none
"""
CLIENT = f"""IdentityFile {FOLDER}/user
UserKnownHostsFile {FOLDER}/known
"""
PAGE, HEADING = "scale-out.md", "An archive on many machines"


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
    shadow.write_text(re.sub("^root:[^:]*:", "root:*:", shadow.read_text(), flags=re.M)) # not locked
    LOG.touch()
    process = subprocess.Popen([SSHD, "-D", "-f", FOLDER / "config", "-E", LOG])
    wait_for(lambda: "Server listening" in LOG.read_text(), "sshd")
    return process


class Machines(unittest.TestCase):
    def test_the_rules_learned_are_the_same_to_the_byte(self):
        setting, = (block for block in blocks(PAGE, HEADING) if "--sshlogin" in block)
        options = re.fullmatch("export PARALLEL='(.*)'\n", setting)[1]
        hosts = re.search(r"--sshlogin (\S+)", options)[1].split(",")
        self.assertEqual(len(hosts), 2)
        process = start(hosts)
        self.addCleanup(process.wait)
        self.addCleanup(process.terminate)
        # Where ssh finds them: in the path that sshd gives.
        for program in ("qvscan", "qvrules"):
            pathlib.Path("/usr/local/bin", program).symlink_to(BUILD / "bin" / program)
        done = subprocess.run(
            [SOURCE / "tests/workshop/shards.sh", "/usr/local/bin", SOURCE / "docs/learning.md"],
            env={**os.environ, "PARALLEL": options, "PARALLEL_HOME": "/run/parallel"},
            capture_output=True, text=True)
        self.assertEqual(done.returncode, 0, done.stderr)
        # Each shard was one login; parallel itself also asks each machine what it has.
        self.assertGreaterEqual(LOG.read_text().count("Accepted publickey"), 16)


if __name__ == "__main__":
    enter(packages)
    unittest.main()
