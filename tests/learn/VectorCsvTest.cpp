// SPDX-License-Identifier: Apache-2.0
#include "rules/vectors/VectorCsv.h"

#include "rules/format/AttributeTable.h"
#include "rules/vectors/CsvRecords.h"
#include "rules/vectors/LearnError.h"
#include "TrainingData.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

using ::testing::HasSubstr;
using Testing::vectorOf;

std::string s_header(std::string const& more = ",label") {
    std::string header = "source";
    for (auto const& facts : attributeTable) {
        header += "," + std::string(facts.m_name);
    }
    return header + more + "\n";
}

// A row whose attributes are all `value`.
std::string s_row(std::string const& source, std::string const& value, std::string const& more) {
    std::string row = source;
    for (std::size_t i = 0; i < attributeCount; ++i) {
        row += "," + value;
    }
    return row + more + "\n";
}

VectorTable s_read(std::string const& text, VectorCsvDefaults const& defaults = {{}, "site"}) {
    std::istringstream input(text);
    VectorTableBuilder builder;
    readVectorCsv(input, "mail.csv", defaults, builder);
    return builder.finish();
}

std::string s_error(std::string const& text) {
    try {
        s_read(text);
    } catch (LearnError const& error) {
        return error.what();
    }
    return "no error";
}

TEST(VectorCsv, NamesTheRowThatBringsTooManyMessages) {
    auto const text = s_header(",label,count") + s_row("a", "1", ",spam,9007199254740992") +
                      s_row("b", "2", ",ham,1");
    EXPECT_THAT(s_error(text), HasSubstr("mail.csv:3: more than 2^53"));
}

TEST(VectorCsv, ReadsTablesThatWereJoined) {
    auto const one = s_header(",label,count") + s_row("a.eml", "1", ",spam,7");
    EXPECT_EQ(s_read(one + one).total(), (LabelCounts{14, 0}));
    // With other columns, or in another order, it is no repetition.
    EXPECT_THAT(s_error(one + s_header()), HasSubstr("mail.csv:3: column 41: 40 fields"));
}

TEST(VectorCsv, TakesNoNoticeOfAByteOrderMark) {
    auto const table = s_header() + s_row("a.eml", "1", ",spam");
    EXPECT_EQ(s_read("\xEF\xBB\xBF" + table).total(), (LabelCounts{1, 0}));
    EXPECT_THAT(s_error(s_header() + "\xEF\xBB\xBF" + s_header()), HasSubstr("mail.csv:2:"));
}

TEST(VectorCsv, ReadsVectorsLabelsAndCounts) {
    auto const table = s_read(s_header(",label,count") + s_row("a.eml", "1", ",spam,7") +
                              s_row("b.eml", "-2", ",ham,1"));
    ASSERT_EQ(table.rows().size(), 2U);
    EXPECT_EQ(table.rows()[0].m_vector[Attribute::hopBehindFirst], -2);
    EXPECT_EQ(table.rows()[0].m_byCorpus[0], (LabelCounts{0, 1}));
    EXPECT_EQ(table.rows()[1].m_byCorpus[0], (LabelCounts{7, 0}));
    EXPECT_EQ(table.corpora(), (std::vector<std::string>{"site"}));
}

TEST(VectorCsv, FindsAttributesByNameInAnyOrder) {
    std::string header = "source,label";
    std::string row = "x,spam";
    for (auto i = attributeCount; i-- > 0;) {
        header += "," + std::string(attributeTable.at(i).m_name);
        row += "," + std::to_string(i);
    }
    auto const table = s_read(header + "\n" + row + "\n");
    ASSERT_EQ(table.rows().size(), 1U);
    for (std::size_t i = 0; i < attributeCount; ++i) {
        EXPECT_EQ(table.rows()[0].m_vector.at(i), static_cast<std::int32_t>(i));
    }
}

TEST(VectorCsv, TakesTheCallersLabelAndCorpusWhereTheTableSaysNothing) {
    auto const table = s_read(s_header("") + s_row("a", "0", ""), {MailLabel::spam, "university"});
    EXPECT_EQ(table.corpora(), (std::vector<std::string>{"university"}));
    EXPECT_EQ(table.total(), (LabelCounts{1, 0}));
}

TEST(VectorCsv, ReadsQuotedSourcesAndEitherLineEnd) {
    auto text = s_header() + s_row("\"a, \"\"b\"\"\nc\"", "1", ",spam");
    text += s_row("plain", "1", ",ham");
    text.insert(text.size() - 1, "\r");
    EXPECT_EQ(s_read(text).total(), (LabelCounts{1, 1}));
}

TEST(VectorCsv, ReadsALastLineWithoutLineEnd) {
    auto text = s_header() + s_row("a", "1", ",spam");
    text.pop_back();
    EXPECT_EQ(s_read(text).total(), (LabelCounts{1, 0}));
}

TEST(VectorCsv, CountsMessagesThatCouldNotBeJudgedApart) {
    std::istringstream input(s_header() + s_row("a", "", ",spam") + s_row("b", "0", ",ham"));
    VectorTableBuilder builder;
    auto const counts = readVectorCsv(input, "mail.csv", {{}, "site"}, builder);
    EXPECT_EQ(counts.m_rows, 2U);
    EXPECT_EQ(counts.m_withoutVector, 1U);
    auto const table = builder.finish();
    EXPECT_EQ(table.unjudgedOf(0), (LabelCounts{1, 0}));
    EXPECT_EQ(table.total(), (LabelCounts{0, 1}));
}

