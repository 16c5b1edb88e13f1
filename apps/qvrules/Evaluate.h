// SPDX-License-Identifier: Apache-2.0
//
// `qvrules evaluate`: what rules do on sorted mail, in figures.
#pragma once

#include "apps/qvrules/HostOptions.h"
#include "rules/evaluate/Evaluation.h"
#include "rules/model/RuleSet.h"

#include <string>
#include <vector>

namespace Quorvane::RulesApp {

struct EvaluateArguments {
    std::string m_rules; // text or folder
    // Each [CORPUS=]PATH.
    std::vector<std::string> m_ham;
    std::vector<std::string> m_spam;
    std::vector<std::string> m_vectors;
    std::vector<std::string> m_hamVectors;
    std::vector<std::string> m_spamVectors;
    std::string m_augment; // copies are corpora of their own
    std::string m_format = "text";
    GivenSettings m_settings;
};

// What a report shows besides the figures.
struct EvaluatedRules {
    Rules::RuleSet const& m_set;
    DeepHeaderSettings const& m_settings;
};

// The false positive rates at which the caught spam is told.
inline constexpr double toldFalsePositives[] = {0.001, 0.005, 0.01};

// Each a whole report; both tell the same.
std::string evaluationText(Rules::Evaluation const& evaluation, EvaluatedRules const& rules);
std::string evaluationJson(Rules::Evaluation const& evaluation, EvaluatedRules const& rules);

// The conditions that lead to a decider: "first_reverse_dynamic == yes and ..."; empty when the set
// does not have it.
std::string deciderConditions(Rules::RuleSet const& set, Rules::Decider const& decider);

int evaluate(EvaluateArguments const& arguments);

} // namespace Quorvane::RulesApp
