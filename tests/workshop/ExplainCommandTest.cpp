// SPDX-License-Identifier: Apache-2.0
//
// `qvrules explain` as its users see it; tests/qvrules/golden/explain.txt holds its texts.
#include "CommandTest.h"
#include "support/ArchiveWriter.h"
#include "support/JsonLines.h"
#include "support/Terminal.h"

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
    auto const text =
        runProgram(QV_RULES_PROGRAM, {"explain", equal, "chain_broken=yes", "--all"}).m_output;
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

TEST_F(ExplainCommand, SaysWhichSingleChangesWouldHaveLetSpamPass) {
    auto const explain = explained({"status_indicated=yes"}).at(0)["explain"];
    EXPECT_EQ(explain["singleChanges"], Json::parse(R"({"allTried":true,"list":[
        {"attribute":"from_matches_envelope","value":"yes","verdict":"ham","node":6},
        {"attribute":"from_matches_envelope","value":"unknown","verdict":"ham","node":6},
        {"attribute":"status_indicated","value":"no","verdict":"ham","node":6}],"text":""})"));
    ASSERT_EQ(explain["needed"].size(), 3U) << "a single change is not listed twice";
    EXPECT_EQ(explain["needed"][1], Json::parse(R"({"verdict":"ham",
                  "change":"from_matches_envelope is unknown (it is no); then node 6 decides",
                  "words":["the author's domain cannot be compared with the envelope sender's domain: one of them is missing"]})"));
}

TEST_F(ExplainCommand, ShowsAttributesRulesAndPathWhenAllIsAskedFor) {
    auto const brief = run({"first_reverse_dynamic=yes,hop_behind_first=no"}).m_output;
    EXPECT_EQ(brief, "spam 96 %  vector\n"
                     "  Because: 0.96 spam reaches the spam threshold 0.95.\n"
                     "  Node 4.\n"
                     "  In words: the reverse name of the first relay looks dynamically assigned; "
                     "there was no hop after the first relay.\n"
                     "  Needed for another verdict:\n"
                     "    ham: the reverse name of the first relay does not look dynamically "
                     "assigned\n"
                     "    none: no reverse name was recorded for the first relay\n"
                     "    none: there was a hop after the first relay\n\n");
    auto const all = run({"first_reverse_dynamic=yes,hop_behind_first=no", "--all"}).m_output;
    EXPECT_THAT(all, HasSubstr("\n  Attributes that are not at their default:\n"));
    EXPECT_THAT(all, HasSubstr("\n  Path through the tree:\n"));
    EXPECT_EQ(explained({"first_reverse_dynamic=yes"}),
              explained({"first_reverse_dynamic=yes", "--all"}));
}

TEST_F(ExplainCommand, TellsTheTimesOfTheTrailOfAMessage) {
    auto const text = run({"-", "--dns", "off"}, message).m_output;
    EXPECT_THAT(text, HasSubstr("  2024-01-01 10:00:00  "));
    auto const record = explained({"-", "--dns", "off"}, message).at(0);
    EXPECT_EQ(record["explain"]["trail"][0]["time"], "2024-01-01T10:00:00Z");
    EXPECT_EQ(record["message"]["from"], "Ann <ann@example.net>");
    EXPECT_EQ(explained({"chain_broken=yes"}).at(0)["message"]["from"], Json());
}

TEST_F(ExplainCommand, SaysWhereTheMessageWouldHaveHadNoVerdict) {
    auto const text = run({"first_reverse_dynamic=yes", "--all"}).m_output;
    EXPECT_THAT(text, HasSubstr("    none: hop_behind_first is yes (it is no); then node 5 gives "
                                "no verdict\n      there was a hop after the first relay\n"));
    auto const without = m_folder.write("no-tree.qvr", "version 1\nelite first\n"
                                                       "decide 0.97 code 901 when "
                                                       "chain_broken == yes\ntree {\n}\n");
    EXPECT_THAT(
        runProgram(QV_RULES_PROGRAM, {"explain", without, "chain_broken=yes", "--all"}).m_output,
        HasSubstr("none: chain_broken is no (it is yes); then no rule decides\n"));
}

TEST_F(ExplainCommand, SaysWhenNoSingleChangeLetsSpamPass) {
    auto const always = m_folder.write("always.qvr", "version 1\nelite first\n"
                                                     "decide 0.97 code 901 when "
                                                     "chain_broken == yes\n"
                                                     "decide 0.96 code 902 always\ntree {\n}\n");
    auto const text =
        runProgram(QV_RULES_PROGRAM, {"explain", always, "chain_broken=yes"}).m_output;
    EXPECT_THAT(text, HasSubstr("  Another verdict: no change of a single attribute would have let "
                                "this message pass.\n"));
    EXPECT_THAT(text, Not(HasSubstr("Needed for another verdict")));
    EXPECT_THAT(run({"first_reverse_dynamic=no"}).m_output, Not(HasSubstr("Another verdict:")))
        << "ham";
}

