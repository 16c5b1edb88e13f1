// SPDX-License-Identifier: Apache-2.0
//
// Errors of the rooms below as exceptions of Python (qvdeepheader/_errors.py).
#pragma once

#include "rules/model/FilePlace.h"

#include <string>

namespace Quorvane::Python {

// For one message, in a call that judges one.
struct NoMessage {
    std::string m_text;
};
struct FailedScan {
    std::string m_text;
};

// What the rooms below throw reaches Python as exceptions of the package from now on.
void registerErrors();

} // namespace Quorvane::Python
