// SPDX-License-Identifier: Apache-2.0
//
// CommandLine: what was given on a command line, by the names of the program's table. Read once at
// start, then only looked at.
//
//   --name VALUE, --name=VALUE, -n VALUE, -nVALUE; after "--" every word is an argument.
//
// "--name=" gives an empty value: when a script passes an empty text, the next word is not taken
// for the value.
#pragma once

#include "apps/commandline/OptionTable.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace Quorvane {

class CommandLine {
  public:
    using Texts = std::vector<std::string>;

    // `command` is a row of the program's table.
    explicit CommandLine(CommandRow const& command) : m_command(&command) {}

    CommandRow const& command() const { return *m_command; }
    bool has(std::string_view name) const { return m_given.find(name) != m_given.end(); }
    // Of several the last; `otherwise` when it was not given.
    std::string text(std::string_view name, std::string const& otherwise = {}) const;
    Texts texts(std::string_view name) const;

    // Adds one more value; if the row is not repeatable, it replaces the one before. Throws a
    // UsageError for a value that the row does not take.
    void add(OptionRow const& row, std::string const& text);

  private:
    CommandRow const* m_command;
    std::map<std::string, Texts, std::less<>> m_given; // a flag has an empty text
};

// `words` without the program's name. Throws a UsageError. With --help or --version, required words
// may be missing.
CommandLine parseCommandLine(ProgramTable const& program, std::vector<std::string> const& words);

} // namespace Quorvane
