// SPDX-License-Identifier: Apache-2.0
//
// A transcript: files, commands and what they print, as one text that people can read.
//
//   # what this is about
//   <<< my.qvr
//   lines of the file
//   >>>
//   $ qvrules check my.qvr
//   | what it writes to standard output
//   2| what it writes to standard error
//   [status 1]
//
// Lines that begin otherwise, or are empty, are layout. Commands are run by the shell in a folder
// of their own, in order; status 0 is not written down.
#pragma once

#include <string>

namespace Quorvane::Testing {

// The transcript with what the commands print now. `programs` is the folder of the programs.
std::string replay(std::string const& transcript, std::string const& programs);

} // namespace Quorvane::Testing
