// SPDX-License-Identifier: Apache-2.0
#include "apps/commandline/Help.h"

#include <algorithm>
#include <sstream>

namespace Quorvane {

namespace {

constexpr std::size_t helpColumn = 29;
constexpr std::size_t columns = 80;

// `start`, then the words of `help` from the help's column on.
std::string s_row(std::string const& start, std::string_view help) {
    auto text = "  " + start;
    auto width = text.size();
    if (width >= helpColumn) {
        text += '\n';
        width = 0;
    }
    text.append(helpColumn - width, ' ');
    width = helpColumn;
    std::istringstream words{std::string(help)};
    for (std::string word; words >> word; width += word.size() + 1) {
        if (width + word.size() > columns) {
            text.back() = '\n'; // the blank after the last word
            text.append(helpColumn, ' ');
            width = helpColumn;
        }
        text += word + ' ';
    }
    text.back() = '\n';
    return text;
}

std::string s_optionRow(OptionRow const& row) {
    auto start = row.m_letter == '\0' ? std::string() : std::string{'-', row.m_letter, ',', ' '};
    start += row.dashed();
    if (!row.isFlag()) {
        start += (row.isValueAttached() ? "" : " ") + std::string(row.m_valueName);
    }
    return s_row(start + (row.is(Takes::several) ? " ..." : ""), row.m_help);
}

// In the order of the rows; those of one group are adjacent.
std::string s_options(std::vector<OptionRow> const& rows) {
    std::string text;
    std::string_view group = "none yet";
    for (auto const& row : rows) {
        if (row.m_group != group) {
            group = row.m_group;
            text += '\n' + std::string(group.empty() ? "Options" : group) + ":\n";
        }
        text += s_optionRow(row);
    }
    return text;
}

bool s_hasCommands(ProgramTable const& program, CommandRow const& command) {
    return &command == &program.m_own && !program.m_commands.empty();
}

std::string s_usage(ProgramTable const& program, CommandRow const& command) {
    auto text = "Usage: " + std::string(program.m_name);
    text += command.m_name.empty() ? "" : ' ' + std::string(command.m_name);
    text += s_hasCommands(program, command) ? " COMMAND [options]" : " [options]";
    for (auto const& row : command.m_options) {
        if (row.is(Takes::required)) {
            text += ' ' + row.dashed() + ' ' + std::string(row.m_valueName);
        }
    }
    for (auto const& row : command.m_arguments) {
        auto const name = std::string(row.m_name) + (row.is(Takes::repeatable) ? " ..." : "");
        text += row.is(Takes::required) ? ' ' + name : " [" + name + ']';
    }
    return text + '\n';
}

} // namespace

std::string helpText(ProgramTable const& program, CommandRow const& command) {
    auto text = s_usage(program, command) + std::string(command.m_summary) + '\n';
    if (!command.m_arguments.empty()) {
        text += "\nArguments:\n";
    }
    for (auto const& row : command.m_arguments) {
        text += s_row(std::string(row.m_name), row.m_help);
    }
    if (s_hasCommands(program, command)) {
        text += "\nCommands:\n";
        for (auto const& row : program.m_commands) {
            text += s_row(std::string(row.m_name), row.m_summary);
        }
    }
    text += s_options(command.m_options);
    return command.m_footer.empty() ? text : text + '\n' + std::string(command.m_footer) + '\n';
}

} // namespace Quorvane
