// SPDX-License-Identifier: Apache-2.0
//
// Logger: where both libraries report what a postmaster should know. A host replaces it by deriving
// from it and calling install; the default writes to standard error.
//
// Messages have numeric ids. LogMessages.h gives each its level and words; the text that comes with
// a message is its detail.
#pragma once

#include "include2/Export.h"

#include <memory>

namespace Quorvane {

class QV_API Logger {
  public:
    virtual ~Logger();

    // Called from many threads at once. `format` and what follows are printf's; `reserved` is 0.
    // May throw: the libraries drop whatever it throws, and the message with it.
    virtual void log(int messageId, int reserved, char const* format, ...)
        __attribute__((format(printf, 4, 5))) = 0;

    // The logger in force; never null. The caller's share keeps it alive while it logs. `reload` is
    // ignored.
    static std::shared_ptr<Logger> instance(bool reload);

    // Puts another logger in force; null brings the default back. Safe at any time.
    static void install(std::shared_ptr<Logger> logger);
};

} // namespace Quorvane
