// SPDX-License-Identifier: Apache-2.0
#include "rules/language/Sentences.h"
#include "rules/format/ValueWords.h"

#include <gmock/gmock.h>
#include <set>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

std::set<std::string_view> const knownNames{
    SentenceName::firstHelo,      SentenceName::firstReverse,   SentenceName::firstAddress,
    SentenceName::deepHelo,       SentenceName::deepReverse,    SentenceName::deepAddress,
    SentenceName::authorDomain,   SentenceName::envelopeDomain, SentenceName::recipientDomain,
    SentenceName::messageIdDomain};

// What stands in braces.
std::set<std::string> s_namesIn(std::string const& sentence) {
    std::set<std::string> names;
    for (auto open = sentence.find('{'); open != std::string::npos;
         open = sentence.find('{', open + 1)) {
        names.insert(sentence.substr(open + 1, sentence.find('}', open) - open - 1));
    }
    return names;
}

std::vector<std::int32_t> s_values(AttributeFacts const& facts) {
    if (facts.m_values.m_isCounter) {
        return {0, 1, 2, 17};
    }
    std::set<std::int32_t> const codes(facts.m_values.m_codes.begin(),
                                       facts.m_values.m_codes.end());
    return {codes.begin(), codes.end()};
}

TEST(SentencesTest, EveryValueThatAScanGivesHasASentenceOfItsOwnBothWays) {
    for (auto const& facts : attributeTable) {
        if (facts.m_writer == AttributeWriter::nobody) {
            continue;
        }
        auto const index = static_cast<std::int32_t>(facts.m_index);
        std::set<std::string> seen;
        for (auto const value : s_values(facts)) {
            auto const is = testSentence(index, 0, value);
            EXPECT_EQ(is.find(facts.m_name), std::string::npos) << is;
            EXPECT_TRUE(seen.insert(is).second) << facts.m_name << ": twice: " << is;
            EXPECT_NE(is, testSentence(index, 1, value)) << facts.m_name;
            EXPECT_EQ(is, valueSentence(index, value));
        }
    }
}

TEST(SentencesTest, TheTableIsWhatItPromises) {
    for (auto const& sentence : sentenceTable()) {
        for (auto const& text : {sentence.m_is, sentence.m_isNot}) {
            EXPECT_THAT(text, testing::MatchesRegex("[ -~]+[^.,;]")) << text;
            EXPECT_EQ(text.find('$'), std::string::npos) << text;
            EXPECT_FALSE(text[0] >= 'A' && text[0] <= 'Z') << text;
            for (auto const& name : s_namesIn(text)) {
                EXPECT_TRUE(knownNames.contains(name) || (name == "value" && !sentence.m_value))
                    << text;
            }
        }
    }
}

TEST(SentencesTest, TheRowForOtherValuesComesLastOfEachAttribute) {
    auto const& table = sentenceTable();
    for (std::size_t i = 0; i < table.size(); ++i) {
        bool const isLast =
            i + 1 == table.size() || table[i + 1].m_attribute != table[i].m_attribute;
        EXPECT_EQ(isLast, !table[i].m_value) << i;
    }
    EXPECT_EQ(table.back().m_attribute, attributeCount - 1);
}

struct SentenceCase {
    std::int32_t m_attribute;
    std::int32_t m_test;
    std::int32_t m_value;
    char const* m_sentence;
};

class SentenceRow : public testing::TestWithParam<SentenceCase> {};

TEST_P(SentenceRow, SaysItInPlainWords) {
    auto const& row = GetParam();
    EXPECT_EQ(testSentence(row.m_attribute, row.m_test, row.m_value), row.m_sentence);
}

INSTANTIATE_TEST_SUITE_P(
    Words, SentenceRow,
    testing::Values(
        SentenceCase{Attribute::firstHeloDynamic, 0, Code::yes,
                     "the host name the first relay announced{firstHelo} looks dynamically "
                     "assigned"},
        SentenceCase{Attribute::firstHeloDynamic, 0, Code::literal,
                     "the first relay announced an address{firstHelo} instead of a host name"},
        SentenceCase{Attribute::deepHeloDynamic, 0, Code::notAnalysed,
                     "no public relay stood right after the first one"},
        SentenceCase{Attribute::deepReverseDynamic, 1, Code::yes,
                     "no reverse name that looks dynamically assigned was recorded for the deepest "
                     "relay, or no public relay stood right after the first one"},
        SentenceCase{Attribute::hopBehindFirst, 1, Code::yes,
                     "there was no hop after the first relay{firstAddress}"},
        SentenceCase{Attribute::hopsReverseDynamic, 0, 0,
                     "no examined relay had a reverse name that looks dynamically assigned"},
        SentenceCase{Attribute::hopsReverseDynamic, 1, 0,
                     "at least one examined relay had a reverse name that looks dynamically "
                     "assigned"},
        SentenceCase{Attribute::hopsReverseDynamic, 0, 3,
                     "3 examined relays had a reverse name that looks dynamically assigned"},
        SentenceCase{Attribute::firstForged, 0, -7,
                     "the host says -7 when asked whether the reverse name of the first "
                     "relay{firstReverse} is forged"},
        SentenceCase{Attribute::firstHeloDynamic, 0, 77, "first_helo_dynamic is 77"},
        SentenceCase{Attribute::firstHeloDynamic, 5, 77, "first_helo_dynamic is not 77"},
        SentenceCase{-1, 0, 4, "attribute -1 is 4"},
        SentenceCase{attributeCount, 1, 4, "attribute 38 is not 4"}));

TEST(SentencesTest, NamesAreFilledInWithTheCommasTheyNeed) {
    SentenceNames const names{{SentenceName::firstHelo, "pc-7.dyn.example"},
                              {SentenceName::firstReverse, "192-0-2-7.dyn.example"}};
    struct {
        char const* m_sentence;
        char const* m_filled;
    } const cases[] = {
        {"the name announced{firstHelo} looks odd",
         "the name announced, pc-7.dyn.example, looks odd"},
        {"it announced{firstHelo}", "it announced, pc-7.dyn.example"},
        {"it announced{firstHelo}: why", "it announced, pc-7.dyn.example: why"},
        {"it announced{firstHelo}, and so on", "it announced, pc-7.dyn.example, and so on"},
        {"names{firstHelo} and{firstReverse}",
         "names, pc-7.dyn.example, and, 192-0-2-7.dyn.example"},
        {"no{deepHelo} name", "no name"},
        {"an{ open brace", "an{ open brace"},
        {"", ""},
    };
    for (auto const& row : cases) {
        EXPECT_EQ(fillSentence(row.m_sentence, names), row.m_filled) << row.m_sentence;
    }
}

TEST(SentencesTest, BracesInANameOfTheMessageAreNotFilled) {
    EXPECT_EQ(
        fillSentence("a{firstHelo} b{firstReverse}", {{SentenceName::firstHelo, "{firstReverse}"},
                                                      {SentenceName::firstReverse, "{firstHelo}"}}),
        "a, {firstReverse}, b, {firstHelo}");
}

} // namespace
} // namespace Quorvane::Testing
