// SPDX-License-Identifier: Apache-2.0
#include "apps/workshop/CaseRunner.h"

#include "apps/host/HostSetup.h"
#include "apps/settings/SettingsTable.h"
#include "apps/story/RuleNaming.h"
#include "apps/story/RuleStory.h"
#include "apps/story/VerdictStory.h"
#include "apps/text/NumberText.h"
#include "apps/text/Utf8.h"
#include "platform/HeaderReader.h"
#include "rules/language/LoadRules.h"
#include "rules/model/RuleError.h"

namespace Quorvane::Workshop {

namespace {

CaseResult s_resultOf(ScanRecord const& record, ScanHost const& host) {
    auto const& verdict = record.verdict;
    auto const& names = host.ruleNames();
    CaseResult result;
    if (auto const* const name = deciderName(names, verdict)) {
        result.m_ruleName = *name;
    }
    result.m_verdict = verdictName(verdict);
    result.m_node = verdict.node;
    result.m_confidence = verdict.confidence;
    result.m_reasons = verdict.adjustReason;
    result.m_because = reasonText(record, host.settings().m_judging);
    result.m_sentences = describeRules(record, names).m_sentences;
    return result;
}

ScanRecord s_judge(RuleCase const& one, ScanHost const& host) {
    auto const depth = RecordDepth::steps;
    return one.m_headers ? host.scan(host.read(*one.m_headers), one.m_facts, depth)
                         : host.judge(one.m_vector, depth);
}

std::string s_nodeText(std::int32_t node) {
    return node == 0 ? "none" : std::to_string(node);
}

std::string s_rangeText(ConfidenceRange const& range) {
    auto const low = numberText(range.m_low);
    return range.m_low == range.m_high ? low : low + " to " + numberText(range.m_high);
}

// A single number was probably copied from a display, which rounds.
bool s_contains(ConfidenceRange const& range, double confidence) {
    if (range.m_low == range.m_high) {
        return numberText(range.m_low) == numberText(confidence);
    }
    return confidence >= range.m_low && confidence <= range.m_high;
}

std::vector<CaseDifference> s_compare(CaseExpectation const& expected, CaseResult const& result) {
    std::vector<CaseDifference> differences;
    if (result.m_verdict != expected.m_verdict) {
        differences.push_back({"verdict", expected.m_verdict, result.m_verdict});
    }
    if (expected.m_node && result.m_node != *expected.m_node) {
        differences.push_back({"node", s_nodeText(*expected.m_node), s_nodeText(result.m_node)});
    }
    if (expected.m_reasons && result.m_reasons != *expected.m_reasons) {
        differences.push_back(
            {"reasons", '"' + *expected.m_reasons + '"', '"' + result.m_reasons + '"'});
    }
    if (expected.m_confidence && !s_contains(*expected.m_confidence, result.m_confidence)) {
        differences.push_back({"confidence", s_rangeText(*expected.m_confidence),
                               result.m_node == 0 ? "none" : numberText(result.m_confidence)});
    }
    return differences;
}

} // namespace

std::string CaseRunner::load(std::string const& rules) {
    if (m_rules.contains(rules)) {
        return {};
    }
    auto const loaded = m_rules.emplace(rules, loadedRules(Rules::loadRules(rules).m_set)).first;
    return loaded->second.m_names.m_problem;
}

CaseResult CaseRunner::run(RuleCase const& one, std::string const& path, std::string const& rules) {
    try {
        auto const host = setUpHost(one.m_settings, m_rules.at(rules));
        auto result = s_resultOf(s_judge(one, *host), *host);
        result.m_differences = s_compare(one.m_expected, result);
        return result;
    } catch (SettingsError const& error) {
        throw Rules::RuleError(
            Rules::RuleError::Kind::badData,
            toPrintable(path + ":" + std::to_string(one.m_line) + ": " + error.what()));
    }
}

} // namespace Quorvane::Workshop
