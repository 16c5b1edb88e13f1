#!/usr/bin/python3 -B
# SPDX-License-Identifier: Apache-2.0
"""packages_test.py FOLDER: the packages in FOLDER, installed, upgraded and removed on a bare Debian 12.
The bare system stays in FOLDER/bare for the next time. Needs root and a network; where they are missing,
the status is 77."""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

SKIPPED = 77
SOURCE = pathlib.Path(__file__).resolve().parent.parent.parent
FOLDER = pathlib.Path(sys.argv.pop(1)).resolve()
BARE = FOLDER / "bare"
ROOT = pathlib.Path("/mnt/system") # a short path: that of a socket has a limit
UNSHARE = ["unshare", "--mount", "--pid", "--fork", "--mount-proc", "--kill-child"]
OURS = ("libqvplatform1", "libqvdeepheader1", "libqvdeepheader-dev", "qvdeepheader-tools", "qvmilter",
        "python3-qvdeepheader")
CONFIG, README = "etc/qvdeepheader.toml", "var/spool/etc/antispam/README"
# A client whose name says that it is a consumer line, as a mail server tells of it.
SCRIPT = """
    postfix_client("dsl-203-0-113-17.pool.provider.example", "203.0.113.17",
                   "dsl-203-0-113-17.pool.provider.example")
    message()
"""


