// SPDX-License-Identifier: Apache-2.0
#include "rules/check/Checks.h"
#include "rules/format/RuleTests.h"

namespace Quorvane::Rules {

namespace {

using Severity = Finding::Severity;
constexpr auto inTree = Finding::File::tree;

void s_checkFile(RuleSet const& set, Findings& findings) {
    auto const count = set.m_nodes.size();
    if (count > maxTreeNodes) {
        findings.push_back({Severity::error, "tree-too-long", inTree,
                            "the file holds " + std::to_string(count) +
                                " records; engines refuse more than " +
                                std::to_string(maxTreeNodes),
                            "prune the tree"});
    } else if (count <= treeRoot) {
        findings.push_back({Severity::warning, "tree-empty", inTree,
                            "the file has no root (record 2), so the tree never decides",
                            "add a tree, or rely on elite rules alone"});
    }
    if (!set.m_treeTail.empty()) {
        findings.push_back({Severity::warning, "tree-tail", inTree,
                            "the file ends with " + std::to_string(set.m_treeTail.size()) +
                                " bytes of an incomplete record, which engines load unchecked",
                            "compile the rules again from their text"});
    }
}

// What the loader refuses the whole file for.
void s_checkLoading(DTNode const& node, std::int32_t number, Findings& findings) {
    if (!isLoadedAttribute(node.attribute)) {
        findings.push_back({Severity::error, "node-attribute", inTree,
                            "attribute " + std::to_string(node.attribute) +
                                " does not exist; engines refuse the file",
                            "use an attribute from 0 to 37", number});
    }
    if (!isLoadedTest(node.test)) {
        findings.push_back(
            {Severity::error, "node-test", inTree,
             "test " + std::to_string(node.test) + " is unknown; engines refuse the file",
             "use 0 (equals) or 1 (differs)", number});
    }
    if (!isLoadedCount(node.value1)) {
        findings.push_back({Severity::error, "node-count", inTree,
                            "the number of training messages is " + std::to_string(node.value1) +
                                "; engines refuse the file",
                            "make it at least 1", number});
    }
}

void s_checkFigures(DTNode const& node, std::int32_t number, double minSupport,
                    Findings& findings) {
    if (!(node.confidence >= 0.0 && node.confidence <= 1.0)) {
        findings.push_back({Severity::warning, "node-confidence", inTree,
                            notAProbability(node.confidence), "use a number from 0 to 1", number});
    }
    if (node.support > 100.0) {
        findings.push_back({Severity::warning, "node-support", inTree, notAPercentage(node.support),
                            "use a number from 0 to 100", number});
    } else if (!isSupported(node.support, minSupport)) {
        findings.push_back(
            {Severity::warning, "node-support", inTree,
             belowMinimum(node.support, minSupport) + ", so the walk stays at the parent",
             "remove the node, or use the percentage of messages that reach it", number});
    }
    // Counts of 0 and 0 say that nobody counted.
    auto const sum = std::int64_t{node.value2} + node.value3;
    if (sum != 0 && sum != node.value1) {
        findings.push_back({Severity::warning, "node-count", inTree,
                            std::to_string(node.value2) + " spam and " +
                                std::to_string(node.value3) + " ham do not make " +
                                std::to_string(node.value1) + " messages",
                            "correct the counts", number});
    }
}

} // namespace

void checkTreeFile(RuleSet const& set, DeepHeaderSettings const& settings, Findings& findings) {
    s_checkFile(set, findings);
    std::int32_t number = 0;
    for (auto const& node : set.m_nodes) {
        if (isCheckedNode(number)) {
            s_checkLoading(node, number, findings);
            s_checkFigures(node, number, settings.minSupport, findings);
        }
        ++number;
    }
}

} // namespace Quorvane::Rules
