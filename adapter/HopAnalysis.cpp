// SPDX-License-Identifier: Apache-2.0
//
// Part of the second stage of a scan: one hop, its names classified and related to each other and
// to the message's addresses. The walk along the hops is in ReceivedChain.cpp.
#include "adapter/DeepHeaderAdapter.h"
#include "adapter/NameRelation.h"
#include "platform/DynamicIdentifier.h"
#include "platform/Strings.h"

namespace Quorvane {

namespace {

constexpr auto npos = std::string::npos;

using MsgProperties = DeepHeaderAdapter::MsgProperties;
using SingleReceiver = DeepHeaderAdapter::SingleReceiver;

bool s_contains(std::string_view text, std::string_view part) {
    return text.find(part) != npos;
}

void s_eraseFirst(std::string& text, char c) {
    if (auto const found = text.find(c); found != npos) {
        text.erase(found, 1);
    }
}

// Results over all hops stay at "yes" once they were yes; a "no" only replaces "unknown".
void s_mergeResult(std::int32_t& whole, std::int32_t ofHop) {
    if (ofHop == Code::yes) {
        whole = Code::yes;
    } else if (whole == Code::unknown) {
        whole = Code::no;
    }
}

void s_countUnless(std::int32_t& counter, std::int32_t code) {
    if (code != Code::yes) {
        ++counter;
    }
}

// --- the relation of one hop's names to the message's addresses ---------------------------------

void s_relateToAuthor(SingleReceiver& slot, MsgProperties& props) {
    slot.fromDomainMatchesHelo = Code::unknown;
    slot.fromDomainMatchesReverse = Code::unknown;
    auto const& domain = props.headerFrom.domain();
    if (!domain.empty()) {
        slot.fromDomainMatchesHelo = s_domainMatch(slot.helo, domain);
        if (slot.reverseDynamic != Code::unknown) {
            slot.fromDomainMatchesReverse = s_domainMatch(slot.reverseName, domain);
        }
    }
}

void s_mergeAuthorResults(SingleReceiver& slot, MsgProperties& props) {
    bool const isHeloKnown = slot.fromDomainMatchesHelo != Code::unknown;
    bool const isReverseKnown = slot.fromDomainMatchesReverse != Code::unknown;
    if (isHeloKnown) {
        s_mergeResult(props.attributes[Attribute::fromMatchesHelo], slot.fromDomainMatchesHelo);
    }
    if (isReverseKnown) {
        s_mergeResult(props.attributes[Attribute::fromMatchesReverse],
                      slot.fromDomainMatchesReverse);
    }
    slot.fromDomainMatchesBoth = Code::notApplicable;
    if (isHeloKnown && isReverseKnown) {
        bool const bothMatch =
            slot.fromDomainMatchesHelo == Code::yes && slot.fromDomainMatchesReverse == Code::yes;
        slot.fromDomainMatchesBoth = bothMatch ? Code::yes : Code::no;
        s_mergeResult(props.attributes[Attribute::fromMatchesBoth], slot.fromDomainMatchesBoth);
    }
}

void s_relateToEnvelopeSender(SingleReceiver& slot, MsgProperties const& props) {
    slot.envFromDomainMatches = Code::notApplicable;
    auto const& domain = props.envelopeFrom.domain();
    if (slot.heloIsDomain != Code::no && slot.reverseDynamic != Code::unknown && !domain.empty()) {
        bool const bothMatch =
            s_domainMatch(slot.helo, domain) == 1 && s_domainMatch(slot.reverseName, domain) == 1;
        slot.envFromDomainMatches = bothMatch ? Code::yes : Code::no;
    }
}

void s_relateToMessageId(SingleReceiver const& slot, MsgProperties& props) {
    auto const& domain = props.messageIdDomain;
    if (slot.helo.empty() || domain.empty()) {
        return;
    }
    auto& matchesHelo = props.attributes[Attribute::messageIdMatchesHelo];
    auto& matchesReverse = props.attributes[Attribute::messageIdMatchesReverse];
    if (matchesHelo != Code::yes) {
        matchesHelo = s_domainMatch(slot.helo, domain);
    }
    if (slot.reverseIsDomain != Code::unknown && matchesReverse != Code::yes) {
        matchesReverse =
            matchesHelo == Code::no ? Code::no : s_domainMatch(slot.reverseName, domain);
    }
}

void s_count(SingleReceiver const& slot, MsgProperties& props) {
    auto& attributes = props.attributes;
    s_countUnless(attributes[Attribute::hopsHeloMismatchesReverse], slot.heloMatchesReverse);
    s_countUnless(attributes[Attribute::hopsReverseNoDomain], slot.reverseIsDomain);
    s_countUnless(attributes[Attribute::hopsHeloNoDomain], slot.heloIsDomain);
    if (slot.reverseDynamic == Code::yes) {
        ++attributes[Attribute::hopsReverseDynamic];
    }
}

} // namespace

// A name with fewer than three labels belongs to an organisation.
int DeepHeaderAdapter::isDynamicHostname(std::string& name) {
    if (!hasManyLabels(name)) {
        return 0;
    }
    return Telvanis::DynamicIdentifierSingleton::instance(false)->match(name) ? 1 : 0;
}

void DeepHeaderAdapter::classifyNames(SingleReceiver& slot) {
    auto const& reverse = slot.reverseName;
    if (reverse.empty() || reverse == "unknown") {
        slot.reverseDynamic = Code::unknown;
        slot.reverseIsDomain = Code::unknown;
    } else {
        slot.reverseDynamic = isDynamicHostname(slot.reverseName);
        slot.reverseIsDomain = s_contains(reverse, ".") ? Code::yes : Code::no;
    }
    auto const& helo = slot.helo;
    slot.heloIsIP = Code::notApplicable;
    slot.heloDynamic = Code::notApplicable;
    if (helo.empty()) {
        slot.heloIsDomain = Code::unknown;
    } else if (!s_contains(helo, ".") || s_contains(helo, "localhost") ||
               s_contains(helo, "localdomain")) {
        slot.heloIsDomain = Code::no;
    } else if (IPAddress::isValidIPAddress(helo)) {
        slot.heloIsDomain = Code::yes;
        slot.heloIsIP = Code::literal;
        slot.heloDynamic = Code::literal;
        slot.heloEqualsIP = helo == slot.ip ? Code::literal : Code::no;
    } else {
        slot.heloIsDomain = Code::yes;
        slot.heloIsIP = Code::no;
        // Most machines announce the name that they have; then the patterns have been asked.
        bool const isKnown = slot.reverseDynamic != Code::unknown && helo == reverse;
        slot.heloDynamic = isKnown ? slot.reverseDynamic : isDynamicHostname(slot.helo);
    }
}

int DeepHeaderAdapter::parseSingleReceiver(MsgReceived& hop, SingleReceiver& slot,
                                           MsgProperties& props) {
    copyStringToLower(hop.from(), slot.helo, 0, npos);
    auto const& address = hop.address();
    slot.hasIP = address.isNull() ? Code::no : Code::yes;
    if (!address.isNull()) {
        slot.ip = address.asString(true);
    }
    s_eraseFirst(slot.helo, '[');
    s_eraseFirst(slot.helo, ']');
    copyStringToLower(hop.reverseName(), slot.reverseName, 0, npos);
    classifyNames(slot);
    slot.heloMatchesReverse =
        slot.reverseDynamic == Code::unknown || slot.heloIsDomain == Code::unknown
            ? Code::unknown
            : s_domainMatch(slot.reverseName, slot.helo);
    s_relateToAuthor(slot, props);
    s_mergeAuthorResults(slot, props);
    s_relateToEnvelopeSender(slot, props);
    s_relateToMessageId(slot, props);
    s_count(slot, props);
    return 1;
}

} // namespace Quorvane
