// SPDX-License-Identifier: Apache-2.0
//
// `qvrules evaluate` as its users see it.
#include "CommandTest.h"
#include "support/DnsServer.h"
#include "support/JsonLines.h"
#include "support/SilentDnsServer.h"
#include "support/Terminal.h"

#include <filesystem>
#include <gmock/gmock.h>

namespace Quorvane::Testing {
namespace {

using ::testing::HasSubstr;

constexpr char rules[] =
    "version 1\n"
    "elite first also-tree\n"
    "decide 0.97 code 900 when first_reverse_dynamic == yes and hop_behind_first == yes\n"
    "tree {\n"
    "    first_reverse_dynamic == yes: confidence 0.99 support 50\n"
    "    first_reverse_dynamic == no: confidence 0.02 support 30\n"
    "    first_reverse_dynamic == unknown: confidence 0.5 support 20\n"
    "}\n";

std::string s_message(std::string const& reverse, std::string const& address = "192.0.2.7") {
    return "From x@example.org Mon Jan  1 10:00:00 2024\n"
           "Received: from pc.example.net (" +
           reverse + " [" + address + "])\n\tby mx.example.org; Mon, 1 Jan 2024 10:00:00 +0000\n" +
           "From: Ann <ann@example.net>\nMessage-ID: <1@example.net>\n\n";
}

class EvaluateCommand : public CommandTest {
  protected:
    EvaluateCommand() : CommandTest("evaluate") {
        m_first = with(m_first, {m_rules, "--dns", "off"});
        auto const dynamic = s_message("192-0-2-7.dyn.example.net");
        auto const server = s_message("mail.example.net");
        m_folder.write("site/spam.mbox", dynamic + dynamic + dynamic + server);
        m_folder.write("site/ham.mbox", server + server + dynamic + s_message("unknown") +
                                            s_message("mail.example.net", "10.0.0.1"));
    }

    Json report(Arguments const& arguments) const {
        auto const result = run(with(arguments, {"--format", "json"}));
        EXPECT_EQ(result.m_status, 0) << result.m_errors;
        return Json::parse(result.m_output);
    }

    Arguments mail() const {
        return {"--ham", m_folder.path("site/ham.mbox"), "--spam", m_folder.path("site/spam.mbox")};
    }

