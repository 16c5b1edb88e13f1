// SPDX-License-Identifier: Apache-2.0
//
// `qvrules explain` as its users see it; tests/qvrules/golden/explain.txt holds its texts.
#include "CommandTest.h"
#include "support/JsonLines.h"

#include <gmock/gmock.h>

namespace Quorvane::Testing {
namespace {

using ::testing::HasSubstr;

constexpr char rules[] =
    "version 1\n"
    "elite last also-tree\n"
    "adjust 0.01 code 'h' when hop_behind_first == yes\n"
    "decide 0.5 code 900 when status_indicated == yes\n"
    "decide 0.97 code 901 when status_indicated == yes and from_matches_envelope == no\n"
    "tree {\n"
    "    first_reverse_dynamic == yes: confidence 0.9 support 50 counts 10 9 1 {\n"
    "        hop_behind_first == no: confidence 0.96 support 40 counts 8 8 0\n"
    "        hop_behind_first != no: confidence 0.5 support 10\n"
    "    }\n"
    "    first_reverse_dynamic == no: confidence 0.02 support 30\n"
    "    first_reverse_dynamic == unknown: confidence 0.5 support 20\n"
    "}\n";

constexpr char message[] =
    "Received: from pc-7.dyn.example (192-0-2-7.dyn.example.net [192.0.2.7])\n"
    "\tby mx.example.org; Mon, 1 Jan 2024 10:00:00 +0000\n"
    "From: Ann <ann@example.net>\nReturn-Path: <ann@example.net>\n\nBody\n";

class ExplainCommand : public CommandTest {
  protected:
    ExplainCommand() : CommandTest("explain") { m_first.push_back(m_rules); }

    std::vector<Json> explained(Arguments const& arguments, std::string const& input = {}) const {
        auto const result = run(with(arguments, {"--format", "json"}), input);
        EXPECT_EQ(result.m_status, 0) << result.m_errors;
        return jsonLines(result.m_output);
    }

