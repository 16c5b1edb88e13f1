// SPDX-License-Identifier: Apache-2.0
//
// `qvrules learn` as its users see it: every test runs the program that was built.
#include "CommandTest.h"

#include <gmock/gmock.h>

namespace Quorvane::Testing {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

constexpr int badData = 65;
constexpr int usage = 64;
constexpr int noInput = 66;
constexpr int cannotWrite = 73;

std::string s_message(std::string const& helo, std::string const& reverse, int host) {
    return "Received: from " + helo + " (" + reverse + " [192.0.2." + std::to_string(host) +
           "])\n\tby mx.example.org with ESMTP id 1;\n\tMon, 1 Jan 2024 10:00:00 +0000\n"
           "From: Ann <ann@example.net>\nTo: bob@example.org\n"
           "Message-ID: <1@example.net>\n\n";
}

// Spam comes from consumer lines, ham from servers; what is in the names differs by site.
std::string s_mbox(bool isSpam, std::string const& site, int messages) {
    std::string mbox;
    for (int i = 1; i <= messages; ++i) {
        auto const line = "192-0-2-" + std::to_string(i) + ".dyn." + site + ".example";
        auto const server = "mail" + std::to_string(i) + "." + site + ".example";
        mbox += "From x@example.org Mon Jan  1 10:00:00 2024\n";
        mbox +=
            isSpam ? s_message("pc" + std::to_string(i), line, i) : s_message(server, server, i);
    }
    return mbox;
}

class LearnCommand : public CommandTest {
  protected:
    LearnCommand() : CommandTest("learn") {
        for (std::string const site : {"alpha", "beta"}) {
            m_folder.write(site + "/ham.mbox", s_mbox(false, site, 40));
            m_folder.write(site + "/spam.mbox", s_mbox(true, site, 30));
        }
    }

    std::string path(std::string const& name) const { return m_folder.path(name); }
    std::string read(std::string const& name) const { return m_folder.read(name); }

