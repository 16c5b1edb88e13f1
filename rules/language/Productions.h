// SPDX-License-Identifier: Apache-2.0
//
// The productions of the grammar (Parser.h), and what they share. Those of a statement are called
// after the keyword that begins it, which is `keyword`.
#pragma once

#include "rules/language/Syntax.h"
#include "rules/language/TokenReader.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace Quorvane::Rules {

struct ConditionSyntax {
    Position m_position;
    EliteCondition m_test{};
};

ConditionSyntax parseCondition(TokenReader& in);
EliteHeaderSyntax parseEliteHeader(TokenReader& in, Token const& keyword);
EliteRuleSyntax parseEliteRule(TokenReader& in, Token const& keyword);
// Both append to `nodes`: the node, and after it those in its block.
void parseTree(TokenReader& in, Token const& keyword, NodeList& nodes);
void parseLooseNode(TokenReader& in, Token const& keyword, NodeList& nodes);
// Reads the block of a node whose head could not be read, for the errors in it.
void parseStrayBlock(TokenReader& in);

// Reports that `word` is not one of `known`, and ends the statement.
[[noreturn]] void rejectWord(TokenReader& in, Token const& word,
                             std::vector<std::string_view> const& known, std::string const& where);

// Whether a line that begins with `name` or `because` continues the statement; it is joined then.
bool continuesWithNaming(TokenReader& in);
// Reads what follows `word` if it is `name` or `because`.
bool acceptNaming(TokenReader& in, Token const& word, NamingSyntax& naming);

// Notes that `word` gives the option `option`, and reports it when it was given before.
void giveOnce(TokenReader& in, GivenWords& given, Token const& word, std::string_view option);

// An option that sets a field to a whole number.
template<typename Record>
struct IntegerOption {
    std::string_view m_word;
    std::int32_t Record::*m_field;
    char const* m_expected; // completes "... is expected"
};

// Reads the number if `word` is one of these options.
template<typename Record, std::size_t count>
bool acceptInteger(TokenReader& in, Token const& word, Record& record,
                   IntegerOption<Record> const (&options)[count]) {
    auto const option = std::find_if(std::begin(options), std::end(options),
                                     [&](auto const& known) { return word.is(known.m_word); });
    if (option == std::end(options)) {
        return false;
    }
    record.*(option->m_field) = in.integer(option->m_expected);
    return true;
}

// A string of exactly as many bytes as the field has. What is wrong is reported at `place`.
template<std::size_t size>
std::array<std::uint8_t, size> parseBytes(TokenReader& in, Token const& word, Position place,
                                          char const* where) {
    std::array<std::uint8_t, size> field{};
    auto const bytes = in.hex("a text of hexadecimal digits is expected");
    if (bytes.size() == size) {
        std::copy(bytes.begin(), bytes.end(), field.begin());
    } else {
        in.error(place, '"' + std::string(word.m_text) + "\" of " + where + " holds " +
                            std::to_string(size) + " bytes");
    }
    return field;
}

} // namespace Quorvane::Rules
