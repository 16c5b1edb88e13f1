// SPDX-License-Identifier: Apache-2.0
//
// The messages of files, folders and mailboxes for Python, one after another.
#pragma once

#include "apps/input/Inputs.h"

#include <functional>
#include <pybind11/pybind11.h>
#include <stop_token>
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

// Ends a wait for input when the interpreter has a signal to handle or, for threads that know
// nothing of the interpreter, when a stop is requested.
class MessageWait : public InputWait {
  public:
    void waitForInput(int descriptor) const override;

    std::stop_token m_stop;             // with a state: the threads are such
    std::function<void()> m_beforeWait; // called unless it is empty, when there is no input yet
};

// One reader at a time: another one that asks meanwhile gets a ValueError, as from a generator.
class MessageList {
  public:
    MessageList(std::vector<std::string> const& paths, HeaderLimits const& limits)
        : m_inputs(paths, m_wait, limits) {}

    // Throws pybind11::stop_iteration at the end.
    Message next();

    // The right to read them. Made and destroyed under the interpreter's lock, used without.
    class Turn {
      public:
        // Throws pybind11::value_error when somebody else reads. The rest as in MessageWait.
        explicit Turn(MessageList& messages, std::stop_token stop = {},
                      std::function<void()> beforeWait = {});
        Turn(Turn const&) = delete;
        Turn& operator=(Turn const&) = delete;
        ~Turn() { m_messages.m_isReading = false; }

        // False at the end; throws what ended a wait for input.
        bool next(InputItem& item) { return m_messages.m_inputs.next(item); }

      private:
        MessageList& m_messages;
    };

  private:
    MessageWait m_wait;
    Inputs m_inputs;
    bool m_isReading = false; // under the interpreter's lock
};

void bindMessages(pybind11::module_& module);

} // namespace Quorvane::Python
