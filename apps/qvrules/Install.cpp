// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/FindingOutput.h"
#include "apps/text/Utf8.h"
#include "rules/check/Checker.h"
#include "rules/format/RuleFiles.h"
#include "rules/install/Installer.h"
#include "rules/model/RuleError.h"

#include <algorithm>
#include <iostream>

namespace Quorvane::RulesApp {

namespace {

using Rules::Finding;
using Rules::Findings;

std::filesystem::path s_folder(InstallOptions const& options) {
    auto const relative = std::filesystem::path(ruleDirectory).relative_path();
    return std::filesystem::path(options.m_root.empty() ? "/" : options.m_root) / relative;
}

void s_report(std::filesystem::path const& folder, Rules::Installation const& done) {
    std::cout << folder.string() << ": version " << done.m_version << " is in force";
    if (done.m_previous) {
        std::cout << ", version " << *done.m_previous << " is kept for --rollback";
    }
    std::cout << '\n';
}

bool s_isError(Finding const& finding) {
    return finding.m_severity == Finding::Severity::error;
}

void s_refuseUnloadable(InstallOptions const& options, Rules::RuleSet const& set) {
    if (auto const problem = Rules::loadProblem(set)) {
        throw Rules::RuleError(Rules::RuleError::Kind::badRules,
                               options.m_source + ": " + *problem +
                                   "; \"qvrules check\" says more");
    }
}

} // namespace

int install(InstallOptions const& options) {
    auto const folder = s_folder(options);
    if (options.m_isRollback != options.m_source.empty()) {
        std::cerr << "qvrules install takes a PATH or --rollback, one of the two\n";
        return ExitStatus::usage;
    }
    if (options.m_isRollback) {
        s_report(folder, Rules::rollBack(folder));
        return ExitStatus::well;
    }
    auto const rules = Rules::loadRules(options.m_source);
    s_refuseUnloadable(options, rules.m_set);
    auto const findings = Rules::checkRules(rules.m_set, programDefaults());
    if (!findings.empty()) {
        std::cerr << toPrintableLines(findingsAsText({options.m_source, rules, ""}, findings));
    }
    if (!options.m_isForced && std::any_of(findings.begin(), findings.end(), s_isError)) {
        std::cerr << "nothing was installed; mend the errors, or add --force\n";
        return ExitStatus::findings;
    }
    s_report(folder, Rules::installRules(folder, rules.m_set));
    return ExitStatus::well;
}

} // namespace Quorvane::RulesApp
