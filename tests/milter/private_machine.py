# SPDX-License-Identifier: Apache-2.0
"""A private machine for a test: mounts, network, host name and processes of its own (namespaces). A
test may set up on it what it likes; nothing is left of it when the test ends."""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

from milter import EXAMPLES, wait_for
from skipping import skip

NAME = "mx.example.net"
ADDRESS = "198.51.100.1"
# Clients of its mail servers, and the names that their addresses have.
CLIENTS = (
    {"address": "203.0.113.17", "helo": "client.example"},
    {"address": "192.0.2.10", "helo": "mail.example.org"},
    {"address": "203.0.113.18", "helo": "localhost"},
    {"address": "10.1.2.3", "helo": "gateway"},
    {"address": "203.0.113.66", "helo": "[203.0.113.66]"},
)
NAMES = {"203.0.113.17": "dsl-203-0-113-17.pool.provider.example", "192.0.2.10": "mail.example.org",
         "203.0.113.66": "mail.example.com"} # forged: this name has another address
UNSHARE = ["unshare", "--mount", "--net", "--uts", "--pid", "--fork", "--mount-proc", "--kill-child"]
# "." is all of DNS: what the zone does not have does not exist.
ZONE = """$ORIGIN .
$TTL 60
. SOA ns.example.net. host.example.net. 1 3600 600 86400 60
. NS ns.example.net.
ns.example.net. A 127.0.0.1
"""
NSD = """server:
  ip-address: 127.0.0.1
  server-count: 1
  username: ""
  database: ""
  rrl-ratelimit: 0
  zonesdir: {folder}
  pidfile: {folder}/pid
  xfrdfile: {folder}/xfrd
  zonelistfile: {folder}/zones
  xfrdir: {folder}
  logfile: {folder}/log
remote-control:
  control-enable: no
zone:
  name: "."
  zonefile: zone
"""


def enter(packages=None):
    """Starts the script again on a private machine, unless it runs on one: with copies of /etc,
    /usr and /var that it can change, an empty /run, and every address of the internet as its own.
    `packages` is called before, and returns a folder whose files lie there, too."""
    folder = os.environ.get("QV_PRIVATE_MACHINE")
    if folder is None:
        _move(packages() if packages else "")
    scratch = pathlib.Path("/mnt")
    _run("mount", "-t", "tmpfs", "tmpfs", str(scratch))
    for name in ("etc", "usr", "var"):
        upper, work = scratch / name, scratch / f"{name}.work"
        upper.mkdir()
        work.mkdir()
        lower = f"{folder}/{name}:/{name}" if folder else f"/{name}"
        _run("mount", "-t", "overlay", "overlay", "-o",
             f"lowerdir={lower},upperdir={upper},workdir={work}", f"/{name}")
    _run("mount", "-t", "tmpfs", "-o", "mode=755", "tmpfs", "/run")
    _run("hostname", NAME)
    pathlib.Path("/etc/hosts").write_text(f"127.0.0.1 localhost\n{ADDRESS} {NAME}\n")
    _run("ip", "link", "set", "lo", "up")
    _run("ip", "route", "add", "local", "default", "dev", "lo")


def _move(folder):
    if os.geteuid() != 0:
        skip("a private machine needs root")
    tried = subprocess.run([*UNSHARE, "mount", "-t", "tmpfs", "tmpfs", "/run"],
                           capture_output=True, text=True)
    if tried.returncode != 0:
        skip(f"there are no private machines here: {tried.stderr.strip()}")
    os.environ["QV_PRIVATE_MACHINE"] = str(folder)
    os.execvp("unshare", [*UNSHARE, sys.executable, "-B", *sys.argv])


def _run(*command):
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)


class NameServer:
    """Answers all DNS questions of the private machine from the data of the examples and NAMES."""

    def __init__(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        pointers = (f"{'.'.join(reversed(address.split('.')))}.in-addr.arpa. PTR {name}.\n"
                    for address, name in NAMES.items())
        (self.folder / "zone").write_text(
            ZONE + (EXAMPLES / "dns.zone").read_text() + "".join(pointers))
        (self.folder / "nsd.conf").write_text(NSD.format(folder=self.folder))
        pathlib.Path("/etc/resolv.conf").write_text("nameserver 127.0.0.1\n")
        pathlib.Path("/etc/nsswitch.conf").write_text("hosts: files dns\n")
        self.process = subprocess.Popen(["nsd", "-d", "-c", str(self.folder / "nsd.conf")])
        wait_for(self._answers, f"nsd, see {self.folder}/log")

    @staticmethod
    def _answers():
        return subprocess.run(["getent", "hosts", "ns.example.net"],
                              stdout=subprocess.DEVNULL).returncode == 0

    def stop(self):
        self.process.terminate()
        self.process.wait()
        shutil.rmtree(self.folder)
