// SPDX-License-Identifier: Apache-2.0
#include "rules/check/TreeLinks.h"

#include "rules/format/RuleTests.h"
#include "rules/model/Binary.h"

#include <algorithm>
#include <cstring>

namespace Quorvane::Rules {

namespace {

// An incomplete last record is loaded too.
std::int32_t s_loadedCount(RuleSet const& set) {
    auto const count = set.m_nodes.size() + (set.m_treeTail.empty() ? 0U : 1U);
    return static_cast<std::int32_t>(std::min<std::size_t>(count, treeTableSize));
}

} // namespace

NodeTable loadedTable(RuleSet const& set) {
    NodeTable table{};
    auto const bytes = writeTree(set);
    std::memcpy(table.data(), bytes.data(), std::min(bytes.size(), sizeof table));
    return table;
}

TreeLinks::TreeLinks(RuleSet const& set) : m_table(loadedTable(set)), m_count(s_loadedCount(set)) {}

NodeLinks TreeLinks::links(std::int32_t number) const {
    using End = NodeLinks::End;
    auto const& node = at(number);
    if (isLeaf(node)) {
        return {{}, End::leaf};
    }
    if (node.childCount < 1) {
        return {{}, End::noChildren};
    }
    if (hasTooManyChildren(node)) {
        return {{}, End::tooManyChildren};
    }
    NodeLinks links;
    for (std::int32_t slot = 0; slot < node.childCount; ++slot) {
        auto const child = node.children.at(static_cast<std::size_t>(slot));
        if (!isChildIndex(child)) {
            return {std::move(links.m_children), End::badIndex, child};
        }
        if (!isAttribute(at(child).attribute)) {
            return {std::move(links.m_children), End::badAttribute, child};
        }
        links.m_children.push_back(child);
    }
    return links;
}

} // namespace Quorvane::Rules
