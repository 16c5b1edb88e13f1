// SPDX-License-Identifier: Apache-2.0
//
// The fields of records in words, for comparing them. Two records are the same when all of their
// fields are.
#pragma once

#include "rules/model/RuleSet.h"

#include <string>
#include <vector>

namespace Quorvane::Rules {

struct Field {
    char const* m_name;
    std::string m_text;
};
using Fields = std::vector<Field>;

Fields fieldsOf(DTNode const& node);
// Without the number of rules, which follows from the rules.
Fields fieldsOf(EliteFileHeader const& header);
// Without the conditions.
Fields fieldsOf(EliteRecord const& rule);
// Each condition as the language writes it.
std::vector<std::string> conditionsOf(EliteNodes const& rule);

bool operator==(Field const& a, Field const& b);

} // namespace Quorvane::Rules
