// SPDX-License-Identifier: Apache-2.0
#include "rules/check/Checker.h"

#include "rules/check/Checks.h"
#include "rules/model/Binary.h"

#include <algorithm>
#include <cstring>

namespace Quorvane::Rules {

NodeTable loadedTable(RuleSet const& set) {
    NodeTable table{};
    auto const bytes = writeTree(set);
    std::memcpy(table.data(), bytes.data(), std::min(bytes.size(), sizeof table));
    return table;
}

void checkReadme(RuleSet const& set, Findings& findings) {
    auto const add = [&findings](char const* id, std::string const& problem, char const* advice) {
        findings.push_back({Finding::Severity::warning, id, Finding::File::readme, std::nullopt,
                            std::nullopt, problem, advice});
    };
    auto const version = set.version();
    if (!version) {
        add("no-version", "there is no version, so hosts load the rules anew each time they look",
            "add a line such as \"version 1\" to the text");
    } else if (*version == 0) {
        add("version-zero", "a host that starts does not load version 0",
            "give the rules a version from 1 on");
    } else if (*version < 0) {
        add("version-negative",
            "a host that starts does not load version " + std::to_string(*version),
            "give the rules a version from 1 on");
    }
}

Findings checkRules(RuleSet const& set) {
    Findings findings;
    checkReadme(set, findings);
    if (set.m_elite) {
        checkElite(*set.m_elite, findings);
    }
    checkTreeFile(set, findings);
    checkTreeWalk(set, findings);
    return findings;
}

std::optional<std::string> loadProblem(RuleSet const& set) {
    Findings findings;
    checkTreeFile(set, findings);
    for (auto const& finding : findings) {
        if (finding.m_severity == Finding::Severity::error) {
            return finding.m_problem;
        }
    }
    return std::nullopt;
}

} // namespace Quorvane::Rules
