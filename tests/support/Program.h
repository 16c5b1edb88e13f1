// SPDX-License-Identifier: Apache-2.0
//
// Runs a program as a shell would and collects what it wrote.
#pragma once

#include <string>
#include <vector>

namespace Quorvane::Testing {

struct ProgramResult {
    int m_status = -1; // exit status; 128 and the signal's number when one ended it
    std::string m_output;
    std::string m_errors;
};

// `program` is a path. Standard input is `input`. The environment is ours without NO_COLOR.
ProgramResult runProgram(std::string const& program, std::vector<std::string> const& arguments,
                         std::string const& input = {});

} // namespace Quorvane::Testing
