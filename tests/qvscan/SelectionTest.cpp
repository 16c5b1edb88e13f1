// SPDX-License-Identifier: Apache-2.0
// Which messages are judged, which results are written, and which messages are copied out.
#include "qvscan/ScanFixture.h"
#include "support/ArchiveWriter.h"

#include <algorithm>
#include <filesystem>

namespace Quorvane::Testing {

namespace {

// A message that the newest server received at `date`.
std::string s_received(std::string const& date) {
    return "Received: from mail.example.net (mail.example.net [192.0.2.7])\n\tby mx.example.org; " +
           date + "\nDate: Thu, 1 Jan 1970 00:00:00 +0000\nFrom: ann@example.net\n\n";
}

class Selection : public ScanTest {
  protected:
    // One message of each kind; the last one has no public relay.
    std::string mail() const {
        return m_folder.write("box", separator + spam() + "\n" + separator + ham() + "\n" +
                                         separator + none() + "\n" + separator + unjudged());
    }

    static std::string unjudged() {
        return hop("pc", "pc", "10.0.0.1") + "From: ann@example.net\n\n";
    }

    // The sources of the records, without the name of the file.
    static Arguments sources(ProgramResult const& result) {
        Arguments found;
        for (auto const& record : records(result)) {
            auto const source = record["source"].get<std::string>();
            found.push_back(source.substr(source.rfind('/') + 1));
        }
        return found;
    }

