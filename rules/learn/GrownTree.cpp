// SPDX-License-Identifier: Apache-2.0
#include "rules/learn/GrownTree.h"

#include "rules/format/RuleFiles.h"

#include <algorithm>

namespace Quorvane::Rules {

std::size_t GrownTree::leafCount() const {
    return static_cast<std::size_t>(
        std::count_if(m_nodes.begin(), m_nodes.end(), [](Node const& n) { return n.isLeaf(); }));
}

std::size_t GrownTree::leafOf(AttributeVector const& vector) const {
    std::size_t at = 0;
    while (!m_nodes[at].isLeaf()) {
        auto const& node = m_nodes[at];
        at = vector.at(node.m_attribute) == node.m_value ? node.m_equal : node.m_other;
    }
    return at;
}

std::vector<std::size_t> GrownTree::writtenChildren(std::size_t node) const {
    if (m_nodes[node].isLeaf()) {
        return {};
    }
    auto const attribute = m_nodes[node].m_attribute;
    std::vector<std::size_t> children{m_nodes[node].m_equal, m_nodes[node].m_other};
    while (children.size() < static_cast<std::size_t>(maxChildren)) {
        auto const& last = m_nodes[children.back()];
        if (last.isLeaf() || last.m_attribute != attribute) {
            break;
        }
        children.back() = last.m_equal;
        children.push_back(last.m_other);
    }
    return children;
}

std::size_t GrownTree::writtenSize() const {
    std::vector<std::size_t> open{0};
    std::size_t size = 0;
    while (!open.empty()) {
        auto const node = open.back();
        open.pop_back();
        ++size;
        auto const children = writtenChildren(node);
        open.insert(open.end(), children.begin(), children.end());
    }
    return size;
}

} // namespace Quorvane::Rules
