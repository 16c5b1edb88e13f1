// SPDX-License-Identifier: Apache-2.0
//
// The paths that messages can take through the tree: tests that never hold in their place,
// children that take messages from each other, and loops.
#include "rules/check/Checks.h"
#include "rules/check/PossibleValues.h"
#include "rules/format/RuleTests.h"
#include "rules/format/ValueWords.h"
#include "rules/language/RuleText.h"

#include <algorithm>
#include <set>

namespace Quorvane::Rules {

namespace {

using Severity = Finding::Severity;

std::string s_test(DTNode const& node) {
    return '"' + conditionText(testOf(node)) + '"';
}

std::string s_choices(std::int32_t attribute) {
    auto const& facts = attributeTable.at(static_cast<std::size_t>(attribute));
    return std::string(facts.m_name) + " takes " + valueChoices(facts);
}

// Reasons why a node was not entered; the last that still applies is reported.
enum class Shut { unseen, impossible, contradiction, siblings, open };

class PathChecker {
  public:
    PathChecker(TreeLinks const& tree, TreeFindings& findings)
        : m_tree(tree), m_findings(findings) {}

    void run() {
        walk(treeRoot, PossibleValues());
        if (m_steps < maxPathSteps) {
            shutNodes();
        }
    }

  private:
    // Follows every path that a message can take.
    void walk(std::int32_t number, PossibleValues const& values) {
        if (++m_steps >= maxPathSteps || number >= m_tree.count()) {
            return;
        }
        m_path.insert(number);
        auto const children = m_tree.links(number).m_children;
        overlaps(children, values);
        auto left = values;
        for (auto const child : children) {
            step(number, child, values, left);
            left.assume(testOf(m_tree.at(child)), false);
        }
        m_path.erase(number);
    }

    void step(std::int32_t parent, std::int32_t child, PossibleValues const& above,
              PossibleValues const& left) {
        auto const test = testOf(m_tree.at(child));
        auto const shut = !PossibleValues().admits(test) ? Shut::impossible
                          : !above.admits(test)          ? Shut::contradiction
                          : !left.admits(test)           ? Shut::siblings
                                                         : Shut::open;
        auto& known = m_shut.at(static_cast<std::size_t>(child));
        known = std::max(known, shut);
        if (shut != Shut::open) {
            return;
        }
        if (m_path.count(child) != 0) {
            m_findings.add(Severity::error, "loop", parent,
                           "child " + std::to_string(child) + " leads back to " + nodeName(child) +
                               ": a message can go round until the walk gives up",
                           "remove the reference");
            return;
        }
        auto inside = left;
        inside.assume(test);
        walk(child, inside);
    }

    // For each child that is still entered, the first sibling that takes messages from it.
    void overlaps(std::vector<std::int32_t> const& list, PossibleValues const& values) {
        auto left = values;
        for (std::size_t later = 0; later < list.size(); ++later) {
            auto const test = testOf(m_tree.at(list[later]));
            for (std::size_t earlier = 0; left.admits(test) && earlier < later; ++earlier) {
                if (overlap(list[earlier], list[later], values)) {
                    break;
                }
            }
            left.assume(test, false);
        }
    }

    bool overlap(std::int32_t earlier, std::int32_t later, PossibleValues values) {
        // Other children are reported elsewhere.
        auto const isOrdinary = canDecide(later) && later < m_tree.count() && earlier != later;
        values.assume(testOf(m_tree.at(earlier)));
        if (!isOrdinary || !values.admits(testOf(m_tree.at(later)))) {
            return false;
        }
        auto const first = nodeName(earlier);
        m_findings.add(Severity::warning, "children-overlap", later,
                       s_test(m_tree.at(later)) + " and " + s_test(m_tree.at(earlier)) + " of " +
                           first + " both admit some messages; " + first + " gets them",
                       "let all children of a node test one attribute, each another value");
        return true;
    }

    // Nodes that a parent lists and no message enters.
    void shutNodes() {
        for (auto number = treeRoot + 1; number < m_tree.count(); ++number) {
            auto const& node = m_tree.at(number);
            switch (m_shut.at(static_cast<std::size_t>(number))) {
            case Shut::impossible:
                m_findings.add(Severity::warning, "never-impossible", number,
                               s_test(node) + " never holds, so the node is never entered",
                               s_choices(node.attribute));
                break;
            case Shut::contradiction:
                m_findings.add(Severity::warning, "never-contradiction", number,
                               s_test(node) + " never holds after the tests above it",
                               "remove the node");
                break;
            case Shut::siblings:
                m_findings.add(Severity::warning, "never-shadowed", number,
                               s_test(node) + " admits nothing that the children before it leave",
                               "remove the node, or move it before them");
                break;
            default:
                break;
            }
        }
    }

    TreeLinks const& m_tree;
    TreeFindings& m_findings;
    std::set<std::int32_t> m_path;
    std::array<Shut, treeTableSize> m_shut{};
    int m_steps = 0;
};

} // namespace

void checkTreePaths(TreeLinks const& tree, TreeFindings& findings) {
    PathChecker(tree, findings).run();
}

} // namespace Quorvane::Rules