    std::string m_rules = m_folder.write("r.qvr", rules);
};

TEST_F(ExplainCommand, TellsTheWalkOfAMessage) {
    auto const file = m_folder.write("one.eml", message);
    auto const record = explained({file, "--dns", "off"}).at(0);
    EXPECT_EQ(record["source"], file);
    EXPECT_EQ(record["verdict"], "spam");
    EXPECT_EQ(record["node"], 4);
    EXPECT_EQ(record["explain"]["because"], "0.96 spam reaches the spam threshold 0.95");
    EXPECT_EQ(record["explain"]["story"],
              Json::array({"the reverse name of the first relay, 192-0-2-7.dyn.example.net, looks "
                           "dynamically assigned",
                           "there was no hop after the first relay, 192.0.2.7"}));
    EXPECT_EQ(record["explain"]["tree"]["nodes"][0]["test"], Json());
    EXPECT_EQ(record["explain"]["tree"]["nodes"][2],
              Json::parse(R"({"node":4,"test":"hop_behind_first is no",
                  "words":"there was no hop after the first relay, 192.0.2.7",
                  "confidence":0.96,"support":40.0,"counts":{"all":8,"spam":8,"ham":0}})"));
    EXPECT_EQ(record["explain"]["tree"]["end"], "leaf");
    EXPECT_EQ(record["explain"]["rules"][1]["outcome"], "noMatch");
    EXPECT_EQ(record["explain"]["rules"][1]["failedTest"], 0);
    EXPECT_EQ(record["explain"]["needed"][0]["verdict"], "ham");
    EXPECT_EQ(record["explain"]["needed"][0]["words"],
              Json::array({"the reverse name of the first relay does not look dynamically "
                           "assigned"}));
    EXPECT_EQ(record["explain"]["values"]["first_reverse_dynamic"], "yes");
    EXPECT_EQ(record["explain"]["values"]["hops_reverse_dynamic"], 1);
}

TEST_F(ExplainCommand, TellsTheEliteRulesAndWhichWasChosen) {
    auto const record = explained({"-", "--dns", "off", "--message-status", "3", "--env-from",
                                   "bob@other.example", "--header-from", "ann@example.net"},
                                  message)
                            .at(0);
    EXPECT_EQ(record["source"], "-");
    EXPECT_EQ(record["node"], 901);
    EXPECT_EQ(record["explain"]["tree"]["path"], Json::array());
    EXPECT_EQ(record["explain"]["tree"]["use"], "eliteDecided");
    auto const& list = record["explain"]["rules"];
    ASSERT_EQ(list.size(), 3U);
    EXPECT_EQ(list[0]["outcome"], "noMatch");
    EXPECT_EQ(list[1]["code"], 900);
    EXPECT_EQ(list[1]["outcome"], "replaced");
    EXPECT_EQ(list[1]["replacedBy"], 2);
    EXPECT_EQ(list[2]["outcome"], "chosen");
    EXPECT_EQ(record["explain"]["story"][1],
              "the author's domain, example.net, is not related to the envelope sender's domain, "
              "other.example");
}

TEST_F(ExplainCommand, ShowsOneOfTwoEqualRulesAsChosen) {
    auto const equal = m_folder.write("equal.qvr", "version 1\nelite last\n"
                                                   "decide 0.97 code 901 always\n"
                                                   "decide 0.97 code 901 always\n"
                                                   "tree {\n}\n");
    auto const text = runProgram(QV_RULES_PROGRAM, {"explain", equal, "chain_broken=yes"}).m_output;
    EXPECT_THAT(text, HasSubstr("rule 901 says 0.97 spam (replaced by rule 901): always\n"));
    EXPECT_THAT(text, HasSubstr("rule 901 says 0.97 spam: always\n"));
}

TEST_F(ExplainCommand, NamesTheThresholdAtWhichAnEliteRuleWouldHaveDecided) {
    auto const record =
        explained({"status_indicated=yes,hop_behind_first=yes", "--spam-threshold", "0.99"}).at(0);
    EXPECT_EQ(record["verdict"], "ham");
    EXPECT_EQ(record["explain"]["rules"][0]["code"], "h");
    EXPECT_EQ(record["explain"]["rules"][0]["outcome"], "adjusted");
    auto const undecided = explained({"status_indicated=yes,first_reverse_dynamic=unknown",
                                      "--spam-threshold", "0.99"})
                               .at(0);
    EXPECT_EQ(undecided["verdict"], "none");
    EXPECT_THAT(undecided["explain"]["needed"].dump(),
                HasSubstr("a spam threshold of 0.97 or less"));
}

TEST_F(ExplainCommand, ExplainsEveryMessageOfAnMbox) {
    auto const mbox = "From a Mon Jan  1 00:00:00 2024\n" + std::string(message) + "\n";
    auto const record = explained({"-", "--dns", "off"}, mbox + mbox);
    ASSERT_EQ(record.size(), 2U);
    EXPECT_EQ(record[1]["source"], "-:2");
}

TEST_F(ExplainCommand, SaysOfAScannedTableWhatItSaysOfTheMessages) {
    auto const file = m_folder.write("one.eml", message);
    auto const privately = m_folder.write("two.eml", "From: a@b.example\n\n");
    m_folder.write("root/var/spool/etc/antispam/qv.dt", "");
    m_folder.write("root/var/spool/etc/antispam/README", "CF_DT_VERSION=1\n");
    auto const table = runProgram(QV_SCAN_PROGRAM, {"--root", m_folder.path("root"), "--dns", "off",
                                                    "--format", "csv", file, privately});
    for (auto const& record :
         {explained({"-"}, table.m_output), explained({m_folder.write("t.csv", table.m_output)})}) {
        ASSERT_EQ(record.size(), 2U) << table.m_errors;
        EXPECT_EQ(record[0]["source"], file);
        EXPECT_EQ(record[0]["node"], 4);
        EXPECT_EQ(record[0]["explain"]["story"][1], "there was no hop after the first relay");
        EXPECT_EQ(record[1]["verdict"], "none");
        EXPECT_EQ(record[1]["explain"]["because"],
                  "nothing to judge: a message without a public hop has no attributes");
        EXPECT_EQ(record[1]["explain"]["values"], Json());
    }
}

TEST_F(ExplainCommand, TakesAFileWhereThereIsOneAndAVectorOtherwise) {
    auto const file = m_folder.write("chain_broken=yes", message);
    EXPECT_EQ(explained({file, "--dns", "off"}).at(0)["source"], file);
    EXPECT_EQ(explained({"chain_broken=yes"}).at(0)["source"], "vector");
}

TEST_F(ExplainCommand, FollowsTheSettings) {
    EXPECT_EQ(explained({"first_reverse_dynamic=yes"}).at(0)["verdict"], "spam");
    EXPECT_EQ(explained({"first_reverse_dynamic=yes", "--spam-threshold", "0.97"}).at(0)["verdict"],
              "none");
    auto const stopped =
        explained({"first_reverse_dynamic=yes", "--walk-to-leaf", "0", "--spam-threshold", "0.9"});
    EXPECT_EQ(stopped.at(0)["node"], 3);
    EXPECT_EQ(stopped.at(0)["explain"]["tree"]["text"], "sure enough of spam to stop here");
}

TEST_F(ExplainCommand, HostileNamesSteerNoTerminal) {
    auto const hostile = "Received: from a\x1B[2Jb{value}.example (x\x07y [192.0.2.7]) by mx\n\n";
    auto const text = run({"-", "--dns", "off"}, hostile).m_output;
    EXPECT_EQ(text.find('\x1B'), std::string::npos);
    EXPECT_EQ(text.find('\x07'), std::string::npos);
    EXPECT_THAT(text, HasSubstr("announced, a\\x1B2jb{value}.example, "));
}

TEST_F(ExplainCommand, SaysWhenItCannotWrite) {
    auto const result =
        runProgram("/bin/sh", {"-c", std::string(QV_RULES_PROGRAM) + " explain " + m_rules +
                                         " chain_broken=yes > /dev/full"});
    EXPECT_EQ(result.m_status, 73);
    EXPECT_THAT(result.m_errors, HasSubstr("standard output"));
}

TEST_F(ExplainCommand, SaysWhatItCannotExplain) {
    struct {
        Arguments m_arguments;
        std::string m_input;
        int m_status;
        char const* m_error;
    } const cases[] = {
        {{"no.eml"}, "", 66, "no.eml: cannot be opened: No such file"},
        {{m_folder.path().string()}, "", 66, "cannot be opened: Is a directory"},
        {{"-"}, "", 65, "-: not a message: it has no header field"},
        {{"-"}, "source,x\n", 65, "-:1: column 2: unknown column 'x'"},
        {{"-"}, "source,\n", 65, "-:1: column 2: unknown column ''"},
        {{"chain_brken=yes"}, "", 65, "did you mean \"chain_broken\"?"},
        {{"chain_broken=yes", "--env-from", "a@b.example"}, "", 64, "leave out --env-from"},
        {{"-", "--message-status", "x"},
         message,
         64,
         "--message-status: \"x\" is not a whole number"},
        {{"-", "--dns", "nowhere"}, message, 64, "\"nowhere\" is not a resolver"},
        {{"-", "--dns-data", "no.zone"}, message, 78, "no.zone: cannot be read"},
    };
    for (auto const& row : cases) {
        auto const result = run(row.m_arguments, row.m_input);
        EXPECT_EQ(result.m_status, row.m_status) << row.m_error;
        EXPECT_THAT(result.m_errors, HasSubstr(row.m_error));
        EXPECT_EQ(result.m_output, "");
    }
    auto const damaged = m_folder.write("bad/qv.dt", std::string(46000, '\x7F'));
    auto const result =
        runProgram(QV_RULES_PROGRAM, {"explain", m_folder.path() / "bad", "chain_broken=yes"});
    EXPECT_EQ(result.m_status, 78);
    EXPECT_THAT(result.m_errors, HasSubstr("no host can load these rules"));
}

} // namespace
} // namespace Quorvane::Testing
