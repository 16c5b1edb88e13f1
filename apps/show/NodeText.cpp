// SPDX-License-Identifier: Apache-2.0
#include "apps/show/NodeText.h"

#include "apps/show/Numbers.h"

namespace Quorvane::Show {

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
        text += (text.empty() ? "" : " and ") + test;
    }
    return text.empty() ? "always" : text;
}

std::string eliteLine(ShownElite const& rule) {
    auto const effect = rule.m_place ? rule.m_effect : std::string("dropped by engines");
    auto const conditions = eliteConditions(rule);
    return rule.m_code + ": " + effect + (conditions == "always" ? ", " : ", when ") + conditions;
}

} // namespace Quorvane::Show
