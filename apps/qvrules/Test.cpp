// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Test.h"

#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Output.h"
#include "rules/model/RuleError.h"

#include <algorithm>
#include <filesystem>

namespace Quorvane::RulesApp {

namespace {

namespace fs = std::filesystem;
using Files = std::vector<Workshop::CaseFile>;

// By name, so that reports compare.
std::vector<std::string> s_filesIn(std::string const& folder) {
    std::vector<std::string> files;
    try {
        for (auto const& entry : fs::recursive_directory_iterator(folder)) {
            if (entry.is_regular_file() && entry.path().extension() == ".toml") {
                files.push_back(entry.path().string());
            }
        }
    } catch (fs::filesystem_error const& error) {
        throw Rules::RuleError(Rules::RuleError::Kind::noInput,
                               folder + ": cannot be read: " + error.code().message());
    }
    if (files.empty()) {
        throw Rules::RuleError(Rules::RuleError::Kind::noInput,
                               folder + ": no rule tests; their names end in .toml");
    }
    std::sort(files.begin(), files.end());
    return files;
}

Files s_read(CommandLine const& line) {
    Files files;
    for (auto const& path : line.texts("PATH")) {
        std::error_code error;
        bool const isFolder = fs::is_directory(path, error);
        for (auto const& file : isFolder ? s_filesIn(path) : std::vector<std::string>{path}) {
            files.push_back(Workshop::readCaseFile(file));
            files.back().m_rules = line.text("rules", files.back().m_rules);
        }
    }
    return files;
}

void s_load(Files const& files, Workshop::CaseRunner& runner) {
    for (auto const& file : files) {
        if (file.m_rules.empty()) {
            throw Rules::RuleError(Rules::RuleError::Kind::badData,
                                   file.m_path + ": names no rules; begin it with a line rules = "
                                                 "\"my.qvr\", or give --rules");
        }
        runner.load(file.m_rules);
    }
}

} // namespace

int test(CommandLine const& line) {
    auto const files = s_read(line);
    Workshop::CaseRunner runner;
    s_load(files, runner);
    std::vector<TestedCase> cases;
    for (auto const& file : files) {
        for (auto const& one : file.m_cases) {
            cases.push_back({file.m_path, &one, runner.run(one, file.m_path, file.m_rules)});
        }
    }
    writeOutput("-", line.text("format") == "json" ? testJson(cases) : testText(cases));
    bool const hasPassed = std::all_of(cases.begin(), cases.end(), [](TestedCase const& tested) {
        return tested.m_result.hasPassed();
    });
    return hasPassed ? ExitStatus::ok : ExitStatus::findings;
}

} // namespace Quorvane::RulesApp
