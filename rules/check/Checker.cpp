// SPDX-License-Identifier: Apache-2.0
#include "rules/check/Checker.h"

#include "rules/check/Checks.h"
#include "rules/format/RuleTests.h"
#include "rules/language/Literals.h"

#include <algorithm>
#include <iterator>

namespace Quorvane::Rules {

void TreeFindings::add(Finding::Severity severity, char const* id, std::int32_t number,
                       std::string const& problem, std::string const& advice) {
    if (m_reported.emplace(number, problem).second) {
        m_found.push_back({severity, id, Finding::File::tree, problem, advice, number});
    }
}

void TreeFindings::moveTo(Findings& findings) {
    std::stable_sort(m_found.begin(), m_found.end(),
                     [](Finding const& a, Finding const& b) { return a.m_number < b.m_number; });
    std::move(m_found.begin(), m_found.end(), std::back_inserter(findings));
}

std::string nodeName(std::int32_t number) {
    return "node " + std::to_string(number);
}

std::string notAProbability(double confidence) {
    return "a confidence of " + numberText(confidence) + " is not a probability";
}

std::string notAPercentage(double support) {
    return "a support of " + numberText(support) + " is not a percentage";
}

std::string belowMinimum(double support, double minSupport) {
    return "a support of " + numberText(support) + " is below the minimum of " +
           numberText(minSupport) + " (min-support)";
}

void checkReadme(RuleSet const& set, Findings& findings) {
    auto const add = [&findings](char const* id, std::string const& problem, char const* advice) {
        findings.push_back(
            {Finding::Severity::warning, id, Finding::File::readme, problem, advice});
    };
    auto const version = set.version();
    if (!version) {
        add("no-version", "there is no version, so hosts load the rules again each time they look",
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

void checkTreeRoot(TreeLinks const& tree, DeepHeaderSettings const& settings,
                   TreeFindings& findings) {
    auto const& node = tree.at(treeRoot);
    if (isLeaf(node)) {
        findings.add(Finding::Severity::warning, "root-leaf", treeRoot,
                     "the root is a leaf, and the root decides nothing", "give the root children");
    } else if (node.confidence >= settings.spamThreshold) {
        findings.add(Finding::Severity::warning, "root-confidence", treeRoot,
                     "the root is sure enough to end the walk when walk-to-leaf is off, and the "
                     "root decides nothing",
                     "give the root the confidence 0.5");
    }
}

Findings checkRules(RuleSet const& set, DeepHeaderSettings const& settings) {
    Findings findings;
    checkReadme(set, findings);
    auto const run = eliteRun(set, settings);
    if (set.m_elite) {
        checkElite(*set.m_elite, settings, findings);
        checkEliteShadows(run, findings);
    }
    checkTreeFile(set, settings, findings);
    TreeLinks const tree(set);
    if (tree.hasRoot()) {
        TreeFindings found;
        checkTreeRoot(tree, settings, found);
        checkTreeLinks(tree, found);
        checkTreePaths(tree, found);
        found.moveTo(findings);
    }
    if (!loadProblem(set)) {
        checkVerdicts(tree, run, settings, findings);
    }
    return findings;
}

std::optional<std::string> loadProblem(RuleSet const& set) {
    Findings findings;
    checkTreeFile(set, DeepHeaderSettings(), findings);
    for (auto const& finding : findings) {
        if (finding.m_severity == Finding::Severity::error) {
            return finding.m_problem;
        }
    }
    return std::nullopt;
}

} // namespace Quorvane::Rules