def run(*command, **options):
    done = subprocess.run(command, capture_output=True, text=True, **options)
    if done.returncode != 0:
        raise AssertionError(f"{command}: {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout


def skip(reason):
    print("skipped:", reason, flush=True)
    sys.exit(SKIPPED)


def make_bare():
    """The bare system, from the package source of this machine."""
    if BARE.exists():
        return
    mirror = run("apt-get", "indextargets", "--format", "$(REPO_URI)", "Codename: bookworm",
                 "Created-By: Packages").split()
    if not mirror:
        skip("apt knows no source of Debian 12")
    unfinished = FOLDER / "unfinished"
    shutil.rmtree(unfinished, ignore_errors=True)
    done = subprocess.run(["debootstrap", "--variant=minbase", "bookworm", unfinished, mirror[0]],
                          capture_output=True, text=True)
    if done.returncode != 0:
        shutil.rmtree(unfinished, ignore_errors=True)
        skip(f"debootstrap: {done.stdout[-500:]}{done.stderr[-500:]}")
    # What this machine needs to reach the source, such as a proxy.
    (unfinished / "etc/apt/apt.conf.d/99reach").write_text(run("apt-config", "dump", "Acquire"))
    unfinished.rename(BARE)


def enter():
    """Starts again where mounts and processes are the test's own."""
    if os.geteuid() != 0:
        skip("a bare system needs root")
    if "QV_ENTERED" in os.environ:
        return
    tried = subprocess.run([*UNSHARE, "mount", "-t", "tmpfs", "tmpfs", "/mnt"], capture_output=True,
                           text=True)
    if tried.returncode != 0:
        skip(f"there are no private mounts here: {tried.stderr.strip()}")
    make_bare()
    os.environ["QV_ENTERED"] = "1"
    os.execvp("unshare", [*UNSHARE, sys.executable, "-B", __file__, str(FOLDER), *sys.argv[1:]])


def inside(*command):
    """Runs a command on the system."""
    return run("chroot", ROOT, *command, env={
        "PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C.UTF-8", "DEBIAN_FRONTEND": "noninteractive"})


def processes():
    """The users of all qvmilter that run."""
    found = []
    for status in pathlib.Path("/proc").glob("[0-9]*/status"):
        text = status.read_text()
        # This test is the first process here and buries nobody, so those that ended stay as zombies.
        if text.startswith("Name:\tqvmilter\n") and "\nState:\tZ" not in text:
            found.append(int(re.search(r"^Uid:\t(\d+)", text, re.M).group(1)))
    return found


def judged():
    """What the filter on the system makes of a message: the lines of the script."""
    prelude = (SOURCE / "tests/milter/prelude.lua").read_text()
    with tempfile.NamedTemporaryFile("w", suffix=".lua") as script:
        script.write(prelude + SCRIPT)
        script.flush()
        return run("miltertest", "-s", script.name, "-D",
                   f"address=unix:{ROOT}/run/qvmilter/qvmilter.sock")


def next_version():
    """A folder with the same packages as a later version."""
    folder = ROOT / "next"
    folder.mkdir()
    for package in FOLDER.glob("*.deb"):
        with tempfile.TemporaryDirectory() as name:
            content = pathlib.Path(name) / "content"
            run("dpkg-deb", "--raw-extract", package, content)
            control = content / "DEBIAN/control"
            version = re.search("^Version: (.*)$", control.read_text(), re.M).group(1)
            control.write_text(control.read_text().replace(
                f"Version: {version}\n", f"Version: {version}+next\n").replace(
                f"(= {version})", f"(= {version}+next)"))
            run("dpkg-deb", "--root-owner-group", "--build", content, folder)
    return folder


class Packages(unittest.TestCase):
    def setUp(self):
        """A bare system with all our packages."""
        run("mount", "-t", "tmpfs", "tmpfs", "/mnt")
        self.addCleanup(run, "umount", "--recursive", "/mnt")
        self.addCleanup(self.end)
        for name in ("upper", "work", "system"):
            (ROOT.parent / name).mkdir()
        run("mount", "-t", "overlay", "overlay", "-o",
            f"lowerdir={BARE},upperdir=/mnt/upper,workdir=/mnt/work", ROOT)
        run("mount", "-t", "proc", "proc", ROOT / "proc")
        for package in FOLDER.glob("*.deb"):
            shutil.copy(package, ROOT)
        shutil.copy("/etc/resolv.conf", ROOT / "etc")
        # A system of its own has an init; of this one the test says that services may start.
        policy = ROOT / "usr/sbin/policy-rc.d"
        policy.write_text("#!/bin/sh\n")
        policy.chmod(0o755)
        inside("apt-get", "update", "-q")
        self.policy = policy
        self.install("/")

    def install(self, folder):
        found = [f"{folder}/{path.name}" for path in (ROOT / folder.strip("/")).glob("*.deb")]
        self.assertEqual(len(found), len(OURS))
        inside("apt-get", "install", "-q", "-y", "--no-install-recommends", *found)

    def end(self):
        subprocess.run(["chroot", ROOT, "sh", "-c", "! test -x /etc/init.d/qvmilter || "
                        "/etc/init.d/qvmilter stop"], capture_output=True)

    def test_everything_works_once_it_is_installed(self):
        user = int(inside("id", "-u", "qvmilter"))
        self.assertEqual(processes(), [user])
        self.assertIn("X-QV-Deep-Header: spam; node=9001;", judged())
        example = "/usr/share/qvdeepheader/examples/spam-bot-dynamic-name.eml"
        done = subprocess.run(["chroot", ROOT, "qvscan", "--format", "text", "--dns", "off", example],
                              capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stdout.splitlines()[1].split()[0]), (1, "spam"), done.stderr)
        self.assertEqual(inside("python3", "-c", "import qvdeepheader, sys\n"
                                "scanner = qvdeepheader.Scanner(settings={'dns': 'off'})\n"
                                f"print(scanner.scan(open('{example}', 'rb').read()).verdict)"),
                         "spam\n")

    def test_postfix_asks_the_filter_as_the_notes_of_the_package_say(self):
        self.policy.write_text("#!/bin/sh\nexit 101\n") # Postfix waits for a network of its own
        inside("apt-get", "install", "-q", "-y", "--no-install-recommends", "postfix", "curl")
        self.policy.write_text("#!/bin/sh\n")
        notes = (ROOT / "usr/share/doc/qvmilter/README.Debian").read_text()
        settings, postfix, commands = (
            "".join(f"{line}\n" for line in re.findall("^    (.*)$", block, re.M))
            for block in re.findall(r"(?:^    .*\n)+", notes.split("Rules\n")[0], re.M))
        config = ROOT / CONFIG
        chosen = re.search("^socket = .*$", settings, re.M).group()
        self.assertIn(f"\n#{chosen}\n", config.read_text())
        config.write_text("dns = 'off'\n" + re.sub("^socket = .*$", chosen, config.read_text(), flags=re.M))
        with open(ROOT / "etc/postfix/main.cf", "a") as main:
            main.write(postfix)
        (ROOT / "trial").write_text(
            "set -e\nip link set lo up\nchroot " f"{ROOT} sh -ec '\n/etc/init.d/postfix start\n{commands}"
            "curl -sS --crlf smtp://127.0.0.1 --mail-from a@example.org --mail-rcpt root@localhost "
            "--upload-file /usr/share/qvdeepheader/examples/helo-localhost.eml\n"
            "until test -s /var/mail/root; do sleep 0.1; done\n"
            "/etc/init.d/postfix stop\n'\n")
        run("unshare", "--net", "timeout", "120", "bash", ROOT / "trial", env={
            **os.environ, "PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C.UTF-8"})
        self.assertIn("\nX-QV-Deep-Header: spam; node=9003;", (ROOT / "var/mail/root").read_text())

    def test_an_upgrade_keeps_settings_and_rules(self):
        config = ROOT / CONFIG
        config.write_text(config.read_text() + 'on-spam = "reject"\n')
        inside("qvrules", "install", "/usr/share/qvdeepheader/rules/starter.qvr")
        before = config.read_text(), (ROOT / README).read_text()
        self.install("/" + next_version().name)
        self.assertIn("+next", inside("dpkg-query", "-W", "qvmilter"))
        self.assertEqual((config.read_text(), (ROOT / README).read_text()), before)
        # The new filter runs, with both.
        self.assertEqual(len(processes()), 1)
        self.assertEqual(judged().splitlines(), ["replycode"])
        self.assertIn("Straight from a consumer line", inside("qvrules", "decompile", "/var/spool/etc/antispam"))

    def test_a_removal_leaves_no_process_and_keeps_what_the_site_wrote(self):
        inside("apt-get", "remove", "-q", "-y", "qvmilter")
        self.assertEqual(processes(), [])
        self.assertTrue((ROOT / CONFIG).exists())
        inside("apt-get", "purge", "-q", "-y", *OURS)
        self.assertFalse((ROOT / CONFIG).exists())
        self.assertTrue((ROOT / README).exists())
        left = inside("dpkg-query", "-W", "-f", "${Package}\n").split()
        self.assertFalse(set(OURS) & set(left))


if __name__ == "__main__":
    enter()
    unittest.main()
