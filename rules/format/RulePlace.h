// SPDX-License-Identifier: Apache-2.0
//
// Which folder holds the rules that a user means: the folder that was given, such as qvrules
// compile writes, or the one that engines read below it, as below a root folder.
#pragma once

#include "rules/format/RuleFiles.h"

#include <filesystem>

namespace Quorvane {

inline std::filesystem::path ruleFolderBelow(std::filesystem::path const& root) {
    return root / (ruleDirectory + 1);
}

inline bool holdsRules(std::filesystem::path const& folder) {
    std::error_code error;
    return std::filesystem::exists(folder / treeFileName, error);
}

// Of what is meant to be a root folder.
inline std::filesystem::path ruleFolderOfRoot(std::filesystem::path const& root) {
    return holdsRules(root) ? root : ruleFolderBelow(root);
}

// Of what is meant to be a rule folder.
inline std::filesystem::path ruleFolderOf(std::filesystem::path const& folder) {
    auto const place = ruleFolderOfRoot(folder);
    return holdsRules(place) ? place : folder;
}

} // namespace Quorvane
