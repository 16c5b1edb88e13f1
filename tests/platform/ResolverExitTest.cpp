// SPDX-License-Identifier: Apache-2.0
//
// How a process ends that looked names up. Each case runs in a process of its own, which sanitizers
// watch to its end.
#include "platform/ResolverFixture.h"
#include "support/SilentDnsServer.h"

#include <cstdlib>
#include <thread>

namespace Quorvane::Testing {
namespace {

class ResolverExitDeathTest : public testing::Test {
  protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

bool s_resolves(std::string const& name) {
    return !Resolver::instance().submit(RecordType::mailName, name, RecordClass::IN).isEmpty();
}

TEST_F(ResolverExitDeathTest, ProcessThatNeverConfiguredAsksTheSystemAndEndsWell) {
    // Whatever the system says, even that it has no server: there is no such name.
    EXPECT_EXIT(std::exit(s_resolves("no-such-host.invalid") ? 1 : 0), testing::ExitedWithCode(0),
                "");
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
