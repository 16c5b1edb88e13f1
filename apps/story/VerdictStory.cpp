// SPDX-License-Identifier: Apache-2.0
#include "apps/story/VerdictStory.h"

#include "apps/story/Alternatives.h"
#include "apps/story/RuleStory.h"
#include "apps/text/NumberText.h"
#include "rules/format/RuleTests.h"
#include "scanner/records/RecordAccess.h"

#include <algorithm>
#include <cmath>

namespace Quorvane {

namespace {

bool s_has(std::vector<StoryHop> const& trail, HopRole role) {
    return std::any_of(trail.begin(), trail.end(),
                       [role](StoryHop const& hop) { return hop.m_role == role; });
}

// The scan found no public hop: why not?
std::string s_noHopReason(std::vector<StoryHop> const& trail) {
    if (trail.empty()) {
        return "the message has no Received header";
    }
    auto const end = std::find_if(trail.begin(), trail.end(), [](StoryHop const& hop) {
        return hop.m_role == HopRole::endsByIPv6 || hop.m_role == HopRole::endsByAntiSpam ||
               hop.m_role == HopRole::endsByScore;
    });
    if (end == trail.end()) {
        return "no public address";
    }
    if (end->m_role == HopRole::endsByIPv6) {
        return end == trail.begin() ? "the newest hop came by IPv6"
                                    : "no public address before a hop that came by IPv6";
    }
    return end->m_role == HopRole::endsByAntiSpam
               ? "the message came from a relay that filters already"
               : "the reputation of " + end->m_address + " ended the walk before any public hop";
}

std::string s_sum(DeepHeaderAnswerImpl const& answer) {
    auto text = numberText(answer.m_confidenceDegree);
    if (answer.m_adjust != 0.0) {
        text += (answer.m_adjust < 0 ? " - " : " + ") + numberText(std::abs(answer.m_adjust));
    }
    return text + " spam";
}

std::string s_decidedReason(DeepHeaderAnswerImpl const& answer,
                            DeepHeaderSettings const& settings) {
    auto const spam = numberText(settings.spamThreshold);
    if (answer.m_isSpam) {
        return s_sum(answer) + " reaches the spam threshold " + spam;
    }
    auto const ham = numberText(1.0 - answer.m_confidenceDegree) + " ham";
    if (answer.m_isHam) {
        return ham + " reaches the ham threshold " + numberText(settings.hamThreshold);
    }
    return "not sure enough: " + s_sum(answer) + " is below the spam threshold " + spam + ", " +
           ham + " below the ham threshold " + numberText(settings.hamThreshold);
}

std::string s_undecidedReason(DeepHeaderAdapter const& engine, DeepHeaderSettings const& settings) {
    if (engine.consultsTree(settings)) {
        return "no rule decided";
    }
    return isTreeOn(settings.spamThreshold)
               ? "no rule decided: no elite rule did, and the rules leave the tree out"
               : "thresholds switch the tree off (a spam threshold of 95 or more)";
}

std::string s_changes(Alternative const& alternative, DeepHeaderAdapter::MsgProperties const& now) {
    std::string text;
    for (auto const& [attribute, value] : alternative.m_changes) {
        auto const index = static_cast<std::int32_t>(attribute);
        text += (text.empty() ? "" : " and ") + testText(index, 0, value) + " (it " +
                testText(index, 0, now.attributes[attribute])
                    .substr(attributeTable[attribute].m_name.size() + 1) +
                ")";
    }
    return text;
}

// Of what is not so: without the names of what is.
std::vector<std::string> s_words(Alternative const& alternative) {
    std::vector<std::string> words;
    for (auto const& [attribute, value] : alternative.m_changes) {
        auto const sentence = Rules::valueSentence(static_cast<std::int32_t>(attribute), value);
        words.push_back(Rules::fillSentence(sentence, {}));
    }
    return words;
}

// A node decided, but neither threshold was reached: which would have been?
void s_addThresholds(std::vector<ToldNeed>& needs, ScanOutcome const& outcome,
                     DeepHeaderSettings const& settings) {
    auto const& answer = RecordAccess::record(outcome.m_answer);
    if (answer.m_node == 0 || answer.m_isSpam || answer.m_isHam ||
        !(answer.m_supportDegree >= settings.minSupport)) {
        return;
    }
    auto spam = answer.m_confidenceDegree + answer.m_adjust;
    if (auto const& elite = outcome.m_trace.m_elite;
        elite.code != 0 && elite.support >= settings.minSupport) {
        spam = std::max(spam, elite.confidence + elite.adjust);
    }
    needs.push_back({"spam", "a spam threshold of " + numberText(spam) + " or less", {}});
    needs.push_back(
        {"ham",
         "a ham threshold of " + numberText(1.0 - answer.m_confidenceDegree) + " or less",
         {}});
}

// A walk that an IPv6 relay ended goes on when that relay is known to be the site's own.
std::vector<ToldNeed> s_way(std::vector<StoryHop> const& trail) {
    for (auto const& hop : trail) {
        if (hop.m_role == HopRole::endsByIPv6) {
            return {
                {"any", "--internal " + hop.m_address + ", if that is a relay of this site", {}}};
        }
    }
    return {};
}

} // namespace

char const* verdictName(DeepHeaderAnswer const& answer) {
    if (answer.isSpam()) {
        return "spam";
    }
    return answer.isHam() ? "ham" : "none";
}

std::string tellReason(ScanHost const& host, ScanOutcome const& outcome,
                       std::vector<StoryHop> const& trail) {
    auto const& settings = host.settings().m_judging;
    auto const& answer = RecordAccess::record(outcome.m_answer);
    if (outcome.m_error) {
        return s_has(trail, HopRole::unreadable)
                   ? "the scan failed: a Received header cannot be read"
                   : "the scan failed: " + *outcome.m_error;
    }
    if (!outcome.m_reachedVerdict) {
        return outcome.m_isVector
                   ? "nothing to judge: a message without public hop has no attributes"
                   : s_noHopReason(trail);
    }
    return answer.m_node != 0 || answer.m_isSpam
               ? s_decidedReason(answer, settings)
               : s_undecidedReason(*host.engine().operator->(), settings);
}

std::vector<ToldNeed> tellNeeded(ScanHost const& host, ScanOutcome const& outcome,
                                 std::vector<StoryHop> const& trail) {
    if (outcome.m_error || !outcome.m_reachedVerdict) {
        return s_way(trail);
    }
    std::vector<ToldNeed> needs;
    auto const& settings = host.settings().m_judging;
    for (auto const& alternative : findAlternatives(host.engine(), settings, outcome.m_record)) {
        needs.push_back({alternative.m_isSpam ? "spam" : "ham",
                         s_changes(alternative, outcome.m_record) + "; then node " +
                             std::to_string(alternative.m_node) + " decides",
                         s_words(alternative)});
    }
    s_addThresholds(needs, outcome, settings);
    return needs;
}

} // namespace Quorvane
