# SPDX-License-Identifier: Apache-2.0
"""What docs/scale-out.md says of Dask, done as it says."""
import argparse
import contextlib
import os
import pathlib
import shlex
import socket
import subprocess
import unittest

from dask_programs import TIME, ArchiveTest, mailbox, mails
from distributed import Client, Security
from pages import blocks
from support import SOURCE

import cluster
import qvdeepheader

LOCAL, KEY, SETTINGS, CLUSTER, USE = blocks("scale-out.md", "Dask")
HOST = "one.example.net"


def free_port():
    with contextlib.closing(socket.create_server(("127.0.0.1", 0))) as server:
        return server.getsockname()[1]


class Page(ArchiveTest):
    def setUp(self):
        super().setUp()
        home = self.folder / "home/qv"
        package = pathlib.Path(qvdeepheader.__file__).parents[1]
        for name, target in (("lib/python3/dist-packages", package),
                             ("bin", os.environ["QV_PROGRAMS"]),
                             ("share/qvdeepheader/root", os.environ["QV_DEFAULT_ROOT"]),
                             ("share/qvdeepheader/examples", SOURCE / "examples")):
            (home / name).parent.mkdir(parents=True, exist_ok=True)
            (home / name).symlink_to(target)
        self.environment = {**os.environ, "HOME": str(home.parent), "PYTHONDONTWRITEBYTECODE": "1"}
        for site in ("site-a", "site-b"):
            for label in ("ham", "spam"):
                self.write(f"{site}/{label}/1.mbox", mailbox(mails()[label == "ham"::2] * 20))

    def shell(self, commands):
        """Runs commands of the page. 1 means that there is spam."""
        done = subprocess.run(["bash", "-c", commands], cwd=self.folder, env=self.environment,
                              text=True, capture_output=True, timeout=TIME)
        self.assertIn(done.returncode, (0, 1), done.stderr)

    def test_on_one_machine(self):
        self.shell(LOCAL)
        rows = (self.folder / "verdicts.csv").read_text().splitlines()
        self.assertEqual(len(rows), 1 + 40 * len(mails()))
        self.assertEqual([row.split(":")[0] for row in (rows[1], rows[-1])],
                         ["site-a/ham/1.mbox", "site-b/spam/1.mbox"])
        self.assertIn("tree", (self.folder / "learned.qvr").read_text())

    def test_on_a_cluster(self):
        """Workers that know nothing of the programs but what the client sends them."""
        keys = self.folder / "dask"
        keys.mkdir()
        here = f"127.0.0.1:{free_port()}"

        def own(text):
            return (text.replace("/etc/dask", str(keys)).replace("/srv", str(self.folder))
                    .replace(f"{HOST}:8786", here).replace("8786", here.split(":")[1])
                    .replace("--nworkers 16", "--nworkers 2"))
        self.shell(own(KEY))
        (keys / "cluster.yaml").write_text(own(SETTINGS))
        self.environment["DASK_ROOT_CONFIG"] = str(keys)
        for line in own(CLUSTER).splitlines():
            process = subprocess.Popen(shlex.split(line), cwd=self.folder, env=self.environment,
                                       stderr=subprocess.DEVNULL)
            self.addCleanup(process.wait)
            self.addCleanup(process.terminate)
        for site in ("site-a", "site-b"):
            (self.folder / site).rename(self.write(f"mail/{site}/x", b"").parent / "mail")
            (self.folder / f"mail/{site}/x").unlink()
        self.shell(LOCAL.splitlines()[1] + "\n" + own(USE))
        rows = (self.folder / "verdicts.csv").read_text().splitlines()
        self.assertEqual(len(rows), 1 + 40 * len(mails()))

    def test_others_cannot_use_the_processes_of_one_machine(self):
        """Nobody else on the machine has the key."""
        options = argparse.Namespace(scheduler=None, deaths=1, workers=1, memory_limit=None)
        with cluster.connected(options) as client:
            address = client.scheduler.address
            self.assertTrue(address.startswith("tls://127.0.0.1:"), address)
            for other, security in ((address, Security.temporary()),
                                    (address.replace("tls:", "tcp:"), None)):
                with self.subTest(other), self.assertRaises(OSError):
                    Client(other, security=security, timeout=2)


if __name__ == "__main__":
    unittest.main()
