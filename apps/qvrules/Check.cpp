// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/FindingOutput.h"
#include "rules/check/Checker.h"

#include <iostream>

namespace Quorvane::RulesApp {

int check(CheckOptions const& options) {
    auto const rules = Rules::loadRules(options.m_path);
    auto const findings = Rules::checkRules(rules.m_set);
    std::cout << (options.m_format == "json" ? findingsAsJson(options.m_path, rules, findings)
                                             : findingsAsText(options.m_path, rules, findings));
    return findings.empty() ? ExitStatus::well : ExitStatus::findings;
}

} // namespace Quorvane::RulesApp
