// SPDX-License-Identifier: Apache-2.0
#include "rules/language/TreeBuilder.h"

#include "rules/format/RuleTests.h"

#include <algorithm>
#include <map>

namespace Quorvane::Rules {

namespace {

// The root decides nothing by itself, so nobody has to say how sure it is.
constexpr double rootConfidence = 0.5;
constexpr double rootSupport = 100.0;

class TreeBuilder {
  public:
    explicit TreeBuilder(CompiledRules& compiled) : m_compiled(compiled) {}

    void build(RulesSyntax& rules) {
        forEachTree(rules, [this](NodeSyntax& node) { collectNumbers(node); });
        forEachTree(rules, [this](NodeSyntax& node) { number(node); });
        if (!m_compiled.m_errors.empty()) {
            return;
        }
        rejectGaps();
        nodes().resize(m_written.empty() ? 0U : index(m_written.rbegin()->first) + 1, emptyNode());
        m_compiled.m_places.m_nodes.resize(nodes().size());
        forEachTree(rules, [this](NodeSyntax& node) { place(node); });
    }

  private:
    template<typename Visit>
    static void forEachTree(RulesSyntax& rules, Visit const& visit) {
        if (rules.m_tree) {
            visit(*rules.m_tree);
        }
        for (auto& node : rules.m_looseNodes) {
            visit(node);
        }
    }

    template<typename Visit>
    static void forEachChild(NodeSyntax& node, Visit const& visit) {
        for (auto& child : node.m_children) {
            if (!child.m_reference) {
                visit(child.m_node);
            }
        }
    }

    static std::size_t index(std::int32_t number) { return static_cast<std::size_t>(number); }

    std::vector<DTNode>& nodes() { return m_compiled.m_set.m_nodes; }

    void error(Position position, std::string const& text) {
        m_compiled.m_errors.push_back({position, text});
    }

    void collectNumbers(NodeSyntax& node) {
        if (node.m_number) {
            claim(node);
        }
        forEachChild(node, [this](NodeSyntax& child) { collectNumbers(child); });
    }

    void claim(NodeSyntax const& node) {
        auto const number = *node.m_number;
        if (number < 0 || number >= maxTreeNodes) {
            error(node.m_position, "node numbers go from 0 to " + std::to_string(maxTreeNodes - 1) +
                                       "; " + std::to_string(number) + " is none");
        } else if (!m_written.emplace(number, node.m_position).second) {
            error(node.m_position, "there is a node " + std::to_string(number) +
                                       " already, in line " +
                                       std::to_string(m_written[number].m_line) +
                                       "; leave numbers out and they are given in order");
        }
    }

    void number(NodeSyntax& node) {
        if (!node.m_number) {
            while (m_written.count(m_next) != 0) {
                ++m_next;
            }
            node.m_number = m_next;
            rejectOverflow(node);
            m_written.emplace(m_next, node.m_position);
        }
        forEachChild(node, [this](NodeSyntax& child) { number(child); });
    }

    void rejectOverflow(NodeSyntax const& node) {
        if (m_next == maxTreeNodes) {
            error(node.m_position, "the tree has too many nodes; with records 0 and 1 an engine "
                                   "takes " +
                                       std::to_string(maxTreeNodes));
        }
    }

    // A record that nobody wrote would be all zero, and the loader refuses that from node 3 on.
    void rejectGaps() {
        auto expected = treeRoot + 1;
        for (auto const& [number, position] : m_written) {
            if (number > expected) {
                error(position, "node " + std::to_string(number) +
                                    " stands after a gap: there is no "
                                    "node " +
                                    std::to_string(expected) +
                                    "; number the nodes without gaps or leave the numbers out");
                return;
            }
            expected = std::max(expected, number + 1);
        }
    }

    void place(NodeSyntax& node) {
        auto& record = nodes()[index(*node.m_number)];
        m_compiled.m_places.m_nodes[index(*node.m_number)] = node.m_position;
        setTest(node, record);
        setFacts(node, record);
        setLeaf(node, record);
        setReserved(node, record);
        setChildren(node, record);
        rejectUnloadable(node, record);
        forEachChild(node, [this](NodeSyntax& child) { place(child); });
    }

