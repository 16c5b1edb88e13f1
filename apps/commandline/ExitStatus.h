// SPDX-License-Identifier: Apache-2.0
//
// Exit statuses of the programs: 0 and 1 are results, the others the numbers of sysexits.h, which
// mail software understands. Scripts rely on them: never renumber.
#pragma once

namespace Quorvane::ExitStatus {

inline constexpr int ok = 0;
inline constexpr int findings = 1;      // qvscan: at least one message judged spam
inline constexpr int usage = 64;        // the command line is wrong
inline constexpr int badData = 65;      // an input that is no message, or makes no sense
inline constexpr int noInput = 66;      // an input that cannot be opened or read
inline constexpr int internal = 70;     // an error of the program or of the machine
inline constexpr int cannotWrite = 73;  // an output that cannot be written
inline constexpr int config = 78;       // bad settings, or rules that cannot be loaded
inline constexpr int interrupted = 128; // plus the number of the signal, as shells report it

} // namespace Quorvane::ExitStatus
