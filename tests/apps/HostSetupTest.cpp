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
#include "rules/format/AttributeTable.h"
#include "support/RuleFolder.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <string>
#include <sys/stat.h>

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
        m_host = setUpHost(m_first, "root");
    }

    // Other tests of the process scan, too.
    ~HostSetupTest() override { TrustedMTASetRef::install({}, {}); }

    // Rules of a newer version, with one leaf for all messages of one hop.
    static void installRules(double confidence) { installRules(leaf(37, 0, confidence)); }

    static void installRules(DTNode const& only) {
        static int version = 0;
        s_folder().write(std::string(ruleFolder) + "qv.dt", treeBytes(treeOf({only})));
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
        settings.m_ipv6 = IPv6Relays::judge;
        settings.m_zoneLines = {"there.test. A 192.0.2.7"};
        settings.m_dynamicPatterns = s_folder().write("other", "^other\n");
        return settings;
    }

    static bool resolves(std::string const& name) {
        return !Resolver::instance().submit(RecordType::mailName, name, RecordClass::IN).isEmpty();
    }

    // Whether names are asked at all; what the answer is does not matter.
    static bool isAsking() {
        auto const answer =
            Resolver::instance().submit(RecordType::A, "name.invalid", RecordClass::IN);
        return answer.result() != LookupResult::notAsked;
    }

    static bool isDynamic(std::string const& name) {
        return DynamicIdentifierSingleton::instance(false)->match(name);
    }

    static bool isTrusted(std::string const& address) {
        return TrustedMTASetRef::instance(false)->isTrustedMTA(IPAddress(address));
    }

    static bool isV6Judged() {
        return !TrustedMTASetRef::instance(false)->countsAsV6(IPAddress("2001:db8::1"));
    }

    static void expectFirstInForce() {
        EXPECT_TRUE(isTrusted("192.0.2.1"));
        EXPECT_FALSE(isV6Judged());
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
            setUpHost(settings, "root");
        } catch (SettingsError const& error) {
            return error.what();
        }
        return {};
    }

    HostSettings m_first;
    std::shared_ptr<ScanHost const> m_host;
};

TEST_F(HostSetupTest, OtherSettingsAreInForceTogether) {
    auto const host = setUpHost(other(), "root");
    EXPECT_TRUE(isTrusted("198.51.100.1"));
    EXPECT_FALSE(isTrusted("192.0.2.1"));
    EXPECT_TRUE(isV6Judged());
    EXPECT_TRUE(isDynamic("other.a.example"));
    EXPECT_TRUE(resolves("there.test"));
    EXPECT_EQ(host->settings().m_trusted.front().asString(), "198.51.100.0/24");
}

TEST_F(HostSetupTest, NamesAreAskedOnlyWhileTheRulesTestWhatDnsSays) {
    auto settings = m_first;
    settings.m_dns = "auto";
    settings.m_dnsTimeout = 0.1;
    settings.m_zoneLines.clear();
    auto host = setUpHost(settings, "root");
    EXPECT_FALSE(isAsking());
    installRules(leaf(Attribute::envelopeDomainResolves, 0, 0.5));
    host = withNewerRules(host);
    EXPECT_TRUE(isAsking());
    EXPECT_TRUE((setUpHost(settings, "root"), isAsking()));
    installRules(0.5);
    withNewerRules(host);
    EXPECT_FALSE(isAsking());
}

TEST_F(HostSetupTest, AListOfRelaysIsAskedWhateverTheRulesTest) {
    auto settings = m_first;
    settings.m_dns = "auto";
    settings.m_dnsTimeout = 0.1;
    settings.m_zoneLines.clear();
    settings.m_dnsLists.emplace_back();
    readSetting("list.example 127.0.0.2=0", settings.m_dnsLists.back());
    setUpHost(settings, "root");
    EXPECT_TRUE(isAsking());
}

