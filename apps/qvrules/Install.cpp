// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/FindingOutput.h"
#include "apps/text/Utf8.h"
#include "rules/check/Checker.h"
#include "rules/install/Installer.h"
#include "rules/model/RuleError.h"

#include <algorithm>
#include <iostream>
#include <limits>
#include <unistd.h>

namespace Quorvane::RulesApp {

namespace {

using Rules::Finding;
using Rules::Findings;
using Sets = std::vector<Rules::InstalledSet>;

std::string s_versionText(std::int32_t version) {
    return "version " + std::to_string(version);
}

void s_report(std::filesystem::path const& folder, Sets const& sets) {
    std::cout << toPrintable(folder.string()) << ": " << s_versionText(sets.front().m_version)
              << " is in force";
    if (auto const restored = sets.front().m_restored) {
        std::cout << ": the rules of " << s_versionText(*restored) << " are back";
    }
    if (auto const before = sets.front().m_before) {
        std::cout << (sets.front().m_restored ? "; --rollback again leads to "
                                              : "; --rollback leads back to ")
                  << s_versionText(*before);
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

// Rules with the version that they get in `folder`.
Rules::LoadedRules s_rulesFor(std::filesystem::path const& folder, CommandLine const& line) {
    auto rules = readRulesOf(line, "PATH");
    s_refuseUnloadable(line.text("PATH"), rules.m_set);
    rules.m_set.setVersion(Rules::versionFor(folder, rules.m_set));
    return rules;
}

// False when there are errors.
bool s_isSound(std::string const& source, Rules::LoadedRules const& rules) {
    auto const findings = Rules::checkRules(rules.m_set, programDefaults());
    if (!findings.empty()) {
        std::cerr << toPrintableLines(findingsAsText({source, rules, ""}, findings));
    }
    return std::none_of(findings.begin(), findings.end(), s_isError);
}

int s_rollBack(std::filesystem::path const& folder, CommandLine const& line) {
    std::int32_t version = 0;
    readNumberOption(line, "to", version, 0, std::numeric_limits<int>::max());
    s_report(folder,
             Rules::rollBack(folder, line.has("to") ? std::optional(version) : std::nullopt));
    return ExitStatus::ok;
}

void s_checkUsage(CommandLine const& line) {
    if (line.has("rollback") != line.text("PATH").empty()) {
        throw UsageError("install takes either a PATH or --rollback");
    }
    if (line.has("to") && !line.has("rollback")) {
        throw UsageError("--to needs --rollback");
    }
    if (line.has("dry-run") && line.has("rollback")) {
        throw UsageError("--dry-run goes with a PATH; \"qvrules status\" shows what is kept");
    }
}

int s_install(CommandLine const& line) {
    auto const folder = ruleFolder(line);
    if (line.has("rollback")) {
        return s_rollBack(folder, line);
    }
    auto const source = line.text("PATH");
    auto const rules = s_rulesFor(folder, line);
    if (!s_isSound(source, rules) && !line.has("force")) {
        std::cerr << "nothing was installed; correct the errors, or add --force\n";
        return ExitStatus::findings;
    }
    if (line.has("dry-run")) {
        std::cout << toPrintable(folder.string()) << ": "
                  << s_versionText(rules.m_set.version().value_or(0))
                  << " would be in force; nothing was changed\n";
        return ExitStatus::ok;
    }
    s_report(folder, Rules::installRules(folder, rules.m_set, source));
    return ExitStatus::ok;
}

} // namespace

int install(CommandLine const& line) {
    s_checkUsage(line);
    try {
        return s_install(line);
    } catch (Rules::RuleError const& error) {
        auto const isRefused = error.kind() == Rules::RuleError::Kind::cannotWrite;
        if (!isRefused || line.has("root") || ::geteuid() == 0) {
            throw;
        }
        throw Rules::RuleError(
            error.kind(), std::string(error.what()) +
                              "; be root to install rules for this machine, or have --root DIR "
                              "put them below a folder of yours");
    }
}

} // namespace Quorvane::RulesApp
