# SPDX-License-Identifier: Apache-2.0
"""Messages of Python's own email package as bytes."""

from __future__ import annotations

import email.header
import email.message
import re

# A line break that no blank follows would begin another field.
_UNFOLDED = re.compile(r"\n(?![ \t])")


def _text(name: str, value: object) -> str:
    text = value.encode() if isinstance(value, email.header.Header) else str(value)
    if _UNFOLDED.search(text):
        raise ValueError(f"the header field {name} has a line break that no blank follows")
    return f"{name}: {text}\n"


def header_bytes(message: object) -> bytes:
    """The header section of an email.message.Message.

    A message that was parsed gives the bytes of its fields back. It is not printed as a whole, as
    that would wrap lines anew and cost more than the scan.
    """
    if not isinstance(message, email.message.Message):
        raise TypeError("a message is bytes, a qvdeepheader.Message or an email.message.Message, "
                        f"not {type(message).__name__}")
    fields = "".join(_text(name, value) for name, value in message.raw_items())
    return fields.encode("utf-8", "surrogateescape") + b"\n"
