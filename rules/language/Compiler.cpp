// SPDX-License-Identifier: Apache-2.0
#include "rules/language/Compiler.h"

#include "rules/language/Builders.h"
#include "rules/language/Parser.h"

#include <algorithm>
#include <tuple>

namespace Quorvane::Rules {

namespace {

std::string s_versionText(std::optional<std::int32_t> version) {
    return version ? "version " + std::to_string(*version) : "no version";
}

void s_buildReadme(RulesSyntax const& rules, CompiledRules& compiled) {
    auto& set = compiled.m_set;
    if (rules.m_version) {
        compiled.m_places.m_version = rules.m_version->m_position;
        set.setVersion(rules.m_version->m_value);
    }
    if (!rules.m_readme) {
        return;
    }
    set.m_readme = rules.m_readme->m_value;
    if (rules.m_version && set.version() != rules.m_version->m_value) {
        compiled.m_errors.push_back(
            {rules.m_readme->m_position,
             "hosts read " + s_versionText(set.version()) + " in this text, not " +
                 s_versionText(rules.m_version->m_value) + "; drop the readme lines"});
    }
}

bool s_isBefore(Diagnostic const& a, Diagnostic const& b) {
    return std::tie(a.m_position.m_line, a.m_position.m_column) <
           std::tie(b.m_position.m_line, b.m_position.m_column);
}

} // namespace

CompiledRules compileRules(std::string_view text) {
    CompiledRules compiled;
    auto rules = parseRules(text, compiled.m_errors);
    if (compiled.m_errors.empty()) {
        s_buildReadme(rules, compiled);
        buildElite(rules, compiled);
        buildTree(rules, compiled);
        buildNamesFile(rules, compiled);
    }
    auto& errors = compiled.m_errors;
    std::stable_sort(errors.begin(), errors.end(), s_isBefore);
    errors.resize(std::min(errors.size(), maxErrors));
    return compiled;
}

} // namespace Quorvane::Rules
