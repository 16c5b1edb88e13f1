// SPDX-License-Identifier: Apache-2.0
#include "rules/model/RuleFolder.h"

#include "rules/model/Binary.h"
#include "rules/model/Files.h"
#include "rules/model/RuleError.h"
#include "rules/model/RuleNames.h"

namespace Quorvane::Rules {

namespace {

// Otherwise a file in its place would be reported as a missing tree.
void s_checkIsNoFile(std::filesystem::path const& folder) {
    std::error_code error;
    if (std::filesystem::exists(folder, error) && !std::filesystem::is_directory(folder, error)) {
        throw RuleError(RuleError::Kind::noInput, {folder.string()},
                        std::string("is not a folder; give the folder that holds the rule files ") +
                            treeFileName + ", " + eliteFileName + " and " + versionFileName);
    }
}

// Where the files really are: links may lead to another set while they are read.
std::filesystem::path s_realFolder(std::filesystem::path const& folder) {
    std::error_code error;
    auto const tree = std::filesystem::canonical(folder / treeFileName, error);
    // Errors name the folder as it was given, unless the files are somewhere else.
    return error || std::filesystem::equivalent(tree.parent_path(), folder, error)
               ? folder
               : tree.parent_path();
}

} // namespace

SpareFile readNamesFile(std::filesystem::path const& folder) {
    return readSpareFile(folder / namesFileName, maxNamesFileSize);
}

std::optional<Bytes> ruleFile(RuleSet const& set, std::string_view name) {
    if (name == treeFileName) {
        return writeTree(set);
    }
    if (name == eliteFileName) {
        return set.m_elite ? std::optional(writeElite(*set.m_elite)) : std::nullopt;
    }
    return name == namesFileName ? set.m_names.m_content : set.m_readme;
}

RuleSet readFolder(std::filesystem::path const& folder) {
    s_checkIsNoFile(folder);
    auto const real = s_realFolder(folder);
    RuleSet set;
    readTree(readRuleFile(real / treeFileName), set);
    if (auto const elite = readRuleFileIfThere(real / eliteFileName)) {
        set.m_elite = readElite(*elite);
    }
    set.m_readme = readRuleFileIfThere(real / versionFileName);
    set.m_names = readNamesFile(real);
    return set;
}

void writeFolder(std::filesystem::path const& folder, RuleSet const& set) {
    makeFolder(folder);
    for (auto const* const name : ruleFileNames) {
        if (auto const content = ruleFile(set, name)) {
            replaceFile(folder / name, *content);
        } else {
            removeFile(folder / name);
        }
    }
}

} // namespace Quorvane::Rules
