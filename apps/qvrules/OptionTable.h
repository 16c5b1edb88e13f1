// SPDX-License-Identifier: Apache-2.0
//
// The commands of qvrules and what each takes. The parser with its help, the man page and the
// completions of the shells draw on it, so that they cannot drift apart. Constant; safe to read
// from everywhere.
#pragma once

#include <span>
#include <string_view>

namespace Quorvane::RulesApp {

struct ArgumentRow {
    // "-o,--output", "--force"; without "-" for an argument that is known by its place.
    char const* m_names;
    // As ValueNames.h has it; empty for a flag; in brackets when it may be left out.
    char const* m_valueName;
    char const* m_help;
    bool m_isRequired = false;
    bool m_isRepeatable = false;

    constexpr bool isOption() const { return m_names[0] == '-'; }
    constexpr bool isFlag() const { return m_valueName[0] == '\0'; }
    constexpr bool isValueOptional() const {
        std::string_view const name = m_valueName;
        return name.starts_with('[') && name.ends_with(']');
    }
};

struct CommandRow {
    char const* m_name;
    char const* m_summary;
    std::span<ArgumentRow const> m_arguments;
    // The end of the command's help: what else to know, and an example.
    char const* m_footer = "";
    // It also takes --config and the settings of apps/settings/SettingsTable.h but for the root.
    bool m_takesSettings = false;
    // It also takes the facts of apps/settings/FactsTable.h.
    bool m_takesFacts = false;
    // It takes --config, and of the settings only those that say how rules judge.
    bool m_takesThresholds = false;
};

// Options that need no command; the first is taken after every command too.
inline constexpr ArgumentRow helpOption{"-h,--help", "", "Print this help message and exit"};
inline constexpr ArgumentRow versionOption{"--version", "",
                                           "Display program version information and exit"};

// In the order of the help.
std::span<CommandRow const> commandRows();
// Both throw std::out_of_range when there is none: the program and its table disagree.
CommandRow const& commandRow(std::string_view name);
ArgumentRow const& argumentRow(CommandRow const& command, std::string_view names);

} // namespace Quorvane::RulesApp
