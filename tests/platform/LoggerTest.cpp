// SPDX-License-Identifier: Apache-2.0
#include "platform/Logger.h"
#include "platform/LogMessages.h"

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <gmock/gmock.h>
#include <string>
#include <thread>
#include <vector>

using testing::EndsWith;
using testing::HasSubstr;
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

namespace Quorvane::Testing {

namespace {

class CountingLogger : public Logger {
  public:
    void log(int /*messageId*/, int /*reserved*/, char const* /*format*/, ...) override
        __attribute__((format(printf, 4, 5))) {
        ++m_calls;
    }

    std::atomic<int> m_calls{0};
};

// Brings the default logger back when a test ends.
class LoggerTest : public testing::Test {
  protected:
    ~LoggerTest() override { Logger::install(nullptr); }
};

std::string s_printed(int id, std::string const& detail) {
    CaptureStderr();
    Logger::instance(false)->log(id, 0, "%s", detail.c_str());
    return GetCapturedStderr();
}

long s_lines(std::string const& text) {
    return std::count(text.begin(), text.end(), '\n');
}

TEST_F(LoggerTest, EveryKnownMessageHasItsLevelAndWords) {
    struct Row {
        int m_id;
        char const* m_words;
    };
    for (auto const& row :
         {Row{50332195, "no engine is installed"}, Row{50332196, "scan failed"},
          Row{50332198, "rules cannot be loaded"}, Row{50332199, "engine cannot be built"},
          Row{50332201, "engine cannot be installed"}}) {
        auto const printed = s_printed(row.m_id, "because of x");
        EXPECT_THAT(printed, HasSubstr(" error: "));
        EXPECT_THAT(printed, HasSubstr(row.m_words));
        EXPECT_THAT(printed, EndsWith(": because of x\n"));
    }
}

TEST_F(LoggerTest, AnUnknownMessageIsAWarningWithItsNumber) {
    EXPECT_THAT(s_printed(4711, "detail"), EndsWith(" warning: message 4711: detail\n"));
    EXPECT_EQ(nullptr, findLogMessage(50332197));
    EXPECT_EQ(LogLevel::warning, logLevel(50332197));
}

TEST_F(LoggerTest, ABlankDetailIsLeftOut) {
    EXPECT_EQ("message 7", logLine(7, " "));
    EXPECT_EQ("message 7", logLine(7, ""));
    EXPECT_EQ("message 7:  x", logLine(7, " x"));
}

TEST_F(LoggerTest, ArgumentsAreFormattedAndPercentSignsInThemStay) {
    CaptureStderr();
    Logger::instance(false)->log(7, 0, "%d of %s", 3, "100%s%n {} {0}");
    EXPECT_THAT(GetCapturedStderr(), EndsWith(": 3 of 100%s%n {} {0}\n"));
}

TEST_F(LoggerTest, HostileTextStaysOnOneLine) {
    auto const printed = s_printed(50332196, "a\r\nerror: forged\x1b[2J\x7f\x9b\xc2\x85 z");
    EXPECT_EQ(1, s_lines(printed));
    EXPECT_THAT(printed, EndsWith("a\\x0d\\x0aerror: forged\\x1b[2J\\x7f\\x9b\\xc2\\x85 z\n"));
}

TEST_F(LoggerTest, ANulByteIsShown) {
    EXPECT_EQ("message 7: a\\x00b", logLine(7, std::string_view("a\0b", 3)));
}

TEST_F(LoggerTest, ALongTextIsCutAndMarked) {
    auto const line = logLine(7, std::string(10 * maxLogLine, 'x'));
    EXPECT_EQ(maxLogLine, line.size());
    EXPECT_THAT(line, EndsWith("xxx..."));
    EXPECT_THAT(s_printed(7, std::string(1'000'000, 'x')), EndsWith(line + '\n'));
}

TEST_F(LoggerTest, ATextThatJustFitsIsNotCut) {
    auto const room = maxLogLine - std::string("message 7: ").size();
    EXPECT_EQ("message 7: " + std::string(room, 'x'), logLine(7, std::string(room, 'x')));
    EXPECT_THAT(logLine(7, std::string(room + 1, 'x')), EndsWith("xx..."));
}

TEST_F(LoggerTest, ACutNeverSplitsAnEscape) {
    for (std::size_t shift = 0; shift < 4; ++shift) {
        auto const line = logLine(7, std::string(shift, 'x') + std::string(maxLogLine, '\n'));
        EXPECT_LE(line.size(), maxLogLine);
        EXPECT_THAT(line, EndsWith("\\x0a..."));
    }
}

TEST_F(LoggerTest, AnInstalledLoggerGetsTheMessagesUntilTheDefaultIsBack) {
    auto const mine = std::make_shared<CountingLogger>();
    Logger::install(mine);
    EXPECT_EQ("", s_printed(50332195, " "));
    EXPECT_EQ(1, mine->m_calls);
    EXPECT_EQ(mine, Logger::instance(true));
    Logger::install(nullptr);
    EXPECT_THAT(s_printed(50332195, " "), HasSubstr("no engine is installed"));
    EXPECT_EQ(1, mine->m_calls);
    EXPECT_EQ(1, mine.use_count());
}

TEST_F(LoggerTest, ThreadsLogWhileTheLoggerIsReplaced) {
    auto const mine = std::make_shared<CountingLogger>();
    Logger::install(mine);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([] {
            for (int i = 0; i < 1000; ++i) {
                Logger::instance(false)->log(7, 0, "%d", i);
            }
        });
    }
    auto const other = std::make_shared<CountingLogger>();
    for (int i = 0; i < 1000; ++i) {
        Logger::install(i % 2 == 0 ? other : mine);
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(4000, mine->m_calls + other->m_calls);
}

} // namespace

} // namespace Quorvane::Testing
