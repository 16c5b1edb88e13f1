// SPDX-License-Identifier: Apache-2.0
#include "apps/milter/ServiceLogger.h"

#include "platform/LineLogger.h"

#include <spdlog/logger.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/sinks/syslog_sink.h>
#include <spdlog/sinks/systemd_sink.h>
#include <syslog.h>

namespace Quorvane::Milter {

namespace {

spdlog::level::level_enum s_level(LogLevel level) {
    switch (level) {
    case LogLevel::information:
        return spdlog::level::info;
    case LogLevel::warning:
        return spdlog::level::warn;
    case LogLevel::error:
        break;
    }
    return spdlog::level::err;
}

spdlog::sink_ptr s_sink(LogTarget target) {
    switch (target) {
    case LogTarget::journal:
        return std::make_shared<spdlog::sinks::systemd_sink_mt>("qvmilter");
    case LogTarget::syslog:
        return std::make_shared<spdlog::sinks::syslog_sink_mt>("qvmilter", LOG_PID, LOG_MAIL,
                                                               false);
    case LogTarget::standardError:
        break;
    }
    auto sink = std::make_shared<spdlog::sinks::stderr_sink_mt>();
    sink->set_pattern("%Y-%m-%dT%H:%M:%S.%e%z qvmilter[%P] %l: %v");
    return sink;
}

class ServiceLogger : public LineLogger {
  public:
    explicit ServiceLogger(LogTarget target) : m_logger("qvmilter", s_sink(target)) {}

  private:
    void write(LogLevel level, std::string const& line) override {
        m_logger.log(s_level(level), line);
    }

    spdlog::logger m_logger;
};

} // namespace

std::shared_ptr<Logger> serviceLogger(LogTarget target) {
    return std::make_shared<ServiceLogger>(target);
}

} // namespace Quorvane::Milter
