// SPDX-License-Identifier: Apache-2.0
//
// Thrown when the input or the settings of the learner cannot be used. The text is one line for the
// person at the terminal: where (file, line, column), what is wrong, what to do.
#pragma once

#include "rules/model/RuleError.h"

#include <string>

namespace Quorvane::Rules {

class LearnError : public RuleError {
  public:
    explicit LearnError(std::string const& text) : RuleError(Kind::badData, text) {}
};

} // namespace Quorvane::Rules
