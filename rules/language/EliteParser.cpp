// SPDX-License-Identifier: Apache-2.0
#include "rules/language/Literals.h"
#include "rules/language/Productions.h"

namespace Quorvane::Rules {

namespace {

// A rule written by hand has no training counts; it counts as always supported.
constexpr double decidingSupport = 100.0;

constexpr IntegerOption<EliteFileHeader> headerNumbers[] = {
    {"count", &EliteFileHeader::nodeCount, "a number of rules is expected"},
    {"reserved1", &EliteFileHeader::reserved1, "a number is expected"},
    {"reserved2", &EliteFileHeader::reserved2, "a number is expected"},
};

constexpr IntegerOption<EliteRecord> ruleNumbers[] = {
    {"level", &EliteRecord::level, "a level is expected"},
    {"flag", &EliteRecord::flag, "a flag is expected"},
    {"reserved", &EliteRecord::reserved, "a number is expected"},
    {"conditions", &EliteRecord::conditionCount, "a number of conditions is expected"},
};

std::int32_t s_alsoTree(TokenReader& in) {
    auto const hasNumber = in.onLine() && in.peek().m_kind == Token::Kind::number;
    return hasNumber ? in.integer("a number is expected") : 1;
}

void s_headerOption(TokenReader& in, EliteHeaderSyntax& syntax) {
    auto const word = in.next();
    auto& header = syntax.m_header;
    auto option = word.m_text;
    auto const* const select = std::find(selectWords.begin(), selectWords.end(), word.m_text);
    if (select != selectWords.end()) {
        header.selectMode = static_cast<std::int32_t>(select - selectWords.begin()) + 1;
        option = "select";
    } else if (word.is("select")) {
        header.selectMode = in.integer("a mode is expected, 1 to 4");
    } else if (word.is("also-tree")) {
        header.alsoWalkTree = s_alsoTree(in);
    } else if (word.is("reserved3")) {
        header.reserved3 = parseBytes<12>(in, word, syntax.m_position, "the elite line");
    } else if (!acceptInteger(in, word, header, headerNumbers)) {
        rejectWord(in, word,
                   {"first", "last", "highest", "lowest", "also-tree", "select", "count",
                    "reserved1", "reserved2", "reserved3"},
                   "the elite line");
    }
    giveOnce(in, syntax.m_given, word, option);
}

std::int32_t s_code(TokenReader& in) {
    if (in.onLine() && in.peek().m_kind == Token::Kind::character) {
        auto const text = in.next().m_text; // empty when the quotes were, which is reported
        return text.empty() ? 0 : static_cast<unsigned char>(text[0]);
    }
    return in.integer("a code is expected, a number or a character as in 'd'");
}

void s_ruleOption(TokenReader& in, EliteRuleSyntax& syntax) {
    auto const word = in.next();
    EliteRecord& rule = syntax.m_rule;
    if (word.is("code")) {
        rule.code = s_code(in);
    } else if (word.is("support")) {
        rule.support = in.number("a percentage from 0 to 100 is expected");
    } else if (!acceptNaming(in, word, syntax.m_naming) &&
               !acceptInteger(in, word, rule, ruleNumbers)) {
        rejectWord(in, word,
                   {"code", "support", "level", "name", "because", "flag", "when", "always",
                    "reserved", "conditions"},
                   "an elite rule");
    }
    giveOnce(in, syntax.m_given, word, word.m_text);
}

void s_condition(TokenReader& in, EliteRuleSyntax& syntax) {
    auto const condition = parseCondition(in);
    syntax.m_rule.conditions.push_back(condition.m_test);
    syntax.m_conditionPlaces.push_back(condition.m_position);
}

void s_conditionList(TokenReader& in, EliteRuleSyntax& syntax) {
    s_condition(in, syntax);
    while (in.acceptOnLine("and")) {
        in.joinNextLine();
        s_condition(in, syntax);
    }
    if (in.onLine()) {
        in.fail("\"and\" or the end of the line is expected");
    }
}

// A line that begins with the conditions continues the rule; it is joined then.
bool s_areConditionsNext(TokenReader& in) {
    if (!in.peek().is("when") && !in.peek().is("always")) {
        return false;
    }
    in.joinNextLine();
    return true;
}

void s_ruleBody(TokenReader& in, EliteRuleSyntax& syntax) {
    while (!s_areConditionsNext(in) && (in.onLine() || continuesWithNaming(in))) {
        s_ruleOption(in, syntax);
    }
    if (in.acceptOnLine("when")) {
        s_conditionList(in, syntax);
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
    EliteHeaderSyntax header{keyword.m_position, {}, {}};
    while (in.onLine()) {
        s_headerOption(in, header);
    }
    if (!header.m_given.contains("select")) {
        in.fail("how one of several matching rules is chosen (first, last, highest or lowest) is "
                "expected");
    }
    return header;
}

EliteRuleSyntax parseEliteRule(TokenReader& in, Token const& keyword) {
    EliteRuleSyntax syntax;
    syntax.m_position = keyword.m_position;
    auto& rule = syntax.m_rule;
    rule.type = s_type(in, keyword);
    rule.weight = in.number(rule.type == EliteType::adjusting
                                ? "an addend to the confidence is expected, as in 0.1"
                                : "a confidence from 0 to 1 is expected, as in 0.97");
    rule.support = rule.type == EliteType::deciding ? decidingSupport : 0.0;
    s_ruleBody(in, syntax);
    return syntax;
}

} // namespace Quorvane::Rules
