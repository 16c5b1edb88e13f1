// SPDX-License-Identifier: Apache-2.0
#include "platform/HeaderReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Quorvane::Testing {

namespace {

using namespace std::string_literals;
using Fields = std::vector<std::pair<std::string, std::string>>;

// A heap block of exactly the size of the text, so that a sanitizer sees a read one byte too far.
class Exact {
  public:
    explicit Exact(std::string const& text) : m_size(text.size()), m_bytes(new char[text.size()]) {
        std::copy(text.begin(), text.end(), m_bytes.get());
    }
    std::string_view view() const { return {m_bytes.get(), m_size}; }

  private:
    std::size_t m_size;
    std::unique_ptr<char[]> m_bytes;
};

Fields s_read(std::string const& message) {
    Exact const exact(message);
    Fields fields;
    auto const container = HeaderReader::read(exact.view());
    for (auto const& header : container.headers()) {
        fields.emplace_back(header.type(), header.value());
    }
    return fields;
}

std::size_t s_sectionLength(std::string const& message) {
    Exact const exact(message);
    return HeaderReader::sectionLength(exact.view());
}

std::string s_repeated(std::string const& piece, std::size_t length) {
    std::string text;
    while (text.size() < length) {
        text += piece;
    }
    return text;
}

struct Case {
    char const* m_origin;
    std::string m_message;
    Fields m_fields;
};

Case const s_cases[] = {
    {"nothing", "", {}},
    {"two fields, CR LF", "A: 1\r\nB: 2\r\n\r\nbody: no\r\n", {{"A", "1"}, {"B", "2"}}},
    {"two fields, LF", "A: 1\nB: 2\n\nbody: no\n", {{"A", "1"}, {"B", "2"}}},
    {"mixed line ends", "A: 1\r\nB: 2\nC: 3\r\n\nD: 4\n", {{"A", "1"}, {"B", "2"}, {"C", "3"}}},
    {"no empty line", "A: 1\r\nB: 2\r\n", {{"A", "1"}, {"B", "2"}}},
    {"no last line break", "A: 1\r\nB: 2", {{"A", "1"}, {"B", "2"}}},
    {"order and repetition are kept",
     "B: 1\nA: 2\nb: 3\nB: 4\n",
     {{"B", "1"}, {"A", "2"}, {"b", "3"}, {"B", "4"}}},
    {"empty line first", "\r\nA: 1\r\n", {}},
    {"LF alone first", "\nA: 1\n", {}},

    {"folding, CR LF", "A: 1\r\n\t2\r\n 3\r\nB: 4\r\n", {{"A", "1\r\n\t2\r\n 3"}, {"B", "4"}}},
    {"folding, LF", "A: 1\n  2\nB: 3\n", {{"A", "1\n  2"}, {"B", "3"}}},
    {"folding at the end of the message", "A: 1\r\n 2", {{"A", "1\r\n 2"}}},
    {"the value begins on the next line", "A:\r\n 1\r\n", {{"A", "\r\n 1"}}},
    {"blanks, then the value on the next line", "A: \t\r\n 1\r\n", {{"A", "\r\n 1"}}},
    {"a line of blanks goes on with the field",
     "A: 1\r\n \r\n 2\r\nB: 3\r\n",
     {{"A", "1\r\n \r\n 2"}, {"B", "3"}}},
    {"a line of blanks at the end of the field",
     "A: 1\r\n \t\r\nB: 2\r\n",
     {{"A", "1"}, {"B", "2"}}},
    {"lines of blanks alone", "A: \r\n \r\n\t\r\nB: 2\r\n", {{"A", ""}, {"B", "2"}}},
    {"a colon in a folded line", "A: 1\r\n B: 2\r\n", {{"A", "1\r\n B: 2"}}},

    {"blanks and tabs after the colon", "A: \t  1\r\n", {{"A", "1"}}},
    {"no blank after the colon", "A:1\r\n", {{"A", "1"}}},
    {"trailing blanks and tabs", "A: 1 \t\r\nB: 2\t \n", {{"A", "1"}, {"B", "2"}}},
    {"trailing blanks at the end of the message", "A: 1 \t", {{"A", "1"}}},
    {"a Received value that could not be parsed",
     "Received: from a by \r\nReceived: by\r\n \r\nReceived: by \r\n\t",
     {{"Received", "from a by"}, {"Received", "by"}, {"Received", "by"}}},
    {"other blanks stay", "A:\v\f 1 \v\f\r\n", {{"A", "\v\f 1 \v\f"}}},
    {"empty value", "A:\r\nB: \r\n", {{"A", ""}, {"B", ""}}},
    {"empty value at the end of the message", "A:", {{"A", ""}}},
    {"blank value at the end of the message", "A: \t", {{"A", ""}}},
    {"blanks between name and colon", "A  : 1\r\nB\t: 2\r\n", {{"A", "1"}, {"B", "2"}}},
    {"the first colon ends the name", "A: 1: 2\r\n", {{"A", "1: 2"}}},
    {"a name with a blank inside", "A b: 1\r\n", {{"A b", "1"}}},
    {"no name", ": 1\r\n", {{"", "1"}}},

    {"a line without colon", "A: 1\r\nnonsense\r\nB: 2\r\n", {{"A", "1"}, {"B", "2"}}},
    {"what goes on with a line without colon",
     "nonsense\r\n x: 1\r\n\ty: 2\r\nB: 2\r\n",
     {{"B", "2"}}},
    {"a continuation of nothing", " x: 1\r\n\ty: 2\r\nA: 1\r\n", {{"A", "1"}}},
    {"mbox line", "From a@b Thu Jan  1 00:00:00 1970\nA: 1\n", {{"A", "1"}}},
    {"mbox line that goes on",
     "From a@b Thu Jan  1 00:00:00 1970\n remote from: c\nA: 1\n",
     {{"A", "1"}}},
    {"mbox line alone", "From a@b Thu Jan  1 00:00:00 1970", {}},
    {"mbox line with a colon, only the first",
     "From a:b\nFrom c:d\nA: 1\n",
     {{"From c", "d"}, {"A", "1"}}},
    {"a field is no mbox line", "From: a@b\nA: 1\n", {{"From", "a@b"}, {"A", "1"}}},
    {"small letters are no mbox line", "from x: 1\n", {{"from x", "1"}}},
    {"quoted mbox line",
     ">From a@b Thu Jan  1 00:00:00 1970\nA: 1\n",
     {{">From a@b Thu Jan  1 00", "00:00 1970"}, {"A", "1"}}},

    {"CR alone is an ordinary byte", "A: 1\rB: 2\r\n", {{"A", "1\rB: 2"}}},
    {"CR alone at the end of the message", "A: 1\r", {{"A", "1"}}},
    {"CR CR LF", "A: 1\r\r\nB: 2\r\n", {{"A", "1"}, {"B", "2"}}},
    {"CR and blanks at the end", "A: 1\r \r\r\nB: 2 \r", {{"A", "1"}, {"B", "2"}}},
    {"CR CR LF is no empty line", "A: 1\r\n\r\r\nB: 2\r\n", {{"A", "1"}, {"B", "2"}}},
    {"NUL is an ordinary byte", "A\0b: 1\0002\r\nB: \0\r\n"s, {{"A\0b"s, "1\0002"s}, {"B", "\0"s}}},
    {"NUL at the end", "A: by \0\r\nB: by\0 \r\n"s, {{"A", "by \0"s}, {"B", "by\0"s}}},
    {"bytes above 127", "A: \xff\x80\r\n", {{"A", "\xff\x80"}}},
};

// Any bytes that can stand in a value: every LF is followed by a blank.
rc::Gen<std::string> s_anyValue() {
    auto const pieces = rc::gen::container<std::vector<std::string>>(
        rc::gen::oneOf(rc::gen::element<std::string>("\r\n ", "\n\t", "\n ", " ", "\t", "\r", ":"),
                       rc::gen::map(rc::gen::suchThat(rc::gen::arbitrary<char>(),
                                                      [](char c) { return c != '\n'; }),
                                    [](char c) { return std::string(1, c); })));
    return rc::gen::map(pieces, [](std::vector<std::string> const& all) {
        std::string value;
        for (auto const& piece : all) {
            value += piece;
        }
        // Blanks in front and blanks and line breaks at the end are not part of a value.
        value.erase(0, std::min(value.find_first_not_of(" \t"), value.size()));
        return value.substr(0, value.find_last_not_of(" \t\r\n") + 1);
    });
}

rc::Gen<std::string> s_anyName() {
    auto const nameByte = [](char c) { return c != '\n' && c != ':' && c != ' ' && c != '\t'; };
    return rc::gen::container<std::string>(rc::gen::suchThat(rc::gen::arbitrary<char>(), nameByte));
}

rc::Gen<Fields> s_anyFields() {
    return rc::gen::container<Fields>(rc::gen::pair(s_anyName(), s_anyValue()));
}

std::string s_written(Fields const& fields, std::string const& separator,
                      std::string const& lineBreak) {
    std::string section;
    for (auto const& [name, value] : fields) {
        section.append(name).append(separator).append(value).append(lineBreak);
    }
    return section;
}

// Lines of every kind in any order.
rc::Gen<std::string> s_anyMessage() {
    auto const pieces = rc::gen::container<std::vector<std::string>>(rc::gen::element<std::string>(
        "A", "From ", ":", ": ", " ", "\t", "\n", "\r\n", "\r", "x", "\n\n", "\r\n ", "\0"s));
    return rc::gen::map(pieces, [](std::vector<std::string> const& all) {
        std::string message;
        for (auto const& piece : all) {
            message += piece;
        }
        return message;
    });
}

} // namespace