TEST(VectorCsv, HandsOverRowsThatNobodyLabelled) {
    std::istringstream input(s_header("") + s_row("\"a,b\"", "1", "") + s_row("b.eml", "", ""));
    std::vector<std::string> sources;
    readVectorRows(input, "mail.csv", [&](VectorCsvRow const& row) {
        sources.emplace_back(row.m_source);
        EXPECT_EQ(row.m_vector.has_value(), sources.size() == 1);
        EXPECT_EQ(row.m_vector.value_or(AttributeVector{})[37], row.m_vector ? 1 : 0);
    });
    EXPECT_EQ(sources, (std::vector<std::string>{"a,b", "b.eml"}));
}

TEST(VectorCsv, SaysWhereAndWhatIsWrong) {
    struct Case {
        std::string m_text;
        char const* m_where;
        char const* m_what;
    };
    auto const manyColumns = s_row("a", "1", ",spam,9");
    auto const oneTooLarge = "a,2147483648" + s_row("", "1", ",spam").substr(2);
    Case const cases[] = {
        {"", "mail.csv:", "empty"},
        {"label\n", "mail.csv:1: column 1:", "'source'"},
        {"source,label\n", "mail.csv:1:", "'first_helo_is_domain' is missing"},
        {s_header(",labl"), "mail.csv:1: column 40:", "unknown column 'labl'"},
        {s_header(",label,label"), "mail.csv:1: column 41:", "second column 'label'"},
        {s_header(""), "mail.csv:1:", "no column 'label'"},
        {s_header() + "a,1\n", "mail.csv:2: column 3:", "2 fields where the first line names 40"},
        {s_header() + manyColumns, "mail.csv:2:", "41 fields"},
        {s_header() + "\n\n" + s_row("a", "1", ",maybe"), "mail.csv:4: column 40:", "'maybe'"},
        {s_header() + s_row("a", "1.5", ",spam"), "mail.csv:2: column 2:", "'1.5'"},
        {s_header() + s_row("a", " 1", ",spam"), "mail.csv:2: column 2:", "' 1'"},
        {s_header() + oneTooLarge, "mail.csv:2: column 2:", "'2147483648'"},
        {s_header() + "a,1" + s_row("", "", ",spam").substr(1), "mail.csv:2:", "some attributes"},
        {s_header(",label,count") + s_row("a", "1", ",spam,-1"), "column 41:", "'-1'"},
        {s_header() + "\"a", "mail.csv:", "never closed"},
        {s_header() + "\"a\"b,1", "mail.csv:2:4:", "closing quote"},
        {s_header() + "a\"b,1", "mail.csv:2:", "quote inside"},
        {s_header() + std::string(maxCsvRecord + 1, 'x'), "mail.csv:2:", "1 MiB"},
    };
    for (auto const& one : cases) {
        EXPECT_THAT(s_error(one.m_text), AllOf(HasSubstr(one.m_where), HasSubstr(one.m_what)));
    }
}

TEST(VectorCsv, TellsProgressOnLongInput) {
    std::string text = s_header();
    for (int i = 0; i < 10000; ++i) {
        text += s_row("a", "1", ",spam");
    }
    std::istringstream input(text);
    VectorTableBuilder builder;
    std::vector<std::uint64_t> reported;
    readVectorCsv(input, "-", {{}, "site"}, builder, [&](auto rows) { reported.push_back(rows); });
    ASSERT_GE(reported.size(), 2U);
    EXPECT_LT(reported[0], reported[1]);
}

TEST(VectorCsv, WritesTablesThatReadBackEqual) {
    VectorTableBuilder builder;
    builder.add(vectorOf({{5, 1}}), MailLabel::spam, "a, \"quoted\"", 1234567890123);
    builder.add(vectorOf({{5, 1}}), MailLabel::ham, "b", 2);
    builder.add(vectorOf({{14, -7}}), MailLabel::ham, "b", 2);
    builder.addUnjudged(MailLabel::spam, "c", 77);
    std::ostringstream first;
    writeVectorCsv(first, builder.finish());
    std::ostringstream second;
    writeVectorCsv(second, s_read(first.str()));
    EXPECT_EQ(first.str(), second.str());
    EXPECT_EQ(s_read(first.str()).total(), (LabelCounts{1234567890123, 4}));
    EXPECT_EQ(s_read(first.str()).unjudgedOf(2), (LabelCounts{77, 0}));
}

TEST(VectorCsv, ShardsAggregateToTheTableOfTheWhole) {
    std::string const rows[] = {s_row("a", "1", ",spam"), s_row("b", "2", ",ham"),
                                s_row("c", "1", ",spam"), s_row("d", "1", ",ham")};
    std::ostringstream whole;
    writeVectorCsv(whole, s_read(s_header() + rows[0] + rows[1] + rows[2] + rows[3]));
    VectorTableBuilder together;
    for (auto const& shard : {s_header() + rows[3] + rows[1], s_header() + rows[2] + rows[0]}) {
        std::ostringstream aggregated;
        writeVectorCsv(aggregated, s_read(shard));
        std::istringstream input(aggregated.str());
        readVectorCsv(input, "shard", {}, together);
    }
    std::ostringstream sharded;
    writeVectorCsv(sharded, together.finish());
    EXPECT_EQ(sharded.str(), whole.str());
}

} // namespace
} // namespace Quorvane::Testing
