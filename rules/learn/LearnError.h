// SPDX-License-Identifier: Apache-2.0
//
// What the learner throws when its input or its settings cannot be used. The text is one line for
// the person at the terminal: where (file, line, column), what is wrong, what to do.
#pragma once

#include <stdexcept>

namespace Quorvane::Rules {

class LearnError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

} // namespace Quorvane::Rules
