// SPDX-License-Identifier: Apache-2.0
#include "rules/language/Parser.h"

#include "rules/language/Conditions.h"
#include "rules/language/EliteParser.h"
#include "rules/language/TokenReader.h"
#include "rules/language/TreeParser.h"

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
            place(m_rules.m_version, word, m_in.integer("the version number is expected"));
        } else if (word.is("readme")) {
            readme(word);
        } else if (word.is("tree")) {
            setOnce(m_in, m_rules.m_tree, word, parseTree(m_in, word));
        } else if (word.is("node")) {
            m_rules.m_looseNodes.push_back(parseLooseNode(m_in, word));
        } else if (word.is("tree-tail")) {
            tail(m_rules.m_treeTail, word);
        } else {
            eliteStatement(word);
        }
    }

    void eliteStatement(Token const& word) {
        if (word.is("elite")) {
            setOnce(m_in, m_rules.m_eliteHeader, word, parseEliteHeader(m_in, word));
        } else if (word.is("adjust") || word.is("decide") || word.is("type")) {
            m_rules.m_eliteRules.push_back(parseEliteRule(m_in, word));
        } else if (word.is("elite-tail")) {
            tail(m_rules.m_eliteTail, word);
        } else if (word.is("}")) {
            m_in.fail(word.m_position,
                      "this \"}\" closes nothing; look for a \"}\" too many above");
        } else {
            rejectWord(m_in, word, {"version", "elite", "adjust", "decide", "tree"},
                       "the beginning of a line");
        }
    }

    template<typename T>
    void place(std::optional<Placed<T>>& slot, Token const& word, T value) {
        setOnce(m_in, slot, word, Placed<T>{word.m_position, std::move(value)});
    }

    void readme(Token const& word) {
        auto const piece = m_in.string("a text in double quotes is expected");
        if (!m_rules.m_readme) {
            m_rules.m_readme = Placed<Bytes>{word.m_position, {}};
        }
        m_rules.m_readme->m_value += piece;
    }

    void tail(std::optional<Placed<Bytes>>& slot, Token const& word) {
        auto const piece = m_in.hex("a text of hexadecimal digits is expected");
        if (!slot) {
            slot = Placed<Bytes>{word.m_position, {}};
        }
        slot->m_value += piece;
    }

    TokenReader m_in;
    RulesSyntax m_rules;
};

} // namespace

RulesSyntax parseRules(std::string_view text, std::vector<Diagnostic>& errors) {
    return Parser(text, errors).run();
}

} // namespace Quorvane::Rules
