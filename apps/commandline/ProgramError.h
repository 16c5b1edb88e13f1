// SPDX-License-Identifier: Apache-2.0
//
// ProgramError: why a program cannot go on, and the exit status that says which kind of reason it
// is. Thrown by value. The text is complete: what, where and what to do.
#pragma once

#include "apps/commandline/ExitStatus.h"

#include <stdexcept>
#include <string>

namespace Quorvane {

class ProgramError : public std::runtime_error {
  public:
    ProgramError(int status, std::string const& text)
        : std::runtime_error(text), m_status(status) {}

    int status() const { return m_status; }

  private:
    int m_status;
};

// The command line is wrong.
class UsageError : public ProgramError {
  public:
    explicit UsageError(std::string const& text) : ProgramError(ExitStatus::usage, text) {}
};

} // namespace Quorvane
