// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/FindingOutput.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

namespace Quorvane::RulesApp {

namespace {

using Rules::Finding;
using Rules::Findings;
using Rules::LoadedRules;
using Rules::Position;
using Severity = Finding::Severity;
using Json = nlohmann::ordered_json;

// In the order of Finding::Severity.
constexpr char const* severities[] = {"error", "warning", "difference"};
// In the order of Finding::File; empty for what is about all files together.
constexpr char const* fileNames[] = {versionFileName, treeFileName, eliteFileName, namesFileName,
                                     ""};

char const* s_severity(Finding const& finding) {
    return severities[static_cast<std::size_t>(finding.m_severity)];
}

template<typename T>
T s_at(std::vector<T> const& list, std::int32_t index) {
    auto const isInside = index >= 0 && std::cmp_less(index, list.size());
    return isInside ? list[static_cast<std::size_t>(index)] : T();
}

Position s_elitePosition(Rules::RulePlaces const& places, Finding const& finding) {
    if (!finding.m_number) {
        return places.m_eliteHeader;
    }
    auto const rule = *finding.m_number - 1;
    return finding.m_condition ? s_at(s_at(places.m_conditions, rule), *finding.m_condition - 1)
                               : s_at(places.m_rules, rule);
}

// Where the name is given, or else the file of names.
Position s_namePosition(Rules::RulePlaces const& places, Finding const& finding) {
    auto const found = finding.m_name ? places.m_names.find(*finding.m_name) : places.m_names.end();
    return found == places.m_names.end() ? places.m_namesFile : found->second;
}

// The place in the text; line 0 when there is none.
Position s_position(LoadedRules const& rules, Finding const& finding) {
    if (!rules.m_isText) {
        return {};
    }
    switch (finding.m_file) {
    case Finding::File::readme:
        return rules.m_places.m_version;
    case Finding::File::tree:
        return finding.m_number ? s_at(rules.m_places.m_nodes, *finding.m_number) : Position();
    case Finding::File::elite:
        return s_elitePosition(rules.m_places, finding);
    case Finding::File::names:
        return s_namePosition(rules.m_places, finding);
    case Finding::File::all:
        break;
    }
    return {};
}

// "node 5", "elite rule 3, condition 2"; empty for a whole file.
std::string s_where(Finding const& finding) {
    if (!finding.m_number) {
        return "";
    }
    auto const isNode = finding.m_file == Finding::File::tree;
    auto text = (isNode ? "node " : "elite rule ") + std::to_string(*finding.m_number);
    return finding.m_condition ? text + ", condition " + std::to_string(*finding.m_condition)
                               : text;
}

std::string s_fileOf(std::string const& path, LoadedRules const& rules, Finding const& finding) {
    std::string const name = fileNames[static_cast<std::size_t>(finding.m_file)];
    return rules.m_isText || name.empty() ? path : (std::filesystem::path(path) / name).string();
}

std::string s_line(std::string const& path, LoadedRules const& rules, Finding const& finding) {
    auto text = s_fileOf(path, rules, finding);
    auto const [line, column] = s_position(rules, finding);
    if (line != 0) {
        text += ':' + std::to_string(line) + ':' + std::to_string(column);
    }
    text += std::string(": ") + s_severity(finding) + ": ";
    auto const where = s_where(finding);
    text += where.empty() ? "" : where + ": ";
    return text + finding.m_problem + "; " + finding.m_advice + " [" + finding.m_id + "]\n";
}

std::ptrdiff_t s_count(Findings const& findings, Severity severity) {
    return std::count_if(findings.begin(), findings.end(), [severity](Finding const& finding) {
        return finding.m_severity == severity;
    });
}

std::string s_amount(std::ptrdiff_t count, std::string const& what) {
    return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
}

template<typename Number>
Json s_jsonIf(bool isKnown, Number const& number) {
    return isKnown ? Json(number) : Json();
}

Json s_json(std::string const& path, LoadedRules const& rules, Finding const& finding) {
    auto const position = s_position(rules, finding);
    auto const isNode = finding.m_file == Finding::File::tree;
    auto const number = finding.m_number.value_or(0);
    return {
        {"severity", s_severity(finding)},
        {"id", finding.m_id},
        {"file", s_fileOf(path, rules, finding)},
        {"line", s_jsonIf(position.m_line != 0, position.m_line)},
        {"column", s_jsonIf(position.m_column != 0, position.m_column)},
        {"node", s_jsonIf(finding.m_number && isNode, number)},
        {"rule", s_jsonIf(finding.m_number && !isNode, number)},
        {"condition", s_jsonIf(finding.m_condition.has_value(), finding.m_condition.value_or(0))},
        {"problem", finding.m_problem},
        {"advice", finding.m_advice}};
}

} // namespace

std::string findingsAsText(CheckedRules const& checked, Findings const& findings) {
    auto const& path = checked.m_path;
    std::string text;
    for (auto const& finding : findings) {
        text += s_line(path, checked.m_rules, finding);
    }
    auto const isCompared = !checked.m_against.empty();
    if (findings.empty()) {
        return path + ": no findings" + (isCompared ? ", the same as " + checked.m_against : "") +
               '\n';
    }
    text += path + ": " + s_amount(s_count(findings, Severity::error), "error") + ", " +
            s_amount(s_count(findings, Severity::warning), "warning");
    if (isCompared) {
        text += ", " + s_amount(s_count(findings, Severity::difference), "difference") + " from " +
                checked.m_against;
    }
    return text + '\n';
}

std::string findingsAsJson(CheckedRules const& checked, Findings const& findings) {
    auto const& path = checked.m_path;
    Json json = {{"path", path},
                 {"errors", s_count(findings, Severity::error)},
                 {"warnings", s_count(findings, Severity::warning)}};
    if (!checked.m_against.empty()) {
        json["against"] = checked.m_against;
        json["differences"] = s_count(findings, Severity::difference);
    }
    json["findings"] = Json::array();
    for (auto const& finding : findings) {
        json["findings"].push_back(s_json(path, checked.m_rules, finding));
    }
    // A path is bytes and need not be UTF-8.
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

} // namespace Quorvane::RulesApp
