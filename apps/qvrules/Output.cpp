// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Output.h"

#include "apps/commandline/Program.h"
#include "rules/format/RuleFiles.h"
#include "rules/model/Files.h"
#include "rules/model/Readme.h"
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

constexpr std::size_t markReach = 65536;

bool s_hasMark(std::string const& path, std::string_view mark) {
    std::ifstream file(path, std::ios::binary);
    std::string start(markReach, '\0');
    file.read(start.data(), static_cast<std::streamsize>(start.size()));
    start.resize(static_cast<std::size_t>(file.gcount()));
    return mark != noMark && start.find(mark) != std::string::npos;
}

void s_requireOurs(Output const& output) {
    std::error_code error;
    auto const size = std::filesystem::file_size(output.m_path, error);
    if (!output.m_isForced && !error && size > 0 && !s_hasMark(output.m_path, output.m_mark)) {
        throw Rules::RuleError(Rules::RuleError::Kind::cannotWrite,
                               output.m_path +
                                   ": is there already, and is not replaced; give another name, "
                                   "or add --force");
    }
}

} // namespace

Output outputOf(CommandLine const& line, std::string_view option, std::string_view mark) {
    return {line.text(option, "-"), mark, line.has("force")};
}

void writeOutput(Output const& output, std::string const& text) {
    auto const& path = output.m_path;
    if (path == "-") {
        printOutput(text);
    } else if (s_isReplaced(path)) {
        s_requireOurs(output);
        Rules::replaceFile(path, text);
    } else {
        s_writeInto(path, text);
    }
}

void requireWritable(Output const& output) {
    auto const& path = output.m_path;
    if (path == "-") {
        return;
    }
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) {
        s_refuse(path, EISDIR);
    }
    auto const parent = std::filesystem::path(path).parent_path();
    auto const folder = parent.empty() ? std::string("./") : parent.string() + '/';
    if (s_isReplaced(path)) {
        if (::access(folder.c_str(), W_OK | X_OK) != 0) {
            s_refuse(path, errno);
        }
        s_requireOurs(output);
    }
}

void requireRuleFolder(std::string const& folder, bool isForced) {
    auto const readme = std::filesystem::path(folder) / versionFileName;
    std::error_code error; // making the folder says what is wrong with it
    if (!isForced && std::filesystem::exists(readme, error) &&
        !Rules::readmeVersion(Rules::readFile(readme))) {
        throw Rules::RuleError(Rules::RuleError::Kind::cannotWrite,
                               readme.string() +
                                   ": is not the README of rules, and is not replaced; give "
                                   "another folder, or add --force");
    }
}

} // namespace Quorvane::RulesApp
