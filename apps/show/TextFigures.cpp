// SPDX-License-Identifier: Apache-2.0
#include "apps/show/TextFigures.h"

#include "apps/show/Numbers.h"

#include <algorithm>

namespace Quorvane::Show {

namespace {

std::string s_spam(ShownNode const& node, Traffic const* /*traffic*/) {
    return percentText(node.m_record.confidence);
}

std::string s_support(ShownNode const& node, Traffic const* /*traffic*/) {
    return node.isRoot() && node.m_record.support == 0.0 ? "" : supportText(node.m_record.support);
}

std::string s_messages(ShownNode const& node, Traffic const* /*traffic*/) {
    return node.isCounted() ? countText(node.m_record.value1) : "";
}

std::string s_spamCount(ShownNode const& node, Traffic const* /*traffic*/) {
    return node.isCounted() ? countText(node.m_record.value2) : "";
}

std::string s_hamCount(ShownNode const& node, Traffic const* /*traffic*/) {
    return node.isCounted() ? countText(node.m_record.value3) : "";
}

std::string s_reached(ShownNode const& node, Traffic const* traffic) {
    return percentText(traffic->share(traffic->node(node.m_number).m_reached));
}

std::string s_decided(ShownNode const& node, Traffic const* traffic) {
    return percentText(traffic->share(traffic->node(node.m_number).m_decided));
}

} // namespace

std::vector<TextFigure> textFigures(Drawing const& drawing) {
    std::vector<TextFigure> figures{{"spam", s_spam}, {"support", s_support}};
    auto const& nodes = drawing.m_rules.m_nodes;
    if (std::any_of(nodes.begin(), nodes.end(),
                    [](auto const& node) { return node.isCounted(); })) {
        figures.push_back({"messages", s_messages});
        figures.push_back({"spam", s_spamCount, true});
        figures.push_back({"ham", s_hamCount, true});
    }
    if (drawing.m_traffic != nullptr) {
        figures.push_back({"measured", s_reached});
        figures.push_back({"decided", s_decided});
    }
    return figures;
}

} // namespace Quorvane::Show
