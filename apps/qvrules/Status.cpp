// SPDX-License-Identifier: Apache-2.0
#include "apps/commandline/Program.h"
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/RunningHosts.h"
#include "apps/text/NumberText.h"
#include "apps/text/Utf8.h"
#include "rules/format/RuleFiles.h"
#include "rules/install/Installer.h"
#include "rules/model/RuleError.h"
#include "rules/model/RuleFolder.h"

#include <chrono>
#include <ctime>
#include <nlohmann/json.hpp>
#include <sstream>

namespace Quorvane::RulesApp {

namespace {

using Json = nlohmann::ordered_json;
using Rules::InstalledSet;

// RFC 3339, in UTC.
std::string s_time(InstalledSet const& set) {
    auto const point = std::chrono::file_clock::to_sys(set.m_installed);
    auto const time = std::chrono::system_clock::to_time_t(
        std::chrono::time_point_cast<std::chrono::system_clock::duration>(point));
    std::tm utc{};
    ::gmtime_r(&time, &utc);
    char text[sizeof "2026-01-02T03:04:05Z"];
    return {text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc)};
}

// The records of the tree from its root on, and the elite rules.
struct Size {
    std::size_t m_nodes = 0;
    std::size_t m_elite = 0;
};

Size s_size(InstalledSet const& set) {
    auto const rules = Rules::readFolder(set.m_folder);
    auto const records = rules.m_nodes.size();
    return {records > treeRoot ? records - treeRoot : 0,
            rules.m_elite ? rules.m_elite->m_rules.size() : 0};
}

std::string s_setText(InstalledSet const& set) {
    auto text =
        set.m_version == 0 ? std::string("no version") : "version " + std::to_string(set.m_version);
    text += ", " + s_time(set);
    if (set.m_restored) {
        text += ", the rules of version " + std::to_string(*set.m_restored) + " again";
    }
    return text + (set.m_source.empty() ? "" : ", from " + toPrintable(set.m_source));
}

std::string s_text(std::filesystem::path const& folder, std::vector<InstalledSet> const& sets,
                   std::vector<RunningHost> const& hosts) {
    std::ostringstream out;
    auto const size = s_size(sets.front());
    out << toPrintable(folder.string()) << '\n'
        << "in force: " << s_setText(sets.front()) << '\n'
        << "          tree nodes: " << groupedText(size.m_nodes)
        << ", elite rules: " << groupedText(size.m_elite) << '\n';
    for (std::size_t i = 1; i < sets.size(); ++i) {
        auto const leadsHere = sets.front().m_before == sets[i].m_version;
        out << (i == 1 ? "kept:     " : "          ") << s_setText(sets[i])
            << (leadsHere ? " (--rollback leads here)" : "") << '\n';
    }
    for (std::size_t i = 0; i < hosts.size(); ++i) {
        out << (i == 0 ? "programs: " : "          ") << toPrintable(hosts[i].m_name)
            << " (process " << hosts[i].m_process << ")\n";
    }
    return out.str();
}

Json s_setJson(InstalledSet const& set) {
    return {{"version", set.m_version == 0 ? Json(nullptr) : Json(set.m_version)},
            {"installed", s_time(set)},
            {"source", set.m_source.empty() ? Json(nullptr) : Json(toUtf8(set.m_source))},
            {"restored", set.m_restored ? Json(*set.m_restored) : Json(nullptr)}};
}

std::string s_json(std::filesystem::path const& folder, std::vector<InstalledSet> const& sets,
                   std::vector<RunningHost> const& hosts) {
    auto const size = s_size(sets.front());
    auto inForce = s_setJson(sets.front());
    inForce["nodes"] = size.m_nodes;
    inForce["eliteRules"] = size.m_elite;
    Json record{{"folder", toUtf8(folder.string())}, {"inForce", std::move(inForce)}};
    record["rollback"] = sets.front().m_before ? Json(*sets.front().m_before) : Json(nullptr);
    record["kept"] = Json::array();
    for (std::size_t i = 1; i < sets.size(); ++i) {
        record["kept"].push_back(s_setJson(sets[i]));
    }
    record["programs"] = Json::array();
    for (auto const& host : hosts) {
        record["programs"].push_back({{"name", toUtf8(host.m_name)}, {"process", host.m_process}});
    }
    return record.dump() + '\n';
}

} // namespace

int status(CommandLine const& line) {
    auto const folder = ruleFolder(line);
    auto const sets = Rules::installedSets(folder);
    if (sets.empty()) {
        throw Rules::RuleError(Rules::RuleError::Kind::noInput,
                               folder.string() +
                                   ": holds no rules; \"qvrules install\" puts some in force");
    }
    auto const write = line.text("format") == "json" ? s_json : s_text;
    printOutput(write(folder, sets, runningHosts()));
    return ExitStatus::ok;
}

} // namespace Quorvane::RulesApp
