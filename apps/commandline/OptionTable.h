// SPDX-License-Identifier: Apache-2.0
//
// The command line of a program as a table. The parser, the help, the manual page and the shell
// completions all use it, so that they always agree. Plain values; texts are literals.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Quorvane {

// What an option or argument takes: a sum of these.
namespace Takes {
inline constexpr unsigned required = 1;
// Each time it is given counts; otherwise the last does.
inline constexpr unsigned repeatable = 2;
// All words up to the next option, as a shell's wildcards give them. Repeatable, too.
inline constexpr unsigned several = 4 | repeatable;
// Any text, even an empty one: the reader checks it.
inline constexpr unsigned anyText = 8;
} // namespace Takes

struct OptionRow {
    std::string_view m_name; // without "--"; of an argument, its name in the help
    // As ValueNames.h has it; empty for a flag; in brackets when it may be left out, "[=all]" when
    // it can only follow after "=", so that the next word is not taken for it.
    std::string_view m_valueName;
    std::string_view m_help;
    unsigned m_traits = 0;
    char m_letter = '\0'; // as in "-h"; NUL: none
    // Heading in the help and section of the manual page; empty: the command's own.
    std::string_view m_group = {};

    bool is(unsigned trait) const { return (m_traits & trait) == trait; }
    bool isFlag() const { return m_valueName.empty(); }
    bool isValueOptional() const {
        return m_valueName.starts_with('[') && m_valueName.ends_with(']');
    }
    bool isValueAttached() const { return m_valueName.starts_with("[="); }
    std::string dashed() const { return "--" + std::string(m_name); }
    OptionRow in(std::string_view group) const {
        auto row = *this;
        row.m_group = group;
        return row;
    }
};

struct CommandRow {
    std::string_view m_name; // empty: the program itself
    std::string_view m_summary;
    std::vector<OptionRow> m_arguments = {};
    std::vector<OptionRow> m_options = {};
    // The end of the help: notes and examples.
    std::string_view m_footer = {};
};

struct ProgramTable {
    std::string_view m_name;
    CommandRow m_own;
    std::vector<CommandRow> m_commands = {}; // empty: the program does one thing
};

// Rows of every program; help is also an option of every command.
inline constexpr OptionRow helpRow{"help", "", "show this help", 0, 'h'};
inline constexpr OptionRow versionRow{"version", "", "show the version", 0, 'V'};

} // namespace Quorvane
