// SPDX-License-Identifier: Apache-2.0
#include "rules/language/Parser.h"

#include "rules/language/Productions.h"

namespace Quorvane::Rules {

namespace {

class Parser {
  public:
    Parser(std::string_view text, std::vector<Diagnostic>& errors)
        : m_in(tokenize(text, errors), errors) {}

    RulesSyntax run() {
        try {
            while (!m_in.atEnd()) {
                statementOrSkip();
            }
        } catch (TextFailed const&) {
            // What was found so far is reported.
        }
        return std::move(m_rules);
    }

  private:
    void statementOrSkip() {
        try {
            statement();
            endOfStatement();
        } catch (StatementFailed const&) {
            m_in.skipStatement();
            parseStrayBlock(m_in);
            if (m_in.onLine()) {
                m_in.next();
                m_in.skipStatement();
            }
        }
    }

    void endOfStatement() {
        if (m_in.onLine()) {
            m_in.fail("the end of the line is expected");
        }
    }

    void statement() {
        auto const word = m_in.next();
        if (word.is("version")) {
            m_rules.m_version = {word.m_position, m_in.integer("the version number is expected")};
            giveOnce(m_in, m_given, word, word.m_text);
        } else if (word.is("readme")) {
            append(m_rules.m_readme, word, m_in.string("a text in double quotes is expected"));
        } else if (word.is("names-file")) {
            append(m_rules.m_namesFile, word, m_in.string("a text in double quotes is expected"));
        } else if (word.is("tree")) {
            parseTree(m_in, word, m_rules.m_tree);
            giveOnce(m_in, m_given, word, word.m_text);
        } else if (word.is("node")) {
            parseLooseNode(m_in, word, m_rules.m_looseNodes);
        } else if (word.is("tree-tail")) {
            append(m_rules.m_treeTail, word, tail());
        } else {
            eliteStatement(word);
        }
    }

    void eliteStatement(Token const& word) {
        if (word.is("elite")) {
            m_rules.m_eliteHeader = parseEliteHeader(m_in, word);
            giveOnce(m_in, m_given, word, word.m_text);
        } else if (word.is("adjust") || word.is("decide") || word.is("type")) {
            m_rules.m_eliteRules.push_back(parseEliteRule(m_in, word));
        } else if (word.is("elite-tail")) {
            append(m_rules.m_eliteTail, word, tail());
        } else if (word.is("name") || word.is("because")) {
            m_in.fail(word.m_position,
                      "names stand before the conditions of an elite rule, or after "
                      "the figures of a node");
        } else if (word.is("}")) {
            m_in.fail(word.m_position,
                      "this \"}\" closes nothing; look for a \"}\" too many above");
        } else {
            rejectWord(m_in, word, {"version", "elite", "adjust", "decide", "tree"},
                       "the beginning of a line");
        }
    }

    Bytes tail() { return m_in.hex("a text of hexadecimal digits is expected"); }

    // For what may be written in several lines.
    static void append(std::optional<Placed<Bytes>>& slot, Token const& word, Bytes const& piece) {
        if (!slot) {
            slot = {word.m_position, {}};
        }
        slot->m_value += piece;
    }

    TokenReader m_in;
    RulesSyntax m_rules;
    GivenWords m_given; // statements that may be given once
};

} // namespace

RulesSyntax parseRules(std::string_view text, std::vector<Diagnostic>& errors) {
    return Parser(text, errors).run();
}

} // namespace Quorvane::Rules
