// SPDX-License-Identifier: Apache-2.0
//
// The README of a rule folder: prose for people, and one line with the version for hosts.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Quorvane::Rules {

// The usual text with its version line.
std::string readmeText(std::int32_t version);
// The version that a host reads: the first line that holds the key, is longer than four characters
// and does not begin with '#'; the number as strtol reads it, cut to 32 bits.
std::optional<std::int32_t> readmeVersion(std::string_view text);

} // namespace Quorvane::Rules
