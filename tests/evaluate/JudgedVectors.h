// SPDX-License-Identifier: Apache-2.0
//
// Vectors and what rules made of them, for tests of the figures.
#pragma once

#include "rules/evaluate/Deciders.h"
#include "rules/format/AttributeTable.h"

namespace Quorvane::Testing {

using namespace Rules;

// Attribute 5 has the value, all others are 0.
inline AttributeVector vectorOf(std::int32_t value) {
    AttributeVector vector{};
    vector[Attribute::firstHeloDynamic] = value;
    return vector;
}

inline JudgedVector judgedBy(Decider decider, Verdict verdict, double confidence = 0.5,
                             double adjust = 0.0) {
    JudgedVector judged;
    judged.m_verdict = verdict;
    judged.m_decider = decider;
    judged.m_confidence = confidence;
    judged.m_adjust = adjust;
    return judged;
}

} // namespace Quorvane::Testing