    std::string m_rules = m_folder.write("r.qvr", rules);
};

// One server answers for the announced name of the first message and fails for that of the second.
TEST_F(EvaluateCommand, LeavesMessagesOutWhoseNamesCannotBeLookedUp) {
    DnsServer const server({{"known.test", "@ A 192.0.2.7\n"}, {"broken.test", "", true}});
    auto const message = [](std::string const& helo) {
        return "From x@example.org Mon Jan  1 10:00:00 2024\nReceived: from " + helo +
               " ([192.0.2.7]) by mx.example.org\n\n";
    };
    auto const mail = m_folder.write("d/ham.mbox", message("known.test") + message("broken.test"));
    auto const dnsRules = m_folder.write(
        "dns.qvr", "version 1\ntree {\n    first_helo_resolves == yes: confidence 0.01 support 50\n"
                   "    first_helo_resolves != yes: confidence 0.99 support 50\n}\n");
    auto const result = runProgram(QV_RULES_PROGRAM, {"evaluate", dnsRules, "--ham", mail, "--dns",
                                                      server.address(), "--format", "json"});
    EXPECT_EQ(result.m_status, 0);
    EXPECT_THAT(result.m_errors, HasSubstr("left out 1 message whose DNS look-ups failed"));
    EXPECT_EQ(Json::parse(result.m_output)["corpora"][0]["verdictsOnHam"],
              Json::parse(R"({"spam":0,"ham":1,"none":0})"));
}

TEST_F(EvaluateCommand, CountsWhatTheThresholdsGive) {
    auto const json = report(mail());
    auto const& site = json["corpora"][0];
    EXPECT_EQ(site["name"], "site");
    EXPECT_EQ(site["judgeable"]["count"], 8);
    EXPECT_EQ(site["judgeable"]["of"], 9);
    EXPECT_EQ(site["verdictsOnSpam"], Json::parse(R"({"spam":3,"ham":1,"none":0})"));
    EXPECT_EQ(site["verdictsOnHam"], Json::parse(R"({"spam":1,"ham":2,"none":1})"));
    EXPECT_EQ(site["falsePositives"]["of"], 4);
    // 3 spam above all but one ham, which ties; 1 spam ties with 2 ham and is below the others.
    EXPECT_DOUBLE_EQ(site["roc"]["area"], (3 * 3.5 + 1.0) / 16);
}

TEST_F(EvaluateCommand, NamesTheNodesThatDecideAndErr) {
    auto const json = report(mail());
    auto const& first = json["deciders"][0];
    EXPECT_EQ(first["kind"], "tree");
    EXPECT_EQ(first["conditions"], "first_reverse_dynamic == yes");
    EXPECT_EQ(first["reached"], Json::parse(R"({"spam":3,"ham":1})"));
    EXPECT_EQ(first["wrong"], Json::parse(R"({"spam":0,"ham":1})"));
    EXPECT_THAT(first["samples"][0], HasSubstr("site/ham.mbox:3"));
}

TEST_F(EvaluateCommand, FollowsTheThresholdsOfTheSettings) {
    auto const json = report({"--spam-threshold", "0.995", "--ham-threshold", "0.99", "--ham",
                              m_folder.path("site/ham.mbox")});
    EXPECT_EQ(json["spamThreshold"], 0.995);
    EXPECT_EQ(json["together"]["verdictsOnHam"], Json::parse(R"({"spam":0,"ham":0,"none":4})"));
}

TEST_F(EvaluateCommand, MeasuresCopiesWithoutReverseNamesApart) {
    auto const json = report(with(mail(), {"--augment", "no-reverse-name"}));
    ASSERT_EQ(json["corpora"].size(), 2U);
    EXPECT_EQ(json["corpora"][1]["name"], "site, no reverse names");
    EXPECT_EQ(json["corpora"][1]["verdictsOnSpam"]["none"], 4);
}

// The commands measure what is left, and say so.
TEST_F(EvaluateCommand, LeavesOutWhatIsNoMessageAndCountsIt) {
    auto const empty = m_folder.write("site/empty", "");
    auto const ham = m_folder.path("site/ham.mbox");
    auto const whole = run({"--ham", ham});
    auto const result = run({"--ham", empty, ham});
    EXPECT_EQ(result.m_status, 65);
    EXPECT_EQ(result.m_errors, empty + ": not a message: it has no header field\n" +
                                   "qvrules: 1 input was left out\n");
    EXPECT_EQ(result.m_output, whole.m_output);
    for (Arguments const& command :
         {Arguments{"diff", m_rules, m_rules, "--on", empty, ham, "--dns", "off"},
          Arguments{"show", m_rules, "--on", empty, ham}}) {
        auto const other = runProgram(QV_RULES_PROGRAM, command);
        EXPECT_EQ(other.m_status, 65) << command[0];
        EXPECT_EQ(other.m_errors, result.m_errors) << command[0];
        EXPECT_FALSE(other.m_output.empty()) << command[0];
    }
}

TEST_F(EvaluateCommand, NothingToMeasureIsNoResult) {
    std::filesystem::create_directory(m_folder.path() / "empty");
    auto const empty = (m_folder.path() / "empty").string();
    std::vector<Arguments> const commands{
        {"evaluate", m_rules, "--ham", empty},
        {"diff", m_rules, m_rules, "--on", empty},
        {"show", m_rules, "--on", empty},
    };
    for (auto const& command : commands) {
        auto const result = runProgram(QV_RULES_PROGRAM, command);
        EXPECT_EQ(result.m_status, 65) << command[0] << result.m_output;
        EXPECT_THAT(result.m_errors, HasSubstr("no messages")) << command[0];
    }
}

// A program that is killed can remove nothing, so there must be nothing while it works: it opens
// the mail, a pipe, when its engine is ready.
TEST_F(EvaluateCommand, LeavesNoFolderBehindWhenItIsKilled) {
    std::filesystem::create_directory(m_folder.path() / "temporary");
    auto const result = runProgram(
        "/bin/sh", {"-c",
                    "cd \"$0\" && mkfifo pipe && export TMPDIR=temporary\n"
                    "\"$1\" evaluate r.qvr --ham ./pipe & exec 3>pipe; kill -9 $!; ls -A temporary",
                    m_folder.path(), QV_RULES_PROGRAM});
    EXPECT_EQ(result.m_output, "");
    EXPECT_EQ(result.m_status, 0) << result.m_errors;
}

TEST_F(EvaluateCommand, TellsPeopleTheSame) {
    auto const result = run(mail());
    ASSERT_EQ(result.m_status, 0) << result.m_errors;
    EXPECT_THAT(result.m_output, HasSubstr("spam called spam                  3 of 4 (75.00 %;"));
    EXPECT_THAT(result.m_output, HasSubstr("no verdict                        0 spam, 1 ham"));
    EXPECT_THAT(result.m_output, HasSubstr("What is wrong most often\n  node "));
}

TEST_F(EvaluateCommand, WritesEveryFormToAFile) {
    for (std::string const form : {"text", "json", "html"}) {
        auto const arguments = with(mail(), {"--format", form});
        auto const shown = run(arguments).m_output;
        auto const written = run(with(arguments, {"-o", m_folder.path("report." + form)}));
        EXPECT_EQ(written.m_status, 0) << written.m_errors;
        EXPECT_EQ(written.m_output, "");
        EXPECT_EQ(m_folder.read("report." + form), shown);
        EXPECT_THAT(shown, HasSubstr("site"));
    }
}

TEST_F(EvaluateCommand, SaysWhatItCannotWrite) {
    auto const path = m_folder.path("absent/report.html");
    auto const result = run(with(mail(), {"--format", "html", "-o", path}));
    EXPECT_EQ(result.m_status, 73);
    EXPECT_THAT(result.m_errors, HasSubstr(path));
}

TEST_F(EvaluateCommand, WritesIntoWhatALinkLeadsTo) {
    auto const target = m_folder.write("target", "before");
    auto const link = m_folder.path() / "link";
    std::filesystem::create_symlink(target, link);
    auto const arguments = with(mail(), {"-o", link.string()});
    ASSERT_EQ(run(arguments).m_status, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_THAT(readFile(target), HasSubstr("spam called spam"));

    std::filesystem::remove(link);
    std::filesystem::create_directory_symlink(m_folder.path(), link);
    auto const refused = run(arguments);
    EXPECT_EQ(refused.m_status, 73);
    EXPECT_THAT(refused.m_errors, HasSubstr(link.string() + ": cannot be written: Is a directory"));
}

TEST_F(EvaluateCommand, RefusesBadRulesAndMissingMail) {
    EXPECT_EQ(run({}).m_status, 64);
    EXPECT_EQ(run({"--ham", "absent"}).m_status, 66);
    EXPECT_EQ(run({"--vectors", "absent"}).m_status, 66);
    auto const folder = run({"--vectors", m_folder.path().string()});
    EXPECT_EQ(folder.m_status, 66);
    EXPECT_EQ(folder.m_errors, m_folder.path().string() + ": cannot be read: Is a directory\n");
    auto const bad = m_folder.write("bad.qvr", "tree {\n");
    EXPECT_EQ(runProgram(QV_RULES_PROGRAM, {"evaluate", bad, "--ham", bad}).m_status, 65);
}

// The last message waits for a name server that never answers.
TEST_F(EvaluateCommand, ShowsWhatShareOfTheMailIsDone) {
    SilentDnsServer const server;
    std::string box;
    for (int i = 0; i < 2000; ++i) {
        box += "From x@example.org Mon Jan  1 10:00:00 2024\nFrom: ann@example.net\n\n";
    }
    box += s_message("mail.example.net") + std::string(1'000'000, 'x') + "\n";
    auto const path = m_folder.write("large.mbox", box);
    Terminal terminal(m_folder);
    terminal.start(std::string(QV_RULES_PROGRAM) + " evaluate " + m_rules + " --dns " +
                   server.address() + " --dns-timeout 100 --ham " + path + " --spam " + path +
                   " > /dev/null");
    EXPECT_THAT(plainText(terminal.captureWith(" %  ")), HasSubstr(" messages  "));
    terminal.type({"C-c"});
    EXPECT_THAT(plainText(terminal.finish()), HasSubstr("status 130"));
}

} // namespace
} // namespace Quorvane::Testing
