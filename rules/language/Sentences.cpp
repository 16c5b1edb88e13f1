// SPDX-License-Identifier: Apache-2.0
#include "rules/language/Sentences.h"

#include "rules/format/AttributeTable.h"
#include "rules/format/RuleTests.h"

#include <algorithm>

namespace Quorvane::Rules {

namespace {

Sentence const& s_find(std::size_t attribute, std::int32_t value) {
    auto const& table = sentenceTable();
    // Every attribute has a row without value.
    return *std::find_if(table.begin(), table.end(), [&](Sentence const& sentence) {
        return sentence.m_attribute == attribute && sentence.m_value.value_or(value) == value;
    });
}

std::string s_withValue(std::string sentence, std::int32_t value) {
    constexpr std::string_view place = "{value}";
    if (auto const at = sentence.find(place); at != std::string::npos) {
        sentence.replace(at, place.size(), std::to_string(value));
    }
    return sentence;
}

} // namespace

std::string valueSentence(std::int32_t attribute, std::int32_t value) {
    return testSentence(attribute, Comparison::equals, value);
}

std::string testSentence(std::int32_t attribute, std::int32_t test, std::int32_t value) {
    if (!isAttribute(attribute)) {
        return "attribute " + std::to_string(attribute) +
               (isEqualityTest(test) ? " is " : " is not ") + std::to_string(value);
    }
    auto const& sentence = s_find(static_cast<std::size_t>(attribute), value);
    return s_withValue(isEqualityTest(test) ? sentence.m_is : sentence.m_isNot, value);
}

std::string fillSentence(std::string_view sentence, SentenceNames const& names) {
    std::string text;
    while (true) {
        auto const open = sentence.find('{');
        text += sentence.substr(0, open);
        auto const close = sentence.find('}', std::min(open, sentence.size()));
        if (close == std::string_view::npos) {
            return text.append(sentence.substr(std::min(open, sentence.size())));
        }
        auto const known = names.find(sentence.substr(open + 1, close - open - 1));
        sentence.remove_prefix(close + 1);
        if (known != names.end()) {
            text += ", " + known->second + (sentence.substr(0, 1) == " " ? "," : "");
        }
    }
}

} // namespace Quorvane::Rules
