// SPDX-License-Identifier: Apache-2.0
#include "apps/story/VerdictStory.h"

#include "apps/story/RuleNaming.h"
#include "apps/story/RuleStory.h"
#include "apps/text/NumberText.h"
#include "rules/format/AttributeTable.h"
#include "rules/format/RuleTests.h"
#include "rules/format/ValueWords.h"

#include <algorithm>
#include <cmath>

namespace Quorvane {

namespace {

using Trail = std::vector<RecordedHop>;

char const* s_verdictName(bool isSpam, bool isHam) {
    if (isSpam) {
        return "spam";
    }
    return isHam ? "ham" : "none";
}

bool s_has(Trail const& trail, HopRole role) {
    return std::any_of(trail.begin(), trail.end(),
                       [role](RecordedHop const& hop) { return hop.role == role; });
}

// The scan found no public hop: why not?
std::string s_noHopReason(Trail const& trail) {
    if (trail.empty()) {
        return "the message has no Received header";
    }
    auto const end = std::find_if(trail.begin(), trail.end(), [](RecordedHop const& hop) {
        return hop.role == HopRole::ipv6End || hop.role == HopRole::trustedPartner ||
               hop.role == HopRole::scoredEnd;
    });
    if (end == trail.end()) {
        return "no public address";
    }
    if (end->role == HopRole::ipv6End) {
        return end == trail.begin() ? "the newest hop came by IPv6"
                                    : "no public address before a hop that came by IPv6";
    }
    return end->role == HopRole::trustedPartner
               ? "the message came from a relay that filters already"
               : "the reputation of " + end->address.asString(true) +
                     " ended the walk before any public hop";
}

std::string s_sum(RecordedVerdict const& verdict) {
    auto text = numberText(verdict.confidence);
    if (verdict.adjust != 0.0) {
        text += (verdict.adjust < 0 ? " - " : " + ") + numberText(std::abs(verdict.adjust));
    }
    return text + " spam";
}

std::string s_decidedReason(RecordedVerdict const& verdict, DeepHeaderSettings const& settings) {
    auto const spam = numberText(settings.spamThreshold);
    if (verdict.isSpam) {
        return s_sum(verdict) + " reaches the spam threshold " + spam;
    }
    auto const ham = numberText(1.0 - verdict.confidence) + " ham";
    if (verdict.isHam) {
        return ham + " reaches the ham threshold " + numberText(settings.hamThreshold);
    }
    return "not sure enough: " + s_sum(verdict) + " is below the spam threshold " + spam + ", " +
           ham + " below the ham threshold " + numberText(settings.hamThreshold);
}

std::string s_undecidedReason(TreeUse use) {
    if (use == TreeUse::leftOut) {
        return "no rule decided: no elite rule did, and the rules leave the tree out";
    }
    return use == TreeUse::switchedOff
               ? "thresholds switch the tree off (a spam threshold of 95 or more)"
               : "no rule decided";
}

std::string s_changes(Alternative const& alternative, AttributeVector const& now) {
    std::string text;
    for (auto const& [attribute, value] : alternative.changes) {
        auto const index = static_cast<std::size_t>(attribute);
        text += (text.empty() ? "" : " and ") + testText({attribute, Comparison::equals, value}) +
                " (it is " + valueText(index, now[index]) + ")";
    }
    return text;
}

// These are not facts of the message: its names are left out.
std::vector<std::string> s_words(Alternative const& alternative) {
    std::vector<std::string> words;
    for (auto const& [attribute, value] : alternative.changes) {
        words.push_back(Rules::fillSentence(Rules::valueSentence(attribute, value), {}));
    }
    return words;
}

std::string s_end(Alternative const& alternative, Rules::RuleNames const& names) {
    if (alternative.node == 0) {
        return "; then no rule decides";
    }
    auto const node = "; then node " + std::to_string(alternative.node) +
                      inBrackets(deciderName(names, alternative.decision, alternative.node));
    return alternative.isSpam || alternative.isHam ? node + " decides" : node + " gives no verdict";
}

Requirement s_requirement(Alternative const& alternative, AttributeVector const& now,
                          Rules::RuleNames const& names) {
    return {verdictName(alternative), s_changes(alternative, now) + s_end(alternative, names),
            s_words(alternative)};
}

bool s_isSameChange(Alternative const& one, Alternative const& other) {
    return one.changes.size() == 1 && other.changes.size() == 1 &&
           one.changes[0].attribute == other.changes[0].attribute &&
           one.changes[0].value == other.changes[0].value;
}

// No other threshold can be set.
void s_addThreshold(std::vector<Requirement>& list, std::string const& verdict, double threshold) {
    if (isShare(threshold)) {
        list.push_back(
            {verdict, "a " + verdict + " threshold of " + numberText(threshold) + " or less", {}});
    }
}

// A node decided, but neither threshold was reached: at which thresholds would it have been?
void s_addThresholds(std::vector<Requirement>& list, RecordedVerdict const& verdict,
                     DeepHeaderSettings const& settings) {
    if (verdict.node == 0 || verdict.isSpam || verdict.isHam ||
        !isSupported(verdict.support, settings.minSupport)) {
        return;
    }
    s_addThreshold(list, "spam", verdict.spamScore);
    s_addThreshold(list, "ham", 1.0 - verdict.confidence);
}

// The fewest changes that lead to ham may be a single one, which is in the list already.
void s_addSingleChanges(std::vector<Requirement>& list, ScanRecord const& record,
                        Rules::RuleNames const& names) {
    if (!record.singleChanges) {
        return;
    }
    for (auto const& change : record.singleChanges->list) {
        if (std::none_of(
                record.alternatives.begin(), record.alternatives.end(),
                [&change](Alternative const& known) { return s_isSameChange(known, change); })) {
            list.push_back(s_requirement(change, record.attributes, names));
        }
    }
}

// A walk that ended at an IPv6 relay continues if that relay is declared as the site's own, or if
// IPv6 relays are judged.
std::vector<Requirement> s_wayOn(Trail const& trail) {
    for (auto const& hop : trail) {
        if (hop.role == HopRole::ipv6End) {
            auto const relay = hop.address.asString(true);
            return {{"any", "--internal " + relay + ", if that is a relay of this site", {}},
                    {"any", "--ipv6 judge, which judges " + relay + " by its names", {}}};
        }
    }
    return {};
}

} // namespace

char const* verdictName(RecordedVerdict const& verdict) {
    return s_verdictName(verdict.isSpam, verdict.isHam);
}

char const* verdictName(Alternative const& alternative) {
    return s_verdictName(alternative.isSpam, alternative.isHam);
}

std::string reasonText(ScanRecord const& record, DeepHeaderSettings const& settings) {
    if (record.failure) {
        return s_has(record.trail, HopRole::unreadable)
                   ? "the scan failed: a Received header cannot be read"
                   : "the scan failed: " + *record.failure;
    }
    if (!record.isJudged()) {
        return record.isVector
                   ? "nothing to judge: a message without a public hop has no attributes"
                   : s_noHopReason(record.trail);
    }
    return record.verdict.decision == Decision::none ? s_undecidedReason(record.tree.use)
                                                     : s_decidedReason(record.verdict, settings);
}

std::vector<Requirement> requirements(ScanRecord const& record, DeepHeaderSettings const& settings,
                                      Rules::RuleNames const& names) {
    if (record.failure || !record.isJudged()) {
        return s_wayOn(record.trail);
    }
    std::vector<Requirement> list;
    for (auto const& alternative : record.alternatives) {
        list.push_back(s_requirement(alternative, record.attributes, names));
    }
    s_addSingleChanges(list, record, names);
    s_addThresholds(list, record.verdict, settings);
    return list;
}

std::string singleChangeNote(ScanRecord const& record) {
    if (!record.singleChanges) {
        return {};
    }
    if (!record.singleChanges->areAllTried) {
        return "the rules name too many values to try every change of a single attribute";
    }
    return record.singleChanges->list.empty()
               ? "no change of a single attribute would have let this message pass"
               : "";
}

} // namespace Quorvane
