#!/usr/bin/python3 -B
# SPDX-License-Identifier: Apache-2.0
"""learn.py QVRULES CORPORA [OUTPUT]: makes the default rules from the training mail.

The same mail gives the same rules to the byte. OUTPUT is default.qvr beside this program unless
named.
"""
import sys

import training


def main(arguments):
    if len(arguments) not in (2, 3):
        print(__doc__, file=sys.stderr)
        return 64
    qvrules, folder, output = (*arguments, training.HERE / "default.qvr")[:3]
    training.learn(qvrules, training.corpora(folder), output)
    return 0


if __name__ == "__main__":
    try:
        sys.exit(main(sys.argv[1:]))
    except training.TrainingError as error:
        sys.exit(f"learn: {error}")
