// SPDX-License-Identifier: Apache-2.0
#include "rules/language/EliteParser.h"

#include "rules/language/Conditions.h"

namespace Quorvane::Rules {

namespace {

std::optional<std::int32_t> s_selectMode(std::string_view word) {
    if (word == "first") {
        return SelectMode::first;
    }
    if (word == "last") {
        return SelectMode::last;
    }
    if (word == "highest") {
        return SelectMode::highest;
    }
    if (word == "lowest") {
        return SelectMode::lowest;
    }
    return std::nullopt;
}

std::int32_t s_alsoTree(TokenReader& in) {
    auto const hasNumber = in.onLine() && in.peek().m_kind == Token::Kind::number;
    return hasNumber ? in.integer("a number is expected") : 1;
}

void s_headerOption(TokenReader& in, EliteHeaderSyntax& header) {
    auto const word = in.next();
    if (auto const mode = s_selectMode(word.m_text)) {
        setOnce(in, header.m_selectMode, word, *mode);
    } else if (word.is("select")) {
        setOnce(in, header.m_selectMode, word, in.integer("a mode is expected, 1 to 4"));
    } else if (word.is("also-tree")) {
        setOnce(in, header.m_alsoWalkTree, word, s_alsoTree(in));
    } else if (word.is("count")) {
        setOnce(in, header.m_count, word, in.integer("a number of rules is expected"));
    } else if (word.is("reserved1")) {
        setOnce(in, header.m_reserved1, word, in.integer("a number is expected"));
    } else if (word.is("reserved2")) {
        setOnce(in, header.m_reserved2, word, in.integer("a number is expected"));
    } else if (word.is("reserved3")) {
        setOnce(in, header.m_reserved3, word, in.hex("a text of hexadecimal digits is expected"));
    } else {
        rejectWord(in, word,
                   {"first", "last", "highest", "lowest", "also-tree", "select", "count",
                    "reserved1", "reserved2", "reserved3"},
                   "the elite line");
    }
}

std::int32_t s_code(TokenReader& in) {
    if (in.onLine() && in.peek().m_kind == Token::Kind::character) {
        auto const text = in.next().m_text; // empty when the quotes were, which is reported
        return text.empty() ? 0 : static_cast<unsigned char>(text[0]);
    }
    return in.integer("a code is expected, a number or a character as in 'd'");
}

void s_ruleOption(TokenReader& in, EliteRuleSyntax& rule) {
    auto const word = in.next();
    if (word.is("code")) {
        setOnce(in, rule.m_code, word, s_code(in));
    } else if (word.is("support")) {
        setOnce(in, rule.m_support, word, in.number("a percentage from 0 to 100 is expected"));
    } else if (word.is("level")) {
        setOnce(in, rule.m_level, word, in.integer("a level is expected"));
    } else if (word.is("flag")) {
        setOnce(in, rule.m_flag, word, in.integer("a flag is expected"));
    } else if (word.is("reserved")) {
        setOnce(in, rule.m_reserved, word, in.integer("a number is expected"));
    } else if (word.is("conditions")) {
        setOnce(in, rule.m_conditionCount, word, in.integer("a number of conditions is expected"));
    } else {
        rejectWord(in, word,
                   {"code", "support", "level", "flag", "when", "always", "reserved", "conditions"},
                   "an elite rule");
    }
}

void s_conditionList(TokenReader& in, EliteRuleSyntax& rule) {
    rule.m_conditions.push_back(parseCondition(in));
    while (in.acceptOnLine("and")) {
        in.joinNextLine();
        rule.m_conditions.push_back(parseCondition(in));
    }
    if (in.onLine()) {
        in.fail("\"and\" or the end of the line is expected");
    }
}

void s_ruleBody(TokenReader& in, EliteRuleSyntax& rule) {
    while (in.onLine() && !in.peek().is("when") && !in.peek().is("always")) {
        s_ruleOption(in, rule);
    }
    if (in.acceptOnLine("when")) {
        s_conditionList(in, rule);
    } else {
        in.expect("always", "\"when\" and conditions, or \"always\", is expected");
        if (in.onLine()) {
            in.fail("the end of the line is expected");
        }
    }
}

std::int32_t s_type(TokenReader& in, Token const& keyword) {
    if (keyword.is("adjust")) {
        return EliteType::adjusting;
    }
    return keyword.is("decide") ? EliteType::deciding : in.integer("a type is expected");
}

} // namespace

EliteHeaderSyntax parseEliteHeader(TokenReader& in, Token const& keyword) {
    EliteHeaderSyntax header;
    header.m_position = keyword.m_position;
    while (in.onLine()) {
        s_headerOption(in, header);
    }
    if (!header.m_selectMode) {
        in.fail("how one of several matching rules is chosen (first, last, highest or lowest) is "
                "expected");
    }
    return header;
}

EliteRuleSyntax parseEliteRule(TokenReader& in, Token const& keyword) {
    EliteRuleSyntax rule;
    rule.m_position = keyword.m_position;
    rule.m_type = s_type(in, keyword);
    rule.m_weight = in.number(rule.m_type == EliteType::adjusting
                                  ? "an addend to the confidence is expected, as in 0.1"
                                  : "a confidence from 0 to 1 is expected, as in 0.97");
    s_ruleBody(in, rule);
    return rule;
}

} // namespace Quorvane::Rules
