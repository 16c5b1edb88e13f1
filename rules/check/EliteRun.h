// SPDX-License-Identifier: Apache-2.0
//
// EliteRun: the elite rules as an engine with given settings runs them: those that it loads, that
// the settings let run and that some message matches.
#pragma once

#include "platform/DeepHeaderSettings.h"
#include "rules/check/PossibleValues.h"
#include "rules/model/RuleSet.h"

#include <cstddef>
#include <vector>

namespace Quorvane::Rules {

struct LiveRule {
    std::int32_t m_number = 0; // in the file, from 1
    bool m_isDeciding = false; // otherwise it adjusts
    std::int32_t m_code = 0;
    double m_weight = 0.0;
    std::vector<EliteCondition> m_conditions;
    PossibleValues m_matches; // the messages that match it
    // The rules that keep it from ever being used, by their numbers: every message that matches it
    // also matches one of them, which is used instead or ends the run before it. Empty when it can
    // be used, or when finding out takes too long.
    std::vector<std::int32_t> m_shadows;

    // Whether some of these messages match it; whether all do.
    bool doesMeet(PossibleValues values) const;
    bool covers(PossibleValues const& values) const;
};

struct EliteRun {
    // Whether engines load any rule, even one that never fires. If so, m_alsoTree decides whether
    // they ask the tree.
    bool m_hasRules = false;
    bool m_alsoTree = false;
    std::int32_t m_selectMode = 0;
    std::vector<LiveRule> m_rules;

    // Whether the tree is asked under these settings.
    bool asksTree(DeepHeaderSettings const& settings) const;
};

// The rules that engines keep of a file, in their order: places in file.m_rules. They read as many
// as the header announces.
std::vector<std::size_t> keptRules(EliteFile const& file);

// With m_shadows filled.
EliteRun eliteRun(RuleSet const& set, DeepHeaderSettings const& settings);

// Fills m_shadows of all rules.
void findShadows(EliteRun& run);

} // namespace Quorvane::Rules
