// SPDX-License-Identifier: Apache-2.0
//
// Pieces that the JSON reports share. Pure functions.
#pragma once

#include "rules/evaluate/Evaluation.h"

#include <nlohmann/json.hpp>

namespace Quorvane::Reports {

inline nlohmann::ordered_json verdictsJson(Rules::VerdictCounts const& counts) {
    return {{"spam", counts.m_spam}, {"ham", counts.m_ham}, {"none", counts.m_none}};
}

} // namespace Quorvane::Reports
