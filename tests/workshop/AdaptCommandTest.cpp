// SPDX-License-Identifier: Apache-2.0
//
// `qvrules adapt` as its users see it: every test runs the program that was built.
#include "CommandTest.h"

#include <filesystem>
#include <gmock/gmock.h>

namespace Quorvane::Testing {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr char s_rules[] =
    "version 3\nelite first also-tree\n"
    "decide 0.98 support 3 code 9\n"
    "    name \"Dynamic\"\n"
    "    because \"It looks dynamic.\"\n"
    "    when first_reverse_dynamic == yes\n"
    "tree confidence 0.4 { first_helo_dynamic == no: confidence 0.3 support 80 }\n";

constexpr int usage = 64;
constexpr int badData = 65;
constexpr int noInput = 66;
constexpr int cannotWrite = 73;

std::string s_mbox(int messages, std::string const& reverse, std::string const& messageIdDomain) {
    std::string mbox;
    for (int i = 1; i <= messages; ++i) {
        auto const number = std::to_string(i);
        mbox += "From x@example.org Mon Jan  1 10:00:00 2024\n"
                "Received: from mail.example.com (" +
                reverse + " [192.0.2." + number +
                "])\n\tby mx.example.org with ESMTP id 1;\n\tMon, 1 Jan 2024 10:00:00 +0000\n"
                "From: Ann <ann@example.net>\nTo: bob@example.org\n"
                "Message-ID: <1@" +
                messageIdDomain + ">\n\n";
    }
    return mbox;
}

// At this site people send from consumer lines, and spam has no Message-ID of the author.
class AdaptCommand : public CommandTest {
  protected:
    AdaptCommand() : CommandTest("adapt") {
        m_folder.write("now.qvr", s_rules);
        m_folder.write("people.mbox", s_mbox(60, "192-0-2-1.dyn.example.com", "example.net"));
        m_folder.write("servers.mbox", s_mbox(240, "mail.example.com", "example.net"));
        m_folder.write("spam.mbox", s_mbox(240, "mail.example.com", "spammer.example"));
    }

    std::string path(std::string const& name) const { return m_folder.path(name); }

    Arguments site() const {
        return {path("now.qvr"),   "--ham", path("people.mbox"), path("servers.mbox"), "--spam",
                path("spam.mbox"), "-o",    path("site.qvr")};
    }
};

TEST_F(AdaptCommand, WritesRulesThatSuitTheSiteAndSaysHowMuchBetterTheyAre) {
    auto const result = run(site());
    ASSERT_EQ(result.m_status, 0) << result.m_errors;
    EXPECT_THAT(result.m_errors, HasSubstr("  the present rules\n"
                                           "    spam called spam            0 of 80 "));
    EXPECT_THAT(result.m_errors, HasSubstr("    ham called spam             20 of 100 "));
    EXPECT_THAT(result.m_errors, HasSubstr("  adapted\n"
                                           "    spam called spam            80 of 80 "));
    auto const text = m_folder.read("site.qvr");
    EXPECT_THAT(text, StartsWith("# Learned from 240 spam and 300 ham messages of one site"));
    EXPECT_THAT(text, HasSubstr("#   decide 9 left out: it decided 0 spam and 60 ham; "
                                "0.9800 before, 0."));
    EXPECT_THAT(text, HasSubstr("\nversion 3\n"));
    auto const judged =
        runProgram(QV_RULES_PROGRAM, {"evaluate", path("site.qvr"), "--ham", path("people.mbox"),
                                      "--spam", path("spam.mbox")});
    EXPECT_THAT(judged.m_output, HasSubstr("spam called spam                  240 of 240"));
    EXPECT_THAT(judged.m_output, HasSubstr("ham called spam                   0 of 60"));
}

TEST_F(AdaptCommand, RulesFromAFolderAreAdaptedLikeTheirText) {
    ASSERT_EQ(run(site()).m_status, 0);
    ASSERT_EQ(
        runProgram(QV_RULES_PROGRAM, {"compile", path("now.qvr"), "-o", path("now")}).m_status, 0);
    auto arguments = site();
    arguments.front() = path("now");
    arguments.back() = path("folder.qvr");
    ASSERT_EQ(run(arguments).m_status, 0);
    EXPECT_EQ(m_folder.read("folder.qvr"), m_folder.read("site.qvr"));
}

TEST_F(AdaptCommand, WritesNothingWhenTheRulesWouldBeNoBetter) {
    auto const result = run({path("now.qvr"), "--ham", path("servers.mbox"), "--spam",
                             path("servers.mbox"), "-o", path("site.qvr")});
    EXPECT_EQ(result.m_status, 1);
    EXPECT_THAT(result.m_errors, HasSubstr("no better on it, so nothing was written"));
    EXPECT_FALSE(std::filesystem::exists(path("site.qvr")));
}

TEST_F(AdaptCommand, NeedsSomeMailOfBothKinds) {
    m_folder.write("few.mbox", s_mbox(11, "mail.example.com", "spammer.example"));
    auto const result = run({path("now.qvr"), "--ham", path("servers.mbox"), "--spam",
                             path("few.mbox"), "-o", path("site.qvr")});
    EXPECT_EQ(result.m_status, badData);
    EXPECT_THAT(result.m_errors, HasSubstr("at least 12 spam and 12 ham messages that can be "
                                           "judged; here are 11 spam and 240 ham"));
}

TEST_F(AdaptCommand, SaysWhatIsMissing) {
    EXPECT_EQ(run({path("now.qvr"), "-o", path("site.qvr")}).m_status, usage);
    EXPECT_EQ(run({path("now.qvr"), "--ham", path("servers.mbox")}).m_status, usage);
    EXPECT_EQ(
        run({path("none.qvr"), "--ham", path("servers.mbox"), "-o", path("site.qvr")}).m_status,
        noInput);
}

TEST_F(AdaptCommand, DoesNotReplaceSomebodysOwnRules) {
    auto arguments = site();
    arguments.back() = path("now.qvr");
    auto const result = run(arguments);
    EXPECT_EQ(result.m_status, cannotWrite);
    EXPECT_EQ(m_folder.read("now.qvr"), s_rules);
    EXPECT_EQ(run(with(arguments, {"--force"})).m_status, 0);
}

} // namespace
} // namespace Quorvane::Testing
