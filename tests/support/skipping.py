# SPDX-License-Identifier: Apache-2.0
"""The way out of a test that cannot run here."""
import sys

SKIPPED = 77 # the exit status of such a test (SKIP_RETURN_CODE)


def skip(reason):
    """Ends the test: something outside of it is missing."""
    print("skipped:", reason, flush=True)
    sys.exit(SKIPPED)
