// SPDX-License-Identifier: Apache-2.0
#include "rules/language/Conditions.h"

#include "rules/format/ValueWords.h"
#include "rules/language/Literals.h"
#include "rules/language/Nearest.h"

namespace Quorvane::Rules {

namespace {

constexpr std::int32_t unknownAttribute = -1;

std::vector<std::string_view> s_attributeNames() {
    std::vector<std::string_view> names;
    names.reserve(attributeTable.size());
    for (auto const& facts : attributeTable) {
        names.push_back(facts.m_name);
    }
    return names;
}

std::int32_t s_attributeByName(TokenReader& in, Token const& name) {
    if (auto const index = attributeIndex(name.m_text)) {
        return static_cast<std::int32_t>(*index);
    }
    auto const hint = didYouMean(name.m_text, s_attributeNames());
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

std::vector<std::string_view> s_words() {
    std::vector<std::string_view> words;
    words.reserve(valueWords.size());
    for (auto const& word : valueWords) {
        words.push_back(word.m_word);
    }
    return words;
}

// The code of a word that the attribute, if it is known, may take.
std::optional<std::int32_t> s_codeOf(std::string_view text, std::int32_t attribute) {
    if (attribute >= 0 && attribute < std::int32_t{attributeCount}) {
        return wordValue(attributeTable[static_cast<std::size_t>(attribute)], text);
    }
    for (auto const& word : valueWords) {
        if (word.m_word == text) {
            return word.m_code;
        }
    }
    return std::nullopt;
}

std::int32_t s_wordValue(TokenReader& in, Token const& word, std::int32_t attribute) {
    if (auto const code = s_codeOf(word.m_text, attribute)) {
        return *code;
    }
    auto const text = '"' + std::string(word.m_text) + '"';
    if (attribute < 0 || attribute >= std::int32_t{attributeCount}) {
        in.error(word.m_position, "unknown value " + text + didYouMean(word.m_text, s_words()));
        return 0;
    }
    auto const& facts = attributeTable[static_cast<std::size_t>(attribute)];
    auto const isSlip = !s_codeOf(word.m_text, unknownAttribute);
    in.error(word.m_position, std::string(facts.m_name) + " has no value " + text + "; it takes " +
                                  valueChoices(facts) +
                                  (isSlip ? didYouMean(word.m_text, s_words()) : ""));
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

} // namespace Quorvane::Rules
