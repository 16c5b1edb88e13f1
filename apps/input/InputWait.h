// SPDX-License-Identifier: Apache-2.0
//
// InputWait: how whoever reads inputs waits for them, and what ends the wait early: a signal in a
// program (Interrupt.h), an exception of the interpreter in its module.
#pragma once

namespace Quorvane {

class InputWait {
  public:
    virtual ~InputWait() = default;

    // Waits until `descriptor` can be read, or throws what ended the wait.
    virtual void waitForInput(int descriptor) const = 0;
};

} // namespace Quorvane
