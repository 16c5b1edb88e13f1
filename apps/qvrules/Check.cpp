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

int check(CheckOptions const& options) {
    auto const settings = hostSettings(options.m_settings).m_judging;
    auto const rules = Rules::loadRules(options.m_path);
    auto findings = Rules::checkRules(rules.m_set, settings);
    if (!options.m_against.empty()) {
        auto drift = Rules::driftFindings(rules.m_set, Rules::readFolder(options.m_against));
        std::move(drift.begin(), drift.end(), std::back_inserter(findings));
    }
    CheckedRules const checked{options.m_path, rules, options.m_against};
    writeOutput("-", options.m_format == "json"
                         ? findingsAsJson(checked, findings)
                         : toPrintableLines(findingsAsText(checked, findings)));
    return findings.empty() ? ExitStatus::well : ExitStatus::findings;
}

} // namespace Quorvane::RulesApp
