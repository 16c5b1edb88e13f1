// SPDX-License-Identifier: Apache-2.0
//
// DeepHeaderException: every failure of the engine, category 4, thrown from the unit "Adapter".
#pragma once

#include "include2/Exception.h"

namespace Quorvane {

class DeepHeaderException : public Exception {
  public:
    // Both as Exception takes them.
    DeepHeaderException(char const* fileName, unsigned int lineNumber)
        : Exception("DeepHeaderException", 4, fileName, lineNumber) {}
    ~DeepHeaderException() override = default;
};

} // namespace Quorvane