    Arguments mail() const {
        return {"--ham",  path("alpha/ham.mbox"),  path("beta/ham.mbox"),
                "--spam", path("alpha/spam.mbox"), path("beta/spam.mbox")};
    }
};

TEST_F(LearnCommand, LearnsRulesThatJudgeTheMailTheyWereLearnedFrom) {
    auto const result = run(with(mail(), {"-o", path("learned.qvr")}));
    ASSERT_EQ(result.m_status, 0) << result.m_errors;
    EXPECT_THAT(result.m_errors, HasSubstr("from 60 spam and 80 ham"));
    EXPECT_THAT(read("learned.qvr"), HasSubstr("#   alpha: 30 spam, 40 ham\n"));
    auto const rules = path("root/var/spool/etc/antispam");
    ASSERT_EQ(runProgram(QV_RULES_PROGRAM, {"compile", path("learned.qvr"), "-o", rules}).m_status,
              0);
    Arguments const scan = {"--root", path("root"), "--dns", "off", "--format", "json"};
    EXPECT_EQ(runProgram(QV_SCAN_PROGRAM, with(scan, {path("alpha/ham.mbox")})).m_status, 0);
    auto const spam = runProgram(QV_SCAN_PROGRAM, with(scan, {path("beta/spam.mbox")}));
    EXPECT_EQ(spam.m_status, 1);
    EXPECT_THAT(spam.m_output, Not(HasSubstr("\"none\"")));
}

TEST_F(LearnCommand, TheSameMailInAnotherOrderGivesTheSameText) {
    ASSERT_EQ(run(with(mail(), {"-o", path("one.qvr")})).m_status, 0);
    ASSERT_EQ(
        run({"--spam", path("beta/spam.mbox"), path("alpha/spam.mbox"), "--ham",
             path("beta/ham.mbox"), path("alpha/ham.mbox"), "--jobs", "1", "-o", path("two.qvr")})
            .m_status,
        0);
    EXPECT_EQ(read("one.qvr"), read("two.qvr"));
}

TEST_F(LearnCommand, VectorsFromAnywhereGiveTheTreeOfTheMessages) {
    ASSERT_EQ(run(with(mail(), {"-o", path("mail.qvr"), "--table", path("all.csv")})).m_status, 0);
    ASSERT_EQ(run({"--vectors", path("all.csv"), "-o", path("table.qvr")}).m_status, 0);
    EXPECT_EQ(read("mail.qvr"), read("table.qvr"));
    auto const piped = run({"--vectors", "-", "-o", "-"}, read("all.csv"));
    ASSERT_EQ(piped.m_status, 0) << piped.m_errors;
    EXPECT_EQ(piped.m_output, read("mail.qvr"));
}

TEST_F(LearnCommand, TakesTheLabelOfScanOutputFromTheOption) {
    m_folder.write("root/var/spool/etc/antispam/qv.dt", ""); // rules that judge nothing
    Arguments learn;
    for (std::string const site : {"alpha", "beta"}) {
        for (std::string const label : {"ham", "spam"}) {
            auto const mbox = path(std::string(site).append("/").append(label).append(".mbox"));
            auto const scan = runProgram(
                QV_SCAN_PROGRAM, {"--root", path("root"), "--dns", "off", "--format", "csv", mbox});
            ASSERT_EQ(scan.m_status, 0) << scan.m_errors;
            learn.push_back("--" + label + "-vectors");
            auto const table = std::string(site).append("/").append(label).append(".csv");
            learn.push_back(
                std::string(site).append("=").append(m_folder.write(table, scan.m_output)));
        }
    }
    ASSERT_EQ(run(with(learn, {"-o", path("vectors.qvr")})).m_status, 0);
    ASSERT_EQ(run(with(mail(), {"-o", path("mail.qvr")})).m_status, 0);
    EXPECT_EQ(read("vectors.qvr"), read("mail.qvr"));
}

TEST_F(LearnCommand, AddsCopiesOfABorderWithoutReverseNames) {
    auto const result = run(with(mail(), {"--augment", "no-reverse-name", "-o", path("a.qvr")}));
    ASSERT_EQ(result.m_status, 0) << result.m_errors;
    EXPECT_THAT(read("a.qvr"), HasSubstr("from 120 spam and 160 ham"));
    EXPECT_THAT(result.m_errors, HasSubstr("140 of 140 messages copied without reverse names"));
}

TEST_F(LearnCommand, LeavesOutWhatHasNoPublicHop) {
    auto const local = m_folder.write("local.eml", "Received: from a (b [10.0.0.1]) by c\n\n");
    auto const result = run(with(mail(), {"--ham", "alpha=" + local, "-o", path("a.qvr")}));
    ASSERT_EQ(result.m_status, 0) << result.m_errors;
    EXPECT_THAT(result.m_errors, HasSubstr("1 message without a public hop left out"));
    EXPECT_THAT(read("a.qvr"), HasSubstr("from 60 spam and 80 ham"));
}

TEST_F(LearnCommand, NeverTestsLookedUpOrExcludedAttributes) {
    Arguments const learn = {"--vectors", path("looked.csv"), "-o", path("a.qvr")};
    ASSERT_EQ(run(with(mail(), {"--table", path("all.csv")})).m_status, 0);
    auto table = read("all.csv");
    auto const end = table.find('\n') + 1;
    std::string rows;
    for (std::string const label : {"spam", "ham"}) {
        for (std::string const corpus : {"a", "b"}) {
            rows += "x";
            for (int i = 0; i < 38; ++i) {
                rows += i == 14 ? (label == "spam" ? ",1" : ",0") : ",0";
            }
            rows.append(",").append(label).append(",50,").append(corpus).append("\n");
        }
    }
    m_folder.write("looked.csv", table.substr(0, end) + rows);
    ASSERT_EQ(run(learn).m_status, 0);
    EXPECT_THAT(read("a.qvr"), Not(HasSubstr("first_forged ==")));
    ASSERT_EQ(run(with(learn, {"--lookups"})).m_status, 0);
    EXPECT_THAT(read("a.qvr"), HasSubstr("first_forged =="));
    ASSERT_EQ(run(with(learn, {"--lookups", "--exclude", "first_forged"})).m_status, 0);
    EXPECT_THAT(read("a.qvr"), Not(HasSubstr("first_forged ==")));
}

TEST_F(LearnCommand, PutsAHandWrittenTextBeforeTheTree) {
    auto const own = m_folder.write("own.qvr", "# by hand\nversion 7\nelite first also-tree\n"
                                               "adjust 0.02 code 'l' when first_helo_dynamic == "
                                               "literal\n");
    ASSERT_EQ(run(with(mail(), {"--with", own, "-o", path("all.qvr")})).m_status, 0);
    EXPECT_EQ(read("all.qvr").rfind("# by hand\nversion 7\n", 0), 0U);
    EXPECT_EQ(runProgram(QV_RULES_PROGRAM, {"check", path("all.qvr")}).m_status, 0);
}

TEST_F(LearnCommand, SaysWhatIsWrongWithTheInput) {
    struct Case {
        Arguments m_arguments;
        int m_status;
        char const* m_text;
    };
    auto const bad = m_folder.write("bad.csv", "source,label\n");
    auto const noMail = m_folder.write("no.eml", "just words\n");
    auto const out = path("out.qvr");
    Arguments const mail{"--ham", path("alpha/ham.mbox"), "--spam", path("alpha/spam.mbox")};
    Case const cases[] = {
        {{"-o", out}, usage, "--ham"},
        {mail, usage, "-o SRC"},
        {with(mail, {"-o", out, "--impurity", "odd"}), usage, "odd"},
        {with(mail, {"-o", out, "--augment", "odd"}), usage, "odd"},
        {with(mail, {"-o", out, "--ham", path("absent")}), noInput, "absent"},
        {{"--vectors", path("absent.csv"), "-o", out}, noInput, "absent.csv"},
        {{"--vectors", bad, "-o", out}, badData, "bad.csv:1:"},
        {with(mail, {"-o", out, "--prune", "some"}), usage, "--prune: \"some\""},
        {with(mail, {"-o", out, "--exclude", "nothing"}), usage, "--exclude: \"nothing\""},
        {with(mail, {"-o", out, "--max-nodes", "498"}), usage, "497"},
        {with(mail, {"-o", out, "--min-gain", "nan"}), usage, "\"nan\" is not a number"},
        {with(mail, {"-o", out, "--min-gain", "-1"}), usage, "--min-gain"},
        {with(mail, {"-o", out, "--dns", "system"}), usage, "--lookups"},
        {with(mail, {"-o", out, "--dns-data", noMail}), usage, "--lookups"},
        {with(mail, {"-o", out, "--trusted-mta", "x"}), usage, "trusted-mta"},
        {with(mail, {"-o", out, "--with", noMail}), badData, "no.eml"},
    };
    for (auto const& one : cases) {
        auto const result = run(one.m_arguments);
        EXPECT_EQ(result.m_status, one.m_status) << result.m_errors;
        EXPECT_THAT(result.m_errors, HasSubstr(one.m_text));
        EXPECT_FALSE(std::filesystem::exists(out));
    }
}

// Nothing is learned from one kind alone: the options say so before the mail is read, and where
// they do not, the mail does.
TEST_F(LearnCommand, NeedsSpamAndHam) {
    auto const out = path("out.qvr");
    auto const ham = path("alpha/ham.mbox");
    auto const local = m_folder.write("local.eml", "Received: from a (b [10.0.0.1]) by c\n\n");
    ASSERT_EQ(run({"--ham", ham, "--table", path("ham.csv")}).m_status, 0) << "a table needs one";
    struct Case {
        Arguments m_arguments;
        int m_status;
        char const* m_missing;
    };
    Case const cases[] = {
        {{"--ham", path("absent")}, usage, "there is no spam"},
        {{"--spam", path("absent")}, usage, "there is no ham"},
        {{"--ham-vectors", path("absent")}, usage, "there is no spam"},
        {{"--ham", ham, "--spam", local}, badData, "there is no spam"},
        {{"--ham", local, "--spam", ham}, badData, "there is no ham"},
        {{"--vectors", path("ham.csv")}, badData, "there is no spam"},
    };
    for (auto const& one : cases) {
        auto const result = run(with(one.m_arguments, {"-o", out}));
        EXPECT_EQ(result.m_status, one.m_status) << result.m_errors;
        EXPECT_THAT(result.m_errors, HasSubstr(one.m_missing));
        EXPECT_FALSE(std::filesystem::exists(out));
    }
}

TEST_F(LearnCommand, LeavesOutWhatIsNoMessageAndCountsIt) {
    auto const empty = m_folder.write("empty.eml", "");
    auto const words = m_folder.write("words.eml", "just words\n");
    ASSERT_EQ(run(with(mail(), {"-o", path("all.qvr")})).m_status, 0);
    auto const result = run(
        with(with({"--ham", "alpha=" + empty, "alpha=" + words}, mail()), {"-o", path("a.qvr")}));
    EXPECT_EQ(result.m_status, badData);
    EXPECT_THAT(result.m_errors, HasSubstr(empty + ": not a message: it has no header field\n" +
                                           words + ": not a message: it has no header field\n" +
                                           "qvrules: 2 inputs were left out\n"));
    EXPECT_EQ(read("a.qvr"), read("all.qvr"));
}

// What would only come out after hours of scanning is looked at first: here before the mail, which
// is not there.
TEST_F(LearnCommand, LooksAtEverythingElseBeforeTheMail) {
    auto const tree =
        m_folder.write("tree.qvr", "version 1\ntree confidence 0.5 support 100 leaf 1\n");
    struct Case {
        Arguments m_arguments;
        int m_status;
        std::string m_text;
    };
    Case const cases[] = {
        {{"-o", path("absent/out.qvr")}, cannotWrite, "out.qvr: cannot be written: No such file"},
        {{"-o", path("alpha")}, cannotWrite, "alpha: cannot be written: Is a directory"},
        {{"-o", path("alpha/ham.mbox/out.qvr")},
         cannotWrite,
         "out.qvr: cannot be written: Not a dir"},
        {{"--table", path("absent/t.csv")}, cannotWrite, "t.csv: cannot be written"},
        {{"-o", path("out.qvr"), "--max-nodes", "0"}, usage, "--max-nodes: \"0\""},
        {{"-o", path("out.qvr"), "--with", path("absent.qvr")}, noInput, "absent.qvr"},
        {{"-o", path("out.qvr"), "--with", tree}, badData, "tree.qvr: it already has a tree"},
    };
    for (auto const& one : cases) {
        auto const result = run(
            with({"--ham", path("absent.mbox"), "--spam", path("absent.mbox")}, one.m_arguments));
        EXPECT_EQ(result.m_status, one.m_status) << result.m_errors;
        EXPECT_THAT(result.m_errors, HasSubstr(one.m_text));
    }
}

TEST_F(LearnCommand, SaysSoWhenNothingTellsSpamFromHam) {
    auto const result = run(
        {"--ham", path("alpha/ham.mbox"), "--spam", path("beta/ham.mbox"), "-o", path("a.qvr")});
    EXPECT_EQ(result.m_status, 0) << result.m_errors;
    EXPECT_THAT(result.m_errors, HasSubstr("judge nothing"));
}

} // namespace
} // namespace Quorvane::Testing
