// SPDX-License-Identifier: Apache-2.0
#include "apps/story/StepText.h"

#include <array>
#include <cstddef>

namespace Quorvane {

namespace {

struct Words {
    char const* m_name;
    char const* m_text;
};

// Each table is in the order of its enumeration.
constexpr auto roles = std::to_array<Words>({
    {"unreadable", "cannot be read: the scan fails"},
    {"internal", "our own relay, skipped"},
    {"trusted", "trusted relay, skipped"},
    {"authenticated", "authenticated submission, skipped"},
    {"trustedPartner", "a relay that filters already: the walk ends here"},
    {"ipv6End", "IPv6: the walk ends here"},
    {"scoredEnd", "the walk ends here"},
    {"listed", "not judged: the scan failed"},
    {"privateAddress", "private address"},
    {"noAddress", "no address"},
    {"firstPublic", "first public hop, judged"},
    {"analysed", "public, judged"},
    {"publicNotJudged", "public"},
    {"notLookedAt", "not looked at"},
});
static_assert(roles.size() == static_cast<std::size_t>(HopRole::notLookedAt) + 1);

constexpr auto questions =
    std::to_array<char const*>({"reverseName", "announcedName", "envelopeDomain"});

constexpr auto lookupResults = std::to_array<Words>({
    {"notAsked", "not asked"},
    {"answered", "exists"},
    {"doesNotExist", "does not exist"},
    {"failed", "the look-up failed"},
    {"late", "no answer before the deadline"},
});
static_assert(lookupResults.size() == static_cast<std::size_t>(LookupResult::late) + 1);

constexpr auto outcomes = std::to_array<Words>({
    {"notReached", "not reached: another rule ended the run"},
    {"level", "left out: its level is above the settings' maximum"},
    {"noMatch", "does not match"},
    {"unknownType", "never fires: it neither adjusts nor decides"},
    {"support", "left out: seen too rarely in training"},
    {"adjusted", "adjusts"},
    {"passedOver", "another was chosen before"},
    {"replaced", "replaced by a later one"},
    {"chosen", "chosen"},
});
static_assert(outcomes.size() == static_cast<std::size_t>(RuleOutcome::chosen) + 1);

constexpr auto treeUses =
    std::to_array<char const*>({"notReached", "eliteDecided", "leftOut", "switchedOff", "walked"});
static_assert(treeUses.size() == static_cast<std::size_t>(TreeUse::walked) + 1);

constexpr auto walkEnds = std::to_array<Words>({
    {"notWalked", ""},
    {"leaf", "a leaf"},
    {"sureEnough", "sure enough of spam to stop here"},
    {"rareChild", "the branch that fits was seen too rarely in training"},
    {"noBranch", "no branch of the tree fits: no decision"},
    {"badNode", "the rules name a node or an attribute that does not exist: no decision"},
    {"tooLong", "the rules lead in circles: no decision"},
});
static_assert(walkEnds.size() == static_cast<std::size_t>(WalkEnd::tooLong) + 1);

auto const& s_of(auto const& table, auto value) {
    return table.at(static_cast<std::size_t>(value));
}

} // namespace

char const* roleName(HopRole role) {
    return s_of(roles, role).m_name;
}

std::string roleText(RecordedHop const& hop) {
    std::string const text = s_of(roles, hop.role).m_text;
    return hop.role == HopRole::scoredEnd
               ? "reputation score " + std::to_string(hop.score) + ": " + text
               : text;
}

char const* questionName(RecordedLookup::Question question) {
    return s_of(questions, question);
}

char const* lookupName(LookupResult result) {
    return s_of(lookupResults, result).m_name;
}

char const* lookupText(LookupResult result) {
    return s_of(lookupResults, result).m_text;
}

char const* outcomeName(RuleOutcome outcome) {
    return s_of(outcomes, outcome).m_name;
}

std::string outcomeText(RecordedRule const& rule, ScanRecord const& record) {
    if (rule.outcome == RuleOutcome::replaced) {
        return "replaced by rule " + std::to_string(record.rules.at(rule.replacedBy).code);
    }
    return s_of(outcomes, rule.outcome).m_text;
}

char const* treeUseName(TreeUse use) {
    return s_of(treeUses, use);
}

char const* walkEndName(WalkEnd end) {
    return s_of(walkEnds, end).m_name;
}

char const* walkEndText(WalkEnd end) {
    return s_of(walkEnds, end).m_text;
}

} // namespace Quorvane
