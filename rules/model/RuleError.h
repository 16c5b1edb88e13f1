// SPDX-License-Identifier: Apache-2.0
//
// RuleError: why a rule tool could not do its work. Everything under rules/ throws it.
//
// what() is one or more lines to be shown: the file, the problem and what to do.
#pragma once

#include "rules/model/FilePlace.h"

#include <stdexcept>
#include <string>
#include <utility>

namespace Quorvane::Rules {

class RuleError : public std::runtime_error {
  public:
    enum class Kind {
        badData,     // an input that can be read but makes no sense
        noInput,     // an input that cannot be opened
        cannotWrite, // an output that cannot be written
        badRules,    // a rule set that hosts could not load
    };

    // `place`: of the first error, where it is known; the text names it, too.
    RuleError(Kind kind, std::string const& text, FilePlace place = {})
        : std::runtime_error(text), m_kind(kind), m_place(std::move(place)) {}
    // The text begins with the place.
    RuleError(Kind kind, FilePlace const& place, std::string const& what)
        : RuleError(kind, place.text() + what, place) {}

    Kind kind() const { return m_kind; }
    FilePlace const& place() const { return m_place; }

  private:
    Kind m_kind;
    FilePlace m_place;
};

} // namespace Quorvane::Rules
