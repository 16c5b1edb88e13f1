// SPDX-License-Identifier: Apache-2.0
//
// Writes the result of a command.
#pragma once

#include "apps/commandline/CommandLine.h"
#include "apps/text/MadeBy.h"

#include <string>
#include <string_view>

namespace Quorvane::RulesApp {

// Marks of files that commands write. A file without its mark is somebody's own work.
inline constexpr std::string_view noMark;
inline constexpr std::string_view learnedMark = "# Learned from ";
inline constexpr std::string_view tableMark = ",label,count,corpus";
inline constexpr std::string_view drawnMark = madeBy;

// Where a result goes: a path, or "-" for standard output.
struct Output {
    std::string m_path;
    // A file that holds this in its first 64 KiB may be replaced; with noMark none may.
    std::string_view m_mark;
    bool m_isForced = false; // any may
};

// The path of `option`; "-" without it.
Output outputOf(CommandLine const& line, std::string_view option, std::string_view mark);

// Replaces a file in one step. What is not an ordinary file, such as a link or a device, is written
// into. A RuleError or ProgramError when that fails, and when the file may not be replaced.
void writeOutput(Output const& output, std::string const& text);

// Throws the RuleError of writeOutput, as far as it can be foreseen, before hours of work.
void requireWritable(Output const& output);

// Throws a RuleError when `folder` holds a README or a rule file that is something else, unless it
// is forced.
void requireRuleFolder(std::string const& folder, bool isForced);

} // namespace Quorvane::RulesApp
