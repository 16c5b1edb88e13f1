// SPDX-License-Identifier: Apache-2.0
#include "apps/workshop/CaseFile.h"

#include "rules/model/RuleError.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Quorvane::Testing {
namespace {

using Rules::RuleError;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using Workshop::readCaseFile;

class CaseFileTest : public testing::Test {
  protected:
    Workshop::CaseFile read(std::string const& text) const {
        return readCaseFile(m_folder.write("cases.toml", text));
    }

    // What is wrong, from the line on.
    std::string error(std::string const& text) const {
        try {
            read(text);
        } catch (RuleError const& failure) {
            EXPECT_EQ(failure.kind(), RuleError::Kind::badData) << failure.what();
            auto const path = m_folder.path("cases.toml");
            return std::string(failure.what()).substr(path.size() + 1);
        }
        return "no error";
    }

    TemporaryFolder m_folder;
};

// Everything that a case needs, but for `keys`.
std::string s_case(std::string const& keys) {
    return "[[case]]\nname = \"x\"\nverdict = \"none\"\nvector.chain_broken = 1\n" + keys;
}

TEST_F(CaseFileTest, ReadsWhatACaseCanSay) {
    auto const file =
        read("rules = \"../r.qvr\"\n[settings]\nham-threshold = 0.9\n"
             "dns = [\"a.example. A 192.0.2.1\"]\n"
             "[[case]]\n"
             "name = \"first\"\n"
             "message = '''\nSubject: x\n'''\n"
             "verdict = \"spam\"\nnode = 9001\nreasons = \"ab\"\n"
             "confidence = [0.9, 1]\n"
             "spam-threshold = 0.5\nwalk-to-leaf = 0\ntrusted-mta = [\"10.0.0.0/8\"]\n"
             "env-from = \"a@b.example\"\nclient-score = 7\n"
             "[[case]]\n"
             "name = \"second\"\nverdict = \"ham\"\n"
             "vector = {hops_reverse_dynamic = 3, chain_broken = \"yes\"}\n"
             "dns = []\nconfidence = 0.03\n");
    EXPECT_THAT(file.m_rules, EndsWith("/../r.qvr"));
    ASSERT_EQ(file.m_cases.size(), 2U);
    auto const& first = file.m_cases[0];
    EXPECT_EQ(first.m_line, 5U);
    EXPECT_EQ(first.m_name, "first");
    EXPECT_EQ(first.m_headers, "Subject: x\n");
    EXPECT_FALSE(first.m_vector);
    EXPECT_EQ(first.m_settings.m_dns, "off");
    EXPECT_THAT(first.m_settings.m_zoneLines, ElementsAre("a.example. A 192.0.2.1"));
    EXPECT_EQ(first.m_settings.m_judging.hamThreshold, 0.9);
    EXPECT_EQ(first.m_settings.m_judging.spamThreshold, 0.5);
    EXPECT_EQ(first.m_settings.m_judging.walkToLeaf, 0);
    EXPECT_EQ(first.m_settings.m_trusted.size(), 1U);
    EXPECT_EQ(first.m_facts.m_envelopeFrom.domain(), "b.example");
    EXPECT_EQ(first.m_facts.m_clientScore, 7U);
    EXPECT_EQ(first.m_expected.m_verdict, "spam");
    EXPECT_EQ(first.m_expected.m_node, 9001);
    EXPECT_EQ(first.m_expected.m_reasons, "ab");
    EXPECT_EQ(first.m_expected.m_confidence->m_low, 0.9);
    EXPECT_EQ(first.m_expected.m_confidence->m_high, 1.0);

    auto const& second = file.m_cases[1];
    ASSERT_TRUE(second.m_vector);
    EXPECT_EQ((*second.m_vector)[Attribute::hopsReverseDynamic], 3);
    EXPECT_EQ((*second.m_vector)[Attribute::chainBroken], Code::yes);
    EXPECT_EQ((*second.m_vector)[Attribute::fromMatchesHelo], Code::unknown);
    EXPECT_EQ((*second.m_vector)[Attribute::deepHeloDynamic], Code::notAnalysed);
    EXPECT_TRUE(second.m_settings.m_zoneLines.empty());
    EXPECT_EQ(second.m_settings.m_judging.spamThreshold, 0.95);
    EXPECT_FALSE(second.m_expected.m_node || second.m_expected.m_reasons);
    EXPECT_EQ(second.m_expected.m_confidence->m_high, 0.03);
}

TEST_F(CaseFileTest, TakesAMessageThatNoTextCanHold) {
    m_folder.write("mail/one.eml", "Subject: \xFF\r\n\r\nBody\n");
    auto const file = read("[[case]]\nname = \"x\"\nverdict = \"none\"\nfile = \"mail/one.eml\"\n");
    EXPECT_EQ(file.m_cases[0].m_headers, "Subject: \xFF\r\n\r\nBody\n");
    EXPECT_EQ(file.m_rules, "");
}

TEST_F(CaseFileTest, SaysWhereAndWhatIsWrong) {
    struct {
        std::string m_text;
        char const* m_error;
    } const cases[] = {
        {"rulse = \"x\"\n", "1:1: unknown key \"rulse\"; a file of rule tests has rules, "
                            "[settings] and [[case]]; did you mean \"rules\"?"},
        {"rules = 3\n", "1:9: rules is the path of a rule text or folder, in quotes"},
        {"settings = 3\n", "1:12: settings is a table: write [settings]"},
        {"[settings]\ndsn = []\n",
         "2:1: rule tests have no setting \"dsn\"; did you mean \"dns\"?"},
        {"[settings]\nroot = \"/\"\n", "2:1: rule tests have no setting \"root\""},
        {"[settings]\ndns = \"off\"\n", "2:7: dns is a list of zone-file lines, as in "
                                        "[\"mail.example. A 192.0.2.1\"]"},
        {"[settings]\nspam-threshold = \"x\"\n", "2:18: spam-threshold needs a number"},
        {"", " no case; begin each one with a line [[case]]"},
        {"case = 3\n", " no case; begin each one with a line [[case]]"},
        {"case = [3]\n", "1:9: a case is a table: begin it with a line [[case]]"},
        {"[[case]]\nverdict = \"ham\"\nvector.chain_broken = 1\n",
         "1:1: the case has no name; say what it is about"},
        {"[[case]]\nname = \"\"\n", "2:8: a name is one line that says what the case is about"},
        {"[[case]]\nname = \"a\\nb\"\n",
         "2:8: a name is one line that says what the case is about"},
        {"[[case]]\nname = \"x\"\nverdict = \"ham\"\n",
         "1:1: the case has nothing to judge; give it a vector, a message or a file"},
        {"[[case]]\nname = \"x\"\nvector.chain_broken = 1\n",
         "1:1: the case expects nothing; give it a verdict: spam, ham or none"},
        {s_case("") + s_case(""), "5:1: the case in line 1 has the same name; names must differ"},
        {s_case("message = \"A: b\"\n"), "4:1: a case has one of vector, message and file"},
        {s_case("vector.message_id_has_dot = \"perhaps\"\n"),
         "5:29: message_id_has_dot has no value \"perhaps\"; it takes no, yes"},
        {s_case("vector.first_helo_dynamic = 1.5\n"),
         "5:29: first_helo_dynamic has no value \"\"; it takes no, yes, literal, n/a"},
        {s_case("nod = 3\n"), "5:1: a case has no key \"nod\"; did you mean \"node\"?"},
        {s_case("jobs = 3\n"), "5:1: a case has no key \"jobs\""},
        {s_case("node = \"3\"\n"), "5:8: node is the number of a node or of an elite rule, 0 for "
                                   "none"},
        {s_case("node = 3000000000\n"), "5:8: node: \"3000000000\" is not a whole number from "
                                        "-2147483648 to 2147483647"},
        {s_case("confidence = \"x\"\n"),
         "5:14: confidence is a number, or a range as in [0.9, 1.0]"},
        {s_case("confidence = [0.9, true]\n"),
         "5:20: confidence is a number, or a range as in [0.9, 1.0]"},
        {s_case("confidence = [0.9]\n"),
         "5:14: a range of confidence has two ends, the lower one first"},
        {s_case("confidence = [0.9, 0.1]\n"),
         "5:14: a range of confidence has two ends, the lower one first"},
        {s_case("confidence = [0.9, nan]\n"),
         "5:14: a range of confidence has two ends, the lower one first"},
        {s_case("reasons = 7\n"), "5:11: reasons needs a text in quotes"},
        {s_case("dns = [7]\n"), "5:8: each line of dns needs a text in quotes"},
        {s_case("trusted-mta = [\"192.0.2.1\", \"nope\"]\n"), "5:29: trusted-mta: "},
        {s_case("client-score = \"7\"\n"), "5:16: client-score needs a whole number"},
        {s_case("client-score = -7\n"), "5:16: client-score: \"-7\" is not a whole number"},
        {s_case("env-from = \"a@b.example\"\n"),
         "5:12: this describes a message, but the case has a vector; leave it out"},
        {"[[case]]\nvector = 3\n",
         "2:10: a vector is a table, as in vector.first_helo_dynamic = \"yes\""},
        {"[[case]]\nmessage = \"no field\"\n", "2:11: not a message: it has no header field"},
        {"[[case]]\nverdict = \"span\"\n", "2:11: \"span\" is not a verdict; write spam, ham or "
                                           "none; did you mean \"spam\"?"},
        {"[[case]]\n\"\\u001b[2J\" = 1\n", "2:1: a case has no key \"\\x1B[2J\""},
        {"[[case]]\nname = \"x\"\nname = \"y\"\n", "3:"},
        {"[[case]\n", "1:"},
        {"# x\n [=]\n", "2:3: this is not TOML; \"[\" is followed by the name of a table"},
        {"[[\n", "1:3: this is not TOML"},
        {"\xFF", "1:"},
    };
    for (auto const& row : cases) {
        EXPECT_EQ(error(row.m_text).substr(0, std::string(row.m_error).size()), row.m_error)
            << row.m_text << error(row.m_text);
    }
}

// Every single slip of a finger in a file that uses everything.
TEST_F(CaseFileTest, DamagedFilesAreReadOrRefused) {
    std::string const whole = "rules = \"r.qvr\"\n[settings]\nham-threshold = 0.9\n[[case]]\n"
                              "name = \"x\"\nvector.chain_broken = \"yes\"\nverdict = \"ham\"\n"
                              "node = 7\nconfidence = [0.1, 1]\nreasons = \"ab\"\n"
                              "dns = [\"a. A 192.0.2.1\"]\ntrusted-mta = [\"10.0.0.0/8\"]\n";
    int refused = 0;
    auto const check = [&](std::string const& text) {
        try {
            read(text);
        } catch (RuleError const& failure) {
            ++refused;
        }
    };
    for (std::size_t at = 0; at < whole.size(); ++at) {
        check(whole.substr(0, at));
        check(std::string(whole).erase(at, 1));
        for (char const c : {'\0', '\n', '"', '[', ']', '{', '=', '.', '\xFF', '9'}) {
            check(std::string(whole).replace(at, 1, 1, c));
        }
    }
    EXPECT_GT(refused, 1000);
}

TEST_F(CaseFileTest, AFileThatIsNotThereIsNoInput) {
    auto const kind = [](auto const& act) {
        try {
            act();
        } catch (RuleError const& error) {
            return error.kind();
        }
        return RuleError::Kind::badRules;
    };
    EXPECT_EQ(kind([&] { readCaseFile(m_folder.path() / "no.toml"); }), RuleError::Kind::noInput);
    EXPECT_EQ(kind([&] { read("[[case]]\nfile = \"no.eml\"\n"); }), RuleError::Kind::noInput);
}

} // namespace
} // namespace Quorvane::Testing
