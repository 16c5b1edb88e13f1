// SPDX-License-Identifier: Apache-2.0
#include "apps/show/ShownRules.h"

#include "apps/story/RuleNaming.h"
#include "apps/story/RuleStory.h"
#include "rules/check/Checker.h"
#include "rules/check/Checks.h"
#include "rules/format/RuleTests.h"
#include "rules/language/RuleText.h"
#include "rules/language/Sentences.h"

#include <algorithm>
#include <array>

namespace Quorvane::Show {

namespace {

// Puts the nodes into reading order. Follows the walk of the engine: where it gives up, the list of
// branches ends.
class TreeReader {
  public:
    TreeReader(Rules::NodeTable const& table, std::size_t count) : m_table(table), m_count(count) {}

    std::vector<ShownNode> read() {
        add(treeRoot, 0);
        return std::move(m_nodes);
    }

  private:
    enum class State : std::uint8_t { unseen, above, done };

    DTNode const& at(std::int32_t number) const {
        return m_table.at(static_cast<std::size_t>(number));
    }

    // Each node is entered once, so the depth is bounded by the table.
    std::size_t add(std::int32_t number, std::size_t depth) { // NOLINT(misc-no-recursion)
        auto const index = m_nodes.size();
        m_index.at(static_cast<std::size_t>(number)) = index;
        m_nodes.push_back(node(number, depth));
        state(number) = State::above;
        if (m_nodes[index].m_problem.empty() && !m_nodes[index].isLeaf()) {
            addBranches(index);
        }
        state(number) = State::done;
        return index;
    }

    void addBranches(std::size_t index) { // NOLINT(misc-no-recursion)
        auto const record = m_nodes[index].m_record;
        for (int slot = 0; slot < record.childCount; ++slot) {
            auto const child = record.children.at(static_cast<std::size_t>(slot));
            auto branch = this->branch(child, m_nodes[index].m_depth);
            bool const isEnd = branch.m_kind == ShownBranch::Kind::end;
            m_nodes[index].m_branches.push_back(std::move(branch));
            if (isEnd) {
                break;
            }
        }
    }

    ShownBranch branch(std::int32_t child, std::size_t depth) { // NOLINT(misc-no-recursion)
        if (auto const problem = problemOf(child); !problem.empty()) {
            return {ShownBranch::Kind::end, child, 0, problem};
        }
        auto const known = state(child);
        if (known == State::unseen) {
            return {ShownBranch::Kind::node, child, add(child, depth + 1), {}};
        }
        auto const index = m_index.at(static_cast<std::size_t>(child));
        auto const name = "node " + std::to_string(child);
        return known == State::above
                   ? ShownBranch{ShownBranch::Kind::circle, child, index,
                                 "back to " + name + ": the walk can go in circles"}
                   : ShownBranch{ShownBranch::Kind::elsewhere, child, index,
                                 name + ", drawn elsewhere in the tree"};
    }

    // Why the walk cannot look at a child.
    std::string problemOf(std::int32_t child) const {
        auto const name = "child " + std::to_string(child);
        if (!isChildIndex(child)) {
            return (child == 0 ? "node 0 cannot be a child" : name + " is outside the table") +
                   ": the walk gives up here";
        }
        if (!isAttribute(at(child).attribute)) {
            return name + " tests attribute " + std::to_string(at(child).attribute) +
                   ", which does not exist: the walk gives up here";
        }
        return {};
    }

    ShownNode node(std::int32_t number, std::size_t depth) const {
        ShownNode shown;
        shown.m_number = number;
        shown.m_record = at(number);
        shown.m_depth = depth;
        auto const& record = shown.m_record;
        shown.m_test = number == treeRoot
                           ? ShownTest{"all mail", "all mail", "all mail"}
                           : shownTest({record.attribute, record.test, record.testValue});
        shown.m_problem = endOf(number);
        return shown;
    }

    // Why the walk cannot leave a node.
    std::string endOf(std::int32_t number) const {
        auto const& record = at(number);
        if (static_cast<std::size_t>(number) >= m_count) {
            return number == treeRoot ? "the file has no tree: no verdict"
                                      : "not in the file: no verdict";
        }
        if (isLeaf(record)) {
            return number == treeRoot ? "the root decides nothing: no verdict" : "";
        }
        if (record.childCount < 1) {
            return "not a leaf, but no children: no verdict";
        }
        if (hasTooManyChildren(record)) {
            return std::to_string(record.childCount) + " children, more than " +
                   std::to_string(maxChildren) + ": the walk gives up here";
        }
        return {};
    }

