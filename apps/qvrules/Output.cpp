// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Output.h"

#include "apps/commandline/Program.h"
#include "rules/model/Files.h"
#include "rules/model/RuleError.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace Quorvane::RulesApp {

namespace {

// A link, pipe or device is written into: otherwise root would replace /dev/stdout by a file.
bool s_isReplaced(std::string const& path) {
    std::error_code error;
    auto const status = std::filesystem::symlink_status(path, error);
    return !std::filesystem::exists(status) || std::filesystem::is_regular_file(status);
}

[[noreturn]] void s_refuse(std::string const& path, int error) {
    throw Rules::RuleError(Rules::RuleError::Kind::cannotWrite,
                           path + ": cannot be written: " + std::strerror(error));
}

void s_writeInto(std::string const& path, std::string const& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    if (!file) {
        s_refuse(path, errno);
    }
}

} // namespace

void writeOutput(std::string const& path, std::string const& text) {
    if (path == "-") {
        printOutput(text);
    } else if (s_isReplaced(path)) {
        Rules::replaceFile(path, text);
    } else {
        s_writeInto(path, text);
    }
}

void requireWritable(std::string const& path) {
    if (path.empty() || path == "-") {
        return;
    }
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) {
        s_refuse(path, EISDIR);
    }
    auto const parent = std::filesystem::path(path).parent_path();
    auto const folder = parent.empty() ? std::string("./") : parent.string() + '/';
    if (s_isReplaced(path) && ::access(folder.c_str(), W_OK | X_OK) != 0) {
        s_refuse(path, errno);
    }
}

} // namespace Quorvane::RulesApp
