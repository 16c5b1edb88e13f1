// SPDX-License-Identifier: Apache-2.0
//
// The options of qvscan: those that are settings too, out of the table of settings, and those of a
// single run. The parser, the help and the completion draw on it.
#pragma once

#include <string_view>
#include <vector>

namespace Quorvane {

struct OptionRow {
    std::string_view m_name;      // without "--"
    std::string_view m_valueName; // empty: a flag
    std::string_view m_help;
    bool m_isRepeatable = false;
    std::string_view m_group;
    char m_letter = '\0'; // as in "-h"; NUL: none
};

// Titles of the groups, in the order of the help.
inline constexpr std::string_view outputGroup = "Output";
inline constexpr std::string_view messageGroup = "Message";
inline constexpr std::string_view settingGroup = "Settings";
inline constexpr std::string_view otherGroup = "Other";

// In the order of the help.
std::vector<OptionRow> optionRows();

} // namespace Quorvane
