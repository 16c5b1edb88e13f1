// SPDX-License-Identifier: Apache-2.0
//
// Value names: how an option table names the values of an option, "text|json", "FILE",
// "system|off|HOST[@PORT]". Alternatives are separated by "|"; one with a capital letter stands for
// a value of the user, any other is written literally. Those of "[=all]" stand between "[=" and
// "]". Pure functions.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Quorvane {

// "system", "off" and "HOST[@PORT]".
std::vector<std::string> alternativesOf(std::string_view valueName);
// Whether an alternative is written literally.
bool isLiteral(std::string_view alternative);
// The alternatives that are written literally: "system" and "off".
std::vector<std::string> literalsOf(std::string_view valueName);

// What a shell can offer for a value. A vector ("PATH|VECTOR") is attributes with their values, or
// a file.
enum class ValueKind { flag, words, file, folder, vector, other };
ValueKind kindOf(std::string_view valueName);

} // namespace Quorvane
