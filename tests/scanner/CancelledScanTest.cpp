// SPDX-License-Identifier: Apache-2.0
//
// A host that cancels a thread (pthread_cancel) while it waits for a look-up.
#include "DeepHeaderScanner.h"
#include "platform/Resolver.h"
#include "rules/format/AttributeTable.h"
#include "support/RuleFolder.h"
#include "support/SilentDnsServer.h"
#include "support/SteadyScans.h"

#include <atomic>
#include <gtest/gtest.h>
#include <pthread.h>

namespace Quorvane::Testing {
namespace {

std::atomic<bool> s_hasScanned{false};

// The one place where it may be cancelled comes after the scan.
void* s_scan(void* /*nothing*/) {
    Message message(received("slow.example", "unknown", "192.0.2.7", "c.example"));
    message.m_settings.spamThreshold = 0.1;
    auto query = message.query();
    auto const answer = DeepHeaderScanner().postQuery(query);
    s_hasScanned = answer.getNode() != 0;
    pthread_testcancel();
    return nullptr;
}

TEST(CancelledScanTest, TheScanEndsFirstAndThenItsThread) {
    RuleFolder const rules;
    rules.writeTree(treeOf({leaf(Attribute::hopBehindFirst, 0, 0.9)}));
    DeepHeaderScanner().init();
    SilentDnsServer server;
    ResolverSettings settings;
    settings.m_mode = ResolverSettings::Mode::servers;
    settings.m_servers = {server.address()};
    settings.m_deadline = std::chrono::minutes(10);
    Resolver::instance().configure(settings);

    pthread_t thread{};
    ASSERT_EQ(pthread_create(&thread, nullptr, s_scan, nullptr), 0);
    server.takeQuestionsUntil("slow.example.");
    ASSERT_EQ(pthread_cancel(thread), 0);
    Resolver::instance().stop();
    void* result = nullptr;
    ASSERT_EQ(pthread_join(thread, &result), 0);
    EXPECT_EQ(result, PTHREAD_CANCELED);
    EXPECT_TRUE(s_hasScanned);
}

} // namespace
} // namespace Quorvane::Testing
