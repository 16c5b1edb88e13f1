// SPDX-License-Identifier: Apache-2.0
#include "rules/model/RuleFolder.h"

#include "rules/model/Binary.h"
#include "rules/model/Files.h"

namespace Quorvane::Rules {

RuleSet readFolder(std::filesystem::path const& folder) {
    RuleSet set;
    readTree(readFile(folder / treeFileName), set);
    if (auto const elite = readFileIfThere(folder / eliteFileName)) {
        set.m_elite = readElite(*elite);
    }
    set.m_readme = readFileIfThere(folder / versionFileName);
    return set;
}

void writeFolder(std::filesystem::path const& folder, RuleSet const& set) {
    makeFolder(folder);
    if (set.m_elite) {
        replaceFile(folder / eliteFileName, writeElite(*set.m_elite));
    } else {
        removeFile(folder / eliteFileName);
    }
    replaceFile(folder / treeFileName, writeTree(set));
    if (set.m_readme) {
        replaceFile(folder / versionFileName, *set.m_readme);
    } else {
        removeFile(folder / versionFileName);
    }
}

} // namespace Quorvane::Rules
