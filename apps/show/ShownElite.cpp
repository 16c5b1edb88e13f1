// SPDX-License-Identifier: Apache-2.0
#include "apps/show/NodeText.h"
#include "apps/story/RuleNaming.h"
#include "apps/text/NumberText.h"
#include "rules/check/EliteRun.h"
#include "rules/format/RuleTests.h"

#include <cmath>

namespace Quorvane::Show {

namespace {

std::string s_code(EliteNodes const& rule) {
    if (rule.type != EliteType::adjusting) {
        return std::to_string(rule.code);
    }
    // An answer carries the low byte only.
    auto const letter = reasonByte(rule.code);
    return isVisibleReason(letter) ? std::string("'") + static_cast<char>(letter) + '\''
                                   : "byte " + std::to_string(int{letter});
}

std::string s_adjustment(double weight) {
    if (!std::isfinite(weight)) {
        return "adds an unknown amount " + noShareText(weight);
    }
    return std::signbit(weight) ? "subtracts " + numberText(-weight) : "adds " + numberText(weight);
}

std::string s_effect(EliteNodes const& rule) {
    double const weight = rule.weight;
    switch (rule.type) {
    case EliteType::adjusting:
        return s_adjustment(weight);
    case EliteType::deciding:
        return spamShareText(weight);
    default:
        return "never fires: type " + std::to_string(rule.type);
    }
}

ShownElite s_shown(EliteNodes const& rule, Rules::RuleNames const& names) {
    ShownElite shown{rule, {}, s_code(rule), {}, "dropped by engines", {}};
    if (auto const* const name = eliteRuleName(names, rule.type, rule.code)) {
        shown.m_name = *name;
    }
    for (auto const& [attribute, test, value] : rule.conditions) {
        shown.m_tests.push_back(shownTest({attribute, test, value}));
    }
    return shown;
}

} // namespace

std::vector<ShownElite> shownElite(Rules::EliteFile const& file, Rules::RuleNames const& names) {
    std::vector<ShownElite> rules;
    rules.reserve(file.m_rules.size());
    for (auto const& rule : file.m_rules) {
        rules.push_back(s_shown(rule, names));
    }
    auto const kept = Rules::keptRules(file);
    for (std::size_t place = 0; place < kept.size(); ++place) {
        auto& rule = rules[kept[place]];
        rule.m_place = place;
        rule.m_effect = s_effect(rule.m_rule);
    }
    return rules;
}

std::string selectModeText(EliteFileHeader const& header) {
    auto const which = [&]() -> std::string {
        switch (header.selectMode) {
        case SelectMode::first:
            return "The first deciding rule that matches is used, and rules after it are not "
                   "tested";
        case SelectMode::last:
            return "Of the deciding rules that match the last is used";
        case SelectMode::highest:
            return "Of the deciding rules that match the one with the highest confidence is used";
        case SelectMode::lowest:
            return "Of the deciding rules that match the one with the lowest confidence is used";
        default:
            return "Of the deciding rules that match the first is used (select mode " +
                   std::to_string(header.selectMode) + ")";
        }
    }();
    return which + (letsTreeBeAsked(header) ? "; when none decides, the tree is asked."
                                            : "; the tree is not asked.");
}

} // namespace Quorvane::Show
