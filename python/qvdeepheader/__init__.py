# SPDX-License-Identifier: Apache-2.0
"""Quorvane Deep Header: judges e-mail by its Received headers.

    import qvdeepheader

    scanner = qvdeepheader.Scanner()
    for answer in scanner.scan_many(qvdeepheader.messages("inbox.mbox")):
        print(answer.source, answer.verdict, answer.confidence)

A scanner uses the settings file and the rules that qvscan, qvrules and qvmilter use. All functions
may be called from many threads; while messages are read and judged, other threads run.
"""

from ._errors import Error, MessageError, RulesError, ScanError, SettingsError
from ._native import (
    Answer,
    Files,
    Message,
    Messages,
    Scanner,
    Scans,
    __version__,
    attributes,
    files,
    messages,
    settings,
)

__all__ = [
    "Answer",
    "Error",
    "Files",
    "Message",
    "MessageError",
    "Messages",
    "RulesError",
    "ScanError",
    "Scanner",
    "Scans",
    "SettingsError",
    "__version__",
    "attributes",
    "files",
    "messages",
    "settings",
]
