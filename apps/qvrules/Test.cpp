// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Output.h"
#include "apps/text/Utf8.h"
#include "apps/workshop/CaseRunner.h"
#include "rules/model/RuleError.h"

#include <algorithm>
#include <boost/algorithm/string/join.hpp>
#include <filesystem>
#include <nlohmann/json.hpp>

namespace Quorvane::RulesApp {

namespace {

namespace fs = std::filesystem;
using Files = std::vector<Workshop::CaseFile>;

struct TestedCase {
    std::string m_path;
    Workshop::RuleCase const* m_case;
    Workshop::CaseResult m_result;
};

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

using Json = nlohmann::ordered_json;

std::size_t s_failures(std::vector<TestedCase> const& cases) {
    return static_cast<std::size_t>(
        std::count_if(cases.begin(), cases.end(),
                      [](TestedCase const& tested) { return !tested.m_result.hasPassed(); }));
}

std::string s_failureLine(TestedCase const& tested) {
    auto const& result = tested.m_result;
    std::string expected;
    std::string came;
    for (auto const& difference : result.m_differences) {
        auto const start = (expected.empty() ? "" : ", ") + difference.m_what + " ";
        expected += start + difference.m_expected;
        came += start + difference.m_came;
    }
    auto const sentences = boost::algorithm::join(result.m_sentences, "; ");
    auto const why = result.m_because + (sentences.empty() ? "" : ": " + sentences);
    return toPrintable(tested.m_path + ":" + std::to_string(tested.m_case->m_line) + ": " +
                       tested.m_case->m_name + ": expected " + expected + "; came " + came + " (" +
                       why + ")") +
           "\n";
}

std::string s_summary(std::size_t cases, std::size_t failures) {
    auto const count = std::to_string(cases) + (cases == 1 ? " case: " : " cases: ");
    return failures == 0 ? count + "all passed\n"
                         : count + std::to_string(cases - failures) + " passed, " +
                               std::to_string(failures) + " failed\n";
}

Json s_result(TestedCase const& tested) {
    auto const& result = tested.m_result;
    auto differences = Json::array();
    for (auto const& difference : result.m_differences) {
        differences.push_back({{"what", difference.m_what},
                               {"expected", toUtf8(difference.m_expected)},
                               {"came", toUtf8(difference.m_came)}});
    }
    return {{"file", toUtf8(tested.m_path)},
            {"line", tested.m_case->m_line},
            {"name", toUtf8(tested.m_case->m_name)},
            {"passed", result.hasPassed()},
            {"differences", differences},
            {"verdict", result.m_verdict},
            {"node", result.m_node},
            {"confidence", result.m_confidence},
            {"reasons", toUtf8(result.m_reasons)},
            {"because", toUtf8(result.m_because)},
            {"sentences", toUtf8(result.m_sentences)}};
}

std::string s_text(std::vector<TestedCase> const& cases) {
    std::string text;
    for (auto const& tested : cases) {
        text += tested.m_result.hasPassed() ? "" : s_failureLine(tested);
    }
    return text + s_summary(cases.size(), s_failures(cases));
}

std::string s_json(std::vector<TestedCase> const& cases) {
    auto const failures = s_failures(cases);
    auto results = Json::array();
    for (auto const& tested : cases) {
        results.push_back(s_result(tested));
    }
    Json const report = {{"cases", cases.size()},
                         {"passed", cases.size() - failures},
                         {"failed", failures},
                         {"results", results}};
    return report.dump(2, ' ', true) + "\n";
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
    writeOutput("-", line.text("format") == "json" ? s_json(cases) : s_text(cases));
    return s_failures(cases) == 0 ? ExitStatus::ok : ExitStatus::findings;
}

} // namespace Quorvane::RulesApp
