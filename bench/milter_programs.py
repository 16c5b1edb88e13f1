# SPDX-License-Identifier: Apache-2.0
"""What the benchmarks of qvmilter share: a folder with programs as their first argument, a number of
messages as their second, and the modules that the tests start the daemon with. Import it before those."""
import os
import pathlib
import sys

SOURCE = pathlib.Path(__file__).resolve().parent.parent
PROGRAMS = pathlib.Path(sys.argv[1])
MESSAGE = SOURCE / "examples" / "forwarder-many-hops.eml"
SESSIONS = 20

os.environ.update(QV_MILTER=str(PROGRAMS / "qvmilter"), QV_RULES=str(PROGRAMS / "qvrules"),
                  QV_SCAN=str(PROGRAMS / "qvscan"), QV_EXAMPLES=str(SOURCE / "examples"),
                  QV_DEFAULT_TEXT=str(SOURCE / "data/rules/default.qvr"))
sys.path.insert(0, str(SOURCE / "tests" / "milter"))


def messages(usual):
    """How many are asked for."""
    return int(sys.argv[2]) if len(sys.argv) > 2 else usual