TEST(HeaderReader, SplitsASectionIntoItsFields) {
    for (auto const& row : s_cases) {
        SCOPED_TRACE(row.m_origin);
        EXPECT_EQ(row.m_fields, s_read(row.m_message));
    }
}

TEST(HeaderReader, DoesNotLookBehindTheEmptyLine) {
    auto const section = "A: 1\r\n\r\n"s;
    EXPECT_EQ(s_read(section), s_read(section + "B: 2\r\n"));
    EXPECT_EQ(section.size(), s_sectionLength(section + "B: 2\r\n"));
}

TEST(HeaderReader, SectionLengthCountsTheEmptyLine) {
    std::pair<std::string, std::size_t> const rows[] = {
        {"", 0},           {"\n", 1},          {"\r\n", 2},          {"\r\nx", 2},
        {"A: 1", 4},       {"A: 1\n", 5},      {"A: 1\n\n", 6},      {"A: 1\n\nbody\n\n", 6},
        {"A: 1\r\n\r", 7}, {"A: 1\n\r\nx", 7}, {"A: 1\r\n \r\n", 9}, {"From x\n\nA: 1\n", 8},
        {"\r\r\nA: 1", 7},
    };
    for (auto const& [message, length] : rows) {
        SCOPED_TRACE(::testing::PrintToString(message));
        EXPECT_EQ(length, s_sectionLength(message));
    }
}