    State& state(std::int32_t number) { return m_state.at(static_cast<std::size_t>(number)); }

    Rules::NodeTable const& m_table;
    std::size_t m_count;
    std::array<State, treeTableSize> m_state{};
    std::array<std::size_t, treeTableSize> m_index{};
    std::vector<ShownNode> m_nodes;
};

void s_setNames(std::vector<ShownNode>& nodes, Rules::RuleNames const& names) {
    for (auto& node : nodes) {
        if (auto const* const name = treeNodeName(names, node.m_number)) {
            node.m_name = *name;
        }
    }
}

// Messages of the training mail: what the root saw, or its children together where the root was
// not counted.
std::int64_t s_trainingMessages(std::vector<ShownNode> const& nodes) {
    std::int64_t children = 0;
    for (auto const& node : nodes) {
        children += node.m_depth == 1 && node.isCounted() ? std::max(+node.m_record.value1, 0) : 0;
    }
    auto const& root = nodes.front();
    return root.isCounted() ? std::max<std::int64_t>(root.m_record.value1, children) : children;
}

// From the counts where there are any, else from the support.
void s_setShares(std::vector<ShownNode>& nodes) {
    auto const all = s_trainingMessages(nodes);
    for (auto& node : nodes) {
        double const percent = node.m_record.support;
        if (node.isRoot()) {
            node.m_share = 1.0;
        } else if (all > 0 && node.isCounted() && node.m_record.value1 >= 0) {
            node.m_share =
                std::min(1.0, static_cast<double>(node.m_record.value1) / static_cast<double>(all));
        } else if (percent >= 0.0 && percent <= 100.0) {
            node.m_share = percent / 100.0;
        }
    }
}

std::vector<std::int32_t> s_unreached(std::vector<ShownNode> const& nodes, std::size_t count) {
    std::vector<bool> isReached(count, false);
    for (auto const& node : nodes) {
        if (static_cast<std::size_t>(node.m_number) < count) {
            isReached[static_cast<std::size_t>(node.m_number)] = true;
        }
    }
    std::vector<std::int32_t> unreached;
    // Nodes 0 and 1 belong to the file's writer.
    for (auto number = std::size_t{treeRoot}; number < count; ++number) {
        if (!isReached[number]) {
            unreached.push_back(static_cast<std::int32_t>(number));
        }
    }
    return unreached;
}

} // namespace

std::size_t ShownRules::leafCount() const {
    return static_cast<std::size_t>(
        std::count_if(m_nodes.begin(), m_nodes.end(),
                      [](ShownNode const& node) { return node.m_branches.empty(); }));
}

std::size_t ShownRules::depth() const {
    std::size_t deepest = 0;
    for (auto const& node : m_nodes) {
        deepest = std::max(deepest, node.m_depth);
    }
    return deepest;
}

ShownTest shownTest(AttributeTest const& test) {
    return {Rules::conditionText({test.attribute, test.test, test.value}), testText(test),
            Rules::fillSentence(Rules::testSentence(test.attribute, test.test, test.value), {})};
}

ShownRules shownRules(std::string const& name, Rules::RuleSet const& set) {
    ShownRules shown;
    shown.m_name = name;
    shown.m_version = set.version();
    shown.m_loadProblem = Rules::loadProblem(set);
    auto const table = Rules::loadedTable(set);
    auto const count = std::min<std::size_t>(
        set.m_nodes.size() + (set.m_treeTail.empty() ? 0U : 1U), table.size());
    shown.m_nodes = TreeReader(table, count).read();
    s_setShares(shown.m_nodes);
    auto const names = Rules::readNames(set.m_names).m_names;
    s_setNames(shown.m_nodes, names);
    shown.m_unreached = s_unreached(shown.m_nodes, count);
    if (set.m_elite) {
        shown.m_eliteHeader = set.m_elite->m_header;
        shown.m_elite = shownElite(*set.m_elite, names);
    }
    return shown;
}

} // namespace Quorvane::Show
