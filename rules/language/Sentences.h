// SPDX-License-Identifier: Apache-2.0
//
// The values of attributes, and tests on them, in plain words: one table of sentences, which the
// explanations in the terminal, in JSON and on the page use.
//
// A sentence has neither capital letter nor full stop. Words about something in the message are
// followed by its name in braces: "the host name the first relay announced{firstHelo} looks
// dynamically assigned". Filling a sentence replaces {NAME}, in one pass from left to right:
//
//   a known name     ", TEXT", and another comma when a blank follows in the sentence:
//                    "... announced, pc-7.dyn.example, looks dynamically assigned"
//   an unknown name  nothing: "... announced looks dynamically assigned"
//   {value}          the value itself, as a number; valueSentence and testSentence replace it
//
// The texts come from a message and may be hostile: code that shows a filled sentence must escape
// it for its display (toPrintable, HTML escapes). The sentences themselves are plain ASCII.
//
// Pure functions over a constant table; safe to call from many threads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Quorvane::Rules {

// What a sentence can name.
namespace SentenceName {
inline constexpr std::string_view firstHelo = "firstHelo";
inline constexpr std::string_view firstReverse = "firstReverse";
inline constexpr std::string_view firstAddress = "firstAddress";
inline constexpr std::string_view deepHelo = "deepHelo";
inline constexpr std::string_view deepReverse = "deepReverse";
inline constexpr std::string_view deepAddress = "deepAddress";
inline constexpr std::string_view authorDomain = "authorDomain";
inline constexpr std::string_view envelopeDomain = "envelopeDomain";
inline constexpr std::string_view recipientDomain = "recipientDomain";
inline constexpr std::string_view messageIdDomain = "messageIdDomain";
} // namespace SentenceName

using SentenceNames = std::map<std::string_view, std::string>;

// One row of the table.
struct Sentence {
    std::size_t m_attribute;
    // Empty: for every value that the attribute has no row for.
    std::optional<std::int32_t> m_value;
    std::string m_is;    // the attribute has the value
    std::string m_isNot; // the attribute has another value
};

// In the order of the attributes; the last row of each is the one without value.
std::vector<Sentence> const& sentenceTable();

// "`attribute` is `value`", not filled. An unknown attribute is shown as its number.
std::string valueSentence(std::int32_t attribute, std::int32_t value);

// The same for a test of a rule: 0 asks for `value`, anything else for another one.
std::string testSentence(std::int32_t attribute, std::int32_t test, std::int32_t value);

std::string fillSentence(std::string_view sentence, SentenceNames const& names);

} // namespace Quorvane::Rules
