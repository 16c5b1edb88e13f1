// SPDX-License-Identifier: Apache-2.0
//
// The decision tree: loading qv.dt and walking it.
//
// The loader checks little and a rule file may be damaged or hostile, so the walk trusts nothing:
// it never reads outside the table and never loops without end.
#include "adapter/DeepHeaderAdapter.h"
#include "platform/File.h"
#include "rules/format/RuleTests.h"

namespace Quorvane {

namespace {

constexpr int noDecision = -1;
// A walk along a tree takes at most as many steps as there are nodes; a longer one goes in circles.
constexpr std::size_t maxSteps = treeTableSize;

// Which child the walk goes on to: its index, or noDecision where the tree has no branch.
int s_chooseChild(std::array<DTNode, treeTableSize> const& nodes, DTNode const& parent,
                  AttributeVector const& attributes) {
    if (hasTooManyChildren(parent)) {
        return noDecision;
    }
    for (int slot = 0; slot < parent.childCount; ++slot) {
        auto const child = parent.children[static_cast<std::size_t>(slot)];
        if (!isChildIndex(child)) {
            return noDecision;
        }
        auto const& node = nodes[static_cast<std::size_t>(child)];
        if (!isAttribute(node.attribute)) {
            return noDecision;
        }
        if (admits(node, attributes)) {
            return child;
        }
    }
    return noDecision;
}

bool s_isConfidentEnough(DTNode const& node, DeepHeaderSettings const& settings) {
    return isSure(node, settings.walkToLeaf != 0, settings.spamThreshold, settings.minSupport);
}

// Node 0 decides nothing: "no decision" and "node 0" are the same number in an answer.
int s_decision(int node) {
    return node != 0 ? node : noDecision;
}

} // namespace

int DeepHeaderAdapter::loadDTRules() {
    File::Path const path(ruleDirectory, treeFileName);
    File::basic_ifstream<char> file(path);
    if (!file.is_open()) {
        return 1;
    }
    m_dtNodes.fill(DTNode{});
    for (int i = 0; i < treeTableSize; ++i) {
        auto& node = m_dtNodes[static_cast<std::size_t>(i)];
        file.read(reinterpret_cast<char*>(&node), sizeof node);
        if (!file) {
            // The end of the file ends the table. A folder opens like a file and then fails to
            // read: that is no empty table.
            bool const isUnreadable = file.bad() && i == 0 && file.gcount() == 0;
            return isUnreadable ? 1 : 0;
        }
        if (isCheckedNode(i) && !isLoadedNode(node)) {
            return 1;
        }
    }
    return 1;
}

int DeepHeaderAdapter::travelDT(DeepHeaderSettings const& settings, int start,
                                MsgProperties& props) {
    std::vector<int> path;
    return travelDT(settings, start, props, path);
}

int DeepHeaderAdapter::travelDT(DeepHeaderSettings const& settings, int start, MsgProperties& props,
                                std::vector<int>& path) {
    if (start < 0 || start >= treeTableSize) {
        return noDecision;
    }
    for (int current = start; path.size() < maxSteps;) {
        path.push_back(current);
        auto const& node = m_dtNodes[static_cast<std::size_t>(current)];
        if (isLeaf(node) || (current != 0 && s_isConfidentEnough(node, settings))) {
            return s_decision(current);
        }
        auto const child = s_chooseChild(m_dtNodes, node, props.attributes);
        if (child == noDecision) {
            return noDecision;
        }
        if (!isSupported(m_dtNodes[static_cast<std::size_t>(child)].support, settings.minSupport)) {
            return s_decision(current);
        }
        current = child;
    }
    return noDecision;
}

} // namespace Quorvane
