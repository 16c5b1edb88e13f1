// SPDX-License-Identifier: Apache-2.0
//
// The messages of files, folders and mailboxes for Python, one after another.
#pragma once

#include "apps/input/Inputs.h"

#include <pybind11/pybind11.h>
#include <string>
#include <vector>

namespace Quorvane::Python {

// A header section and where it is from, or why there is none.
struct Message {
    std::string m_source;
    std::string m_headers;
    std::string m_error;
    int m_exitStatus = 0; // not 0 when there is an error

    bool operator==(Message const&) const = default;
};

// Ends a wait for input when the interpreter has a signal to handle.
class SignalWait : public InputWait {
  public:
    void waitForInput(int descriptor) const override;
};

// One thread at a time: another one that asks meanwhile gets a ValueError, as from a generator.
class MessageList {
  public:
    MessageList(std::vector<std::string> const& paths, HeaderLimits const& limits)
        : m_inputs(paths, m_wait, limits) {}

    // Throws pybind11::stop_iteration at the end.
    Message next();

  private:
    SignalWait m_wait;
    Inputs m_inputs;
    bool m_isReading = false; // under the interpreter's lock
};

void bindMessages(pybind11::module_& module);

} // namespace Quorvane::Python
