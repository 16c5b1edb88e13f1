// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/NameWarning.h"

#include "apps/text/Utf8.h"
#include "rules/format/RuleFiles.h"

#include <filesystem>
#include <iostream>

namespace Quorvane::RulesApp {

void warnAboutNames(std::string const& path, std::string const& problem) {
    if (problem.empty()) {
        return;
    }
    std::error_code error;
    auto const file = std::filesystem::is_directory(path, error)
                          ? (std::filesystem::path(path) / namesFileName).string()
                          : path;
    std::cerr << toPrintable(file + ": " + problem) << "; rules are shown without names\n";
}

} // namespace Quorvane::RulesApp
