// SPDX-License-Identifier: Apache-2.0
// The explanation for people: the words of a verdict, of the trail and of the rules.
#include "qvscan/ScanFixture.h"
#include "rules/format/RuleFiles.h"

#include <algorithm>
#include <gmock/gmock.h>

namespace Quorvane::Testing {

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class TextExplain : public ScanTest {
  protected:
    std::string explain(Arguments arguments, std::string const& message,
                        std::string const& option = "--explain=all") const {
        arguments.insert(arguments.end(), {"--format", "text", option});
        return scan(arguments, message).m_output;
    }

    std::string brief(Arguments const& arguments, std::string const& message) const {
        return explain(arguments, message, "--explain");
    }

    static std::ptrdiff_t lines(std::string const& text) {
        return std::count(text.begin(), text.end(), '\n');
    }

    // The words of the row of the trail that has `address`, blanks made single.
    static std::string row(std::string const& text, std::string const& address) {
        auto const at = text.find("  " + address + " ", text.find("  Trail, "));
        if (at == std::string::npos) {
            return "no row for " + address + " in\n" + text;
        }
        auto const begin = text.rfind('\n', at) + 1;
        std::string words;
        for (char const c : text.substr(begin, text.find('\n', at) - begin)) {
            if (c != ' ' || (!words.empty() && words.back() != ' ')) {
                words += c;
            }
        }
        return words;
    }
};

TEST_F(TextExplain, BeginsWithTheVerdictAndWhatDecided) {
    auto const start = [this](std::string const& message) {
        auto const text = brief({}, message);
        return text.substr(0, text.find("\n  In words"));
    };
    EXPECT_EQ(start(spam()), "spam 99 %  -\n"
                             "  Because: 0.99 spam reaches the spam threshold 0.95.\n"
                             "  Node 3.");
    writeNames({{{Kind::node, 3}, {"A dynamic name", "Why it is there."}},
                {{Kind::decide, 3}, {"An elite rule of that number", ""}}});
    EXPECT_THAT(start(spam()), HasSubstr("\n  Node 3 (A dynamic name): Why it is there."));
    EXPECT_THAT(brief({}, "To: x\n\n"), testing::StartsWith("none  -\n  Because: "));
    EXPECT_THAT(brief({}, "To: x\n\n"), Not(HasSubstr("Node")));
}

TEST_F(TextExplain, SaysTheVerdictItsFactsTheTrailAndWhatWouldChangeItAndNoMore) {
    EXPECT_EQ(
        brief({}, spam()),
        "spam 99 %  -\n"
        "  Because: 0.99 spam reaches the spam threshold 0.95.\n"
        "  Node 3.\n"
        "  In words: the reverse name of the first relay, dsl-192-0-2-7.dyn.example.net, looks "
        "dynamically assigned.\n"
        "  Trail, newest hop first (a sender could have invented what our side did not "
        "record):\n"
        "    #  recorded by  time (UTC)           delay  address    announced       reverse "
        "name                   receiver        with   taken for\n"
        "    1  our side     2024-01-01 10:00:00  -      192.0.2.7  pc.example.net  "
        "dsl-192-0-2-7.dyn.example.net  mx.example.org  ESMTP  first public hop, judged\n"
        "  Needed for another verdict:\n"
        "    ham: the reverse name of the first relay does not look dynamically assigned\n"
        "    none: no reverse name was recorded for the first relay\n"
        "\n");
}

TEST_F(TextExplain, AllOfItIsTheSameWithMoreAfterIt) {
    auto const message = hop("a.example", "b.example", "192.0.2.9") + spam();
    auto const all = explain({}, message);
    auto const few = brief({}, message);
    auto const trailEnd = few.find("  Needed");
    EXPECT_EQ(all.substr(0, trailEnd), few.substr(0, trailEnd));
    Arguments const parts{
        "  Trail, ", "  Needed for another verdict:", "  Attributes that are not at their default:",
        "  Elite rules that fired:", "  Path through the tree:"};
    std::size_t at = 0;
    for (auto const& part : parts) {
        auto const found = all.find("\n" + part);
        EXPECT_GT(found, at) << part;
        EXPECT_NE(found, std::string::npos) << part;
        at = found;
    }
    for (auto const& part : {parts[2], parts[3], parts[4]}) {
        EXPECT_THAT(few, Not(HasSubstr(part)));
    }
}

TEST_F(TextExplain, JsonHoldsEverythingHoweverMuchOfTheTextIsAskedFor) {
    EXPECT_EQ(scan({"--explain"}, spam()).m_output, scan({"--explain=all"}, spam()).m_output);
    EXPECT_EQ(scan({"--explain=some"}, spam()).m_status, 64);
}

TEST_F(TextExplain, AsksAboutARelayWithTheDomainOfTheReceivingHost) {
    auto const message = hop("gate", "gate.example.org", "203.0.113.5") + spam();
    constexpr char note[] = "gate.example.org has the domain of mx.example.org, which received "
                            "from it: is it a relay of this site? Then add --internal 203.0.113.5";
    EXPECT_THAT(scan({"--format", "text", "--explain"}, message).m_output,
                HasSubstr(std::string("  Note: ") + note + ".\n"));
    EXPECT_EQ(explained({}, message)["explain"]["ownRelay"],
              Json({{"address", "203.0.113.5"}, {"text", note}}));
    EXPECT_EQ(explained({"--internal", "203.0.113.5"}, message)["explain"]["ownRelay"], Json());
}

TEST_F(TextExplain, HasFewLinesHoweverLongTheTrailIs) {
    std::string trail;
    for (int i = 1; i <= 9; ++i) {
        trail += hop("p.example", "p.example", "10.0.0." + std::to_string(i));
    }
    auto const text = brief({}, trail + spam());
    EXPECT_LE(lines(text), 15) << text;
    for (std::string const address : {"10.0.0.1", "10.0.0.2", "10.0.0.3"}) {
        EXPECT_THAT(row(text, address), HasSubstr("private address"));
    }
    EXPECT_THAT(row(text, "192.0.2.7"), testing::StartsWith("10 our side "))
        << "what was judged is shown wherever it stands";
    EXPECT_THAT(text, HasSubstr("first public hop, judged\n    ... and 6 more\n"));
    EXPECT_EQ(text.find("10.0.0.4"), std::string::npos);
    EXPECT_THAT(explain({}, trail + spam()), Not(HasSubstr(" more\n")));
    EXPECT_THAT(row(explain({}, trail + spam()), "10.0.0.9"), HasSubstr("private address"));
}

TEST_F(TextExplain, GivesTheReasonOfTheRuleThatDecidedFirst) {
    writeNames({{{Kind::node, 3}, {"A dynamic name", "Why it is there."}},
                {{Kind::adjust, 'a'}, {"An addend", "Why it adds."}},
                {{Kind::decide, 901}, {"The status", "Its sentence."}}});
    EXPECT_THAT(explain({}, spam()),
                HasSubstr("\n  Node 3 (A dynamic name): Why it is there.\n  In words: "));
    EXPECT_THAT(explain({}, spam()),
                HasSubstr("\n    node 3 (A dynamic name): first_reverse_dynamic is yes; "));
    auto const elite = explain({"--message-status", "3", "--max-elite-level", "2"},
                               hop("a.example", "b.example", "192.0.2.7") + spam());
    EXPECT_THAT(elite, HasSubstr("\n  Rule 901 (The status): Its sentence.\n"));
    EXPECT_THAT(elite, HasSubstr("\n    rule a (An addend) adjusts by +0.01: hop_behind_first is "
                                 "yes\n      Why it adds.\n"));
    EXPECT_THAT(elite, HasSubstr("\n    rule 901 (The status) says 0.96 spam: "));
}

TEST_F(TextExplain, AFileOfNamesThatCannotBeUsedIsSaidOnceAndChangesNothingElse) {
    auto const before = scan({}, separator + spam() + "\n" + separator + ham());
    writeNamesFile("damaged\n");
    auto const after = scan({}, separator + spam() + "\n" + separator + ham());
    EXPECT_EQ(after.m_output, before.m_output);
    EXPECT_EQ(after.m_status, before.m_status);
    EXPECT_EQ(after.m_errors,
              "qvscan: " + root() + ruleDirectory + "/qv.names: line 1: this is no " +
                  "file of rule names of format 1; rules are shown without names\n");
}

TEST_F(TextExplain, GivesThePlainReasonForNoVerdict) {
    auto const privately = hop("a.example", "b.example", "10.0.0.1") + "\n";
    struct {
        Arguments m_arguments;
        std::string m_message;
        char const* m_reason;
    } const cases[] = {
        {{}, hop("a.example", "b.example", "2001:db8::1") + "\n", "the newest hop came by IPv6"},
        {{},
         hop("a", "b", "10.0.0.1") + hop("a", "b", "2001:db8::1") + "\n",
         "no public address before a hop that came by IPv6"},
        {{}, privately, "no public address"},
        {{}, "From: a@b.example\n\n", "the message has no Received header"},
        {{"--trusted-mta", "192.0.2.7"}, spam(), "no public address"},
        {{"--trusted-antispam-mta", "192.0.2.7"},
         spam(),
         "the message came from a relay that filters already"},
        {{"--score", "192.0.2.7=8"},
         spam(),
         "the reputation of 192.0.2.7 ended the walk before any public hop"},
        {{"--spam-threshold", "95"},
         spam(),
         "thresholds switch the tree off (a spam threshold of 95 or more)"},
        {{"--min-support", "11"}, spam(), "no rule decided"},
        {{},
         none(),
         "not sure enough: 0.5 spam is below the spam threshold 0.95, 0.5 ham below "
         "the ham threshold 0.95"},
        {{"--current-received", "by "},
         spam(),
         "the scan failed: a Received header cannot be read"},
    };
    for (auto const& row : cases) {
        auto const text = explain(row.m_arguments, row.m_message);
        EXPECT_NE(text.find(std::string("  Because: ") + row.m_reason + ".\n"), std::string::npos)
            << row.m_reason << "\n"
            << text;
    }
}

TEST_F(TextExplain, GivesTheReasonOfAVerdict) {
    EXPECT_NE(explain({}, spam()).find("Because: 0.99 spam reaches the spam threshold 0.95.\n"),
              std::string::npos);
    EXPECT_NE(explain({}, ham()).find("Because: 0.98 ham reaches the ham threshold 0.95.\n"),
              std::string::npos);
}

TEST_F(TextExplain, TellsWhatEachHopWasTakenFor) {
    auto const text = explain({"--internal", "2001:db8::/32", "--trusted-mta", "198.51.100.1",
                               "--score", "198.51.100.9=7"},
                              hop("own.example", "own.example", "2001:db8::1") +
                                  hop("t.example", "t.example", "198.51.100.1") +
                                  hop("p.example", "p.x", "10.0.0.1") +
                                  hop("f.example", "f.example", "203.0.113.1") +
                                  hop("l.example", "l.example", "203.0.113.2", "f.example") +
                                  hop("s.example", "s.example", "198.51.100.9", "l.example") +
                                  hop("z.example", "z.example", "203.0.113.9", "s.example") + "\n");
    EXPECT_EQ(row(text, "2001:db8::1"),
              "1 our side 2024-01-01 10:00:00 0 s 2001:db8::1 own.example own.example "
              "mx.example.org ESMTP our own relay, skipped");
    EXPECT_EQ(row(text, "198.51.100.1"),
              "2 our side 2024-01-01 10:00:00 0 s 198.51.100.1 t.example t.example "
              "mx.example.org ESMTP trusted relay, skipped");
    EXPECT_EQ(row(text, "10.0.0.1"), "3 our side 2024-01-01 10:00:00 0 s 10.0.0.1 p.example p.x "
                                     "mx.example.org ESMTP private address");
    EXPECT_EQ(row(text, "203.0.113.1"),
              "4 our side 2024-01-01 10:00:00 0 s 203.0.113.1 f.example f.example "
              "mx.example.org ESMTP first public hop, judged");
    EXPECT_EQ(row(text, "203.0.113.2"), "5 the sender? 2024-01-01 10:00:00 0 s 203.0.113.2 "
                                        "l.example l.example f.example ESMTP public, judged");
    EXPECT_EQ(row(text, "198.51.100.9"),
              "6 the sender? 2024-01-01 10:00:00 0 s 198.51.100.9 s.example s.example "
              "l.example ESMTP reputation score 7: the walk ends here");
    EXPECT_EQ(row(text, "203.0.113.9"), "7 the sender? 2024-01-01 10:00:00 - 203.0.113.9 z.example "
                                        "z.example s.example ESMTP not looked at");
}

TEST_F(TextExplain, TellsAnAuthenticatedHopAndTheCurrentOne) {
    auto const text = explain(
        {"--current-received", "from c.example (c.example [203.0.113.5]) by mx.example.org"},
        "Received: from a.example (a.example [203.0.113.7])\n\t(authenticated bits=0)\n"
        "\tby mx.example.org (Postfix) with ESMTP id 1\n\n");
    EXPECT_EQ(row(text, "203.0.113.5"),
              "now our side - - 203.0.113.5 c.example c.example mx.example.org - first public hop, "
              "judged");
    EXPECT_NE(row(text, "203.0.113.7").find("authenticated submission, skipped"),
              std::string::npos);
}

TEST_F(TextExplain, TellsAttributesInWords) {
    auto const text = explain({}, spam());
    auto const expected = "    first_reverse_dynamic ";
    ASSERT_NE(text.find(expected), std::string::npos) << text;
    EXPECT_NE(text.find(" yes           the reverse name of the first relay, "
                        "dsl-192-0-2-7.dyn.example.net, looks dynamically assigned\n"),
              std::string::npos);
    EXPECT_EQ(text.find("status_indicated"), std::string::npos);
    EXPECT_NE(explain({"--message-status", "3"}, spam()).find("    status_indicated "),
              std::string::npos);
}

TEST_F(TextExplain, TellsTheRulesThatFiredAndThePath) {
    auto const text =
        explain({}, hop("a.example", "dsl-1-2-3.dyn.b.example", "198.51.100.9") + spam());
    EXPECT_NE(text.find("    rule a adjusts by +0.01: hop_behind_first is yes\n"
                        "      there was a hop after the first relay, 198.51.100.9\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("  Path through the tree:\n"
                        "    node 2: the root; 0.3 spam, seen in 100 % of the training mail\n"
                        "    node 3: first_reverse_dynamic is yes; 0.99 spam, seen in 10 % of the "
                        "training mail\n"
                        "      the reverse name of the first relay, dsl-1-2-3.dyn.b.example, looks "
                        "dynamically assigned\n"
                        "    a leaf\n"),
              std::string::npos)
        << text;
    auto const elite = explain({"--message-status", "3", "--max-elite-level", "2"}, ham());
    EXPECT_NE(elite.find("    rule 901 says 0.96 spam: status_indicated is yes\n"),
              std::string::npos)
        << elite;
}

TEST_F(TextExplain, TellsInPlainWordsWhatDecided) {
    EXPECT_NE(explain({}, spam())
                  .find("\n  In words: the reverse name of the first relay, "
                        "dsl-192-0-2-7.dyn.example.net, looks dynamically "
                        "assigned.\n"),
              std::string::npos);
    EXPECT_NE(explain({}, none())
                  .find("\n  In words: no reverse name was recorded for the first "
                        "relay, 192.0.2.7.\n"),
              std::string::npos);
    auto const elite = explain({"--message-status", "3", "--max-elite-level", "2"}, ham());
    EXPECT_NE(elite.find("\n  In words: the host gave the message status 3.\n"), std::string::npos);
    // "unknown" is how a border writes that there is no name.
    EXPECT_EQ(explain({}, none()).find("reverse name, unknown"), std::string::npos);
    // Nothing was asked, so nothing is said.
    EXPECT_EQ(explain({}, "From: a@b.example\n\n").find("In words"), std::string::npos);
}

TEST_F(TextExplain, TellsWhatAnotherVerdictWouldHaveNeeded) {
    EXPECT_NE(explain({}, spam())
                  .find("    ham: first_reverse_dynamic is no (it is yes); then "
                        "node 4 decides\n"
                        "      the reverse name of the first relay does not look dynamically "
                        "assigned\n"),
              std::string::npos);
    auto const undecided = explain({}, none());
    EXPECT_NE(undecided.find("    spam: first_reverse_dynamic is yes (it is unknown); then node 3 "
                             "decides\n"),
              std::string::npos)
        << undecided;
    EXPECT_NE(undecided.find("    spam: a spam threshold of 0.5 or less\n"), std::string::npos);
    EXPECT_EQ(records(scan({"--spam-threshold", "0.5"}, none()))[0]["verdict"], "spam");
    auto const byIPv6 = explain({}, hop("a", "b", "2001:db8::1") + spam());
    EXPECT_NE(byIPv6.find("    any: --internal 2001:db8::1, if that is a relay of this site\n"
                          "    any: --ipv6 judge, which judges 2001:db8::1 by its names\n"),
              std::string::npos)
        << byIPv6;
}

TEST_F(TextExplain, AnIPv6RelayIsTakenForWhatTheSettingSays) {
    auto const viaV6 = hop("a.example", "b.example", "2001:db8::1") + spam();
    auto const stopped = explain({}, viaV6);
    EXPECT_NE(stopped.find("IPv6: the walk ends here"), std::string::npos) << stopped;
    auto const judged = explain({"--ipv6", "judge"}, viaV6);
    EXPECT_EQ(judged.find("IPv6"), std::string::npos) << judged;
    EXPECT_EQ(judged.find("--internal"), std::string::npos) << judged;
    EXPECT_NE(judged.find("2001:db8::1  a.example"), std::string::npos) << judged;
}

TEST_F(TextExplain, HostileTextCannotSteerTheTerminal) {
    auto const text = explain({}, hop("a\x1B[2Jb\x07.example",
                                      "\xC2\x9B"
                                      "31m.example",
                                      "192.0.2.7") +
                                      "\n");
    EXPECT_EQ(text.find('\x1B'), std::string::npos);
    EXPECT_EQ(text.find('\x07'), std::string::npos);
    EXPECT_EQ(text.find("\xC2\x9B"), std::string::npos);
    EXPECT_NE(text.find("a\\x1B[2jb"), std::string::npos) << text;
}

} // namespace

} // namespace Quorvane::Testing
