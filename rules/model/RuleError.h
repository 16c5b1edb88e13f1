// SPDX-License-Identifier: Apache-2.0
//
// RuleError: why a rule tool could not do its work. Everything under rules/ throws it.
//
// what() is one or more lines to be shown: the file, the problem and what to do.
#pragma once

#include <stdexcept>
#include <string>

namespace Quorvane::Rules {

class RuleError : public std::runtime_error {
  public:
    enum class Kind {
        badData,     // an input that can be read but makes no sense
        noInput,     // an input that cannot be opened
        cannotWrite, // an output that cannot be written
        badRules,    // a rule set that hosts could not load
    };

    RuleError(Kind kind, std::string const& text) : std::runtime_error(text), m_kind(kind) {}

    Kind kind() const { return m_kind; }

  private:
    Kind m_kind;
};

} // namespace Quorvane::Rules
