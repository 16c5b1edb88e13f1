// SPDX-License-Identifier: Apache-2.0
//
// Completion: scripts for bash and zsh that complete a program's command line. They need nothing
// but the shell. Pure functions.
#pragma once

#include "apps/commandline/OptionTable.h"
#include "rules/format/AttributeTable.h"

#include <string>

namespace Quorvane::Docs {

// All names of attributes, each with `suffix`, and blanks between them.
inline std::string attributeWords(std::string_view suffix) {
    std::string words;
    for (auto const& attribute : attributeTable) {
        words.append(words.empty() ? "" : " ").append(attribute.m_name).append(suffix);
    }
    return words;
}

// A function _NAME, tied to the program with complete -F.
std::string bashCompletion(ProgramTable const& program);
// A file _NAME for a folder of fpath.
std::string zshCompletion(ProgramTable const& program);

} // namespace Quorvane::Docs
