// SPDX-License-Identifier: Apache-2.0
#include "scanner/RuleVersion.h"

#include "include2/Exception.h"
#include "platform/File.h"
#include "rules/format/RuleFiles.h"

#include <cstdlib>
#include <string>

namespace Quorvane {

namespace {

// A line that long or shorter cannot hold the key.
constexpr std::string::size_type shortLine = 4;

std::int32_t s_toVersion(char const* digits) {
    return static_cast<std::int32_t>(std::strtol(digits, nullptr, 10));
}

std::int32_t s_findVersion(std::istream& file) {
    std::string line;
    while (std::getline(file, line)) {
        if (line.size() <= shortLine || line.front() == '#') {
            continue;
        }
        if (auto const key = line.find(versionKey); key != std::string::npos) {
            return s_toVersion(line.c_str() + key + sizeof versionKey - 1);
        }
    }
    return noRuleVersion;
}

} // namespace

std::int32_t readRuleVersion() {
    File::Path const path(ruleDirectory, versionFileName);
    if (!path.exists()) {
        return noRuleVersion;
    }
    try {
        File::basic_ifstream<char> file(path);
        return s_findVersion(file);
    } catch (Exception const&) {
        return noRuleVersion; // an unreadable version is an unknown one
    }
}

} // namespace Quorvane
