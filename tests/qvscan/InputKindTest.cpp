// SPDX-License-Identifier: Apache-2.0
// What is no message, and parts of inputs by the names that reports give them.
#include "qvscan/ScanFixture.h"
#include "support/ArchiveWriter.h"

namespace Quorvane::Testing {

namespace {

using InputKind = ScanTest;

struct NoMessage {
    char const* m_what;
    std::string m_bytes;
};

TEST_F(InputKind, WhatHasNoHeaderLineIs65WhateverItIs) {
    NoMessage const inputs[] = {
        {"text", "Dear all,\n\nSubject: this comes after an empty line\n"},
        {"JSON", "{\"source\": \"-\",\n  \"verdict\": \"spam\"}\n"},
        {"JSON lines", "{\"source\":\"-\"}\n{\"verdict\":\"spam\"}\n"},
        {"a table", "source,first_helo_dynamic\na.eml,1\n"},
        {"a program", readFile(QV_SCAN_PROGRAM)},
        {"a picture", std::string("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16) + "\nTitle: x\n"},
        {"random bytes", std::string("\x02\xFE", 2) + noise() + "X: y\n"},
        {"zero bytes", std::string(100000, '\0')},
        {"indented lines", " Subject: x\n\tFrom: a@b.example\n"},
        {"dates", "2024-01-01 10:00:00 started\n10:00:01 ended\n"},
    };
    for (auto const& input : inputs) {
        auto const file = m_folder.write("input", input.m_bytes);
        auto const result = scan({file, "-"}, ham());
        EXPECT_EQ(result.m_status, 65) << input.m_what;
        EXPECT_EQ(summary(result), Arguments{"- ham"}) << input.m_what;
        EXPECT_EQ(result.m_errors, "qvscan: " + file + ": not a message: it has no header field\n")
            << input.m_what;
    }
}

TEST_F(InputKind, OneHeaderLineMakesAMessage) {
    for (auto const* const text :
         {"Subject: x\n", "Subject:x", "no field\nX-Any_thing.2 : x\n\n", "Subject:\r\n\r\n",
          "caf\xE9\n\x1B$B\nTo: a@b.example\n", "From x\nTo: a@b.example\n"}) {
        EXPECT_EQ(records(scan({}, text)).size(), 1U) << text;
    }
    EXPECT_EQ(records(scan({}, std::string("Subject: \0x\n", 12))).size(), 1U);
}

// A report names a message, and its name is an input again.
TEST_F(InputKind, EverySourceInAReportIsAnInput) {
    auto const box = separator + spam() + "\n" + separator + ham() + "\n" + separator + none();
    m_folder.write("mail/box", box);
    m_folder.write("mail/one.eml", ham());
    m_folder.write("mail/mail.tgz",
                   archiveOf({"ustar", "gzip"}, {{"in/box", box}, {"in/one.eml", spam()}}));
    auto const all = scan({m_folder.path("mail")});
    auto const found = records(all);
    ASSERT_EQ(found.size(), 8U);
    for (auto const& record : found) {
        auto const alone = scan({record["source"].get<std::string>()});
        EXPECT_EQ(records(alone), std::vector<Json>{record}) << alone.m_errors;
    }
}

TEST_F(InputKind, PartsOfStandardInputAreInputsToo) {
    auto const box = separator + spam() + "\n" + separator + ham();
    EXPECT_EQ(summary(scan({"-:2"}, box)), Arguments{"-:2 ham"});
    auto const archive = archiveOf({"zip"}, {{"a", spam()}, {"box", box}});
    EXPECT_EQ(summary(scan({"-/a"}, archive)), Arguments{"-/a spam"});
    EXPECT_EQ(summary(scan({"-/box:1"}, archive)), Arguments{"-/box:1 spam"});
}

TEST_F(InputKind, AFileWhoseNameEndsInANumberWins) {
    auto const box = m_folder.write("box", separator + spam() + "\n" + separator + ham());
    m_folder.write("box:2", none());
    EXPECT_EQ(summary(scan({box + ":1", box + ":2"})),
              (Arguments{box + ":1 spam", box + ":2 none"}));
    auto const archive =
        m_folder.write("a.tar", archiveOf({"ustar"}, {{"x:2", ham()}, {"x", spam()}}));
    EXPECT_EQ(summary(scan({archive + "/x:2"})), Arguments{archive + "/x:2 ham"});
}

TEST_F(InputKind, PartsThatThereAreNotAre66) {
    auto const box = m_folder.write("box", separator + spam() + "\n" + separator + ham());
    auto const one = m_folder.write("one", spam());
    auto const archive = m_folder.write("a.tar", archiveOf({"ustar"}, {{"x", spam()}}));
    struct {
        std::string m_name;
        char const* m_error;
    } const cases[] = {
        {box + ":3", "cannot be opened: the mailbox has 2 messages"},
        {box + ":0", "cannot be opened: No such file or directory"},
        {one + ":1", "cannot be opened: it is a single message, no mailbox"},
        {archive + "/y", "cannot be opened: there is no such file in the archive"},
        {archive + "/x:2", "cannot be opened: it is a single message, no mailbox"},
        {one + "/x", "cannot be opened: it is no archive"},
        {m_folder.path("missing:2"), "cannot be opened: No such file or directory"},
    };
    for (auto const& row : cases) {
        auto const result = scan({row.m_name, "-"}, ham());
        EXPECT_EQ(result.m_status, 66) << row.m_name;
        EXPECT_EQ(summary(result), Arguments{"- ham"});
        EXPECT_EQ(result.m_errors, "qvscan: " + row.m_name + ": " + row.m_error + "\n");
    }
}

} // namespace

} // namespace Quorvane::Testing
