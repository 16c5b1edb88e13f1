// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Test.h"
#include "apps/text/Utf8.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace Quorvane::RulesApp {

namespace {

using Json = nlohmann::ordered_json;

std::size_t s_failures(std::vector<TestedCase> const& cases) {
    return static_cast<std::size_t>(
        std::count_if(cases.begin(), cases.end(),
                      [](TestedCase const& tested) { return !tested.m_result.hasPassed(); }));
}

void s_append(std::string& list, std::string const& separator, std::string const& text) {
    list += (list.empty() ? "" : separator) + text;
}

std::string s_failureLine(TestedCase const& tested) {
    auto const& result = tested.m_result;
    std::string expected;
    std::string came;
    for (auto const& difference : result.m_differences) {
        s_append(expected, ", ", difference.m_what + " " + difference.m_expected);
        s_append(came, ", ", difference.m_what + " " + difference.m_came);
    }
    std::string sentences;
    for (auto const& sentence : result.m_sentences) {
        s_append(sentences, "; ", sentence);
    }
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

} // namespace

std::string testText(std::vector<TestedCase> const& cases) {
    std::string text;
    for (auto const& tested : cases) {
        text += tested.m_result.hasPassed() ? "" : s_failureLine(tested);
    }
    return text + s_summary(cases.size(), s_failures(cases));
}

std::string testJson(std::vector<TestedCase> const& cases) {
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

} // namespace Quorvane::RulesApp
