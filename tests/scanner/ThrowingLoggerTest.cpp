// SPDX-License-Identifier: Apache-2.0
//
// A host's logger that throws: nothing of it leaves init or postQuery.
#include "DeepHeaderScanner.h"
#include "FileHook.h"
#include "include2/Exception.h"
#include "platform/Logger.h"
#include "rules/format/AttributeTable.h"
#include "support/Message.h"
#include "support/RuleFolder.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <vector>

namespace Quorvane::Testing {
namespace {

class ThrowingLogger : public Logger {
  public:
    using Throw = void (*)();

    explicit ThrowingLogger(Throw doThrow) : m_throw(doThrow) {}

    void log(int messageId, int /*reserved*/, char const* /*format*/, ...) override
        __attribute__((format(printf, 4, 5))) {
        m_ids.push_back(messageId);
        m_throw();
    }

    std::vector<int> m_ids;

  private:
    Throw m_throw;
};

struct Thrown {
    char const* m_what;
    ThrowingLogger::Throw m_throw;
};

constexpr Thrown s_thrown[] = {
    {"Exception", [] { throw Exception("no syslog", 3, nullptr, 0); }},
    {"std::exception", [] { throw std::runtime_error("no syslog"); }},
    {"int", [] { throw 7; }},
};

// True when `act` lets nothing out and logs exactly the one message, whatever the logger throws.
bool s_logsAndGoesOn(int messageId, void (*act)()) {
    bool isFine = true;
    for (auto const& [what, doThrow] : s_thrown) {
        auto const logger = std::make_shared<ThrowingLogger>(doThrow);
        Logger::install(logger);
        EXPECT_NO_THROW(act()) << what;
        EXPECT_EQ(logger->m_ids, std::vector<int>{messageId}) << what;
        isFine = isFine && !testing::Test::HasFailure();
        Logger::install(nullptr);
    }
    return isFine;
}

void s_init() {
    DeepHeaderScanner().init();
}

void s_expectNoVerdict(Message const& message) {
    auto query = message.query();
    auto const answer = DeepHeaderScanner().postQuery(query);
    EXPECT_EQ(answer.getNode(), 0);
    EXPECT_EQ(answer.confidenceDegree(), -1.0F);
}

// An engine is in force.
class ThrowingLoggerTest : public testing::Test {
  protected:
    ThrowingLoggerTest() {
        m_rules.writeTree(treeOf({leaf(Attribute::hopBehindFirst, 0, 0.97)}));
        s_init();
    }

    ~ThrowingLoggerTest() override { expectTheEngineInForce(); }

    static void expectTheEngineInForce() {
        Message message(received("a.example", "unknown", "192.0.2.7", "c.example"));
        message.m_settings.spamThreshold = 0.9;
        auto query = message.query();
        EXPECT_TRUE(DeepHeaderScanner().postQuery(query).isSpam());
    }

    RuleFolder m_rules;
};

TEST_F(ThrowingLoggerTest, AFailedScanGivesNoVerdict) {
    s_logsAndGoesOn(50332196, [] {
        Message message;
        message.m_headers.append(Header("Received", "standby "));
        s_expectNoVerdict(message);
    });
}

TEST_F(ThrowingLoggerTest, RulesThatCannotBeLoadedChangeNothing) {
    m_rules.remove(treeFileName);
    s_logsAndGoesOn(50332198, s_init);
}

TEST_F(ThrowingLoggerTest, AnEngineThatCannotBeBuiltChangesNothing) {
    FileHook const hook([](std::string const& name) {
        if (name == treeFileName) {
            throw std::runtime_error("no memory");
        }
    });
    s_logsAndGoesOn(50332199, s_init);
}

TEST_F(ThrowingLoggerTest, AFailureBeforeTheLoadChangesNothing) {
    FileHook const hook([](std::string const&) { throw Exception("no path", 3, nullptr, 0); });
    s_logsAndGoesOn(50332201, s_init);
}

// In a process of its own, where no engine was installed.
TEST(ThrowingLoggerDeathTest, WithoutAnEngineThereIsNoVerdict) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    auto const scan = [] {
        std::exit(s_logsAndGoesOn(50332195, [] { s_expectNoVerdict(Message()); }) ? 0 : 1);
    };
    EXPECT_EXIT(scan(), testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace Quorvane::Testing