    static void setTest(NodeSyntax const& node, DTNode& record) {
        if (node.m_condition) {
            record.attribute = node.m_condition->m_test.attribute;
            record.test = node.m_condition->m_test.test;
            record.testValue = node.m_condition->m_test.value;
        }
    }

    void setFacts(NodeSyntax const& node, DTNode& record) {
        if (!node.m_isRoot && !node.m_confidence) {
            error(node.m_position, "this node has no confidence; add \"confidence\" and the "
                                   "probability of spam, 0 to 1");
        }
        if (!node.m_isRoot && !node.m_support) {
            error(node.m_position,
                  "this node has no support; add \"support\" and the percentage of "
                  "messages that reach it, 0 to 100");
        }
        record.confidence = node.m_confidence.value_or(rootConfidence);
        record.support = node.m_support.value_or(rootSupport);
        auto const counts = node.m_counts.value_or(std::array<std::int32_t, 3>{1, 0, 0});
        record.value1 = counts[0];
        record.value2 = counts[1];
        record.value3 = counts[2];
    }

    void setLeaf(NodeSyntax const& node, DTNode& record) {
        auto const leaf = node.m_leaf.value_or(node.m_hasBlock ? 0 : 1);
        if (leaf < 0 || leaf > 255) {
            error(node.m_position, "a leaf mark is a number from 0 to 255");
        }
        record.isLeaf = static_cast<std::uint8_t>(leaf);
    }

    void setReserved(NodeSyntax const& node, DTNode& record) {
        record.reserved2 = node.m_reserved2.value_or(0);
        if (!node.m_reserved1) {
            return;
        }
        if (node.m_reserved1->size() != record.reserved1.size()) {
            error(node.m_position, "\"reserved1\" of a node holds 3 bytes");
            return;
        }
        std::copy(node.m_reserved1->begin(), node.m_reserved1->end(), record.reserved1.begin());
    }

    void setChildren(NodeSyntax const& node, DTNode& record) {
        if (node.m_slots) {
            std::copy(node.m_slots->begin(), node.m_slots->end(), record.children.begin());
            if (!node.m_children.empty()) {
                error(node.m_position, "a node has \"slots\" or a block of children, not both");
            }
        } else {
            fillSlots(node, record);
        }
        auto const count = static_cast<std::int32_t>(node.m_children.size());
        record.childCount = node.m_childCount.value_or(count);
    }

    void fillSlots(NodeSyntax const& node, DTNode& record) {
        if (node.m_children.size() > record.children.size()) {
            error(node.m_children[record.children.size()].m_position,
                  "a node has at most 10 children; split its block with a test above");
            return;
        }
        for (std::size_t i = 0; i < node.m_children.size(); ++i) {
            auto const& child = node.m_children[i];
            record.children[i] = child.m_reference ? *child.m_reference : *child.m_node.m_number;
        }
    }

    void rejectUnloadable(NodeSyntax const& node, DTNode const& record) {
        if (!isCheckedNode(*node.m_number)) {
            return; // the loader does not look at these
        }
        if (!isLoadedAttribute(record.attribute)) {
            error(node.m_condition->m_position, "attribute " + std::to_string(record.attribute) +
                                                    " does not exist; they go from 0 "
                                                    "to " +
                                                    std::to_string(maxAttribute));
        }
        if (!isLoadedTest(record.test)) {
            error(node.m_condition->m_position, "a test number above 1 is refused by every engine; "
                                                "write == or !=");
        }
        if (!isLoadedCount(record.value1)) {
            error(node.m_position, "the first of the counts must be at least 1, or every engine "
                                   "refuses the file");
        }
    }

    CompiledRules& m_compiled;
    // The numbers given so far and where.
    std::map<std::int32_t, Position> m_written;
    std::int32_t m_next = treeRoot + 1;
};

} // namespace

void buildTree(RulesSyntax& rules, CompiledRules& compiled) {
    TreeBuilder(compiled).build(rules);
    if (!rules.m_treeTail) {
        return;
    }
    if (rules.m_treeTail->m_value.size() >= sizeof(DTNode)) {
        compiled.m_errors.push_back(
            {rules.m_treeTail->m_position, "a tree tail is shorter than a record of 92 bytes"});
    }
    compiled.m_set.m_treeTail = rules.m_treeTail->m_value;
}

} // namespace Quorvane::Rules
