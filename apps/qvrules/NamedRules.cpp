// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/NamedRules.h"

#include "apps/text/Utf8.h"

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

Rules::LoadedRules loadNamedRules(std::string const& path) {
    auto rules = Rules::loadRules(path);
    warnAboutNames(path, rules.m_names.m_problem);
    return rules;
}

} // namespace Quorvane::RulesApp
