# SPDX-License-Identifier: Apache-2.0
"""What the tests of the package share: where things are, and the programs to compare with."""
import json
import os
import pathlib
import subprocess

SOURCE = pathlib.Path(os.environ["QV_SOURCE"])
EXAMPLES = sorted((SOURCE / "examples").glob("*.eml"))
SETTINGS = {"dns": "off", "internal": ["10.0.0.0/8"]}
ROOT = os.environ["QV_DEFAULT_ROOT"]


def withoutSanitizer():
    """The programs have their own runtime in them."""
    return {name: value for name, value in os.environ.items() if name != "LD_PRELOAD"}


def qvscan(*arguments):
    """The lines that qvscan writes with the settings of the tests."""
    options = ["--root", ROOT, "--dns", "off", "--internal", "10.0.0.0/8"]
    run = subprocess.run([os.environ["QV_PROGRAMS"] + "/qvscan", *options, *map(str, arguments)],
                         capture_output=True, text=True, check=False, env=withoutSanitizer())
    assert run.returncode in (0, 1, 65), run.stderr
    return run.stdout.splitlines()


def records(*arguments):
    return [json.loads(line) for line in qvscan("--format", "json", *arguments)]
