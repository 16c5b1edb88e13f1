// SPDX-License-Identifier: Apache-2.0
#include "apps/workshop/CaseRunner.h"

#include "apps/settings/SettingsTable.h"
#include "apps/story/RuleStory.h"
#include "apps/story/VerdictStory.h"
#include "apps/text/NumberText.h"
#include "apps/text/Utf8.h"
#include "apps/workshop/RuleEngine.h"
#include "platform/DynamicIdentifier.h"
#include "platform/HeaderReader.h"
#include "rules/language/LoadRules.h"
#include "rules/model/RuleError.h"
#include "scanner/records/RecordAccess.h"

namespace Quorvane::Workshop {

namespace {

CaseResult s_resultOf(ScanHost const& host, ScanOutcome const& outcome,
                      std::vector<StoryHop> const& trail) {
    auto const& answer = RecordAccess::record(outcome.m_answer);
    CaseResult result;
    result.m_verdict = verdictName(outcome.m_answer);
    result.m_node = answer.m_node;
    result.m_confidence = answer.m_confidenceDegree;
    result.m_reasons = answer.m_adjustReason;
    result.m_because = tellReason(host, outcome, trail);
    result.m_sentences = tellRules(host, outcome).m_sentences;
    return result;
}

CaseResult s_judge(RuleCase const& one, ScanHost const& host) {
    auto const headers = HeaderReader::read(one.m_headers.value_or(std::string()));
    auto outcome = one.m_headers ? host.scan(headers, one.m_facts) : host.judge(one.m_vector);
    host.trace(outcome);
    return s_resultOf(host, outcome,
                      one.m_headers ? tellTrail(host, headers, one.m_facts)
                                    : std::vector<StoryHop>());
}

std::string s_nodeText(std::int32_t node) {
    return node == 0 ? "none" : std::to_string(node);
}

std::string s_rangeText(ConfidenceRange const& range) {
    auto const low = numberText(range.m_low);
    return range.m_low == range.m_high ? low : low + " to " + numberText(range.m_high);
}

// A single number is one that somebody copied from a display.
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

void CaseRunner::load(std::string const& rules) {
    if (!m_engines.contains(rules)) {
        m_engines.emplace(rules, loadEngine(Rules::loadRules(rules).m_set));
    }
}

// A host that names no patterns leaves those in force alone.
void CaseRunner::restorePatterns(HostSettings const& settings) {
    if (m_hasOwnPatterns && settings.m_dynamicPatterns.empty()) {
        Telvanis::DynamicIdentifierSingleton::install(Telvanis::DynamicIdentifier::builtIn());
    }
    m_hasOwnPatterns = !settings.m_dynamicPatterns.empty();
}

CaseResult CaseRunner::run(RuleCase const& one, std::string const& path, std::string const& rules) {
    try {
        restorePatterns(one.m_settings);
        ScanHost const host(one.m_settings, m_engines.at(rules));
        auto result = s_judge(one, host);
        result.m_differences = s_compare(one.m_expected, result);
        return result;
    } catch (SettingsError const& error) {
        throw Rules::RuleError(
            Rules::RuleError::Kind::badData,
            toPrintable(path + ":" + std::to_string(one.m_line) + ": " + error.what()));
    }
}

} // namespace Quorvane::Workshop
