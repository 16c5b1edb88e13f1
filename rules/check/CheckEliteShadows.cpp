// SPDX-License-Identifier: Apache-2.0
#include "rules/check/Checks.h"
#include "rules/format/RuleTests.h"

namespace Quorvane::Rules {

namespace {

// "rule 3", "one of the rules 1, 2 and 5".
std::string s_names(std::vector<std::int32_t> const& numbers) {
    if (numbers.size() == 1) {
        return "rule " + std::to_string(numbers.front());
    }
    std::string text = "one of the rules ";
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        auto const isLast = i + 1 == numbers.size();
        text += (i == 0 ? "" : isLast ? " and " : ", ") + std::to_string(numbers[i]);
    }
    return text;
}

char const* s_advice(std::int32_t selectMode) {
    switch (selectMode) {
    case SelectMode::first:
        return "move it forward, or remove it";
    case SelectMode::last:
        return "move it back, or remove it";
    case SelectMode::highest:
        return "give it a greater confidence, or remove it";
    case SelectMode::lowest:
        return "give it a smaller confidence, or remove it";
    default:
        return "choose first, last, highest or lowest";
    }
}

} // namespace

void checkEliteShadows(EliteRun const& run, Findings& findings) {
    auto const isRunEnded = endsRun(run.m_selectMode);
    for (auto const& rule : run.m_rules) {
        if (!rule.m_shadows.empty()) {
            findings.push_back(
                {Finding::Severity::warning, "elite-shadowed", Finding::File::elite, rule.m_number,
                 std::nullopt,
                 "every message that matches it also matches " + s_names(rule.m_shadows) +
                     (isRunEnded ? ", which ends the run before it" : ", which is used instead") +
                     ", so the rule never fires",
                 s_advice(run.m_selectMode)});
        }
    }
}

} // namespace Quorvane::Rules
