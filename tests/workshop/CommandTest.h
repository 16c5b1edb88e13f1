// SPDX-License-Identifier: Apache-2.0
//
// CommandTest: runs one command of the built qvrules, with a folder for its files.
#pragma once

#include "support/Program.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Quorvane::Testing {

using Arguments = std::vector<std::string>;

class CommandTest : public testing::Test {
  protected:
    explicit CommandTest(char const* command) : m_first{command} {}

    // The first words of each call, as they are by then, and `arguments`.
    ProgramResult run(Arguments const& arguments, std::string const& input = {}) const {
        return runProgram(QV_RULES_PROGRAM, with(m_first, arguments), input);
    }

    static Arguments with(Arguments arguments, Arguments const& more) {
        arguments.insert(arguments.end(), more.begin(), more.end());
        return arguments;
    }

    TemporaryFolder m_folder;
    Arguments m_first;
};

} // namespace Quorvane::Testing
