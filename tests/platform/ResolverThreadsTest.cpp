// SPDX-License-Identifier: Apache-2.0
//
// One resolver, many threads, and settings that change under them.
#include "platform/Host.h"
#include "platform/ResolverFixture.h"
#include "support/DnsServer.h"
#include "support/SilentDnsServer.h"

#include <atomic>
#include <csignal>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace Quorvane::Testing {
namespace {

constexpr int s_threads = 16;

using ResolverThreadsTest = ResolverFixture;

// Asks for a name that every settings of the test know and one that none knows.
void s_lookUpUntil(std::atomic<bool> const& isDone, std::atomic<int>& wrong) {
    Resolver& resolver = Resolver::instance();
    do {
        PendingLookup dropped =
            resolver.start(RecordType::mailName, "dropped.example.test", RecordClass::IN);
        PendingLookup missing =
            resolver.start(RecordType::mailName, "missing.example.test", RecordClass::IN);
        bool const isRight =
            Host("mail.example.test", true).addressList().size() == 1 && missing.wait().isEmpty();
        wrong += isRight ? 0 : 1;
    } while (!isDone.load());
}

TEST_F(ResolverThreadsTest, EveryLookUpIsAnsweredWhileSettingsChange) {
    DnsServer const server(std::vector<DnsZone>{{"example.test", "mail A 192.0.2.1\n", false}});
    ResolverSettings const remote = serverSettings(server.address());
    ResolverSettings const local = localSettings({"mail.example.test. A 192.0.2.1"});
    configure(remote);
    std::atomic<bool> isDone{false};
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < s_threads; ++i) {
        threads.emplace_back([&] { s_lookUpUntil(isDone, wrong); });
    }
    for (int i = 0; i < 20; ++i) {
        Resolver::instance().configure(i % 2 == 0 ? local : remote);
    }
    isDone = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(failed() + late(), 0U);
}

TEST_F(ResolverThreadsTest, ForkedChildEndsWithoutWaitingForThreadsItDoesNotHave) {
    configure(localSettings({"mail.example.test. A 192.0.2.1"}));
    ASSERT_TRUE(resolves("mail.example.test"));
    pid_t const child = fork();
    if (child == 0) {
        alarm(60);
        ResolverSettings off;
        off.m_mode = ResolverSettings::Mode::off;
        Resolver::instance().configure(off);
        _exit(0);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

TEST_F(ResolverThreadsTest, SignalsOfTheHostStayWithItsOwnThreads) {
    configure(localSettings({"mail.example.test. A 192.0.2.1"}));
    ASSERT_TRUE(resolves("mail.example.test"));
    sigset_t user;
    sigset_t before;
    sigemptyset(&user);
    sigaddset(&user, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &user, &before);
    // Were it open in one of the resolver's threads, the signal would end the process there.
    kill(getpid(), SIGUSR1);
    int received = 0;
    EXPECT_EQ(sigwait(&user, &received), 0);
    EXPECT_EQ(received, SIGUSR1);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

// The look-up may take ten minutes.
TEST_F(ResolverThreadsTest, AStoppedResolverKeepsNobodyWaiting) {
    SilentDnsServer server;
    configure(serverSettings(server.address(), std::chrono::minutes(10)));
    std::thread waiting([] { EXPECT_FALSE(resolves("mail.example.test")); });
    server.takeQuestionsUntil("mail.example.test.");
    Resolver::instance().stop();
    waiting.join();
    EXPECT_FALSE(resolves("later.example.test"));
    EXPECT_EQ(failed(), 2U);
    EXPECT_EQ(late(), 0U);
    configure(localSettings({"mail.example.test. A 192.0.2.1"}));
    EXPECT_TRUE(resolves("mail.example.test"));
}

// One that asks nobody has nothing to stop, but says so too.
TEST_F(ResolverThreadsTest, AStoppedResolverFailsEvenWhereNothingIsAsked) {
    ResolverSettings off;
    off.m_mode = ResolverSettings::Mode::off;
    auto const result = [] {
        return Resolver::instance()
            .submit(RecordType::mailName, "mail.example.test", RecordClass::IN)
            .result();
    };
    configure(off);
    EXPECT_EQ(result(), LookupResult::notAsked);
    Resolver::instance().stop();
    EXPECT_EQ(result(), LookupResult::failed);
    configure(off);
    EXPECT_EQ(result(), LookupResult::notAsked);
}

} // namespace
} // namespace Quorvane::Testing
