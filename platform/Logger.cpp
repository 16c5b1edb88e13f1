// SPDX-License-Identifier: Apache-2.0
//
// The slot that holds the logger in force, and the default logger. The only source that knows
// spdlog, whose headers are slow to compile.
#include "platform/Logger.h"

#include "platform/ForkBarrier.h"
#include "platform/LineLogger.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <spdlog/logger.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <string_view>
#include <utility>

namespace Quorvane {

namespace {

class StderrLogger : public LineLogger {
  public:
    StderrLogger() : m_sink("quorvane", std::make_shared<spdlog::sinks::stderr_sink_mt>()) {
        m_sink.set_pattern("%Y-%m-%dT%H:%M:%S.%e%z %n[%P] %l: %v");
    }

  private:
    void write(LogLevel level, std::string const& line) override {
        ForkBarrier const barrier;
        m_sink.log(level == LogLevel::error ? spdlog::level::err : spdlog::level::warn, line);
    }

    spdlog::logger m_sink;
};

class Slot {
  public:
    std::shared_ptr<Logger> get() {
        ForkBarrier const barrier;
        std::lock_guard const lock(m_mutex);
        return m_logger;
    }

    void set(std::shared_ptr<Logger> logger) {
        if (logger == nullptr) {
            logger = m_default;
        }
        // The old logger's destructor may log: not under the lock.
        ForkBarrier const barrier;
        std::lock_guard const lock(m_mutex);
        m_logger.swap(logger);
    }

  private:
    std::mutex m_mutex;
    std::shared_ptr<Logger> const m_default = std::make_shared<StderrLogger>();
    std::shared_ptr<Logger> m_logger = m_default;
};

// Never destroyed: threads may still log while the process ends.
Slot& s_slot() {
    static auto* const slot = new Slot;
    return *slot;
}

} // namespace

Logger::~Logger() = default;

LineLogger::~LineLogger() = default;

void LineLogger::log(int messageId, int /*reserved*/, char const* format, ...) {
    // One byte more than a line can show, so that logLine sees that something is missing.
    std::array<char, maxLogLine + 2> detail{};
    va_list arguments;
    va_start(arguments, format);
    int const length = std::vsnprintf(detail.data(), detail.size(), format, arguments);
    va_end(arguments);
    // A negative length: a format or a wide string that cannot be converted.
    std::string_view const text = length < 0 ? format : detail.data();
    write(logLevel(messageId), logLine(messageId, text));
}

std::shared_ptr<Logger> Logger::instance(bool /*reload*/) {
    return s_slot().get();
}

void Logger::install(std::shared_ptr<Logger> logger) {
    s_slot().set(std::move(logger));
}

} // namespace Quorvane
