// SPDX-License-Identifier: Apache-2.0
//
// Scans while the process ends. Each case runs in a process of its own, which sanitizers watch to
// its end; what its last scans found stands on its standard error.
#include "platform/Resolver.h"
#include "rules/format/AttributeTable.h"
#include "support/RuleFolder.h"
#include "support/SteadyScans.h"

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <utility>

namespace Quorvane::Testing {
namespace {

// Made when the program starts, so destroyed after every singleton that was made on first use.
class LastObject {
  public:
    LastObject() = default;
    LastObject(LastObject const&) = delete;
    LastObject& operator=(LastObject const&) = delete;
    ~LastObject() {
        if (m_duty) {
            m_duty();
        }
    }

    // What the destructor does.
    std::function<void()> m_duty;
};

LastObject s_lastObject;

// Called after the destructors of all static objects, the lock of the library among them.
void (*s_lastDuty)() = nullptr;
[[gnu::destructor]] void s_doLastDuty() {
    if (s_lastDuty != nullptr) {
        s_lastDuty();
    }
}

void s_report(char const* what, bool isSo) {
    std::fprintf(stderr, "%s: %s\n", what, isSo ? "yes" : "no");
}

// Looks three names up. Without the address of mail.helo.example no rule admits the message.
DeepHeaderAnswer s_scan() {
    Message message("From: someone@author.example\n"
                    "Return-Path: <someone@sender.example>\n" +
                    received("mail.helo.example", "pc.reverse.example", "192.0.2.7", "c.example"));
    message.m_settings.spamThreshold = 0.9;
    auto query = message.query();
    return DeepHeaderScanner().postQuery(query);
}

void s_load(RuleFolder const& rules, double confidence) {
    rules.writeTree(treeOf({leaf(Attribute::firstHeloResolves, Code::yes, confidence)}));
    DeepHeaderScanner().init();
}

void s_startHost(RuleFolder const& rules) {
    ResolverSettings settings;
    settings.m_mode = ResolverSettings::Mode::local;
    settings.m_zoneData = {"mail.helo.example. A 192.0.2.7"};
    settings.m_deadline = std::chrono::seconds(30);
    Resolver::instance().configure(settings);
    s_load(rules, 0.97);
}

class ScanAtExitDeathTest : public testing::Test {
  protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

void s_scanInADestructor() {
    auto const rules = std::make_shared<RuleFolder>();
    s_startHost(*rules);
    s_lastObject.m_duty = [rules] { s_report("spam", s_scan().isSpam()); };
    std::exit(0);
}

TEST_F(ScanAtExitDeathTest, AStaticObjectMayScanInItsDestructor) {
    EXPECT_EXIT(s_scanInADestructor(), testing::ExitedWithCode(0), "spam: yes");
}

void s_scanAfterAllDestructors() {
    RuleFolder const rules;
    s_startHost(rules);
    s_lastDuty = [] { s_report("spam", s_scan().isSpam()); };
    std::exit(0);
}

TEST_F(ScanAtExitDeathTest, AScanMayComeAfterAllDestructors) {
    EXPECT_EXIT(s_scanAfterAllDestructors(), testing::ExitedWithCode(0), "spam: yes");
}

void s_loadInADestructor() {
    auto const rules = std::make_shared<RuleFolder>();
    s_startHost(*rules);
    s_lastObject.m_duty = [rules] {
        s_load(*rules, 0.91);
        s_report("new rules", s_scan().confidenceDegree() == 0.91F);
    };
    std::exit(0);
}

TEST_F(ScanAtExitDeathTest, AStaticObjectMayLoadRulesInItsDestructor) {
    EXPECT_EXIT(s_loadInADestructor(), testing::ExitedWithCode(0), "new rules: yes");
}

void s_failInADestructor() {
    auto const rules = std::make_shared<RuleFolder>();
    s_startHost(*rules);
    s_lastObject.m_duty = [rules] {
        Message message;
        message.m_headers.append(Header("Received", "standby "));
        auto query = message.query();
        s_report("verdict", DeepHeaderScanner().postQuery(query).getNode() != 0);
    };
    std::exit(0);
}

TEST_F(ScanAtExitDeathTest, AFailureInADestructorIsLogged) {
    EXPECT_EXIT(s_failInADestructor(), testing::ExitedWithCode(0),
                "the scan failed.*\nverdict: no");
}

void s_waitForScans(SteadyScans const& scans) {
    auto const reached = scans.scanned();
    while (scans.scanned() < reached + 10) {
        std::this_thread::yield();
    }
}

void s_joinInADestructor() {
    auto const rules = std::make_shared<RuleFolder>();
    s_startHost(*rules);
    auto const scans =
        std::make_shared<SteadyScans>(3, [](DeepHeaderAnswer const&) { return s_scan().isSpam(); });
    s_waitForScans(*scans);
    s_lastObject.m_duty = [rules, scans] {
        s_waitForScans(*scans);
        s_report("all spam", scans->stop() == 0);
    };
    std::exit(0);
}

TEST_F(ScanAtExitDeathTest, ThreadsMayScanUntilAStaticObjectJoinsThem) {
    EXPECT_EXIT(s_joinInADestructor(), testing::ExitedWithCode(0), "all spam: yes");
}

} // namespace
} // namespace Quorvane::Testing
