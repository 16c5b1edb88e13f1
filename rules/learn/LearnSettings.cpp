// SPDX-License-Identifier: Apache-2.0
#include "rules/learn/LearnSettings.h"

#include "rules/learn/LearnError.h"

#include <string>

namespace Quorvane::Rules {

AttributeSelection defaultAttributes() {
    AttributeSelection selection;
    selection.fill(true);
    for (auto const index : {Attribute::firstHeloResolves, Attribute::firstForged,
                             Attribute::envelopeDomainResolves}) {
        selection.at(index) = false;
    }
    return selection;
}

void selectAttribute(AttributeSelection& selection, std::string_view name, bool use) {
    auto const index = attributeIndex(name);
    if (!index) {
        throw LearnError("there is no attribute called '" + std::string(name) +
                         "'; the names stand in the table of attributes");
    }
    selection.at(*index) = use;
}

} // namespace Quorvane::Rules
