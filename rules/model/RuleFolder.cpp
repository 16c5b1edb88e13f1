// SPDX-License-Identifier: Apache-2.0
#include "rules/model/RuleFolder.h"

#include "rules/model/Binary.h"
#include "rules/model/Files.h"
#include "rules/model/RuleError.h"

namespace Quorvane::Rules {

namespace {

// Otherwise a file in its place would be reported as a missing tree.
void s_checkIsNoFile(std::filesystem::path const& folder) {
    std::error_code error;
    if (std::filesystem::exists(folder, error) && !std::filesystem::is_directory(folder, error)) {
        throw RuleError(RuleError::Kind::noInput,
                        folder.string() +
                            ": is not a folder; give the folder that holds the rule " + "files " +
                            treeFileName + ", " + eliteFileName + " and " + versionFileName);
    }
}

} // namespace

RuleSet readFolder(std::filesystem::path const& folder) {
    s_checkIsNoFile(folder);
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
