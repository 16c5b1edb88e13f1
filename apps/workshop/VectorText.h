// SPDX-License-Identifier: Apache-2.0
//
// Attribute vectors as people write them: attributes by name, values as words or numbers, what is
// not named at its start value. Pure functions.
#pragma once

#include "rules/learn/VectorTable.h"

#include <string>
#include <string_view>

namespace Quorvane::Workshop {

// Every attribute as it is before a scan.
Rules::AttributeVector startVector();

// Sets one attribute. Throws a RuleError of kind badData, without a place, that says which names
// and values there are.
void setAttribute(Rules::AttributeVector& vector, std::string_view name, std::string_view value);

// "first_helo_dynamic=yes,hop_behind_first=no", each attribute once; blanks around names and values
// do not count. Throws as setAttribute does.
Rules::AttributeVector parseVector(std::string_view text);

} // namespace Quorvane::Workshop
