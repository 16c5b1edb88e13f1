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

// Below the root, like DESTDIR of an installer.
std::filesystem::path s_folder(std::string const& root) {
    return std::filesystem::path(root) / std::filesystem::path(ruleDirectory).relative_path();
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

void s_refuseUnloadable(std::string const& source, Rules::RuleSet const& set) {
    if (auto const problem = Rules::loadProblem(set)) {
        throw Rules::RuleError(Rules::RuleError::Kind::badRules,
                               source + ": " + *problem + "; \"qvrules check\" shows more");
    }
}

} // namespace

int install(CommandLine const& line) {
    auto const folder = s_folder(line.text("root", "/"));
    auto const source = line.text("PATH");
    bool const isRollback = line.has("rollback");
    if (isRollback != source.empty()) {
        throw UsageError("install takes either a PATH or --rollback");
    }
    if (isRollback) {
        s_report(folder, Rules::rollBack(folder));
        return ExitStatus::ok;
    }
    auto const rules = Rules::loadRules(source);
    s_refuseUnloadable(source, rules.m_set);
    auto const findings = Rules::checkRules(rules.m_set, programDefaults());
    if (!findings.empty()) {
        std::cerr << toPrintableLines(findingsAsText({source, rules, ""}, findings));
    }
    if (!line.has("force") && std::any_of(findings.begin(), findings.end(), s_isError)) {
        std::cerr << "nothing was installed; correct the errors, or add --force\n";
        return ExitStatus::findings;
    }
    s_report(folder, Rules::installRules(folder, rules.m_set));
    return ExitStatus::ok;
}

} // namespace Quorvane::RulesApp
