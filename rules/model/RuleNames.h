// SPDX-License-Identifier: Apache-2.0
//
// Names of rules: for people, beside the binary files, which have no room for them. Verdicts never
// depend on them, and a set can do without.
//
// The file qv.names is text (docs/rule-files.md): a first line that says what it is, comments, and
// for each rule a line with what it names, its name and perhaps a sentence:
//
//   decide 9001
//       name A consumer line that gives itself away
//       because Both names of the sender look dynamically assigned: a home computer.
//
// A file is used as a whole or not at all. Pure functions.
#pragma once

#include "rules/model/RuleSet.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <tuple>

namespace Quorvane::Rules {

// What a name belongs to: the elite rules of one type that have the same code, or a node.
struct RuleKey {
    enum class Kind : std::uint8_t { decide, adjust, node };

    Kind m_kind = Kind::node;
    std::int32_t m_number = 0; // code, or number of the node

    bool operator==(RuleKey const&) const = default;
    bool operator<(RuleKey const& other) const {
        return std::tie(m_kind, m_number) < std::tie(other.m_kind, other.m_number);
    }
};

struct RuleName {
    std::string m_name;     // nameProblem is empty
    std::string m_sentence; // sentenceProblem is empty; empty: none

    bool operator==(RuleName const&) const = default;
};

using RuleNames = std::map<RuleKey, RuleName>;

// Safe in a mail header, between quotation marks, and in a line of a log.
inline constexpr std::size_t maxNameLength = 60;
// In characters.
inline constexpr std::size_t maxSentenceLength = 300;
// A set that is full of rules with the longest names and sentences has 7 MB of them.
inline constexpr std::size_t maxNamesFileSize = 8U << 20U;

// What is wrong with a name: it is one line of printable ASCII without " \ ; and =. Empty: nothing.
std::string nameProblem(std::string_view name);
// What is wrong with a sentence: it is one line of UTF-8 without control characters and without
// invisible ones, which could turn the direction of the text around.
std::string sentenceProblem(std::string_view sentence);

// "decide 9001", "adjust 'r'", "node 17": as the file and the rule language call it.
std::string keyText(RuleKey const& key);
// For people: "elite rule 9001", "node 17".
std::string keyWords(RuleKey const& key);
// How both write the code of an elite rule: a letter of an adjusting rule in quotes.
std::string codeText(RuleKey::Kind kind, std::int32_t code);

// The file for these names.
Bytes namesText(RuleNames const& names);

struct NamesRead {
    RuleNames m_names;
    // Why there are none, although there is a file: "line 3: ..." Empty: all is well.
    std::string m_problem;
};

NamesRead readNames(std::string_view text);
// Without a file there are no names, which is no problem.
NamesRead readNames(SpareFile const& file);

} // namespace Quorvane::Rules
