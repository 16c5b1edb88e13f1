// SPDX-License-Identifier: Apache-2.0
#include "rules/language/Productions.h"

namespace Quorvane::Rules {

namespace {

// The root decides nothing by itself, so a text need not give its confidence.
constexpr double rootConfidence = 0.5;
constexpr double rootSupport = 100.0;
// A path longer than the table of nodes cannot be; the bound also keeps the recursion small.
constexpr int maxNesting = treeTableSize;

constexpr IntegerOption<DTNode> nodeNumbers[] = {
    {"reserved2", &DTNode::reserved2, "a number is expected"},
    {"child-count", &DTNode::childCount, "a number of children is expected"},
};

std::uint8_t s_leaf(TokenReader& in, Position place) {
    auto const leaf = in.integer("a leaf mark from 0 to 255 is expected");
    if (leaf < 0 || leaf > 255) {
        in.error(place, "a leaf mark is a number from 0 to 255");
    }
    return static_cast<std::uint8_t>(leaf);
}

void s_fact(TokenReader& in, NodeSyntax& node) {
    auto const word = in.next();
    auto& record = node.m_record;
    if (word.is("confidence")) {
        record.confidence = in.number("a confidence from 0 to 1 is expected");
    } else if (word.is("support")) {
        record.support = in.number("a percentage from 0 to 100 is expected");
    } else if (word.is("counts")) {
        record.value1 = in.integer("the number of training messages is expected");
        record.value2 = in.integer("the number of spam messages is expected");
        record.value3 = in.integer("the number of ham messages is expected");
    } else if (word.is("leaf")) {
        record.isLeaf = s_leaf(in, node.m_position);
    } else if (word.is("slots")) {
        auto children = record.children; // the record is packed: its members cannot be referred to
        for (auto& child : children) {
            child = in.integer("a node number for each of the ten slots is expected");
        }
        record.children = children;
    } else if (word.is("reserved1")) {
        record.reserved1 = parseBytes<3>(in, word, node.m_position, "a node");
    } else if (!acceptNaming(in, word, node.m_naming) &&
               !acceptInteger(in, word, record, nodeNumbers)) {
        rejectWord(in, word,
                   {"confidence", "support", "counts", "name", "because", "leaf", "child-count",
                    "slots", "reserved1", "reserved2"},
                   "a tree node");
    }
    giveOnce(in, node.m_given, word, word.m_text);
}

class TreeParser {
  public:
    TreeParser(TokenReader& in, NodeList& nodes) : m_in(in), m_nodes(nodes) {}

    NodeSyntax& addNode(Position position) {
        auto& node = m_nodes.emplace_back();
        node.m_position = position;
        node.m_record.value1 = 1;
        return node;
    }

    // condition ":" node-facts [ block ]
    void nodeBody(NodeSyntax& node, int depth) {
        auto const condition = parseCondition(m_in);
        node.m_conditionPosition = condition.m_position;
        node.m_record.attribute = condition.m_test.attribute;
        node.m_record.test = condition.m_test.test;
        node.m_record.testValue = condition.m_test.value;
        m_in.expect(":", "\":\" after the condition is expected");
        factsAndBlock(node, depth);
    }

    // node-facts [ block ]
    void factsAndBlock(NodeSyntax& node, int depth) {
        while (hasFact()) {
            s_fact(m_in, node);
        }
        blockIfAny(node, depth);
    }

    void blockIfAny(NodeSyntax& node, int depth) {
        if (m_in.onLine() && m_in.peek().is("{")) {
            block(node, depth);
        }
    }

  private:
    bool hasFact() {
        bool const isFact = m_in.onLine() && !m_in.peek().is("{") && !m_in.peek().is("}");
        return isFact || continuesWithNaming(m_in);
    }

    // "{" { child } "}"
    void block(NodeSyntax& node, int depth) {
        auto const open = m_in.next();
        if (depth >= maxNesting) {
            m_in.error(open.m_position, "nested deeper than a tree of " +
                                            std::to_string(maxTreeNodes) + " nodes can be");
            throw TextFailed();
        }
        node.m_hasBlock = true;
        while (!m_in.accept("}")) {
            if (m_in.atEnd()) {
                m_in.error(open.m_position, "this \"{\" has no \"}\"");
                throw TextFailed();
            }
            childOrSkip(node, depth + 1);
        }
    }

    void childOrSkip(NodeSyntax& node, int depth) {
        try {
            node.m_children.push_back(child(depth));
        } catch (StatementFailed const&) {
            m_in.skipStatement();
            NodeSyntax forgotten;
            blockIfAny(forgotten, depth);
        }
    }

    // A child may begin a line or follow "{" or another child on the line.
    ChildSyntax child(int depth) {
        m_in.joinNextLine();
        auto const position = m_in.peek().m_position;
        if (m_in.accept("->")) {
            return {position, m_in.integer("the number of a node is expected"), nullptr};
        }
        auto& node = addNode(position);
        if (m_in.accept("node")) {
            node.m_number = m_in.integer("the number of the node is expected");
        }
        nodeBody(node, depth);
        return {position, 0, &node};
    }

    TokenReader& m_in;
    NodeList& m_nodes;
};

} // namespace

void parseTree(TokenReader& in, Token const& keyword, NodeList& nodes) {
    TreeParser parser(in, nodes);
    auto& root = parser.addNode(keyword.m_position);
    root.m_isRoot = true;
    root.m_number = treeRoot;
    root.m_record.confidence = rootConfidence;
    root.m_record.support = rootSupport;
    if (in.acceptOnLine("when")) {
        parser.nodeBody(root, 0);
    } else {
        parser.factsAndBlock(root, 0);
    }
}

void parseLooseNode(TokenReader& in, Token const& keyword, NodeList& nodes) {
    TreeParser parser(in, nodes);
    auto& node = parser.addNode(keyword.m_position);
    node.m_number = in.integer("the number of the node is expected");
    parser.nodeBody(node, 0);
}

void parseStrayBlock(TokenReader& in) {
    NodeList forgotten(1);
    TreeParser(in, forgotten).blockIfAny(forgotten.front(), 0);
}

} // namespace Quorvane::Rules
