// SPDX-License-Identifier: Apache-2.0
//
// Attribute vectors as people write them: attributes by name, values as words or numbers.
// Attributes that are not named have the values of a scan that finds nothing else. These are the
// start values; but without a deep hop its attributes are "not analysed", and with one
// hop_behind_first is yes. There is a deep hop when a value of it is named; or, when none of its
// attributes is named, with hop_behind_first=yes.
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

    // Throws a RuleError of kind badData, without a place, that shows the valid names or values, or
    // says that the attribute was named before.
    void set(std::string_view name, std::string_view value);

    Rules::AttributeVector vector() const;

  private:
    bool hasDeepHop() const;

    Rules::AttributeVector m_vector{}; // attributes that are not named have their start values
    std::bitset<attributeCount> m_isNamed;
};

// "first_helo_dynamic=yes,hop_behind_first=no"; blanks around names and values are ignored. Throws
// like NamedVector::set.
Rules::AttributeVector parseVector(std::string_view text);

} // namespace Quorvane::Workshop
