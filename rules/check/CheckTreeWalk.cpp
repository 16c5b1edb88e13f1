// SPDX-License-Identifier: Apache-2.0
#include "rules/check/Checks.h"
#include "rules/check/PossibleValues.h"
#include "rules/format/ValueWords.h"
#include "rules/language/RuleText.h"

#include <algorithm>
#include <set>

namespace Quorvane::Rules {

namespace {

using Severity = Finding::Severity;

// Nodes that several parents share are walked once for each path. A tree made to have very many
// paths is walked so far; what was not looked at is not reported.
constexpr int maxSteps = 200000;

std::string s_name(std::int32_t number) {
    return "node " + std::to_string(number);
}

std::string s_test(DTNode const& node) {
    return '"' + conditionText(node.attribute, node.test, node.testValue) + '"';
}

// An incomplete last record is loaded too.
std::int32_t s_loadedCount(RuleSet const& set) {
    auto const count = set.m_nodes.size() + (set.m_treeTail.empty() ? 0U : 1U);
    return static_cast<std::int32_t>(std::min<std::size_t>(count, treeTableSize));
}

// Reasons why a node was not entered; the last that still applies is reported.
enum class Shut { unseen, impossible, contradiction, siblings, open };

class TreeWalkChecker {
  public:
    TreeWalkChecker(RuleSet const& set, Findings& findings)
        : m_table(loadedTable(set)), m_count(s_loadedCount(set)), m_findings(findings) {}

    void run() {
        if (m_count <= treeRoot) {
            return;
        }
        root();
        walk(treeRoot, PossibleValues());
        reachable(treeRoot);
        if (m_steps < maxSteps) {
            shutNodes();
        }
        unreachableNodes();
        std::stable_sort(m_own.begin(), m_own.end(), [](Finding const& a, Finding const& b) {
            return a.m_number < b.m_number;
        });
        m_findings.insert(m_findings.end(), m_own.begin(), m_own.end());
    }

  private:
    DTNode const& at(std::int32_t number) const {
        return m_table.at(static_cast<std::size_t>(number));
    }

    // Each finding once, however many paths lead to it.
    void add(Severity severity, char const* id, std::int32_t number, std::string const& problem,
             std::string const& advice) {
        if (m_reported.emplace(number, problem).second) {
            m_own.push_back(
                {severity, id, Finding::File::tree, number, std::nullopt, problem, advice});
        }
    }

    void root() {
        auto const& node = at(treeRoot);
        if (node.isLeaf != 0) {
            add(Severity::warning, "root-leaf", treeRoot,
                "the root is a leaf, and the root decides nothing", "give the root children");
        } else if (node.confidence >= usualThreshold) {
            add(Severity::warning, "root-confidence", treeRoot,
                "the root is sure enough to end the walk when walk-to-leaf is off, and the root "
                "decides nothing",
                "give the root the confidence 0.5");
        }
    }

    // The usable children of a node: what the walk gives up at is reported and ends the list, as it
    // ends the walk.
    std::vector<std::int32_t> children(std::int32_t number) {
        std::vector<std::int32_t> usable;
        auto const& node = at(number);
        if (node.isLeaf != 0 || number >= m_count) {
            return usable;
        }
        if (node.childCount < 1) {
            add(Severity::warning, "dead-end", number,
                "it is no leaf and has no children: a message that gets here has no verdict",
                "make it a leaf, or give it children");
        } else if (node.childCount > maxChildren) {
            add(Severity::error, "child-count", number,
                std::to_string(node.childCount) + " children are announced; the walk gives up here",
                "a node has at most 10");
        } else {
            usable = usableSlots(number);
        }
        return usable;
    }

    std::vector<std::int32_t> usableSlots(std::int32_t number) {
        std::vector<std::int32_t> usable;
        auto const& node = at(number);
        for (std::int32_t slot = 0; slot < node.childCount; ++slot) {
            auto const child = node.children.at(static_cast<std::size_t>(slot));
            if (!isUsable(number, child)) {
                break;
            }
            usable.push_back(child);
        }
        return usable;
    }

    bool isUsable(std::int32_t parent, std::int32_t child) {
        auto const text = "child " + std::to_string(child);
        if (child < 0 || child >= treeTableSize) {
            add(Severity::error, "child-index", parent,
                text + " is outside the table; the walk gives up here",
                "name nodes of the file, 3 to 498");
        } else if (child == 0) {
            add(Severity::error, "child-index", parent,
                "node 0 is a child, which no tree may have; the walk gives up here",
                "name nodes of the file, 3 to 498");
        } else if (!isAttribute(at(child).attribute)) {
            m_isReached.at(static_cast<std::size_t>(child)) = true; // and no further
            add(Severity::error, "child-attribute", child,
                "attribute " + std::to_string(at(child).attribute) +
                    " does not exist; the walk gives up here",
                "use an attribute from 0 to 37");
        } else {
            return isDeciding(parent, child);
        }
        return false;
    }

