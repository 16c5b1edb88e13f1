// SPDX-License-Identifier: Apache-2.0
// What hostile text may cost before it is refused. A lexer that looks through a line for each of
// its tokens would not end on these texts in a day.
#include "rules/language/Lexer.h"

#include <gtest/gtest.h>
#include <string>

namespace Quorvane::Testing {
namespace {

using namespace Rules;

constexpr std::size_t length = 12'500'000;

std::string s_repeated(std::string const& piece) {
    std::string text;
    text.reserve(length);
    while (text.size() < length) {
        text += piece;
    }
    return text;
}

TEST(LexerTest, OneLineOfManyQuotesEndsAtTheLimitOfTokens) {
    auto const text = s_repeated("\"\" ");
    std::vector<Diagnostic> errors;
    auto const tokens = tokenize(text, errors);
    EXPECT_EQ(tokens.size(), maxTokens + 1);
    EXPECT_EQ(tokens.back().m_kind, Token::Kind::end);
    ASSERT_EQ(errors.size(), 1U);
    EXPECT_EQ(errors.front().m_text, "more than 4000000 words and signs; no rule set has so many");
    EXPECT_EQ(errors.front().m_position.m_line, 1U);
    EXPECT_EQ(errors.front().m_position.m_column, 3 * maxTokens + 1);
}

TEST(LexerTest, TheLastTokenAllowedIsNoError) {
    auto const text = s_repeated("{\n").substr(0, 2 * maxTokens);
    std::vector<Diagnostic> errors;
    EXPECT_EQ(tokenize(text, errors).size(), maxTokens + 1);
    EXPECT_TRUE(errors.empty());
}

TEST(LexerTest, TextOfNothingButErrorsEndsAtTheirLimit) {
    for (auto const* const piece : {"$", "'\x01' ", "\"\n", "'\n"}) {
        auto const text = s_repeated(piece);
        std::vector<Diagnostic> errors;
        EXPECT_EQ(tokenize(text, errors).back().m_kind, Token::Kind::end) << piece;
        EXPECT_EQ(errors.size(), maxErrors) << piece;
    }
}

} // namespace
} // namespace Quorvane::Testing
