// SPDX-License-Identifier: Apache-2.0
//
// A few attributes of small range, all vectors over them, and random rules that test nothing else:
// what a checker claims about every message can then be tried on every message.
#pragma once

#include "RuleGenerators.h"
#include "rules/format/AttributeTable.h"

#include <array>
#include <vector>

namespace Quorvane::Testing {

using SmallVector = std::array<std::int32_t, attributeCount>;

// Tests of the rules below go up to 3, so one value of the counter stands for all beyond.
inline std::vector<SmallVector> smallVectors() {
    std::vector<SmallVector> vectors;
    for (std::int32_t const counter : {0, 1, 2, 3, 4}) {
        for (std::int32_t const dynamic : {0, 1, 2, 8}) {
            for (std::int32_t const dot : {0, 1}) {
                for (std::int32_t const broken : {0, 1}) {
                    SmallVector vector{};
                    vector[Attribute::hopsHeloNoDomain] = counter;
                    vector[Attribute::firstHeloDynamic] = dynamic;
                    vector[Attribute::messageIdHasDot] = dot;
                    vector[Attribute::chainBroken] = broken;
                    vectors.push_back(vector);
                }
            }
        }
    }
    return vectors;
}

inline EliteCondition genSmallCondition() {
    return {*rc::gen::element<std::int32_t>(2, 5, 5, 15, 33), *rc::gen::inRange(0, 2),
            *rc::gen::inRange(0, 4)};
}

// A rule without code; some are left out for their level or their support.
inline EliteNodes genSmallRule(bool isDeciding) {
    EliteNodes rule{};
    rule.type = isDeciding ? EliteType::deciding : EliteType::adjusting;
    rule.weight = *rc::gen::element(0.0, 0.3, 0.5, 0.9, 0.95);
    rule.support = 1.0;
    rule.level = *rc::gen::element(0, 0, 0, 0, 1, 2);
    rule.conditionCount = *rc::gen::element(0, 1, 1, 2, 2, 3);
    for (std::int32_t i = 0; i < rule.conditionCount; ++i) {
        rule.conditions.push_back(genSmallCondition());
    }
    return rule;
}

} // namespace Quorvane::Testing
