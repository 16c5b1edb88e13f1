// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Output.h"

#include "rules/model/Files.h"
#include "rules/model/RuleError.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>

namespace Quorvane::RulesApp {

namespace {

// A link, pipe or device is written into: root would otherwise put a file in the place of
// /dev/stdout.
bool s_isReplaced(std::string const& path) {
    std::error_code error;
    auto const status = std::filesystem::symlink_status(path, error);
    return !std::filesystem::exists(status) || std::filesystem::is_regular_file(status);
}

void s_print(std::string const& text) {
    std::cout << text << std::flush;
    if (!std::cout) {
        throw Rules::RuleError(Rules::RuleError::Kind::cannotWrite,
                               "standard output: cannot be written");
    }
}

void s_writeInto(std::string const& path, std::string const& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    if (!file) {
        throw Rules::RuleError(Rules::RuleError::Kind::cannotWrite,
                               path + ": cannot be written: " + std::strerror(errno));
    }
}

} // namespace

void writeOutput(std::string const& path, std::string const& text) {
    if (path == "-") {
        s_print(text);
    } else if (s_isReplaced(path)) {
        Rules::replaceFile(path, text);
    } else {
        s_writeInto(path, text);
    }
}

} // namespace Quorvane::RulesApp
