// SPDX-License-Identifier: Apache-2.0
//
// LogCapture: the logger in force as long as the object lives; keeps what was logged.
#pragma once

#include "platform/Logger.h"

#include <cstdarg>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Quorvane::Testing {

struct LogRecord {
    int m_id = 0;
    int m_reserved = 0;
    std::string m_format;
    std::string m_text;
};

class LogCapture {
  public:
    LogCapture() { Logger::install(m_sink); }
    LogCapture(LogCapture const&) = delete;
    LogCapture& operator=(LogCapture const&) = delete;
    ~LogCapture() { Logger::install(nullptr); }

    std::vector<LogRecord> take() { return m_sink->take(); }

  private:
    class Sink : public Logger {
      public:
        void log(int messageId, int reserved, char const* format, ...) override
            __attribute__((format(printf, 4, 5))) {
            std::va_list arguments;
            va_start(arguments, format);
            std::string const text = va_arg(arguments, char const*);
            va_end(arguments);
            std::lock_guard<std::mutex> const lock(m_mutex);
            m_records.push_back({messageId, reserved, format, text});
        }

        std::vector<LogRecord> take() {
            std::lock_guard<std::mutex> const lock(m_mutex);
            return std::move(m_records);
        }

      private:
        std::mutex m_mutex;
        std::vector<LogRecord> m_records;
    };

    std::shared_ptr<Sink> m_sink = std::make_shared<Sink>();
};

} // namespace Quorvane::Testing
