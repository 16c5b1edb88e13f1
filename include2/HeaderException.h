// SPDX-License-Identifier: Apache-2.0
//
// HeaderException: an accessor of a Received record was called on a handle without one, or with the
// record of another header; category 1, thrown from the unit "Receive".
#pragma once

#include "include2/Exception.h"

namespace Quorvane {

class HeaderException : public Exception {
  public:
    // Both as Exception takes them.
    HeaderException(char const* fileName, unsigned int lineNumber)
        : Exception("HeaderException", 1, fileName, lineNumber) {}
    ~HeaderException() override = default;
};

} // namespace Quorvane
