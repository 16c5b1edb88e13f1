// SPDX-License-Identifier: Apache-2.0
//
// Message text is bytes; JSON and terminals want UTF-8. Safe to call from many threads.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Quorvane {

// `bytes` with valid UTF-8 (RFC 3629) as it stands and every other byte as the character of its
// number, U+0080 to U+00FF: nothing is lost, and plain ASCII does not change.
std::string toUtf8(std::string_view bytes);
std::vector<std::string> toUtf8(std::vector<std::string> const& texts);

// The same with control characters as \xNN, so that hostile text cannot steer a terminal or forge a
// second line.
std::string toPrintable(std::string_view bytes);
// The same for text of several lines: its line breaks stay. What is told in such lines must not
// hold names with line breaks of their own.
std::string toPrintableLines(std::string_view text);

// How many characters of valid UTF-8 these are: the columns that they take on most terminals.
std::size_t columns(std::string_view text);

} // namespace Quorvane
