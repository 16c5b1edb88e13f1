# SPDX-License-Identifier: Apache-2.0
"""The exceptions of the package. They survive pickling, so they pass between processes whole."""

from __future__ import annotations


class Error(Exception):
    """What went wrong. The text is complete: what, where, and what to do.

    file, line and column say where, as far as it is known; line and column count from 1.
    """

    def __init__(self, text: str, file: str | None = None, line: int | None = None,
                 column: int | None = None) -> None:
        super().__init__(text)
        self.file = file
        self.line = line
        self.column = column


class SettingsError(Error):
    """A setting, a settings file, or a file that settings name."""


class RulesError(Error):
    """Rules that cannot be read, compiled or loaded."""


class MessageError(Error):
    """What is no message, or has more header fields than the settings allow."""


class ScanError(Error):
    """A scan that failed. The message got no verdict."""
