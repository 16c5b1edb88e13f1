// SPDX-License-Identifier: Apache-2.0
//
// How a process ends that looked names up. Each case runs in a process of its own, which sanitizers
// watch to its end.
#include "platform/OwnSystem.h"
#include "platform/ResolverFixture.h"
#include "support/LateDnsServer.h"
#include "support/SilentDnsServer.h"

#include <cstdlib>
#include <sys/wait.h>

namespace Quorvane::Testing {
namespace {

class ResolverExitDeathTest : public testing::Test {
  protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

bool s_resolves(std::string const& name) {
    return !Resolver::instance().submit(RecordType::mailName, name, RecordClass::IN).isEmpty();
}

constexpr int notPermitted = 77;

// The deadline of a process that never configured is short for a loaded machine.
constexpr int enoughTries = 30;

void s_exitAfterAskingTheSystem() {
    if (!enterOwnSystem()) {
        std::exit(notPermitted);
    }
    LateDnsServer const server(std::chrono::milliseconds(0), {}, 53);
    bool isAnswered = false;
    for (int tries = 0; tries < enoughTries && !isAnswered; ++tries) {
        isAnswered = s_resolves("mail.example.test");
    }
    std::exit(isAnswered && server.names().count("mail.example.test.") == 1 ? 0 : 1);
}

TEST_F(ResolverExitDeathTest, ProcessThatNeverConfiguredAsksTheSystemAndEndsWell) {
    int exitStatus = 0;
    auto const endsWell = [&exitStatus](int status) {
        exitStatus = WEXITSTATUS(status);
        return WIFEXITED(status) && (exitStatus == 0 || exitStatus == notPermitted);
    };
    EXPECT_EXIT(s_exitAfterAskingTheSystem(), endsWell, "");
    if (exitStatus == notPermitted) {
        GTEST_SKIP() << "a process may not have a system of its own here";
    }
}

TEST_F(ResolverExitDeathTest, ProcessThatNeverLookedUpEndsWell) {
    EXPECT_EXIT(std::exit(Resolver::instance().counters().m_failed == 0 ? 0 : 1),
                testing::ExitedWithCode(0), "");
}

void s_exitWithSettingsInForce() {
    Resolver::instance().configure(localSettings({"mail.example.test. A 192.0.2.1"}));
    std::exit(s_resolves("mail.example.test") ? 0 : 1);
}

TEST_F(ResolverExitDeathTest, ProcessEndsWellWithSettingsInForce) {
    EXPECT_EXIT(s_exitWithSettingsInForce(), testing::ExitedWithCode(0), "");
}

void s_exitWhileAnswersArrive() {
    LateDnsServer const server(std::chrono::milliseconds(0));
    Resolver::instance().configure(serverSettings(server.address()));
    static auto* const lookups = new std::vector<PendingLookup>; // never destroyed
    for (int i = 0; i < 100; ++i) {
        lookups->push_back(Resolver::instance().start(
            RecordType::mailName, "host" + std::to_string(i) + ".example.test", RecordClass::IN));
    }
    lookups->front().wait();
    std::exit(0);
}

TEST_F(ResolverExitDeathTest, ProcessEndsWellWhileAnswersArrive) {
    EXPECT_EXIT(s_exitWhileAnswersArrive(), testing::ExitedWithCode(0), "");
}

void s_exitAfterTheLastAnswerWasLate() {
    SilentDnsServer server;
    Resolver::instance().configure(serverSettings(server.address(), shortDeadline));
    std::exit(s_resolves("mail.example.test") || Resolver::instance().counters().m_late != 1);
}

TEST_F(ResolverExitDeathTest, ProcessEndsWellWithAQuestionStillOpenAtTheServer) {
    EXPECT_EXIT(s_exitAfterTheLastAnswerWasLate(), testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace Quorvane::Testing
