// SPDX-License-Identifier: Apache-2.0
//
// A host that forks while its threads scan and look names up.
#include "DeepHeaderScanner.h"
#include "platform/HeaderText.h"
#include "platform/Host.h"
#include "platform/Resolver.h"
#include "rules/format/AttributeTable.h"
#include "support/RuleFolder.h"
#include "support/SteadyScans.h"

#include <functional>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Quorvane::Testing {
namespace {

constexpr int children = 1000;
constexpr int threads = 4;
constexpr unsigned int patienceSeconds = 20; // a child that hangs is ended

// A scan that looks names up, tests them for dynamic names and reads addresses.
bool s_isJudged() {
    Message message(
        received("relay.example", "dyn-192-0-2-7.relay.example", "192.0.2.7", "c.example") +
        "From: \"A name\" <author@organisation.example>\nReturn-Path: <b@relay.example>\n");
    message.m_settings.spamThreshold = 0.1;
    auto query = message.query();
    return DeepHeaderScanner().postQuery(query).isSpam();
}

bool s_resolves() {
    return !Host("relay.example", true).isNull();
}

ResolverSettings s_settings() {
    ResolverSettings settings;
    settings.m_mode = ResolverSettings::Mode::local;
    settings.m_zoneData = {"relay.example. A 192.0.2.9",
                           "dyn-192-0-2-7.relay.example. A 192.0.2.9"};
    return settings;
}

class ForkedScanTest : public testing::Test {
  protected:
    ForkedScanTest() {
        Resolver::instance().configure(s_settings());
        m_rules.writeTree(treeOf({leaf(Attribute::hopBehindFirst, 0, 0.9)}));
        DeepHeaderScanner().init();
    }

    // How a child that runs `action` ends: 0 when the action says true.
    static int statusOfChild(std::function<bool()> const& action) {
        pid_t const child = fork();
        if (child == 0) {
            alarm(patienceSeconds);
            _exit(action() ? 0 : 1);
        }
        int status = -1;
        return waitpid(child, &status, 0) == child ? status : -1;
    }

    RuleFolder m_rules;
};

TEST_F(ForkedScanTest, AChildsLookUpsFailAtOnceAndTheParentsAreAnswered) {
    ASSERT_TRUE(s_resolves());
    auto const failedBefore = Resolver::instance().counters().m_failed;
    auto const child = [] {
        auto const before = Resolver::instance().counters().m_failed;
        bool const isRight = !s_resolves() && s_isJudged();
        auto const& counters = Resolver::instance().counters();
        return isRight && counters.m_failed > before && counters.m_late == 0;
    };
    EXPECT_EQ(statusOfChild(child), 0);
    EXPECT_TRUE(s_resolves());
    EXPECT_EQ(Resolver::instance().counters().m_failed, failedBefore);
}

TEST_F(ForkedScanTest, ChildrenOfAHostWhoseThreadsScanFindNoLockHeld) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "sanitizers have locks of their own, which a child inherits";
#endif
    SteadyScans scans(threads, [](DeepHeaderAnswer const& /*answer*/) {
        return s_isJudged() && s_resolves() && !headerText("=?utf-8?q?a?=").empty();
    });
    for (int i = 0; i < children; ++i) {
        auto const reached = scans.scanned();
        ASSERT_EQ(statusOfChild([] {
                      return s_isJudged() && !s_resolves() && headerText("=?utf-8?q?a?=") == "a";
                  }),
                  0)
            << "child " << i;
        while (scans.scanned() == reached) {
            std::this_thread::yield();
        }
    }
    EXPECT_EQ(scans.stop(), 0U);
}

TEST_F(ForkedScanTest, ALookUpFromBeforeTheForkFailsInTheChild) {
    auto pending = Resolver::instance().start(RecordType::A, "relay.example", RecordClass::IN);
    auto another = Resolver::instance().start(RecordType::A, "relay.example", RecordClass::IN);
    EXPECT_EQ(statusOfChild([&pending] {
                  auto const answer = pending.wait();
                  return answer.result() == LookupResult::failed ||
                         answer.result() == LookupResult::answered; // it was there already
              }),
              0);
    EXPECT_EQ(pending.wait().result(), LookupResult::answered);
    EXPECT_EQ(another.wait().result(), LookupResult::answered);
}

} // namespace
} // namespace Quorvane::Testing
