// SPDX-License-Identifier: Apache-2.0
#include "rules/format/RuleTests.h"
#include "rules/format/ValueWords.h"
#include "rules/language/Nearest.h"
#include "rules/language/Productions.h"

namespace Quorvane::Rules {

namespace {

constexpr std::int32_t unknownAttribute = -1;

// One member of each row.
template<typename Table, typename Row>
std::vector<std::string_view> s_column(Table const& table, std::string_view Row::*member) {
    std::vector<std::string_view> column;
    column.reserve(std::size(table));
    for (auto const& row : table) {
        column.push_back(row.*member);
    }
    return column;
}

std::int32_t s_attributeByName(TokenReader& in, Token const& name) {
    if (auto const index = attributeIndex(name.m_text)) {
        return static_cast<std::int32_t>(*index);
    }
    auto const hint = didYouMean(name.m_text, s_column(attributeTable, &AttributeFacts::m_name));
    in.error(name.m_position,
             "unknown attribute \"" + std::string(name.m_text) + '"' +
                 (hint.empty() ? "; \"qvrules attributes\" lists the names" : hint));
    return unknownAttribute;
}

std::int32_t s_attribute(TokenReader& in) {
    std::string const what = "the name or the number of an attribute is expected";
    if (in.onLine() && in.peek().m_kind == Token::Kind::number) {
        return in.integer(what);
    }
    return s_attributeByName(in, in.expectKind(Token::Kind::word, what));
}

std::int32_t s_operator(TokenReader& in) {
    if (in.acceptOnLine("==")) {
        return Comparison::equals;
    }
    if (in.acceptOnLine("!=")) {
        return Comparison::differs;
    }
    if (!in.acceptOnLine("test")) {
        in.fail("== or != is expected");
    }
    in.expect("(", "\"(\" is expected");
    auto const test = in.integer("the number of a test is expected");
    in.expect(")", "\")\" is expected");
    return test;
}

// The code of a word that the attribute takes; of any word when nothing is known of the attribute.
std::optional<std::int32_t> s_codeOf(std::string_view text, std::int32_t attribute) {
    if (isAttribute(attribute)) {
        return wordValue(attributeTable[static_cast<std::size_t>(attribute)], text);
    }
    auto const* const found = std::find_if(valueWords.begin(), valueWords.end(),
                                           [&](auto const& word) { return word.m_word == text; });
    return found == valueWords.end() ? std::nullopt : std::optional(found->m_code);
}

std::int32_t s_wordValue(TokenReader& in, Token const& word, std::int32_t attribute) {
    if (auto const code = s_codeOf(word.m_text, attribute)) {
        return *code;
    }
    auto const text = '"' + std::string(word.m_text) + '"';
    auto const isSlip = !s_codeOf(word.m_text, unknownAttribute);
    auto const hint =
        isSlip ? didYouMean(word.m_text, s_column(valueWords, &ValueWord::m_word)) : "";
    if (!isAttribute(attribute)) {
        in.error(word.m_position, "unknown value " + text + hint);
        return 0;
    }
    auto const& facts = attributeTable[static_cast<std::size_t>(attribute)];
    in.error(word.m_position, std::string(facts.m_name) + " has no value " + text + "; it takes " +
                                  valueChoices(facts) + hint);
    return 0;
}

std::int32_t s_value(TokenReader& in, std::int32_t attribute) {
    std::string const what = "a value is expected, a word or a number";
    if (in.onLine() && in.peek().m_kind == Token::Kind::word) {
        return s_wordValue(in, in.next(), attribute);
    }
    return in.integer(what);
}

} // namespace

ConditionSyntax parseCondition(TokenReader& in) {
    ConditionSyntax condition;
    condition.m_position = in.peek().m_position;
    condition.m_test.attribute = s_attribute(in);
    condition.m_test.test = s_operator(in);
    condition.m_test.value = s_value(in, condition.m_test.attribute);
    return condition;
}

void rejectWord(TokenReader& in, Token const& word, std::vector<std::string_view> const& known,
                std::string const& where) {
    auto hint = didYouMean(word.m_text, known);
    if (hint.empty()) {
        hint = "; it takes";
        for (auto const name : known) {
            hint += (hint == "; it takes" ? " " : ", ") + std::string(name);
        }
    }
    in.fail(word.m_position, "unexpected \"" + std::string(word.m_text) + "\" in " + where + hint);
}

void giveOnce(TokenReader& in, GivenWords& given, Token const& word, std::string_view option) {
    if (!given.insert(option).second) {
        in.error(word.m_position, '"' + std::string(word.m_text) + "\" is given twice; keep one");
    }
}

} // namespace Quorvane::Rules
