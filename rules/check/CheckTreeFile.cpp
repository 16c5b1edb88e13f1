// SPDX-License-Identifier: Apache-2.0
#include "rules/check/Checks.h"
#include "rules/format/RuleTests.h"
#include "rules/language/Literals.h"

#include <cmath>

namespace Quorvane::Rules {

namespace {

using Severity = Finding::Severity;

class TreeFileChecker {
  public:
    TreeFileChecker(RuleSet const& set, DeepHeaderSettings const& settings, Findings& findings)
        : m_set(set), m_settings(settings), m_findings(findings) {}

    void run() {
        file();
        for (auto const& node : m_set.m_nodes) {
            if (isCheckedNode(m_number)) {
                loader(node);
                degrees(node);
                counts(node);
            }
            ++m_number;
        }
    }

  private:
    void add(Severity severity, char const* id, std::optional<std::int32_t> number,
             std::string const& problem, std::string const& advice) {
        m_findings.push_back(
            {severity, id, Finding::File::tree, number, std::nullopt, problem, advice});
    }

    void file() {
        auto const count = m_set.m_nodes.size();
        if (count > maxTreeNodes) {
            add(Severity::error, "tree-too-long", std::nullopt,
                "the file holds " + std::to_string(count) + " records; engines refuse more than " +
                    std::to_string(maxTreeNodes),
                "prune the tree");
        } else if (count <= treeRoot) {
            add(Severity::warning, "tree-empty", std::nullopt,
                "the file has no root (record 2), so the tree never decides",
                "add a tree, or rely on elite rules alone");
        }
        if (!m_set.m_treeTail.empty()) {
            add(Severity::warning, "tree-tail", std::nullopt,
                "the file ends with " + std::to_string(m_set.m_treeTail.size()) +
                    " bytes of an incomplete record, which engines load unchecked",
                "compile the rules again from their text");
        }
    }

    // What the loader refuses the whole file for.
    void loader(DTNode const& node) {
        if (!isLoadedAttribute(node.attribute)) {
            add(Severity::error, "node-attribute", m_number,
                "attribute " + std::to_string(node.attribute) +
                    " does not exist; engines refuse the file",
                "use an attribute from 0 to 37");
        }
        if (!isLoadedTest(node.test)) {
            add(Severity::error, "node-test", m_number,
                "test " + std::to_string(node.test) + " is unknown; engines refuse the file",
                "use 0 (equals) or 1 (differs)");
        }
        if (!isLoadedCount(node.value1)) {
            add(Severity::error, "node-count", m_number,
                "the number of training messages is " + std::to_string(node.value1) +
                    "; engines refuse the file",
                "make it at least 1");
        }
    }

    void degrees(DTNode const& node) {
        if (!(node.confidence >= 0.0 && node.confidence <= 1.0)) {
            add(Severity::warning, "node-confidence", m_number,
                "a confidence of " + numberText(node.confidence) + " is no probability",
                "use a number from 0 to 1");
        }
        if (node.support > 100.0) {
            add(Severity::warning, "node-support", m_number,
                "a support of " + numberText(node.support) + " is no percentage",
                "use a number from 0 to 100");
        } else if (!isSupported(node.support, m_settings.minSupport)) {
            add(Severity::warning, "node-support", m_number,
                "a support of " + numberText(node.support) + " is below the minimum of " +
                    numberText(m_settings.minSupport) +
                    " (min-support), so the walk stays at the parent",
                "remove the node, or use the percentage of messages that reach it");
        }
    }

    // Counts of 0 and 0 say that nobody counted.
    void counts(DTNode const& node) {
        auto const sum = std::int64_t{node.value2} + node.value3;
        if (sum != 0 && sum != node.value1) {
            add(Severity::warning, "node-count", m_number,
                std::to_string(node.value2) + " spam and " + std::to_string(node.value3) +
                    " ham do not make " + std::to_string(node.value1) + " messages",
                "correct the counts");
        }
    }

    RuleSet const& m_set;
    DeepHeaderSettings const& m_settings;
    Findings& m_findings;
    std::int32_t m_number = 0;
};

} // namespace

void checkTreeFile(RuleSet const& set, DeepHeaderSettings const& settings, Findings& findings) {
    TreeFileChecker(set, settings, findings).run();
}

} // namespace Quorvane::Rules
