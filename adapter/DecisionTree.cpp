// SPDX-License-Identifier: Apache-2.0
//
// The decision tree: loading qv.dt and walking it.
//
// The loader checks little and a rule file may be damaged or hostile, so the walk trusts nothing:
// it never reads outside the table and never loops without end.
#include "adapter/DeepHeaderAdapter.h"
#include "adapter/ScanRecorder.h"
#include "platform/File.h"
#include "rules/format/RuleTests.h"

namespace Quorvane {

namespace {

constexpr int noDecision = -1;
// A walk along a tree takes at most as many steps as there are nodes; a longer one runs in circles.
constexpr int maxSteps = treeTableSize;

// Where a walk continues, or why it ends.
struct Step {
    int m_child = noDecision;
    WalkEnd m_end = WalkEnd::noBranch;
};

Step s_chooseChild(std::array<DTNode, treeTableSize> const& nodes, DTNode const& parent,
                   AttributeVector const& attributes) {
    if (hasTooManyChildren(parent)) {
        return {noDecision, WalkEnd::badNode};
    }
    for (int slot = 0; slot < parent.childCount; ++slot) {
        auto const child = parent.children[static_cast<std::size_t>(slot)];
        if (!isChildIndex(child)) {
            return {noDecision, WalkEnd::badNode};
        }
        auto const& node = nodes[static_cast<std::size_t>(child)];
        if (!isAttribute(node.attribute)) {
            return {noDecision, WalkEnd::badNode};
        }
        if (admits(node, attributes)) {
            return {child, WalkEnd::notWalked};
        }
    }
    return {};
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
    return file.is_open() ? loadDTRules(file) : 1;
}

int DeepHeaderAdapter::loadDTRules(std::istream& file) {
    m_dtNodes.fill(DTNode{});
    for (int i = 0; i < treeTableSize; ++i) {
        auto& node = m_dtNodes[static_cast<std::size_t>(i)];
        file.read(reinterpret_cast<char*>(&node), sizeof node);
        if (!file) {
            // The end of the file ends the table. A folder opens like a file and then fails to
            // read: that is not an empty table.
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
    if (start < 0 || start >= treeTableSize) {
        return noDecision;
    }
    auto* const recorder = props.recorder;
    auto const end = [recorder](WalkEnd why, int result) {
        if (recorder != nullptr) {
            recorder->endWalk(why);
        }
        return result;
    };
    int current = start;
    for (int steps = 0; steps < maxSteps; ++steps) {
        auto const& node = m_dtNodes[static_cast<std::size_t>(current)];
        if (recorder != nullptr) {
            recorder->stepOn(current, node);
        }
        if (isLeaf(node)) {
            return end(WalkEnd::leaf, s_decision(current));
        }
        if (current != 0 && s_isConfidentEnough(node, settings)) {
            return end(WalkEnd::sureEnough, current);
        }
        auto const step = s_chooseChild(m_dtNodes, node, props.attributes);
        if (step.m_child == noDecision) {
            return end(step.m_end, noDecision);
        }
        auto const& child = m_dtNodes[static_cast<std::size_t>(step.m_child)];
        if (!isSupported(child.support, settings.minSupport)) {
            return end(WalkEnd::rareChild, s_decision(current));
        }
        current = step.m_child;
    }
    return end(WalkEnd::tooLong, noDecision);
}

} // namespace Quorvane
