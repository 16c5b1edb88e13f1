// SPDX-License-Identifier: Apache-2.0
//
// Attribute vectors as people write them: attributes by name, values as words or numbers. What is
// not named is as a scan leaves it that finds nothing else. That is the start value; but attributes
// of the deep hop say that it was not analysed where there is no such hop, and hop_behind_first is
// yes where there is one. There is one when a value of it is named; when none of its attributes is
// named, hop_behind_first=yes says so.
//
// Plain values; nothing is shared.
#pragma once

#include "rules/vectors/VectorTable.h"

#include <bitset>
#include <string_view>

namespace Quorvane::Workshop {

class NamedVector {
  public:
    // Nothing is named yet.
    NamedVector();

    // Throws a RuleError of kind badData, without a place, that says which names and values there
    // are, or that the attribute was named before.
    void set(std::string_view name, std::string_view value);

    Rules::AttributeVector vector() const;

  private:
    bool hasDeepHop() const;

    Rules::AttributeVector m_vector{}; // what is not named at its start value
    std::bitset<attributeCount> m_isNamed;
};

// "first_helo_dynamic=yes,hop_behind_first=no"; blanks around names and values do not count. Throws
// as NamedVector::set does.
Rules::AttributeVector parseVector(std::string_view text);

} // namespace Quorvane::Workshop
