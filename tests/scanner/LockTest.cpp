// SPDX-License-Identifier: Apache-2.0
//
// When the lock of the library is held: never while rules are loaded, never while a message is
// scanned.
#include "DeepHeaderScanner.h"
#include "FileHook.h"
#include "platform/Resolver.h"
#include "support/LateDnsServer.h"
#include "support/Message.h"
#include "support/RuleFolder.h"

#include <future>
#include <gtest/gtest.h>

namespace Quorvane::Testing {
namespace {

// Waited for in vain only when the lock is held all the while.
constexpr std::chrono::seconds patience{30};

TEST(LockTest, RulesAreLoadedWithoutIt) {
    RuleFolder const rules;
    rules.writeTree({});
    std::vector<std::string> files;
    std::vector<std::future<void>> others; // gone when init has let go of everything
    FileHook const hook([&](std::string const& name) {
        files.push_back(name);
        others.push_back(std::async(std::launch::async,
                                    [] { Synchronized const lock(DeepHeaderScanner::m_Mutex); }));
        EXPECT_EQ(others.back().wait_for(patience), std::future_status::ready)
            << "no other thread gets the lock while " << name << " is opened";
    });
    DeepHeaderScanner().init();
    EXPECT_EQ(files, (std::vector<std::string>{versionFileName, eliteFileName, treeFileName}));
}

void s_ask(std::string const& server) {
    ResolverSettings settings;
    settings.m_mode =
        server.empty() ? ResolverSettings::Mode::off : ResolverSettings::Mode::servers;
    if (!server.empty()) {
        settings.m_servers = {server};
    }
    settings.m_deadline = patience;
    Resolver::instance().configure(settings);
}

// Look-ups so far that failed or came late.
std::uint64_t s_unanswered() {
    auto const counters = Resolver::instance().counters();
    return counters.m_failed + counters.m_late;
}

// The scan waits for an answer that the server gives when the test, having had the lock, asks for a
// second name. A scan that kept the lock would wait until its look-up is given up.
TEST(LockTest, MessagesAreScannedWithoutIt) {
    RuleFolder const rules;
    rules.writeTree({});
    DeepHeaderScanner().init();
    LateDnsServer const server(std::chrono::milliseconds(0), {"relay.test.", "lock.test."});
    s_ask(server.address());
    auto const before = s_unanswered();

    auto scan = std::async(std::launch::async, [] {
        auto query = Message("Received: from relay.test ([192.0.2.7]) by mx.test\n").query();
        DeepHeaderScanner().postQuery(query);
    });
    while (server.names().count("relay.test.") == 0) {
        std::this_thread::yield();
    }
    { Synchronized const lock(DeepHeaderScanner::m_Mutex); }
    Resolver::instance().submit(RecordType::A, "lock.test", RecordClass::IN);
    scan.get();
    EXPECT_EQ(s_unanswered(), before);
    s_ask("");
}

} // namespace
} // namespace Quorvane::Testing
