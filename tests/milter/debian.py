# SPDX-License-Identifier: Apache-2.0
"""Programs of Debian packages that a test needs and that must not be installed, since they would
displace others or start a service: downloaded, and unpacked into a folder below the build."""
import os
import pathlib
import subprocess
import tempfile

from skipping import skip


def _download(packages, folder):
    """Downloads these packages, and what they need and this machine lacks."""
    (folder / "archives" / "partial").mkdir(parents=True)
    download = ["apt-get", "install", "--download-only", "--yes", "--no-install-recommends", "-q",
                "-o", "Debug::NoLocking=1", "-o", f"Dir::Cache={folder}", *packages]
    for before in ([], ["apt-get", "update", "-q"]): # the lists may be missing, or too old
        if before:
            subprocess.run(before, capture_output=True)
        done = subprocess.run(download, capture_output=True, text=True,
                              env={**os.environ, "DEBIAN_FRONTEND": "noninteractive"})
        if done.returncode == 0:
            return
    skip(f"{' '.join(packages)} cannot be downloaded: {done.stderr.strip()}")


def unpacked(*packages):
    """The folder that holds the files of these packages, as if it were "/". It stays for the next
    run of the test."""
    parent = pathlib.Path(os.environ["QV_BUILD"]) / "unpacked"
    target = parent / packages[0]
    if not target.exists():
        parent.mkdir(parents=True, exist_ok=True)
        with tempfile.TemporaryDirectory(dir=parent) as name:
            folder = pathlib.Path(name)
            _download(packages, folder)
            root = folder / "root"
            for archive in sorted((folder / "archives").glob("*.deb")):
                subprocess.run(["dpkg-deb", "--extract", archive, root], check=True)
            root.rename(target)
    return target
