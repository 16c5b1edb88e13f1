// SPDX-License-Identifier: Apache-2.0
#include "rules/language/TreeParser.h"

#include "rules/language/Conditions.h"

namespace Quorvane::Rules {

namespace {

// A path longer than the table of nodes cannot be; the bound also keeps the recursion small.
constexpr int maxNesting = treeTableSize;

void s_block(TokenReader& in, NodeSyntax& node, int depth);

std::array<std::int32_t, 3> s_counts(TokenReader& in) {
    std::array<std::int32_t, 3> counts{};
    counts[0] = in.integer("the number of training messages is expected");
    counts[1] = in.integer("the number of spam messages is expected");
    counts[2] = in.integer("the number of ham messages is expected");
    return counts;
}

std::array<std::int32_t, maxChildren> s_slots(TokenReader& in) {
    std::array<std::int32_t, maxChildren> slots{};
    for (auto& slot : slots) {
        slot = in.integer("a node number for each of the ten slots is expected");
    }
    return slots;
}

void s_rawFact(TokenReader& in, NodeSyntax& node, Token const& word) {
    if (word.is("leaf")) {
        setOnce(in, node.m_leaf, word, in.integer("a leaf mark from 0 to 255 is expected"));
    } else if (word.is("reserved1")) {
        setOnce(in, node.m_reserved1, word, in.hex("a text of hexadecimal digits is expected"));
    } else if (word.is("reserved2")) {
        setOnce(in, node.m_reserved2, word, in.integer("a number is expected"));
    } else if (word.is("child-count")) {
        setOnce(in, node.m_childCount, word, in.integer("a number of children is expected"));
    } else if (word.is("slots")) {
        setOnce(in, node.m_slots, word, s_slots(in));
    } else {
        rejectWord(in, word,
                   {"confidence", "support", "counts", "leaf", "child-count", "slots", "reserved1",
                    "reserved2"},
                   "a tree node");
    }
}

void s_fact(TokenReader& in, NodeSyntax& node) {
    auto const word = in.next();
    if (word.is("confidence")) {
        setOnce(in, node.m_confidence, word, in.number("a confidence from 0 to 1 is expected"));
    } else if (word.is("support")) {
        setOnce(in, node.m_support, word, in.number("a percentage from 0 to 100 is expected"));
    } else if (word.is("counts")) {
        setOnce(in, node.m_counts, word, s_counts(in));
    } else {
        s_rawFact(in, node, word);
    }
}

// node-facts [ block ]
void s_factsAndBlock(TokenReader& in, NodeSyntax& node, int depth) {
    while (in.onLine() && !in.peek().is("{") && !in.peek().is("}")) {
        s_fact(in, node);
    }
    if (in.onLine() && in.peek().is("{")) {
        s_block(in, node, depth);
    }
}

// condition ":" node-facts [ block ]
void s_nodeBody(TokenReader& in, NodeSyntax& node, int depth) {
    node.m_condition = parseCondition(in);
    in.expect(":", "\":\" after the condition is expected");
    s_factsAndBlock(in, node, depth);
}

// A child may begin a line or follow "{" or another child on the line.
ChildSyntax s_child(TokenReader& in, int depth) {
    ChildSyntax child;
    in.joinNextLine();
    child.m_position = in.peek().m_position;
    child.m_node.m_position = child.m_position;
    if (in.accept("->")) {
        child.m_reference = in.integer("the number of a node is expected");
    } else {
        if (in.accept("node")) {
            child.m_node.m_number = in.integer("the number of the node is expected");
        }
        s_nodeBody(in, child.m_node, depth);
    }
    return child;
}

void s_strayBlock(TokenReader& in, int depth) {
    if (in.onLine() && in.peek().is("{")) {
        NodeSyntax forgotten;
        s_block(in, forgotten, depth);
    }
}

void s_childOrSkip(TokenReader& in, NodeSyntax& node, int depth) {
    try {
        node.m_children.push_back(s_child(in, depth));
    } catch (StatementFailed const&) {
        in.skipStatement();
        s_strayBlock(in, depth);
    }
}

// "{" { child } "}"
void s_block(TokenReader& in, NodeSyntax& node, int depth) {
    auto const open = in.next();
    if (depth >= maxNesting) {
        in.error(open.m_position,
                 "nested deeper than a tree of " + std::to_string(maxTreeNodes) + " nodes can be");
        throw TextFailed();
    }
    node.m_hasBlock = true;
    while (!in.accept("}")) {
        if (in.atEnd()) {
            in.error(open.m_position, "this \"{\" has no \"}\"");
            throw TextFailed();
        }
        s_childOrSkip(in, node, depth + 1);
    }
}

} // namespace

NodeSyntax parseTree(TokenReader& in, Token const& keyword) {
    NodeSyntax root;
    root.m_position = keyword.m_position;
    root.m_isRoot = true;
    root.m_number = treeRoot;
    if (in.acceptOnLine("when")) {
        s_nodeBody(in, root, 0);
    } else {
        s_factsAndBlock(in, root, 0);
    }
    return root;
}

NodeSyntax parseLooseNode(TokenReader& in, Token const& keyword) {
    NodeSyntax node;
    node.m_position = keyword.m_position;
    node.m_number = in.integer("the number of the node is expected");
    s_nodeBody(in, node, 0);
    return node;
}

void parseStrayBlock(TokenReader& in) {
    s_strayBlock(in, 0);
}

} // namespace Quorvane::Rules