TEST_F(ExplainCommand, SaysWhenThereAreTooManySingleChangesToTry) {
    std::string many = "version 1\nelite last\ndecide 0.97 code 901 always\n";
    for (int value = 1; value <= 1200; ++value) {
        many += "decide 0.2 code 902 when hops_helo_no_domain == " + std::to_string(value) + "\n";
    }
    auto const result =
        runProgram(QV_RULES_PROGRAM, {"explain", m_folder.write("many.qvr", many + "tree {\n}\n"),
                                      "chain_broken=yes"});
    EXPECT_THAT(result.m_output, HasSubstr("  Another verdict: the rules name too many values to "
                                           "try every change of a single attribute.\n"));
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
    auto const text = run({"-", "--dns", "off", "--all"}, hostile).m_output;
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
        {{"-", "--dns-data", "no.zone"}, message, 78, "no.zone: cannot be opened"},
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

TEST_F(ExplainCommand, TakesAPartOfAnInputAsReportsNameIt) {
    auto const box =
        m_folder.write("box", std::string("From a\n") + message + "\nFrom b\n" + message);
    auto const archive = m_folder.write(
        "mail.tar", archiveOf({"ustar"}, {{"one.eml", message}, {"box", readFile(box)}}));
    for (auto const& name : {box + ":2", archive + "/one.eml", archive + "/box:1"}) {
        auto const records = explained({name, "--dns", "off"});
        ASSERT_EQ(records.size(), 1U) << name;
        EXPECT_EQ(records[0]["source"], name);
    }
    EXPECT_EQ(explained({archive, "--dns", "off"}).size(), 3U);
}

// What is no message is reported in its place, and the rest is explained.
TEST_F(ExplainCommand, GoesOnAfterWhatIsNoMessage) {
    auto const box = m_folder.write("box", std::string("From a\nwords\n\nFrom b\n") + message);
    auto const result = run({box, "--dns", "off", "--format", "json"});
    EXPECT_EQ(result.m_status, 65);
    EXPECT_EQ(result.m_errors, box + ":1: not a message: it has no header field\n");
    ASSERT_EQ(jsonLines(result.m_output).size(), 1U);
}

TEST_F(ExplainCommand, NamesAMessageTooLargeForTheMemoryAndGoesOn) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "sanitizers reserve more addresses than any machine has memory";
#endif
    std::string large;
    while (large.size() < (std::size_t{8} << 20)) {
        large += "X:\n";
    }
    auto const box = m_folder.write("box", "From a\n" + large + message + "\nFrom b\n" + message);
    auto const result =
        runProgram("/bin/sh", {"-c", "ulimit -v 250000; exec " + std::string(QV_RULES_PROGRAM) +
                                         " explain " + m_rules + " " + box +
                                         " --dns off --format json "
                                         "--max-headers 10000000 --max-header-bytes 16000000"});
    EXPECT_EQ(result.m_status, 65);
    EXPECT_THAT(result.m_errors,
                testing::StartsWith(box + ":1: not enough memory for its header section of "));
    ASSERT_EQ(jsonLines(result.m_output).size(), 1U);
}

TEST_F(ExplainCommand, IsColouredPagedAndBrokenToTheWidthOfATerminal) {
    auto const file = m_folder.write("one.eml", message);
    auto const command =
        std::string(QV_RULES_PROGRAM) + " explain " + m_rules + " " + file + " --dns off ";
    Terminal terminal(m_folder, 60);
    auto const paged = terminal.screen("PAGER=\"sed 's/^/paged: /'\" " + command);
    EXPECT_THAT(plainText(paged), HasSubstr("paged: spam 96 %  ")) << paged;
    auto const shown = terminal.screen("env -u NO_COLOR " + command + "--no-pager");
    EXPECT_THAT(shown, HasSubstr("\x1B[31mspam")) << shown;
    EXPECT_THAT(plainText(shown),
                HasSubstr("\n  In words: the reverse name of the first relay,\n    "
                          "192-0-2-7.dyn.example.net, looks dynamically assigned;\n"))
        << shown;
    auto const plain = terminal.screen(command + "--no-pager --color never");
    EXPECT_EQ(plain.find('\x1B'), std::string::npos);
    EXPECT_THAT(run({file, "--dns", "off", "--color", "always"}).m_output, HasSubstr("\x1B[31m"));
}

// The first thing that is wrong is the order, not each line of the message as a rule.
TEST_F(ExplainCommand, SwappedArgumentsAreOneSentence) {
    auto const file = m_folder.write("one.eml", message);
    auto const folder = m_folder.path("Maildir");
    m_folder.write("Maildir/cur/1", message);
    m_folder.write("Maildir/new/2", message);
    struct {
        Arguments m_words;
        std::string m_error;
    } const cases[] = {
        {{"explain", file, m_rules},
         file + " seems to be a message, where rules are expected: "
                "qvrules explain RULES INPUT"},
        {{"explain", folder, m_rules}, folder + " seems to be a message"},
        {{"evaluate", file, "--ham", m_rules}, "qvrules evaluate RULES"},
        {{"diff", m_rules, file, "--on", m_rules}, "qvrules diff OLD NEW"},
        {{"show", file}, "qvrules show RULES"},
        {{"check", file}, "qvrules check PATH"},
        {{"install", file, "--root", m_folder.path()}, "qvrules install PATH"},
        {{"compile", file, "-o", m_folder.path("out")}, "qvrules compile SRC"},
    };
    for (auto const& row : cases) {
        auto const result = runProgram(QV_RULES_PROGRAM, row.m_words);
        EXPECT_EQ(result.m_status, 64) << row.m_error;
        EXPECT_EQ(std::count(result.m_errors.begin(), result.m_errors.end(), '\n'), 2)
            << result.m_errors;
        EXPECT_THAT(result.m_errors, HasSubstr(row.m_error));
    }
}

TEST_F(ExplainCommand, RulesWithMistakesAreNotTakenForMail) {
    for (auto const* const text : {"version: 1\n", "elite: first\ntree {\n"}) {
        auto const file = m_folder.write("bad.qvr", text);
        auto const result = runProgram(QV_RULES_PROGRAM, {"explain", file, "chain_broken=yes"});
        EXPECT_EQ(result.m_status, 65) << text;
        EXPECT_THAT(result.m_errors, HasSubstr(file + ":1:"));
    }
}

} // namespace
} // namespace Quorvane::Testing
