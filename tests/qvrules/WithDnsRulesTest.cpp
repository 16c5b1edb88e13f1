// SPDX-License-Identifier: Apache-2.0
//
// The rules that ask DNS, in force in a folder of the test, on mail whose names a real server
// knows, does not know, or cannot look up.
#include "rules/language/LoadRules.h"
#include "rules/model/Binary.h"
#include "support/DnsServer.h"
#include "support/JsonLines.h"
#include "support/Program.h"
#include "support/SilentDnsServer.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <string>

namespace Quorvane::Testing {
namespace {

using Rules::loadRules;

class WithDnsRules : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        s_server = std::make_unique<DnsServer>(std::vector<DnsZone>{
            {"here.test", "@ MX 10 mail\nmail A 192.0.2.10\nown A 203.0.113.18\n"},
            {"broken.test", "", true},
        });
    }
    static void TearDownTestSuite() { s_server.reset(); }

    WithDnsRules() {
        auto const compiled =
            runProgram(QV_PROGRAMS "/qvrules",
                       {"compile", QV_WITH_DNS_TEXT, "-o", root() + "/var/spool/etc/antispam"});
        EXPECT_EQ(compiled.m_status, 0) << compiled.m_errors;
    }

    std::string root() const { return m_folder.path() / "root"; }

    // "spam 9101", "none": the verdict of qvscan for a machine at 203.0.113.18 with these names.
    // What the learned tree calls ham is no matter here.
    std::string verdict(std::string const& helo, std::string const& reverse,
                        std::string const& sender,
                        std::vector<std::string> const& dns = {"--dns", s_server->address()}) {
        std::vector<std::string> arguments{"--root",          root(), "--format", "json",
                                           "--ham-threshold", "1"};
        arguments.insert(arguments.end(), dns.begin(), dns.end());
        auto const result =
            runProgram(QV_PROGRAMS "/qvscan", arguments,
                       "Return-Path: <" + sender + ">\nReceived: from " + helo + " (" + reverse +
                           " [203.0.113.18])\n\tby mx.site.example with ESMTP;"
                           " Wed, 15 May 2024 04:10:11 +0200\n"
                           "Message-ID: <1@letters.example>\nFrom: <karl@author.example>\n\n");
        auto const record = Json::parse(result.m_output);
        auto const word = record["verdict"].get<std::string>();
        return word == "none" ? word : word + ' ' + record["node"].dump();
    }

    static std::unique_ptr<DnsServer> s_server;
    TemporaryFolder m_folder;
};

std::unique_ptr<DnsServer> WithDnsRules::s_server;

TEST_F(WithDnsRules, AMachineWhoseAnnouncedNameDoesNotExistIsSpamUnlessItHasAReverseName) {
    EXPECT_EQ(verdict("gone.here.test", "unknown", "x@here.test"), "spam 9101");
    EXPECT_EQ(verdict("mail.here.test", "unknown", "x@here.test"), "none");
    EXPECT_EQ(verdict("gone.here.test", "own.here.test", "x@here.test"), "none");
}

TEST_F(WithDnsRules, AForgedReverseNameIsSpamUnlessItIsConfirmedOrDoesNotExist) {
    EXPECT_EQ(verdict("mta.other.example", "mail.here.test", "x@x.example"), "spam 9102");
    EXPECT_EQ(verdict("mta.other.example", "own.here.test", "x@x.example"), "none");
    EXPECT_EQ(verdict("mta.other.example", "gone.here.test", "x@x.example"), "none");
}

TEST_F(WithDnsRules, ASendersDomainThatDoesNotExistIsSpamUnlessTheMessageIsABounce) {
    EXPECT_EQ(verdict("mail.here.test", "unknown", "x@gone.here.test"), "spam 9103");
    EXPECT_EQ(verdict("mail.here.test", "unknown", "x@here.test"), "none");
    EXPECT_EQ(verdict("mail.here.test", "unknown", ""), "none");
}

// SERVFAIL. When one of two names that a rule needs fails, qvmilter gives no verdict, and its tests
// look at that.
TEST_F(WithDnsRules, NamesThatTheServerCannotLookUpSayNothing) {
    EXPECT_EQ(verdict("mta.other.example", "a.broken.test", "x@x.example"), "none");
    EXPECT_EQ(verdict("a.broken.test", "unknown", "x@b.broken.test"), "none");
}

TEST_F(WithDnsRules, WhileNoLookUpWorksTheyMatchNothing) {
    SilentDnsServer const silent;
    std::vector<std::string> const settings[] = {
        {"--dns", silent.address(), "--dns-timeout", "0.2"}, {"--dns", "off"}};
    for (auto const& dns : settings) {
        EXPECT_EQ(verdict("gone.here.test", "unknown", "x@here.test", dns), "none");
        EXPECT_EQ(verdict("a.example", "mail.here.test", "x@x.example", dns), "none");
        EXPECT_EQ(verdict("mail.here.test", "unknown", "x@gone.test", dns), "none");
    }
}

// A site that installs them gets the default rules, too.
TEST_F(WithDnsRules, TheyAreTheDefaultRulesAndThreeMore) {
    auto with = loadRules(QV_WITH_DNS_TEXT).m_set;
    auto const plain = loadRules(QV_DEFAULT_TEXT).m_set;
    std::set<int> const added{9101, 9102, 9103};
    auto& rules = with.m_elite->m_rules;
    EXPECT_EQ(std::erase_if(rules, [&](auto const& rule) { return added.contains(rule.code); }),
              added.size());
    with.m_elite->m_header->nodeCount -= static_cast<std::int32_t>(added.size());
    EXPECT_EQ(writeElite(*with.m_elite), writeElite(*plain.m_elite));
    EXPECT_EQ(writeTree(with), writeTree(plain));
}

} // namespace
} // namespace Quorvane::Testing
