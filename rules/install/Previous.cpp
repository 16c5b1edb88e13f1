// SPDX-License-Identifier: Apache-2.0
#include "rules/install/Previous.h"

#include "rules/model/Files.h"
#include "rules/model/RuleError.h"
#include "rules/model/RuleFolder.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>

namespace Quorvane::Rules {

namespace {

namespace fs = std::filesystem;

constexpr char previousName[] = "previous";
constexpr char stagingName[] = ".previous.new";

void s_renameFolder(fs::path const& from, fs::path const& to) {
    // Swapped with the old one if there is one, so that there is always a whole set of this name.
    unsigned const flags = fs::exists(to) ? RENAME_EXCHANGE : RENAME_NOREPLACE;
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), flags) != 0) {
        throw RuleError(RuleError::Kind::cannotWrite,
                        to.string() + ": cannot be replaced: " + std::strerror(errno));
    }
}

void s_remove(fs::path const& folder) {
    std::error_code error;
    fs::remove_all(folder, error);
    if (error) {
        throw RuleError(RuleError::Kind::cannotWrite,
                        folder.string() + ": cannot be removed: " + error.message());
    }
}

} // namespace

std::optional<RuleSet> previousSet(fs::path const& folder) {
    auto const kept = folder / previousName;
    std::error_code error;
    return fs::exists(kept / treeFileName, error) ? std::optional(readFolder(kept)) : std::nullopt;
}

void keepAsPrevious(fs::path const& folder, RuleSet const& set) {
    auto const staging = folder / stagingName;
    s_remove(staging);
    writeFolder(staging, set);
    s_renameFolder(staging, folder / previousName);
    s_remove(staging);
    syncFolder(folder);
}

} // namespace Quorvane::Rules
