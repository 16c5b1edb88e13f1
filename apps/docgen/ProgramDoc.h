// SPDX-License-Identifier: Apache-2.0
//
// ProgramDoc: a program's command line as its manual page and the completions of the shells see
// it, made of the tables that the program itself parses with. Plain values.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Quorvane::Docs {

struct OptionDoc {
    std::string m_section; // where in the manual page it stands
    std::string m_name;    // without "--"
    std::string m_letter;  // without "-"; empty: none
    std::string m_valueName;
    std::string m_help;
    bool m_isRequired = false;
    bool m_isRepeatable = false;
};

struct ArgumentDoc {
    std::string m_name;
    std::string m_valueName; // what kind of value it is
    std::string m_help;
    bool m_isRequired = false;
    bool m_isRepeatable = false;
};

struct CommandDoc {
    std::string m_name; // empty: the program itself
    std::string m_summary;
    std::vector<OptionDoc> m_options;
    std::vector<ArgumentDoc> m_arguments;
};

struct ProgramDoc {
    std::string m_name;
    CommandDoc m_own;
    std::vector<CommandDoc> m_commands;
};

// Throws std::out_of_range when there is no such program.
ProgramDoc programDoc(std::string_view name);

// What a shell can offer for a value.
enum class ValueKind { flag, words, file, folder, other };
ValueKind kindOf(std::string_view valueName);

} // namespace Quorvane::Docs
