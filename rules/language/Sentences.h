// SPDX-License-Identifier: Apache-2.0
//
// What a value of an attribute, or a test on one, says in plain words: one table of sentences, of
// which the explanations in the terminal, in JSON and on the page draw.
//
// A sentence has neither capital letter nor full stop. After the words that stand for something of
// the message it holds the name of it in braces: "the host name the first relay
// announced{firstHelo} looks dynamically assigned". Filling a sentence replaces {NAME}, in one pass
// from left to right:
//
//   a name that is known      ", TEXT", and another comma when a blank follows in the sentence:
//                             "... announced, pc-7.dyn.example, looks dynamically assigned"
//   a name that is not known  nothing: "... announced looks dynamically assigned"
//   {value}                   the value itself, as a number; valueSentence and testSentence have
//                             put it in already
//
// What is filled in comes from a message and is hostile: whoever shows a filled sentence makes it
// safe for the place (toPrintable, HTML escapes). The sentences themselves are plain ASCII.
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

// In the order of the attributes; of each the row without value comes last.
std::vector<Sentence> const& sentenceTable();

// "`attribute` is `value`", not filled. Of what is no attribute it shows the number.
std::string valueSentence(std::int32_t attribute, std::int32_t value);

// The same of a test as it stands in a rule: 0 asks for `value`, anything else for another one.
std::string testSentence(std::int32_t attribute, std::int32_t test, std::int32_t value);

std::string fillSentence(std::string_view sentence, SentenceNames const& names);

} // namespace Quorvane::Rules