// With quadratic work this would take hours.
TEST(HeaderReader, LongSectionsCostLinearWork) {
    struct Row {
        char const* m_piece;
        std::size_t m_length;
    };
    constexpr std::size_t large = 16000000;
    constexpr std::size_t fewer = 1000000; // each line becomes a field
    for (auto const& [piece, length] :
         {Row{"x\n", large}, Row{" \n", large}, Row{"x", large}, Row{"\r", large}, Row{"\t", large},
          Row{"x \n", large}, Row{":\n", fewer}, Row{"A:\n ", fewer}}) {
        SCOPED_TRACE(::testing::PrintToString(piece));
        auto const message = s_repeated(piece, length);
        EXPECT_EQ(message.size(), s_sectionLength(message));
        EXPECT_LE(s_read(message).size(), message.size() / 2);
    }
}

RC_GTEST_PROP(HeaderReader, WhatIsWrittenReadsBackTheSame, ()) {
    auto fields = *s_anyFields();
    auto const lineBreak = *rc::gen::element<std::string>("\n", "\r\n");
    auto const separator = *rc::gen::element<std::string>(":", ": ", " : ", "\t:\t");
    // A field without a name, after a blank, would go on with the one before.
    for (auto& [name, value] : fields) {
        name = name.empty() ? "n" : name;
    }
    RC_ASSERT(s_read(s_written(fields, separator, lineBreak)) == fields);
    RC_ASSERT(s_read(s_written(fields, separator, lineBreak) + lineBreak + "X: 1\n") == fields);
}

RC_GTEST_PROP(HeaderReader, ReadingWhatWasReadChangesNothing, ()) {
    auto fields = s_read(*s_anyMessage());
    // So that no field that begins with "From " comes first.
    fields.insert(fields.begin(), {"First", ""});
    RC_ASSERT(s_read(s_written(fields, ":", "\r\n")) == fields);
}

RC_GTEST_PROP(HeaderReader, NoValueEndsInBlanksOrLineBreaks, ()) {
    for (auto const& [name, value] : s_read(*s_anyMessage())) {
        RC_ASSERT(value.find_last_not_of(" \t\r\n") + 1 == value.size());
    }
}

RC_GTEST_PROP(HeaderReader, EveryValueIsASliceOfTheMessageInOrder, ()) {
    auto const message = *s_anyMessage();
    auto const section = message.substr(0, s_sectionLength(message));
    std::size_t position = 0;
    for (auto const& [name, value] : s_read(message)) {
        position = section.find(name, position);
        RC_ASSERT(position != std::string::npos);
        position = section.find(value, section.find(':', position) + 1);
        RC_ASSERT(position != std::string::npos);
        position += value.size();
    }
}

RC_GTEST_PROP(HeaderReader, CountsTheFieldsThatItReads, ()) {
    auto const message = *s_anyMessage();
    Exact const exact(message);
    RC_ASSERT(HeaderReader::countFields(exact.view()) == s_read(message).size());
}

TEST(HeaderReader, KeepsTheNewestHopsOfMoreThanItIsTold) {
    std::string const message = "A: 1\nReceived: 1\nRECEIVED : 2\nReceived: 3\n x\nB: 2\n";
    struct Row {
        std::size_t m_maxHops;
        std::vector<std::string> m_values;
    };
    for (auto const& row :
         {Row{0, {"1", "2"}}, Row{2, {"1", "1", "2", "2"}}, Row{3, {"1", "1", "2", "3\n x", "2"}},
          Row{4, {"1", "1", "2", "3\n x", "2"}}}) {
        auto const container = HeaderReader::read(message, row.m_maxHops);
        std::vector<std::string> values;
        for (auto const& header : container.headers()) {
            values.push_back(header.value());
        }
        EXPECT_EQ(values, row.m_values) << row.m_maxHops;
    }
}

RC_GTEST_PROP(HeaderReader, TheSectionAloneReadsAsTheWholeMessage, ()) {
    auto const message = *s_anyMessage();
    RC_ASSERT(s_read(message.substr(0, s_sectionLength(message))) == s_read(message));
}

} // namespace Quorvane::Testing
