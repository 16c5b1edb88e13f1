// SPDX-License-Identifier: Apache-2.0
#include "rules/language/Builders.h"

#include "rules/format/RuleTests.h"

#include <algorithm>
#include <map>

namespace Quorvane::Rules {

namespace {

class TreeBuilder {
  public:
    explicit TreeBuilder(CompiledRules& compiled) : m_compiled(compiled) {}

    void build(RulesSyntax& rules) {
        NodeList* const lists[] = {&rules.m_tree, &rules.m_looseNodes};
        auto const forEachNode = [&lists](auto const& visit) {
            for (auto* const list : lists) {
                std::for_each(list->begin(), list->end(), visit);
            }
        };
        forEachNode([this](NodeSyntax const& node) { claim(node); });
        forEachNode([this](NodeSyntax& node) { number(node); });
        if (!m_compiled.m_errors.empty()) {
            return;
        }
        rejectGaps();
        nodes().resize(m_written.empty() ? 0U : index(m_written.rbegin()->first) + 1);
        m_compiled.m_places.m_nodes.resize(nodes().size());
        forEachNode([this](NodeSyntax const& node) { place(node); });
    }

  private:
    static std::size_t index(std::int32_t number) { return static_cast<std::size_t>(number); }

    std::vector<DTNode>& nodes() { return m_compiled.m_set.m_nodes; }

    void error(Position position, std::string const& text) {
        m_compiled.m_errors.push_back({position, text});
    }

    // Takes the number of a node that has one written.
    void claim(NodeSyntax const& node) {
        if (!node.m_number) {
            return;
        }
        auto const number = *node.m_number;
        if (number < 0 || number >= maxTreeNodes) {
            error(node.m_position, std::to_string(number) +
                                       " is not a node number; they go from 0 to " +
                                       std::to_string(maxTreeNodes - 1));
        } else if (!m_written.emplace(number, node.m_position).second) {
            error(node.m_position, "there is a node " + std::to_string(number) +
                                       " already, in line " +
                                       std::to_string(m_written[number].m_line) +
                                       "; leave numbers out and they are given in order");
        }
    }

    // Gives the next free number to a node that has none written.
    void number(NodeSyntax& node) {
        if (node.m_number) {
            return;
        }
        while (m_written.count(m_next) != 0) {
            ++m_next;
        }
        node.m_number = m_next;
        if (m_next == maxTreeNodes) {
            error(node.m_position, "the tree has too many nodes; with records 0 and 1 an engine "
                                   "takes " +
                                       std::to_string(maxTreeNodes));
        }
        m_written.emplace(m_next, node.m_position);
    }

    // A record that is not written is all zero, and the loader refuses that from node 3 on.
    void rejectGaps() {
        auto expected = treeRoot + 1;
        for (auto const& [number, position] : m_written) {
            if (number > expected) {
                error(position, "node " + std::to_string(number) +
                                    " comes after a gap: there is no "
                                    "node " +
                                    std::to_string(expected) +
                                    "; number the nodes without gaps or leave the numbers out");
                return;
            }
            expected = std::max(expected, number + 1);
        }
    }

    void place(NodeSyntax const& node) {
        auto record = node.m_record;
        requireFacts(node);
        if (!node.m_given.contains("leaf")) {
            record.isLeaf = node.m_hasBlock ? 0 : 1;
        }
        setChildren(node, record);
        rejectUnloadable(node, record);
        buildName(node.m_naming, {RuleKey::Kind::node, *node.m_number}, m_compiled);
        nodes()[index(*node.m_number)] = record;
        m_compiled.m_places.m_nodes[index(*node.m_number)] = node.m_position;
    }

    void requireFacts(NodeSyntax const& node) {
        if (!node.m_isRoot && !node.m_given.contains("confidence")) {
            error(node.m_position, "this node has no confidence; add \"confidence\" and the "
                                   "probability of spam, 0 to 1");
        }
        if (!node.m_isRoot && !node.m_given.contains("support")) {
            error(node.m_position,
                  "this node has no support; add \"support\" and the percentage of "
                  "messages that reach it, 0 to 100");
        }
    }

    void setChildren(NodeSyntax const& node, DTNode& record) {
        if (!node.m_given.contains("slots")) {
            fillSlots(node, record);
        } else if (!node.m_children.empty()) {
            error(node.m_position, "a node has \"slots\" or a block of children, not both");
        }
        if (!node.m_given.contains("child-count")) {
            record.childCount = static_cast<std::int32_t>(node.m_children.size());
        }
    }

    void fillSlots(NodeSyntax const& node, DTNode& record) {
        if (node.m_children.size() > record.children.size()) {
            error(node.m_children[record.children.size()].m_position,
                  "a node has at most 10 children; split its block with a test above");
            return;
        }
        for (std::size_t i = 0; i < node.m_children.size(); ++i) {
            auto const& child = node.m_children[i];
            record.children[i] = child.m_node ? *child.m_node->m_number : child.m_reference;
        }
    }

    void rejectUnloadable(NodeSyntax const& node, DTNode const& record) {
        if (!isCheckedNode(*node.m_number)) {
            return; // the loader does not look at these
        }
        if (!isLoadedAttribute(record.attribute)) {
            error(node.m_conditionPosition, "attribute " + std::to_string(record.attribute) +
                                                " does not exist; they go from 0 "
                                                "to " +
                                                std::to_string(maxAttribute));
        }
        if (!isLoadedTest(record.test)) {
            error(node.m_conditionPosition, "a test number above 1 is refused by every engine; "
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
