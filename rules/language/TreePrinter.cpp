// SPDX-License-Identifier: Apache-2.0
#include "rules/format/RuleTests.h"
#include "rules/language/Printers.h"
#include "rules/language/RuleText.h"

#include <algorithm>
#include <set>
#include <utility>

namespace Quorvane::Rules {

namespace {

// No tree that loads is deeper; a chain of nodes in a file that does not must not exhaust the
// stack.
constexpr int maxDepth = maxTreeNodes;

// Whether a block can say the children: their number is possible, and the slots after
// them are empty.
bool s_hasOrdinaryChildren(DTNode const& node) {
    if (node.childCount < 0 || node.childCount > maxChildren) {
        return false;
    }
    return std::all_of(node.children.begin() + node.childCount, node.children.end(),
                       [](std::int32_t slot) { return slot == 0; });
}

// Which nodes are written where. A node is nested at the first place that names it, in reading
// order from the root. Nodes that no place names are written apart, and so are records 0 and 1 if
// they hold anything.
class Layout {
  public:
    explicit Layout(std::vector<DTNode> const& nodes) : m_nodes(nodes), m_isPlaced(nodes.size()) {
        if (nodes.size() > treeRoot) {
            m_isPlaced[treeRoot] = true;
            placeChildren(treeRoot, 0);
        }
        placeLoose();
    }

    // Whether this slot is where the node that it names is written.
    bool isNestedAt(std::int32_t parent, int slot) const {
        return m_nested.count({parent, slot}) != 0;
    }

    std::vector<std::int32_t> const& looseNodes() const { return m_loose; }

    // Whether the compiler would give the nested nodes the numbers that they have.
    bool isNumberedInOrder() const { return m_isInOrder; }

  private:
    void placeChildren(std::int32_t number, int depth) {
        auto const& node = m_nodes[static_cast<std::size_t>(number)];
        if (!s_hasOrdinaryChildren(node) || depth == maxDepth) {
            return;
        }
        for (int slot = 0; slot < node.childCount; ++slot) {
            placeChild(number, slot, node.children[static_cast<std::size_t>(slot)], depth + 1);
        }
    }

    void placeChild(std::int32_t parent, int slot, std::int32_t child, int depth) {
        auto const isRecord = child > treeRoot && std::cmp_less(child, m_nodes.size());
        if (!isRecord || m_isPlaced[static_cast<std::size_t>(child)]) {
            return;
        }
        m_isPlaced[static_cast<std::size_t>(child)] = true;
        m_nested.emplace(parent, slot);
        m_isInOrder = m_isInOrder && child == m_next++;
        placeChildren(child, depth);
    }

    bool isWorthWriting(std::int32_t number) const {
        auto const& node = m_nodes[static_cast<std::size_t>(number)];
        auto const isLast = std::cmp_equal(number + 1, m_nodes.size());
        return number > treeRoot || isLast || !sameBits(node, DTNode{});
    }

    void placeLoose() {
        auto const count = static_cast<std::int32_t>(m_nodes.size());
        for (std::int32_t number = 0; number < count; ++number) {
            if (!m_isPlaced[static_cast<std::size_t>(number)] && isWorthWriting(number)) {
                m_isPlaced[static_cast<std::size_t>(number)] = true;
                m_loose.push_back(number);
                m_isInOrder = m_isInOrder && number < treeRoot;
                placeChildren(number, 0);
            }
        }
    }

    std::vector<DTNode> const& m_nodes;
    std::vector<bool> m_isPlaced;
    std::set<std::pair<std::int32_t, int>> m_nested;
    std::vector<std::int32_t> m_loose;
    std::int32_t m_next = treeRoot + 1;
    bool m_isInOrder = true;
};

class TreePrinter {
  public:
    TreePrinter(std::vector<DTNode> const& nodes, NamePrinter& names)
        : m_nodes(nodes), m_names(names), m_layout(nodes) {}

    std::string run() {
        if (m_nodes.size() > treeRoot) {
            root();
        }
        for (auto const number : m_layout.looseNodes()) {
            node(number, "node " + std::to_string(number) + ' ', 0);
        }
        return std::move(m_text);
    }

  private:
    DTNode const& at(std::int32_t number) const {
        return m_nodes[static_cast<std::size_t>(number)];
    }

    void root() {
        auto const& record = at(treeRoot);
        m_text += "tree";
        if (record.attribute != 0 || record.test != Comparison::equals || record.testValue != 0) {
            m_text += " when " + conditionText(testOf(record)) + ':';
        }
        if (!sameBits(record.confidence, 0.5)) {
            m_text += " confidence " + numberText(record.confidence);
        }
        if (!sameBits(record.support, 100.0)) {
            m_text += " support " + numberText(record.support);
        }
        restOf(treeRoot, 0);
    }

    void node(std::int32_t number, std::string const& prefix, int depth) {
        auto const& record = at(number);
        m_text += indent(depth) + prefix + conditionText(testOf(record)) + ": confidence " +
                  numberText(record.confidence) + " support " + numberText(record.support);
        restOf(number, depth);
    }

    // What follows the supports: the other facts and the block.
    void restOf(std::int32_t number, int depth) {
        auto const& record = at(number);
        auto const hasBlock = s_hasOrdinaryChildren(record) && record.childCount > 0;
        counts(record);
        printUnless(m_text, "leaf", int{record.isLeaf}, hasBlock ? 0 : 1);
        printUnlessZero(m_text, "reserved1", record.reserved1);
        printUnless(m_text, "reserved2", +record.reserved2, 0);
        if (!hasBlock) {
            rawChildren(record);
        }
        m_text += m_names.lines({RuleKey::Kind::node, number}, indent(depth + 1).size());
        if (hasBlock) {
            block(number, depth);
        }
        m_text += '\n';
    }

    void counts(DTNode const& record) {
        if (record.value1 != 1 || record.value2 != 0 || record.value3 != 0) {
            m_text += " counts " + std::to_string(record.value1) + ' ' +
                      std::to_string(record.value2) + ' ' + std::to_string(record.value3);
        }
    }

    void rawChildren(DTNode const& record) {
        printUnless(m_text, "child-count", +record.childCount, 0);
        if (record.children == DTNode{}.children) {
            return;
        }
        m_text += " slots";
        for (auto const slot : record.children) {
            m_text += ' ' + std::to_string(slot);
        }
    }

    void block(std::int32_t number, int depth) {
        m_text += " {\n";
        auto const& record = at(number);
        for (int slot = 0; slot < record.childCount; ++slot) {
            child(number, slot, depth + 1);
        }
        m_text += indent(depth) + '}';
    }

    void child(std::int32_t parent, int slot, int depth) {
        auto const number = at(parent).children[static_cast<std::size_t>(slot)];
        if (!m_layout.isNestedAt(parent, slot)) {
            m_text += indent(depth) + "-> " + std::to_string(number) + '\n';
            return;
        }
        auto const needsNumber = !m_layout.isNumberedInOrder();
        node(number, needsNumber ? "node " + std::to_string(number) + ' ' : "", depth);
    }

    static std::string indent(int depth) {
        return std::string(static_cast<std::size_t>(depth) * indentWidth, ' ');
    }

    std::vector<DTNode> const& m_nodes;
    NamePrinter& m_names;
    Layout m_layout;
    std::string m_text;
};

} // namespace

std::string treeText(RuleSet const& set, NamePrinter& names) {
    auto text = TreePrinter(set.m_nodes, names).run();
    return set.m_treeTail.empty() ? text : text + hexLines("tree-tail", set.m_treeTail);
}

} // namespace Quorvane::Rules
