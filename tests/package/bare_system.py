# SPDX-License-Identifier: Apache-2.0
"""A bare Debian 12 for tests, and one that is thrown away with each of them. The first argument of a test is
the FOLDER of the packages; the bare system stays in FOLDER/bare for the next time, and what was downloaded for it
in FOLDER/archives. It needs root and a network; where they are missing, the test ends with status 77."""
import contextlib
import os
import pathlib
import shlex
import shutil
import signal
import socket
import subprocess
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))

from skipping import skip

FOLDER = pathlib.Path(sys.argv.pop(1)).resolve()
BARE, ARCHIVES = FOLDER / "bare", FOLDER / "archives"
ROOT = pathlib.Path("/mnt/system") # a short path: that of a socket has a limit
NETWORK = pathlib.Path("/mnt/network")
UNSHARE = ["unshare", "--mount", "--pid", "--fork", "--mount-proc", "--kill-child"]
ENVIRONMENT = {"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C.UTF-8", "HOME": "/root",
               "DEBIAN_FRONTEND": "noninteractive"}
# A person says yes, and nothing is downloaded twice.
APT = 'APT::Get::Assume-Yes "true";\nBinary::apt::APT::Keep-Downloaded-Packages "true";\n'
# What an administrator says for each service that a package wants to start.
YES, NO = "#!/bin/sh\n", "#!/bin/sh\nexit 101\n"


def run(*command, status=0, **options):
    """What a command writes to its standard output."""
    done = subprocess.run(command, capture_output=True, text=True, stdin=subprocess.DEVNULL, **options)
    if done.returncode != status:
        raise AssertionError(f"{command}: {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout


def make_bare():
    """The bare system, from the package source of this machine; it knows the newest packages there."""
    if not BARE.exists():
        fetch_bare()
    shutil.copy("/etc/resolv.conf", BARE / "etc")
    (BARE / "etc/hosts").write_text(f"127.0.0.1 localhost\n127.0.1.1 {socket.gethostname()}\n") # as installed
    (BARE / "etc/apt/apt.conf.d/98test").write_text(APT)
    run("chroot", BARE, "apt-get", "update", "-q", env=ENVIRONMENT)


def fetch_bare():
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
    """Starts the test again where mounts and processes are its own."""
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
    os.execvp("unshare", [*UNSHARE, sys.executable, "-B", sys.argv[0], str(FOLDER), *sys.argv[1:]])


def inside(*command, **options):
    """Runs a command on the system, as root."""
    return run("chroot", ROOT, *command, env=ENVIRONMENT, **options)


def offline(*command, **options):
    """Runs a command on the system, as root, where nothing but its own loopback network can be reached."""
    return run("nsenter", f"--net={NETWORK}", "chroot", ROOT, *command, env=ENVIRONMENT, **options)


def on_terminal(user, folder, commands, status=0):
    """What a person sees who types commands there; the status is that of the last one."""
    login = ["su", "-", user, "-c", f"export NO_COLOR=1; cd {folder}; {commands}"]
    typed = shlex.join(["nsenter", f"--net={NETWORK}", "chroot", str(ROOT), *login])
    seen = run("script", "--quiet", "--return", "--command", typed, "/dev/null", status=status,
               env=ENVIRONMENT)
    return seen.replace("\r\n", "\n")


def processes():
    """The numbers of all processes on the system."""
    found = []
    for root in pathlib.Path("/proc").glob("[0-9]*/root"):
        with contextlib.suppress(OSError): # it has ended
            if root.readlink() == ROOT:
                found.append(int(root.parent.name))
    return found


class SystemTest(unittest.TestCase):
    def setUp(self):
        """A bare system with our packages below /src/build/package."""
        run("mount", "-t", "tmpfs", "tmpfs", "/mnt")
        self.addCleanup(run, "umount", "--recursive", "--lazy", "/mnt") # what was killed may still be ending
        self.addCleanup(self.end)
        for name in ("upper", "work", "system"):
            (ROOT.parent / name).mkdir()
        run("mount", "-t", "overlay", "overlay", "-o",
            f"lowerdir={BARE},upperdir=/mnt/upper,workdir=/mnt/work", ROOT)
        run("mount", "-t", "proc", "proc", ROOT / "proc")
        NETWORK.touch()
        run("unshare", f"--net={NETWORK}", "ip", "link", "set", "lo", "up")
        packages = ROOT / "src/build/package"
        packages.mkdir(parents=True)
        for package in FOLDER.glob("*.deb"):
            shutil.copy(package, packages)
        ARCHIVES.mkdir(exist_ok=True)
        run("mount", "--bind", ARCHIVES, ROOT / "var/cache/apt/archives")
        self.start_services(YES)

    def start_services(self, answer):
        """A system of its own has an init; of this one the test says whether services may start."""
        policy = ROOT / "usr/sbin/policy-rc.d"
        policy.write_text(answer)
        policy.chmod(0o755)

    def end(self):
        """Nothing keeps the files of the system open."""
        while numbers := processes():
            for number in numbers:
                with contextlib.suppress(ProcessLookupError):
                    os.kill(number, signal.SIGKILL)
