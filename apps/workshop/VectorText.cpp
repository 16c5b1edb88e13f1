// SPDX-License-Identifier: Apache-2.0
#include "apps/workshop/VectorText.h"

#include "rules/format/ValueWords.h"
#include "rules/language/Literals.h"
#include "rules/language/Nearest.h"
#include "rules/model/RuleError.h"

#include <algorithm>
#include <string>
#include <vector>

namespace Quorvane::Workshop {

namespace {

[[noreturn]] void s_fail(std::string const& text) {
    throw Rules::RuleError(Rules::RuleError::Kind::badData, text);
}

std::string s_quoted(std::string_view text) {
    return '"' + std::string(text) + '"';
}

std::string_view s_trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t";
    auto const begin = std::min(text.find_first_not_of(blanks), text.size());
    text.remove_prefix(begin);
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

AttributeFacts const& s_factsOf(std::string_view name) {
    if (auto const index = attributeIndex(name)) {
        return attributeTable[*index];
    }
    std::vector<std::string_view> names;
    names.reserve(attributeCount);
    for (auto const& facts : attributeTable) {
        names.push_back(facts.m_name);
    }
    s_fail("no attribute is called " + s_quoted(name) + "; \"qvrules attributes\" lists them" +
           Rules::didYouMean(name, names));
}

std::vector<std::string_view> s_wordsOf(AttributeFacts const& facts) {
    std::vector<std::string_view> words;
    for (auto const& word : valueWords) {
        if (takesWord(facts, word)) {
            words.push_back(word.m_word);
        }
    }
    return words;
}

} // namespace

NamedVector::NamedVector() {
    for (auto const& facts : attributeTable) {
        m_vector[facts.m_index] = facts.m_start;
    }
}

void NamedVector::set(std::string_view name, std::string_view value) {
    auto const& facts = s_factsOf(name);
    auto found = wordValue(facts, value);
    if (!found) {
        found = Rules::parseInteger(value);
    }
    if (!found || !facts.m_values.contains(*found)) {
        s_fail(std::string(name) + " has no value " + s_quoted(value) + "; it takes " +
               valueChoices(facts) + Rules::didYouMean(value, s_wordsOf(facts)));
    }
    if (m_isNamed[facts.m_index]) {
        s_fail(std::string(name) + " is given twice; keep one");
    }
    m_isNamed[facts.m_index] = true;
    m_vector[facts.m_index] = *found;
}

Rules::AttributeVector NamedVector::vector() const {
    auto vector = m_vector;
    bool const isPresent = hasDeepHop();
    for (auto const& facts : attributeTable) {
        auto const without = valueWithoutDeepHop(facts);
        if (without && !isPresent && !m_isNamed[facts.m_index]) {
            vector[facts.m_index] = *without;
        }
    }
    if (isPresent && !m_isNamed[Attribute::hopBehindFirst]) {
        vector[Attribute::hopBehindFirst] = Code::yes;
    }
    return vector;
}

bool NamedVector::hasDeepHop() const {
    bool isDescribed = false;
    for (auto const& facts : attributeTable) {
        auto const without = valueWithoutDeepHop(facts);
        if (without && m_isNamed[facts.m_index]) {
            isDescribed = true;
            if (m_vector[facts.m_index] != *without) {
                return true;
            }
        }
    }
    return !isDescribed && m_vector[Attribute::hopBehindFirst] == Code::yes;
}

Rules::AttributeVector parseVector(std::string_view text) {
    NamedVector vector;
    while (!text.empty()) {
        auto const part = text.substr(0, text.find(','));
        text.remove_prefix(std::min(part.size() + 1, text.size()));
        auto const equals = part.find('=');
        if (equals == std::string_view::npos) {
            s_fail(s_quoted(s_trimmed(part)) +
                   " is not NAME=VALUE, as in first_helo_dynamic=yes,hop_behind_first=no");
        }
        vector.set(s_trimmed(part.substr(0, equals)), s_trimmed(part.substr(equals + 1)));
    }
    return vector.vector();
}

} // namespace Quorvane::Workshop
