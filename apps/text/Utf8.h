// SPDX-License-Identifier: Apache-2.0
//
// Message text is bytes; JSON and terminals need UTF-8. Safe to call from many threads.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Quorvane {

// Valid UTF-8 (RFC 3629) is kept; every other byte becomes the character of the same number, U+0080
// to U+00FF. Nothing is lost, and plain ASCII does not change.
std::string toUtf8(std::string_view bytes);
std::vector<std::string> toUtf8(std::vector<std::string> const& texts);

// The same with control characters as \xNN, so that hostile text can neither control a terminal
// nor forge a second line.
std::string toPrintable(std::string_view bytes);
// The same for text of several lines: its line breaks are kept. The names in such lines must not
// hold line breaks of their own.
std::string toPrintableLines(std::string_view text);

// The number of characters in valid UTF-8: the columns that it takes on most terminals.
std::size_t columns(std::string_view text);

} // namespace Quorvane