    // Children that can be walked into, although not with much success.
    bool isDeciding(std::int32_t parent, std::int32_t child) {
        if (child >= m_count) {
            add(Severity::warning, "child-missing", parent,
                "child " + std::to_string(child) + " is not in the file",
                "remove the reference, or add the node");
        } else if (child < treeRoot) {
            add(Severity::warning, "child-reserved", parent,
                "child " + std::to_string(child) +
                    " cannot decide: answers count nodes 0 to 2 as no "
                    "verdict",
                "give the node a number from 3 on");
        }
        return true;
    }

    // Follows every path that a message can take.
    void walk(std::int32_t number, PossibleValues const& values) {
        if (++m_steps >= maxSteps) {
            return;
        }
        m_path.insert(number);
        auto const list = children(number);
        overlaps(list, values);
        auto left = values;
        for (auto const child : list) {
            auto const test = testOf(at(child));
            step(number, child, values, left);
            left.assume(test, false);
        }
        m_path.erase(number);
    }

    void step(std::int32_t parent, std::int32_t child, PossibleValues const& above,
              PossibleValues const& left) {
        auto const test = testOf(at(child));
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
            add(Severity::error, "loop", parent,
                "child " + std::to_string(child) + " leads back to " + s_name(child) +
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
            auto const test = testOf(at(list[later]));
            for (std::size_t earlier = 0; left.admits(test) && earlier < later; ++earlier) {
                if (overlap(list[earlier], list[later], values)) {
                    break;
                }
            }
            left.assume(test, false);
        }
    }

    bool overlap(std::int32_t earlier, std::int32_t later, PossibleValues values) {
        // Others are no proper children, which is reported.
        auto const isOrdinary = later > treeRoot && later < m_count && earlier != later;
        values.assume(testOf(at(earlier)));
        if (!isOrdinary || !values.admits(testOf(at(later)))) {
            return false;
        }
        add(Severity::warning, "children-overlap", later,
            s_test(at(later)) + " and " + s_test(at(earlier)) + " of " + s_name(earlier) +
                " both admit some messages; " + s_name(earlier) + " gets them",
            "let all children of a node test one attribute, each another value");
        return true;
    }

    // Nodes that a parent lists and no message enters.
    void shutNodes() {
        for (auto number = treeRoot + 1; number < m_count; ++number) {
            auto const& node = at(number);
            switch (m_shut.at(static_cast<std::size_t>(number))) {
            case Shut::impossible:
                add(Severity::warning, "never-impossible", number,
                    s_test(node) + " never holds, so the node is never entered",
                    choices(node.attribute));
                break;
            case Shut::contradiction:
                add(Severity::warning, "never-contradiction", number,
                    s_test(node) + " never holds behind the tests above it", "remove the node");
                break;
            case Shut::siblings:
                add(Severity::warning, "never-shadowed", number,
                    s_test(node) + " admits nothing that the children before it leave over",
                    "remove the node, or move it before them");
                break;
            default:
                break;
            }
        }
    }

    static std::string choices(std::int32_t attribute) {
        auto const& facts = attributeTable.at(static_cast<std::size_t>(attribute));
        return std::string(facts.m_name) + " takes " + valueChoices(facts);
    }

    // Marks what the links lead to, whatever the tests say. A list instead of recursion: every node
    // is pushed once.
    void reachable(std::int32_t start) {
        std::vector<std::int32_t> waiting{start};
        m_isReached.at(static_cast<std::size_t>(start)) = true;
        while (!waiting.empty()) {
            auto const number = waiting.back();
            waiting.pop_back();
            for (auto const child : children(number)) {
                auto& isReached = m_isReached.at(static_cast<std::size_t>(child));
                if (!isReached) {
                    isReached = true;
                    waiting.push_back(child);
                }
            }
        }
    }

    void unreachableNodes() {
        for (auto number = treeRoot + 1; number < m_count; ++number) {
            if (!m_isReached.at(static_cast<std::size_t>(number))) {
                add(Severity::warning, "unreachable", number,
                    "no path leads from the root to the node", "remove it, or name it as a child");
            }
        }
    }

    // From this confidence on the programs judge.
    static constexpr double usualThreshold = 0.95;

    NodeTable m_table;
    std::int32_t m_count;
    Findings& m_findings;
    Findings m_own;
    std::set<std::pair<std::int32_t, std::string>> m_reported;
    std::set<std::int32_t> m_path;
    std::array<Shut, treeTableSize> m_shut{};
    std::array<bool, treeTableSize> m_isReached{};
    int m_steps = 0;
};

} // namespace

void checkTreeWalk(RuleSet const& set, Findings& findings) {
    TreeWalkChecker(set, findings).run();
}

} // namespace Quorvane::Rules