TEST_F(HostSetupTest, AProgramThatKnowsBetterSettlesAutoAndNothingElse) {
    HostSettings settings;
    settleDns(settings, true);
    EXPECT_EQ(settings.m_dns, "system");
    settleDns(settings, false);
    EXPECT_EQ(settings.m_dns, "system");
    settings = {};
    settleDns(settings, false);
    EXPECT_EQ(settings.m_dns, "off");
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
    {"no.zone: cannot be opened", [](HostSettings& s) { s.m_dnsData = "no.zone"; }},
    {"pipe: is a pipe or a device; give a file that can be read again",
     [](HostSettings& s) {
         s.m_dnsData = s_folder().path("pipe");
         ::mkfifo(s.m_dnsData.c_str(), 0600);
     }},
    {"/dev/zero: is a pipe or a device",
     [](HostSettings& s) { s.m_dynamicPatterns = "/dev/zero"; }},
    {"root: ", [](HostSettings& s) { s.m_root = "/"; }},
    {"; root says below which folder to look",
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
    setUpHost(settings, "root");
    EXPECT_FALSE(isDynamic("first.a.example"));
    EXPECT_TRUE(isDynamic("dsl-192-0-2-7.dyn.example.net"));
}

TEST_F(HostSetupTest, TheProgramsLoggerStaysWhereItIsOrIsReplacedWithTheRest) {
    auto const before = std::make_shared<SilentLogger>();
    auto const after = std::make_shared<SilentLogger>();
    Logger::install(before);
    setUpHost(other(), "root");
    EXPECT_EQ(Logger::instance(false), before);
    auto broken = other();
    broken.m_dnsData = "no.zone";
    EXPECT_THROW(setUpHost(broken, "root", after), SettingsError);
    EXPECT_EQ(Logger::instance(false), before);
    setUpHost(other(), "root", after);
    EXPECT_EQ(Logger::instance(false), after);
    Logger::install(nullptr);
}

TEST_F(HostSetupTest, AMessageInHandKeepsTheRulesItsHostBeganWith) {
    installRules(0.42);
    auto const reloaded = setUpHost(m_first, "root");
    EXPECT_EQ(confidence(*reloaded), 0.42);
    EXPECT_EQ(confidence(*m_host), 0.97);
}

class RuleNamesOfHost : public HostSetupTest {
  protected:
    ~RuleNamesOfHost() override { std::filesystem::remove(s_folder().path(namesFile())); }

    static std::string namesFile() { return std::string(ruleFolder) + namesFileName; }

    static std::string nameOfNode3(ScanHost const& host) {
        auto const& names = host.ruleNames();
        auto const found = names.find({Rules::RuleKey::Kind::node, 3});
        return found == names.end() ? "" : found->second.m_name;
    }

    static void writeName(std::string const& name) {
        s_folder().write(namesFile(),
                         Rules::namesText({{{Rules::RuleKey::Kind::node, 3}, {name, ""}}}));
    }
};

TEST_F(RuleNamesOfHost, ComeWithTheRules) {
    EXPECT_EQ(nameOfNode3(*m_host), "");
    EXPECT_EQ(m_host->namesProblem(), "");
    writeName("One");
    auto const first = setUpHost(m_first, "root");
    EXPECT_EQ(nameOfNode3(*first), "One");
    writeName("Two");
    EXPECT_EQ(withNewerRules(first), first) << "names alone are no reason to load";
    installRules(0.5);
    EXPECT_EQ(nameOfNode3(*withNewerRules(first)), "Two");
    EXPECT_EQ(nameOfNode3(*first), "One") << "it never changes";
    EXPECT_EQ(nameOfNode3(first->judgingWith(DeepHeaderSettings())), "One");
}

TEST_F(RuleNamesOfHost, KeepNoRulesFromBeingLoaded) {
    auto const file = s_folder().path("root") + ruleDirectory + "/qv.names: ";
    s_folder().write(namesFile(), "damaged");
    installRules(0.42);
    auto const damaged = setUpHost(m_first, "root");
    EXPECT_EQ(confidence(*damaged), 0.42);
    EXPECT_EQ(damaged->namesProblem(), file + "line 1: this is no file of rule names of format 1");
    std::filesystem::remove(s_folder().path(namesFile()));
    ASSERT_EQ(::mkfifo(s_folder().path(namesFile()).c_str(), 0644), 0);
    installRules(0.43);
    auto const pipe = setUpHost(m_first, "root");
    EXPECT_EQ(confidence(*pipe), 0.43);
    EXPECT_EQ(pipe->namesProblem(), file + "is no regular file");
}

// The rules of the process's root folder have nothing to do with it.
TEST_F(HostSetupTest, AFolderOfRulesAsRootIsRenewedByItself) {
    auto settings = other();
    settings.m_root = s_folder().path("rules");
    auto const write = [](double confidence, int version) {
        s_folder().write("rules/qv.dt", treeBytes(treeOf({leaf(37, 0, confidence)})));
        s_folder().write("rules/README", "CF_DT_VERSION=" + std::to_string(version) + "\n");
    };
    write(0.25, 7);
    auto const first = setUpHost(settings, "root");
    EXPECT_EQ(confidence(*first), 0.25);
    EXPECT_EQ(first->ruleVersion(), 7);
    installRules(0.9);
    EXPECT_EQ(withNewerRules(first), first);
    write(0.75, 8);
    EXPECT_EQ(confidence(*withNewerRules(first)), 0.75);
}

TEST_F(HostSetupTest, AnEngineOfTheProgramsOwnNeedsNoRoot) {
    auto settings = other();
    settings.m_root = "/no/such/folder";
    auto const host = setUpHost(settings, loadedRules(Rules::RuleSet{}));
    EXPECT_EQ(confidence(*host), -1.0);
}

} // namespace
} // namespace Quorvane::Testing
