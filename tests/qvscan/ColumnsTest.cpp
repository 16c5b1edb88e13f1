// SPDX-License-Identifier: Apache-2.0
// Results as lines of text: the columns, their heading, and which of them are shown.
#include "qvscan/ScanFixture.h"

#include <gmock/gmock.h>

namespace Quorvane::Testing {

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class Columns : public ScanTest {
  protected:
    // The lines after the heading, without the blanks that align them.
    Arguments cells(Arguments arguments, std::string const& message) const {
        arguments.insert(arguments.end(), {"--format", "text"});
        auto const text = scan(arguments, message).m_output;
        Arguments found;
        std::string cell;
        for (std::size_t at = text.find('\n') + 1; at < text.size(); ++at) {
            bool const isEnd = text[at] == '\n' || text.compare(at, 2, "  ") == 0;
            if (!isEnd) {
                cell += cell.empty() && text[at] == ' ' ? "" : std::string(1, text[at]);
            } else if (!cell.empty()) {
                found.push_back(cell);
                cell.clear();
            }
        }
        return found;
    }

    std::string heading(Arguments arguments) const {
        arguments.insert(arguments.end(), {"--format", "text"});
        auto const text = scan(arguments, ham()).m_output;
        return text.substr(0, text.find('\n') + 1);
    }
};

TEST_F(Columns, ShowWhatAPersonLooksForUnderAHeading) {
    EXPECT_EQ(
        heading({}),
        "verdict      rule                                     relay                           "
        "          sender                  date (UTC)        source\n");
    writeNames({{{Kind::node, 3}, {"A dynamic name", "Not in the line."}}});
    EXPECT_EQ(cells({}, spam()), (Arguments{"spam 99 %", "3 (A dynamic name)",
                                            "192.0.2.7 dsl-192-0-2-7.dyn.example.net",
                                            "example.net", "2024-01-01 10:00", "-"}));
    EXPECT_EQ(cells({}, ham()), (Arguments{"ham 2 %", "4", "192.0.2.7 mail.example.net",
                                           "example.net", "2024-01-01 10:00", "-"}));
    // The name that the relay announced, where it has no other.
    EXPECT_EQ(cells({}, none()), (Arguments{"none 50 %", "5", "192.0.2.7 pc.example.net",
                                            "example.net", "2024-01-01 10:00", "-"}));
    EXPECT_EQ(cells({}, "Subject: x\n\n"), (Arguments{"none", "-", "-", "-", "-", "-"}));
}

TEST_F(Columns, OfAnotherRuleOfTheSameNumberTheNameIsNotShown) {
    writeNames({{{Kind::decide, 3}, {"An elite rule of that number", ""}}});
    EXPECT_EQ(cells({"--columns", "rule"}, spam()), Arguments{"3"});
}

TEST_F(Columns, AreThoseThatAreAskedForInTheirOrder) {
    auto const message = hop("a.example", "b.example", "198.51.100.9") + ham();
    EXPECT_EQ(heading({"--columns", "source,verdict"}), "source                    verdict\n");
    auto const text = scan({"--columns", "source,verdict", "--format", "text"}, ham()).m_output;
    EXPECT_EQ(text, "source                    verdict\n-                         ham 2 %\n");
    EXPECT_EQ(cells({"--columns", "addresses,from,subject,message-id"},
                    "Subject: =?utf-8?q?caf=C3=A9?=\n" + message),
              (Arguments{"198.51.100.9,192.0.2.7", "Ann <ann@example.net>", "caf\xC3\xA9",
                         "<1@Host.Example.NET>"}));
}

TEST_F(Columns, AreNeverCutWhereNoTerminalIs) {
    std::string const name(200, 'x');
    auto const text =
        scan({"--format", "text"}, hop("a.example", name + ".example", "192.0.2.7") + "\n")
            .m_output;
    EXPECT_THAT(text, HasSubstr("192.0.2.7 " + name + ".example  "));
}

TEST_F(Columns, HostileTextCannotSteerTheTerminal) {
    auto const text = scan({"--format", "text", "--columns", "relay,from,subject,message-id"},
                           hop("a\x1B[2Jb.example", "\x1B]0;x\x07.example", "192.0.2.7") +
                               "From: =?utf-8?q?=1B[31m?= <a@b.example>\nSubject: a\x1B[2J\n"
                               "Message-ID: <\xE2\x80\xAE@x>\n\n")
                          .m_output;
    EXPECT_EQ(text.find('\x1B'), std::string::npos) << text;
    EXPECT_EQ(text.find('\x07'), std::string::npos);
    EXPECT_THAT(text, HasSubstr("\\x1B[31m <a@b.example>"));
    EXPECT_THAT(text, HasSubstr("<\\u202E@x>"));
}

TEST_F(Columns, AScanThatFailedSaysWhyAtTheEndOfItsLine) {
    auto const text = scan({"--format", "text", "--current-received", "by "}, spam()).m_output;
    EXPECT_THAT(text, HasSubstr("  -  (Error deep header scanning "));
}

TEST_F(Columns, AnExplanationHasNoHeading) {
    EXPECT_THAT(scan({"--format", "text", "--explain"}, spam()).m_output,
                Not(HasSubstr("date (UTC)")));
}

TEST_F(Columns, WhatCannotBeShownIsAnError) {
    struct {
        Arguments m_arguments;
        std::string m_error;
    } const cases[] = {
        {{"--format", "text", "--columns", "verdict,rulle"},
         "--columns: \"rulle\" is not one of verdict,rule,relay,sender,date,source,addresses,from,"
         "subject,message-id; did you mean \"rule\"?"},
        {{"--format", "text", "--columns", "verdict,"}, "--columns: \"\" is not one of "},
        {{"--format", "text", "--columns", ""}, "--columns: the value is empty"},
        {{"--columns", "verdict"}, "--columns is for --format text without --explain"},
        {{"--format", "text", "--explain", "--columns", "verdict"},
         "--columns is for --format text without --explain"},
        {{"--format", "csv", "--columns", "verdict"},
         "--columns is for --format text without --explain"},
    };
    for (auto const& row : cases) {
        auto const result = scan(row.m_arguments, ham());
        EXPECT_EQ(result.m_status, 64) << row.m_error;
        EXPECT_EQ(result.m_output, "");
        EXPECT_THAT(result.m_errors, HasSubstr(row.m_error));
    }
}

} // namespace

} // namespace Quorvane::Testing