    // What was extracted, by name.
    Arguments extracted() const {
        Arguments names;
        for (auto const& entry : std::filesystem::directory_iterator(m_folder.path() / "out")) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }
};

TEST_F(Selection, OnlyWritesTheResultsOfItsKinds) {
    auto const box = mail();
    struct {
        Arguments m_options;
        Arguments m_sources;
    } const cases[] = {
        {{"--only", "spam"}, {"box:1"}},
        {{"--only", "ham"}, {"box:2"}},
        {{"--only", "none"}, {"box:3"}},
        {{"--only", "unjudged"}, {"box:4"}},
        {{"--only", "error"}, {}},
        {{"--only", "spam,unjudged"}, {"box:1", "box:4"}},
        {{"--only", "ham", "--only=none"}, {"box:2", "box:3"}},
        {{"--rule", "3"}, {"box:1"}},
        {{"--rule", "3", "--rule", "5"}, {"box:1", "box:3"}},
        {{"--rule", "901"}, {}},
        {{"--rule", "4", "--only", "spam"}, {}},
    };
    for (auto const& row : cases) {
        auto options = row.m_options;
        options.push_back(box);
        auto const result = scan(options);
        EXPECT_EQ(sources(result), row.m_sources) << row.m_options[1];
        EXPECT_EQ(result.m_status, 1) << "there is spam, written or not";
        EXPECT_EQ(result.m_errors, "");
    }
}

// A header that no hop can be read from makes every scan fail.
TEST_F(Selection, ScansThatFailedAreAKindOfTheirOwn) {
    auto const box = mail();
    Arguments const failing{"--current-received", "by ", box, "--only"};
    auto const count = [&](char const* kinds) {
        auto arguments = failing;
        arguments.emplace_back(kinds);
        return records(scan(arguments)).size();
    };
    EXPECT_EQ(count("error"), 4U);
    EXPECT_EQ(count("spam,ham,none,unjudged"), 0U);
}

TEST_F(Selection, AnEliteRuleIsChosenByItsCode) {
    auto const file = m_folder.write("one", ham());
    Arguments const fired{"--max-elite-level", "2", "--message-status", "3", file};
    for (auto const* const number : {"901", "4"}) {
        auto arguments = fired;
        arguments.insert(arguments.end(), {"--rule", number});
        EXPECT_EQ(records(scan(arguments)).size(), number == std::string("901") ? 1U : 0U);
    }
}

TEST_F(Selection, EveryFormatIsSelectedFrom) {
    auto const box = mail();
    auto const text = scan({"--format", "text", "--explain", "--only", "ham", box}).m_output;
    EXPECT_EQ(text.find(box + ":1"), std::string::npos) << text;
    EXPECT_NE(text.find(box + ":2"), std::string::npos) << text;
    auto const table = scan({"--format", "csv", "--only", "ham", box}).m_output;
    EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 2) << table;
    EXPECT_NE(table.find(box + ":2,"), std::string::npos) << table;
}

TEST_F(Selection, WhatIsNoMessageIsReportedWhateverIsSelected) {
    auto const empty = m_folder.write("empty", "");
    auto const result = scan({"--only", "spam", "--since", "2030-01-01", empty});
    EXPECT_EQ(result.m_status, 65);
    EXPECT_NE(result.m_errors.find(empty + ": not a message"), std::string::npos);
}

// The date is that of the server that stored the message, not one that the sender wrote.
TEST_F(Selection, APeriodIsThatInWhichTheMessageWasReceived) {
    auto const box = m_folder.write(
        "box", separator + s_received("Wed, 18 Nov 2026 23:59:59 +0000") + "\n" + separator +
                   s_received("Thu, 19 Nov 2026 00:00:00 +0000") + "\n" + separator +
                   s_received("Fri, 20 Nov 2026 01:30:00 +0200 (EET)") + "\n" + separator +
                   s_received("Fri, 20 Nov 2026 12:00:00 +0000") + "\n" + separator +
                   s_received("some day") + "\n" + separator + "From: ann@example.net\n\n");
    struct {
        Arguments m_options;
        Arguments m_sources;
    } const cases[] = {
        {{"--since", "2026-11-19"}, {"box:2", "box:3", "box:4"}},
        {{"--until", "2026-11-19"}, {"box:1", "box:2", "box:3"}},
        {{"--since", "2026-11-19", "--until", "2026-11-19"}, {"box:2", "box:3"}},
        {{"--since", "2026-11-20T12:00"}, {"box:4"}},
        {{"--since", "2026-11-20T12:00:01"}, {}},
        {{"--until", "2026-11-18T23:59:58"}, {}},
        {{"--until", "2026-11-18T23:59:59Z"}, {"box:1"}},
        {{"--since", "2026-11-20T13:00:00+01:00"}, {"box:4"}},
        {{"--since", "1999-01-01"}, {"box:1", "box:2", "box:3", "box:4"}},
    };
    ::setenv("TZ", "UTC", 1);
    for (auto const& row : cases) {
        auto options = row.m_options;
        options.push_back(box);
        EXPECT_EQ(sources(scan(options)), row.m_sources)
            << row.m_options[0] << ' ' << row.m_options[1];
    }
    // A day is that of the place where the program runs.
    ::setenv("TZ", "Asia/Tokyo", 1); // nine hours before UTC
    EXPECT_EQ(sources(scan({"--since", "2026-11-20", box})), (Arguments{"box:3", "box:4"}));
    ::unsetenv("TZ");
}

TEST_F(Selection, WhatWasNotReceivedInThePeriodIsNotJudged) {
    EXPECT_EQ(scan({"--since", "2030-01-01"}, spam()).m_status, 0);
    EXPECT_EQ(scan({"--since", "2024-01-01"}, spam()).m_status, 1);
}

TEST_F(Selection, WrongOptionsAre64) {
    struct {
        Arguments m_arguments;
        char const* m_error;
    } const cases[] = {
        {{"--only", "spma"},
         "--only: \"spma\" is not one of spam|ham|none|unjudged|error; did you mean \"spam\"?"},
        {{"--only", ""}, "--only: \"\" is not one of spam|ham|none|unjudged|error"},
        {{"--only", "spam,,ham"}, "--only: \"\" is not one of"},
        {{"--rule", "x"}, "--rule: \"x\" is not a whole number"},
        {{"--since", "yesterday"},
         "--since: \"yesterday\" is not a date; write it as in 2026-11-20 or 2026-11-20T15:30"},
        {{"--until", "2026-02-30"}, "--until: \"2026-02-30\" is not a date"},
        {{"--since", "2026-13-01"}, "--since: \"2026-13-01\" is not a date"},
        {{"--since", "2026-11-20T25:00"}, "--since: \"2026-11-20T25:00\" is not a date"},
        {{"--since", "2026-11-20", "--until", "2026-11-19"},
         "--since names a later time than --until"},
    };
    for (auto const& row : cases) {
        auto const result = scan(row.m_arguments, ham());
        EXPECT_EQ(result.m_status, 64) << row.m_error;
        EXPECT_NE(result.m_errors.find(row.m_error), std::string::npos) << result.m_errors;
        EXPECT_EQ(result.m_output, "");
    }
}

TEST_F(Selection, ExtractWritesTheMessagesOfTheResultsByteForByte) {
    auto const crlf = "Subject: x\r\n\r\n>From here\r\n.\r\n";
    auto const box = m_folder.write("mail/box", separator + spam() + "\n" + separator + ham() +
                                                    "\n" + separator + spam() + ">From us\n\n\n");
    auto const one = m_folder.write("mail/one.eml", crlf);
    auto const archive =
        m_folder.write("a.tar", archiveOf({"ustar", "gzip"}, {{"../x y;z", spam() + noise()}}));
    auto const out = m_folder.path("out");
    auto const result = scan({"--extract", out, box, one, archive});
    EXPECT_EQ(result.m_status, 1) << result.m_errors;
    EXPECT_EQ(records(result).size(), 5U);
    EXPECT_EQ(extracted(),
              (Arguments{"00000001-box-1.eml", "00000002-box-2.eml", "00000003-box-3.eml",
                         "00000004-one.eml", "00000005-x_y_z.eml"}));
    EXPECT_EQ(m_folder.read("out/00000001-box-1.eml"), spam());
    EXPECT_EQ(m_folder.read("out/00000002-box-2.eml"), ham());
    EXPECT_EQ(m_folder.read("out/00000003-box-3.eml"), spam() + ">From us\n\n");
    EXPECT_EQ(m_folder.read("out/00000004-one.eml"), crlf);
    EXPECT_EQ(m_folder.read("out/00000005-x_y_z.eml"), spam() + noise());
}

TEST_F(Selection, ExtractFollowsTheSelection) {
    auto const box = mail();
    EXPECT_EQ(scan({"--extract", m_folder.path("out"), "--only", "ham,none", box}).m_status, 1);
    EXPECT_EQ(extracted(), (Arguments{"00000002-box-2.eml", "00000003-box-3.eml"}));
}

// A message that stays in a file until it is known whether it is wanted.
TEST_F(Selection, ExtractTakesMessagesOfAnySize) {
    std::string large = spam();
    while (large.size() < (std::size_t{5} << 20)) {
        large += noise();
    }
    auto const box = m_folder.write("box", separator + large + "\n" + separator + ham() + noise(2));
    EXPECT_EQ(scan({"--extract", m_folder.path("out"), box}).m_status, 1);
    EXPECT_EQ(extracted(), (Arguments{"00000001-box-1.eml", "00000002-box-2.eml"}));
    EXPECT_EQ(m_folder.read("out/00000001-box-1.eml"), large);
}

TEST_F(Selection, ExtractWritesOverNothing) {
    auto const box = mail();
    auto const taken = m_folder.write("out/00000001-box-1.eml", "mine");
    auto const result = scan({"--extract", m_folder.path("out"), box});
    EXPECT_EQ(result.m_status, 73);
    EXPECT_EQ(result.m_errors, "qvscan: " + taken + ": cannot be written: File exists\n");
    EXPECT_EQ(m_folder.read("out/00000001-box-1.eml"), "mine");
}

TEST_F(Selection, AFolderThatCannotBeMadeIs73BeforeAnythingIsJudged) {
    auto const file = m_folder.write("file", "");
    for (auto const& folder : {file, m_folder.path("missing/out")}) {
        auto const result = scan({"--extract", folder}, spam());
        EXPECT_EQ(result.m_status, 73);
        EXPECT_EQ(result.m_errors.find("qvscan: " + folder + ": cannot be made: "), 0U)
            << result.m_errors;
        EXPECT_EQ(result.m_output, "");
    }
}

} // namespace

} // namespace Quorvane::Testing
