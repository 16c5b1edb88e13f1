// SPDX-License-Identifier: Apache-2.0
//
// The links of the tree: where the walk gives up, and nodes that no path leads to.
#include "rules/check/Checks.h"

namespace Quorvane::Rules {

namespace {

using Severity = Finding::Severity;

class LinkChecker {
  public:
    LinkChecker(TreeLinks const& tree, TreeFindings& findings)
        : m_tree(tree), m_findings(findings) {}

    void run() {
        follow(treeRoot);
        for (auto number = treeRoot + 1; number < m_tree.count(); ++number) {
            if (!m_isReached.at(static_cast<std::size_t>(number))) {
                m_findings.add(Severity::warning, "unreachable", number,
                               "no path leads from the root to the node",
                               "remove it, or name it as a child");
            }
        }
    }

  private:
    // Marks the nodes that the links lead to, whatever the tests are. A list instead of recursion:
    // every node is pushed once.
    void follow(std::int32_t start) {
        std::vector<std::int32_t> waiting;
        reach(start, waiting);
        while (!waiting.empty()) {
            auto const number = waiting.back();
            waiting.pop_back();
            if (number >= m_tree.count()) {
                continue;
            }
            auto const links = m_tree.links(number);
            for (auto const child : links.m_children) {
                checkChild(number, child);
                reach(child, waiting);
            }
            checkEnd(number, links);
        }
    }

    void reach(std::int32_t number, std::vector<std::int32_t>& waiting) {
        auto& isReached = m_isReached.at(static_cast<std::size_t>(number));
        if (!isReached) {
            isReached = true;
            waiting.push_back(number);
        }
    }

    // Children that the walk enters without use.
    void checkChild(std::int32_t parent, std::int32_t child) {
        auto const text = "child " + std::to_string(child);
        if (child >= m_tree.count()) {
            m_findings.add(Severity::warning, "child-missing", parent, text + " is not in the file",
                           "remove the reference, or add the node");
        } else if (child < treeRoot) {
            m_findings.add(Severity::warning, "child-reserved", parent,
                           text + " cannot decide: answers count nodes 0 to 2 as no verdict",
                           "give the node a number from 3 on");
        }
    }

    void checkEnd(std::int32_t number, NodeLinks const& links) {
        using End = NodeLinks::End;
        auto const child = links.m_endChild;
        if (links.m_end == End::noChildren) {
            m_findings.add(Severity::warning, "dead-end", number,
                           "it is not a leaf and has no children: a message that gets here has no "
                           "verdict",
                           "make it a leaf, or give it children");
        } else if (links.m_end == End::tooManyChildren) {
            m_findings.add(Severity::error, "child-count", number,
                           std::to_string(m_tree.at(number).childCount) +
                               " children are announced; the walk gives up here",
                           "a node has at most 10");
        } else if (links.m_end == End::badIndex) {
            m_findings.add(Severity::error, "child-index", number,
                           (child == 0
                                ? "node 0 is a child, which no tree may have"
                                : "child " + std::to_string(child) + " is outside the table") +
                               std::string("; the walk gives up here"),
                           "name nodes of the file, 3 to 498");
        } else if (links.m_end == End::badAttribute) {
            m_isReached.at(static_cast<std::size_t>(child)) = true; // and no further
            m_findings.add(Severity::error, "child-attribute", child,
                           "attribute " + std::to_string(m_tree.at(child).attribute) +
                               " does not exist; the walk gives up here",
                           "use an attribute from 0 to 37");
        }
    }

    TreeLinks const& m_tree;
    TreeFindings& m_findings;
    std::array<bool, treeTableSize> m_isReached{};
};

} // namespace

void checkTreeLinks(TreeLinks const& tree, TreeFindings& findings) {
    LinkChecker(tree, findings).run();
}

} // namespace Quorvane::Rules
