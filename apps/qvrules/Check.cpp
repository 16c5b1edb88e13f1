// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/FindingOutput.h"
#include "apps/qvrules/Output.h"
#include "apps/text/Utf8.h"
#include "rules/check/Checker.h"
#include "rules/check/Drift.h"
#include "rules/model/RuleFolder.h"

#include <algorithm>
#include <iterator>

namespace Quorvane::RulesApp {

int check(CommandLine const& line) {
    auto const settings = hostSettings(line).m_judging;
    auto const path = line.text("PATH");
    auto const against = line.text("against");
    auto const rules = Rules::loadRules(path);
    auto findings = Rules::checkRules(rules.m_set, settings);
    if (!against.empty()) {
        auto drift = Rules::driftFindings(rules.m_set, Rules::readFolder(against));
        std::move(drift.begin(), drift.end(), std::back_inserter(findings));
    }
    CheckedRules const checked{path, rules, against};
    writeOutput("-", line.text("format") == "json"
                         ? findingsAsJson(checked, findings)
                         : toPrintableLines(findingsAsText(checked, findings)));
    return findings.empty() ? ExitStatus::ok : ExitStatus::findings;
}

} // namespace Quorvane::RulesApp
