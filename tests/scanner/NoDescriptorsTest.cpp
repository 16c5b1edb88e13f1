// SPDX-License-Identifier: Apache-2.0
//
// A process that has no file descriptors left: what was in force goes on.
#include "DeepHeaderScanner.h"
#include "include2/Exception.h"
#include "LogCapture.h"
#include "platform/Host.h"
#include "platform/Resolver.h"
#include "support/RuleFolder.h"
#include "support/SteadyScans.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

namespace Quorvane::Testing {
namespace {

// As long as it lives, no file can be opened.
class NoDescriptors {
  public:
    NoDescriptors() {
        ::getrlimit(RLIMIT_NOFILE, &m_before);
        auto low = m_before;
        low.rlim_cur = 64;
        ::setrlimit(RLIMIT_NOFILE, &low);
        for (int file = ::dup(STDERR_FILENO); file >= 0; file = ::dup(STDERR_FILENO)) {
            m_taken.push_back(file);
        }
    }
    NoDescriptors(NoDescriptors const&) = delete;
    NoDescriptors& operator=(NoDescriptors const&) = delete;
    ~NoDescriptors() {
        for (int const file : m_taken) {
            ::close(file);
        }
        ::setrlimit(RLIMIT_NOFILE, &m_before);
    }

  private:
    rlimit m_before{};
    std::vector<int> m_taken;
};

ResolverSettings s_settings(char const* name) {
    ResolverSettings settings;
    settings.m_mode = ResolverSettings::Mode::local;
    settings.m_zoneData = {std::string(name) + ". A 192.0.2.7"};
    return settings;
}

TEST(NoDescriptorsTest, RulesAndResolverStayInForceAndCanBeReplacedLater) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer needs descriptors to look at memory";
#endif
    RuleFolder const rules;
    auto const write = [&rules](int number) {
        rules.writeTree(treeOf({leaf(0, 0, markOf(number)), leaf(0, 1, markOf(number))}));
        rules.writeReadme("CF_DT_VERSION=" + std::to_string(number) + "\n");
    };
    DeepHeaderScanner scanner;
    write(1);
    scanner.init();
    Resolver::instance().configure(s_settings("first.example"));
    write(2);
    LogCapture log;
    {
        NoDescriptors const none;
        scanner.init();
        EXPECT_THROW(Resolver::instance().configure(s_settings("second.example")), Exception);
        EXPECT_EQ(numberIn(scanOnce()), 1);
        EXPECT_FALSE(Host("first.example", true).isNull());
    }
    ASSERT_EQ(log.take().size(), 1U);
    scanner.init();
    EXPECT_EQ(numberIn(scanOnce()), 2);
    Resolver::instance().configure(s_settings("second.example"));
    EXPECT_FALSE(Host("second.example", true).isNull());
}

} // namespace
} // namespace Quorvane::Testing
