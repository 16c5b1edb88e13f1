// SPDX-License-Identifier: Apache-2.0
//
// LineLogger: a Logger that writes whole lines, as LogMessages.h makes them. Derive from it to send
// them to where a host's operators look.
#pragma once

#include "include2/Export.h"
#include "platform/Logger.h"
#include "platform/LogMessages.h"

#include <string>

namespace Quorvane {

class QV_API LineLogger : public Logger {
  public:
    ~LineLogger() override;

    void log(int messageId, int reserved, char const* format, ...) final
        __attribute__((format(printf, 4, 5)));

  private:
    // Called from many threads at once. `line` has no line break.
    virtual void write(LogLevel level, std::string const& line) = 0;
};

} // namespace Quorvane
