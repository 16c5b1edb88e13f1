// SPDX-License-Identifier: Apache-2.0
#include "apps/show/NodeText.h"

#include "apps/text/NumberText.h"

#include <algorithm>
#include <cmath>

namespace Quorvane::Show {

std::string percentText(double share) {
    if (!isShare(share)) {
        return "unknown " + noShareText(share);
    }
    auto const percent = 100.0 * std::abs(share); // there is a zero with a minus sign
    // Close to certainty the digits that count stand after the nines.
    bool const isNearAll = percent > 99.0 && percent < 100.0;
    return numberText(percent, isNearAll ? 4 : 3) + " %";
}

std::string spamShareText(double confidence) {
    return isShare(confidence) ? percentText(confidence) + " spam" : spamText(confidence);
}

std::string supportText(double percentage) {
    return isShare(percentage / 100.0) ? numberText(std::abs(percentage)) + " %"
                                       : "unknown " + noShareText(percentage);
}

std::string countText(std::int64_t count) {
    return count < 0 ? "unknown (" + std::to_string(count) + ')'
                     : groupedText(static_cast<std::uint64_t>(count));
}

std::size_t shadeOf(double spamShare) {
    constexpr double sureOfHam = 0.05;
    constexpr double sureOfSpam = 0.95;
    if (std::isnan(spamShare)) {
        return shadeCount / 2;
    }
    if (spamShare <= sureOfHam || spamShare >= sureOfSpam) {
        return spamShare <= sureOfHam ? 0 : shadeCount - 1;
    }
    auto const position = (spamShare - sureOfHam) / (sureOfSpam - sureOfHam);
    return 1 + static_cast<std::size_t>(position * static_cast<double>(shadeCount - 2));
}

double shareOf(Drawing const& drawing, ShownNode const& node) {
    if (drawing.m_traffic != nullptr) {
        return drawing.m_traffic->share(drawing.m_traffic->node(node.m_number).m_reached);
    }
    return node.m_share.value_or(0.0);
}

std::string nodeLine(Drawing const& drawing, ShownNode const& node) {
    auto text = spamShareText(node.m_record.confidence);
    if (node.m_share && !node.isRoot()) {
        text += ", " + percentText(*node.m_share) + " of the training mail";
    }
    if (drawing.m_traffic != nullptr) {
        text += ", " + percentText(shareOf(drawing, node)) + " measured";
    }
    return text;
}

std::string countsLine(ShownNode const& node) {
    if (!node.isCounted()) {
        return {};
    }
    auto const& record = node.m_record;
    if (record.value1 < 0 || record.value2 < 0 || record.value3 < 0) {
        return "messages unknown (the file counts " + std::to_string(+record.value1) + ": " +
               std::to_string(+record.value2) + " spam, " + std::to_string(+record.value3) +
               " ham)";
    }
    return countText(record.value1) + " messages: " + countText(record.value2) + " spam, " +
           countText(record.value3) + " ham";
}

std::string eliteConditions(ShownElite const& rule) {
    std::string text;
    for (auto const& test : rule.m_tests) {
        text += (text.empty() ? "" : " and ") + test.m_test;
    }
    return text.empty() ? "always" : text;
}

std::vector<std::string> eliteLines(ShownRules const& rules) {
    constexpr std::size_t readable = 60;
    auto const& all = rules.m_elite;
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < std::min(all.size(), readable); ++i) {
        lines.push_back("elite rule " + all[i].m_code + ": " + all[i].m_effect +
                        (all[i].m_tests.empty() ? ", " : ", when ") + eliteConditions(all[i]));
    }
    if (all.size() > readable) {
        lines.push_back("and " + std::to_string(all.size() - readable) + " more elite rules");
    }
    return lines;
}

std::vector<std::string> eliteFigures(ShownElite const& rule, Traffic const* traffic) {
    bool const isDeciding = rule.m_rule.type == EliteType::deciding;
    std::vector<std::string> figures{isDeciding ? supportText(rule.m_rule.support) : "",
                                     std::to_string(rule.m_rule.level)};
    if (traffic != nullptr) {
        auto const use = rule.m_place ? traffic->elite(*rule.m_place) : Traffic::Use{};
        figures.push_back(percentText(traffic->share(use.m_reached)));
        figures.push_back(isDeciding ? percentText(traffic->share(use.m_decided)) : "");
    }
    return figures;
}

std::string unreachedText(ShownRules const& rules) {
    std::string text;
    for (auto const number : rules.m_unreached) {
        text += ' ' + std::to_string(number);
    }
    return text.empty() ? text : "Nodes that no message can reach:" + text;
}

} // namespace Quorvane::Show
