// SPDX-License-Identifier: Apache-2.0
//
// InputWait: how whoever reads inputs waits for them, and what ends the wait early: a signal in a
// program (Interrupt.h), an exception of the interpreter in its module.
#pragma once

#include <poll.h>

namespace Quorvane {

// Whether a read would give something at once: bytes, the end, or an error.
inline bool isInputReady(int descriptor) {
    pollfd polled{descriptor, POLLIN, 0};
    return ::poll(&polled, 1, 0) != 0;
}

class InputWait {
  public:
    virtual ~InputWait() = default;

    // Waits until `descriptor` can be read, or throws what ended the wait.
    virtual void waitForInput(int descriptor) const = 0;
};

} // namespace Quorvane
