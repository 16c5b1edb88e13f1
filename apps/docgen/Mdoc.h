// SPDX-License-Identifier: Apache-2.0
//
// Options, arguments and settings in mdoc macros. Pure functions.
#pragma once

#include "apps/commandline/OptionTable.h"
#include "apps/settings/SettingRow.h"

#include <span>
#include <string>
#include <string_view>

namespace Quorvane::Docs {

// Text with the macros and escapes of roff disabled.
std::string mdocText(std::string_view text);
// A line with a phrase of a table as a sentence: tables hold phrases, manual pages sentences.
std::string mdocSentence(std::string_view phrase);
// ".It Fl o , Fl \-output Ar DIR" and its paragraph.
std::string mdocOption(OptionRow const& option);
std::string mdocArgument(OptionRow const& argument);
// ".Nm qvrules Cm compile …".
std::string mdocSynopsis(ProgramTable const& program, CommandRow const& command);
// A list of keys of the settings file.
std::string mdocSettings(std::span<SettingFacts const> settings);

} // namespace Quorvane::Docs
