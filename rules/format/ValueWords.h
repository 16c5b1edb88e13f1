// SPDX-License-Identifier: Apache-2.0
//
// The words for attribute values: what people read and write instead of 0, 1, 2, 3 and 8. The rule
// language, the checker and every display of a test use this one list.
#pragma once

#include "rules/format/AttributeTable.h"

#include <optional>
#include <string>
#include <string_view>

namespace Quorvane {

struct ValueWord {
    std::string_view m_word;
    std::int32_t m_code;
};

inline constexpr std::array<ValueWord, 6> valueWords{{
    {"no", Code::no},
    {"yes", Code::yes},
    {"unknown", Code::unknown},
    {"literal", Code::literal},
    {"not-analysed", Code::notAnalysed},
    {"n/a", Code::notApplicable},
}};

// Whether 2 means "an address literal" in this attribute, and not "unknown".
constexpr bool hasLiteralValue(std::size_t attribute) {
    return attribute == Attribute::firstHeloResolves || attribute == Attribute::firstHeloDynamic ||
           attribute == Attribute::deepHeloDynamic;
}

// Whether `word` means a value of this attribute. An open attribute also takes other numbers, but
// no other words.
constexpr bool takesWord(AttributeFacts const& facts, ValueWord const& word) {
    AttributeValues const listed{facts.m_values.m_codes};
    if (facts.m_values.m_isCounter || !listed.contains(word.m_code)) {
        return false;
    }
    if (word.m_code == Code::unknown) {
        return (word.m_word == "literal") == hasLiteralValue(facts.m_index);
    }
    return true;
}

// The word for a value of an attribute; empty when there is none and the number is shown.
constexpr std::string_view valueWord(std::size_t attribute, std::int32_t value) {
    if (attribute < attributeCount) {
        for (auto const& word : valueWords) {
            if (word.m_code == value && takesWord(attributeTable[attribute], word)) {
                return word.m_word;
            }
        }
    }
    return {};
}

// The value that a word means in an attribute; empty when the attribute does not take the word.
constexpr std::optional<std::int32_t> wordValue(AttributeFacts const& facts,
                                                std::string_view text) {
    for (auto const& word : valueWords) {
        if (word.m_word == text && takesWord(facts, word)) {
            return word.m_code;
        }
    }
    return std::nullopt;
}

// The word for a value, or its number.
inline std::string valueText(std::size_t attribute, std::int32_t value) {
    auto const word = valueWord(attribute, value);
    return word.empty() ? std::to_string(value) : std::string(word);
}

// The values that an attribute takes, for people: "yes, no or unknown", "0, 1, 2, ...".
inline std::string valueChoices(AttributeFacts const& facts) {
    if (facts.m_values.m_isCounter) {
        return "a number from 0 on";
    }
    std::string text;
    for (auto const& word : valueWords) {
        if (takesWord(facts, word)) {
            text += (text.empty() ? "" : ", ") + std::string(word.m_word);
        }
    }
    return facts.m_values.m_isOpen ? text + " or any number" : text;
}

} // namespace Quorvane
