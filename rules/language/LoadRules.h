// SPDX-License-Identifier: Apache-2.0
//
// Rules from a text file or a rule folder. Most commands of qvrules begin with this.
#pragma once

#include "rules/language/Compiler.h"

#include <filesystem>

namespace Quorvane::Rules {

struct LoadedRules {
    RuleSet m_set;
    // Whether they came from a text; the places mean nothing otherwise.
    bool m_isText = false;
    RulePlaces m_places;
    NamesRead m_names;
};

// A folder, which may be a root folder, is read; a file is compiled. Throws a RuleError: noInput
// for what cannot be opened, badData with all the errors for a text that does not compile.
LoadedRules loadRules(std::filesystem::path const& path);

} // namespace Quorvane::Rules
