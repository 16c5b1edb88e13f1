// SPDX-License-Identifier: Apache-2.0
// What counts as an input, and how its messages are named.
#include "qvscan/ScanFixture.h"

namespace Quorvane::Testing {

namespace {

using Input = ScanTest;

std::string s_crlf(std::string const& text) {
    std::string out;
    for (char const c : text) {
        out += c == '\n' ? "\r\n" : std::string(1, c);
    }
    return out;
}

TEST_F(Input, AMessageFileIsNamedByItsPath) {
    auto const file = m_folder.write("a.eml", spam());
    EXPECT_EQ(summary(scan({file})), Arguments{file + " spam"});
}

TEST_F(Input, AnMboxIsSplitAtSeparatorsAfterEmptyLines) {
    auto const text = separator + spam() + "From here on it goes on\n\n" + separator + ham() +
                      "\n" + separator + none();
    auto const file = m_folder.write("box", text);
    EXPECT_EQ(summary(scan({file})),
              (Arguments{file + ":1 spam", file + ":2 ham", file + ":3 none"}));
    EXPECT_EQ(summary(scan({"-"}, text)), (Arguments{"-:1 spam", "-:2 ham", "-:3 none"}));
    EXPECT_EQ(summary(scan({}, s_crlf(text))), (Arguments{"-:1 spam", "-:2 ham", "-:3 none"}));
}

TEST_F(Input, AnMboxOfOneMessageIsAnMbox) {
    EXPECT_EQ(summary(scan({}, separator + ham())), Arguments{"-:1 ham"});
}

TEST_F(Input, AnMboxMayHoldHeadersOnly) {
    auto const headers = hop("a.example", "mail.b.example", "192.0.2.3") + "\n";
    EXPECT_EQ(summary(scan({}, separator + headers + separator + headers)),
              (Arguments{"-:1 ham", "-:2 ham"}));
}

TEST_F(Input, AnMboxRecordWithoutHeaderIsNamed) {
    auto const result = scan({}, separator + std::string("\n") + separator + ham());
    EXPECT_EQ(summary(result), Arguments{"-:2 ham"});
    EXPECT_EQ(result.m_errors, "qvscan: -:1: not a message: it has no header field\n");
    EXPECT_EQ(result.m_status, 65);
}

TEST_F(Input, QuotedSeparatorsInHeadersAreUnquoted) {
    auto const record =
        explained({}, separator + std::string("To: bob@b.example\n>From : ann@quoted.example\n\n"));
    EXPECT_EQ(record["explain"]["headerFrom"], "quoted.example");
}

TEST_F(Input, LineEndingsMakeNoDifference) {
    auto const plain = explained({}, spam());
    auto const crlf = explained({}, s_crlf(spam()));
    EXPECT_EQ(plain["verdict"], crlf["verdict"]);
    EXPECT_EQ(plain["explain"]["attributes"], crlf["explain"]["attributes"]);
}

TEST_F(Input, HeadersWithoutBodyOrLastLineBreakAreAMessage) {
    auto text = hop("a.example", "dsl-1-2-3.dyn.b.example", "192.0.2.3");
    text.pop_back();
    EXPECT_EQ(scan({}, text).m_status, 1);
}

TEST_F(Input, StandardInputIsReadToItsEnd) {
    EXPECT_EQ(summary(scan({}, ham() + std::string(50 << 20, 'x'))), Arguments{"- ham"});
}

TEST_F(Input, TheBodyOfAFileIsNotRead) {
    auto const file = m_folder.write("big.eml", ham());
    // A hole of a terabyte: reading it would not end in time.
    std::filesystem::resize_file(file, std::uintmax_t{1} << 40);
    EXPECT_EQ(summary(scan({file})), Arguments{file + " ham"});
}

TEST_F(Input, AHeaderSectionBeyondTheLimitIsNotRead) {
    auto const file = m_folder.write("endless", "A: b\n");
    std::filesystem::resize_file(file, std::uintmax_t{1} << 40);
    auto const result = scan({file});
    EXPECT_EQ(result.m_status, 65);
    EXPECT_EQ(result.m_errors, "qvscan: " + file +
                                   ": its header section is longer than max-header-bytes, which is "
                                   "1048576\n");
}

TEST_F(Input, AMessageWithMoreFieldsThanTheLimitIsNotJudged) {
    std::string fields;
    for (int i = 0; i < 100; ++i) {
        fields += "X:\n";
    }
    auto const file = m_folder.write("many", fields + spam());
    auto const result = scan({"--max-headers", "100", file});
    EXPECT_EQ(result.m_status, 65);
    EXPECT_EQ(result.m_errors.find("qvscan: " + file + ": it has 10"), 0U) << result.m_errors;
    EXPECT_NE(result.m_errors.find(" header fields, and max-headers is 100\n"), std::string::npos)
        << result.m_errors;
    EXPECT_EQ(summary(scan({file})), Arguments{file + " spam"});
}

TEST_F(Input, OfMoreHopsThanTheLimitTheNewestCount) {
    std::string hops;
    for (int i = 0; i < 5; ++i) {
        hops += "Received: from a.example (unknown [192.0.2.7]) by b.example\n";
    }
    auto const file = m_folder.write("hops", hops);
    for (std::size_t const limit : {3U, 5U, 100U}) {
        auto const result =
            scan({"--explain", "--format", "json", "--max-hops", std::to_string(limit), file});
        auto const record = Json::parse(result.m_output);
        EXPECT_EQ(record["explain"]["trail"].size(), std::min<std::size_t>(limit, 5));
    }
}

TEST_F(Input, AFolderIsReadRecursivelyByName) {
    m_folder.write("mail/b/2.eml", ham());
    m_folder.write("mail/b/1.eml", spam());
    m_folder.write("mail/a.eml", none());
    m_folder.write("mail/.hidden", spam());
    m_folder.write("mail/dovecot.index.log", "binary");
    auto const folder = m_folder.path("mail");
    EXPECT_EQ(summary(scan({folder})), (Arguments{folder + "/a.eml none", folder + "/b/1.eml spam",
                                                  folder + "/b/2.eml ham"}));
}

TEST_F(Input, AMaildirIsReadWithoutItsTemporaryAndIndexFiles) {
    m_folder.write("Maildir/new/2.host", ham());
    m_folder.write("Maildir/cur/1.host:2,S", spam());
    m_folder.write("Maildir/tmp/3.host", spam());
    m_folder.write("Maildir/dovecot-uidlist", "3 V1\n");
    m_folder.write("Maildir/.Sent/cur/4.host:2,S", none());
    m_folder.write("Maildir/.Sent/new/.keep", "");
    auto const folder = m_folder.path("Maildir");
    EXPECT_EQ(summary(scan({folder})),
              (Arguments{folder + "/.Sent/cur/4.host:2,S none", folder + "/cur/1.host:2,S spam",
                         folder + "/new/2.host ham"}));
}

TEST_F(Input, PathsAreTakenInTheirOrder) {
    auto const a = m_folder.write("a", spam());
    auto const b = m_folder.write("b", ham());
    EXPECT_EQ(summary(scan({b, "-", a}, none())), (Arguments{b + " ham", "- none", a + " spam"}));
}

TEST_F(Input, PathsMayLookLikeOptionsAndLists) {
    std::filesystem::create_directories(m_folder.path() / "[a,b]");
    auto const file = m_folder.write("[a,b]/x]", ham());
    auto const folder = m_folder.path("[a,b]");
    EXPECT_EQ(summary(scan({folder})), Arguments{file + " ham"});
    EXPECT_EQ(scan({"--", "--no-such-file"}).m_status, 66);
}

TEST_F(Input, AMaildirMayLackOneOfItsFolders) {
    m_folder.write("a/cur/1.host:2,S", spam());
    m_folder.write("a/tmp/2.host", ham());
    m_folder.write("b/new/1.host", spam());
    m_folder.write("b/tmp/2.host", ham());
    m_folder.write("b/dovecot-keywords", "0 x\n");
    m_folder.write("plain/new/1.host", spam());
    m_folder.write("plain/other", ham());
    auto const folder = m_folder.path().string();
    EXPECT_EQ(summary(scan({folder + "/a", folder + "/b", folder + "/plain"})),
              (Arguments{folder + "/a/cur/1.host:2,S spam", folder + "/b/new/1.host spam",
                         folder + "/plain/new/1.host spam", folder + "/plain/other ham"}));
}

TEST_F(Input, APathThatIsNoUtf8IsShownAsLatin1) {
    auto const file = m_folder.write("caf\xE9.eml", ham());
    auto const folder = m_folder.path().string();
    EXPECT_EQ(records(scan({file}))[0]["source"], folder + "/caf\xC3\xA9.eml");
}

} // namespace

} // namespace Quorvane::Testing
