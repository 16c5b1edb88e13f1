// SPDX-License-Identifier: Apache-2.0
//
// ProgramError: why a program cannot continue, and the exit status for this kind of error. Thrown
// by value. The text is complete: what is wrong, where, and what to do.
#pragma once

#include <stdexcept>
#include <string>

// Exit statuses of the programs: 0 and 1 are results, the others the numbers of sysexits.h, which
// mail software understands. Scripts rely on them: never renumber.
namespace Quorvane::ExitStatus {

inline constexpr int ok = 0;
inline constexpr int findings = 1;      // qvscan: at least one message judged spam
inline constexpr int usage = 64;        // the command line is wrong
inline constexpr int badData = 65;      // an input that is not a message, or makes no sense
inline constexpr int noInput = 66;      // an input that cannot be opened or read
inline constexpr int internal = 70;     // an error of the program or of the machine
inline constexpr int cannotWrite = 73;  // an output that cannot be written
inline constexpr int config = 78;       // bad settings, or rules that cannot be loaded
inline constexpr int interrupted = 128; // plus the number of the signal, as shells report it

} // namespace Quorvane::ExitStatus

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
