// SPDX-License-Identifier: Apache-2.0
//
// Settings are put in force together, or not at all. All tests share one process, and so one root
// folder, as a daemon does.
#include "apps/host/HostSetup.h"

#include "apps/host/RuleLoader.h"
#include "apps/settings/SettingValue.h"
#include "platform/DynamicIdentifier.h"
#include "platform/HeaderReader.h"
#include "platform/Resolver.h"
#include "platform/TrustedMTASet.h"
#include "support/RuleFolder.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <string>

namespace Quorvane::Testing {
namespace {

using Telvanis::DynamicIdentifierSingleton;
using ::testing::HasSubstr;

class SilentLogger : public Logger {
  public:
    void log(int /*messageId*/, int /*reserved*/, char const* /*format*/, ...) override {}
};

TemporaryFolder const& s_folder() {
    static TemporaryFolder const folder;
    return folder;
}

constexpr char ruleFolder[] = "root/var/spool/etc/antispam/";

class HostSetupTest : public testing::Test {
  protected:
    HostSetupTest() {
        installRules(0.97);
        m_first.m_root = s_folder().path("root");
        m_first.m_dns = "off";
        m_first.m_trusted = {IPPrefix::parse("192.0.2.0/24")};
        m_first.m_zoneLines = {"here.test. A 192.0.2.7"};
        m_first.m_dynamicPatterns = s_folder().write("patterns", "^first\n");
        m_host = setUpHost(m_first);
    }

    // Rules of a newer version, with one leaf for all messages of one hop.
    static void installRules(double confidence) {
        static int version = 0;
        s_folder().write(std::string(ruleFolder) + "qv.dt",
                         treeBytes(treeOf({leaf(37, 0, confidence)})));
        writeVersion(++version);
    }

    static void writeVersion(int version) {
        s_folder().write(std::string(ruleFolder) + "README",
                         "CF_DT_VERSION=" + std::to_string(version) + "\n");
    }

    // What differs from the settings in force in every respect, and is all right.
    HostSettings other() const {
        auto settings = m_first;
        settings.m_trusted = {IPPrefix::parse("198.51.100.0/24")};
        settings.m_zoneLines = {"there.test. A 192.0.2.7"};
        settings.m_dynamicPatterns = s_folder().write("other", "^other\n");
        return settings;
    }

    static bool resolves(std::string const& name) {
        return !Resolver::instance().submit(RecordType::mailName, name, RecordClass::IN).isEmpty();
    }

    static bool isDynamic(std::string const& name) {
        return DynamicIdentifierSingleton::instance(false)->match(name);
    }

    static bool isTrusted(std::string const& address) {
        return TrustedMTASetRef::instance(false)->isTrustedMTA(IPAddress(address));
    }

    static void expectFirstInForce() {
        EXPECT_TRUE(isTrusted("192.0.2.1"));
        EXPECT_FALSE(isTrusted("198.51.100.1"));
        EXPECT_TRUE(isDynamic("first.a.example"));
        EXPECT_FALSE(isDynamic("other.a.example"));
        EXPECT_TRUE(resolves("here.test"));
        EXPECT_FALSE(resolves("there.test"));
    }

    static double confidence(ScanHost const& host) {
        auto const headers =
            HeaderReader::read("Received: from a.example (b.example [203.0.113.7]) by c\n\n");
        return host.scan(headers, {}, RecordDepth::result).verdict.confidence;
    }

    static std::string problem(HostSettings const& settings) {
        try {
            setUpHost(settings);
        } catch (SettingsError const& error) {
            return error.what();
        }
        return {};
    }

    HostSettings m_first;
    std::shared_ptr<ScanHost const> m_host;
};

TEST_F(HostSetupTest, OtherSettingsAreInForceTogether) {
    auto const host = setUpHost(other());
    EXPECT_TRUE(isTrusted("198.51.100.1"));
    EXPECT_FALSE(isTrusted("192.0.2.1"));
    EXPECT_TRUE(isDynamic("other.a.example"));
    EXPECT_TRUE(resolves("there.test"));
    EXPECT_EQ(host->settings().m_trusted.front().asString(), "198.51.100.0/24");
}

struct RefusedCase {
    char const* m_error;
    void (*m_break)(HostSettings& settings);
};

RefusedCase const refusedCases[] = {
    {"broken-patterns:2: ",
     [](HostSettings& s) {
         s.m_dynamicPatterns = s_folder().write("broken-patterns", "^fine\n(\n");
     }},
    {"no-such-patterns", [](HostSettings& s) { s.m_dynamicPatterns = "no-such-patterns"; }},
    {"zone: ", [](HostSettings& s) { s.m_dnsData = s_folder().write("zone", "no record\n"); }},
    {"no.zone: cannot be read", [](HostSettings& s) { s.m_dnsData = "no.zone"; }},
    {"root: ", [](HostSettings& s) { s.m_root = "/"; }},
    {"no usable rules",
     [](HostSettings& /*settings*/) {
         s_folder().write(std::string(ruleFolder) + "qv.dt", std::string(46000, '\x7F'));
         s_folder().write(std::string(ruleFolder) + "README", "CF_DT_VERSION=1000\n");
     }},
};

TEST_F(HostSetupTest, ARefusedReloadChangesNothingAndSaysWhy) {
    for (auto const& row : refusedCases) {
        auto settings = other();
        row.m_break(settings);
        EXPECT_THAT(problem(settings), HasSubstr(row.m_error));
        expectFirstInForce();
        EXPECT_EQ(confidence(*m_host), 0.97) << row.m_error;
    }
}

TEST_F(HostSetupTest, WithoutAPatternFileTheBuiltInPatternsAreInForceAgain) {
    auto settings = other();
    settings.m_dynamicPatterns.clear();
    setUpHost(settings);
    EXPECT_FALSE(isDynamic("first.a.example"));
    EXPECT_TRUE(isDynamic("dsl-192-0-2-7.dyn.example.net"));
}

TEST_F(HostSetupTest, TheProgramsLoggerStaysWhereItIsOrIsReplacedWithTheRest) {
    auto const before = std::make_shared<SilentLogger>();
    auto const after = std::make_shared<SilentLogger>();
    Logger::install(before);
    setUpHost(other());
    EXPECT_EQ(Logger::instance(false), before);
    auto broken = other();
    broken.m_dnsData = "no.zone";
    EXPECT_THROW(setUpHost(broken, after), SettingsError);
    EXPECT_EQ(Logger::instance(false), before);
    setUpHost(other(), after);
    EXPECT_EQ(Logger::instance(false), after);
    Logger::install(nullptr);
}

TEST_F(HostSetupTest, AMessageInHandKeepsTheRulesItsHostBeganWith) {
    installRules(0.42);
    auto const reloaded = setUpHost(m_first);
    EXPECT_EQ(confidence(*reloaded), 0.42);
    EXPECT_EQ(confidence(*m_host), 0.97);
}

TEST_F(HostSetupTest, AnEngineOfTheProgramsOwnNeedsNoRoot) {
    auto settings = other();
    settings.m_root = "/no/such/folder";
    auto const host = setUpHost(settings, engineOf(Rules::RuleSet{}));
    EXPECT_EQ(confidence(*host), -1.0);
}

} // namespace
} // namespace Quorvane::Testing
