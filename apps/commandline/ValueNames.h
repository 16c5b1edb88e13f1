// SPDX-License-Identifier: Apache-2.0
//
// Value names: how an option table names the values of an option, "text|json", "FILE",
// "system|off|HOST[@PORT]". Alternatives are parted by "|"; one with a capital letter stands for a
// value of the user's, any other is written as it stands. Pure functions.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Quorvane {

// "system", "off" and "HOST[@PORT]".
std::vector<std::string> alternativesOf(std::string_view valueName);
// Whether an alternative is written as it stands.
bool isLiteral(std::string_view alternative);
// The alternatives that are written as they stand: "system" and "off".
std::vector<std::string> literalsOf(std::string_view valueName);

// What a shell can offer for a value.
enum class ValueKind { flag, words, file, folder, other };
ValueKind kindOf(std::string_view valueName);

} // namespace Quorvane
