// SPDX-License-Identifier: Apache-2.0
//
// Third stage of a scan: completes the attribute vector from the hop slots and the addresses, with
// at most two DNS look-ups.
#include "adapter/DeepHeaderAdapter.h"
#include "adapter/NameRelation.h"
#include "platform/Resolver.h"

namespace Quorvane {

namespace {

using SingleReceiver = DeepHeaderAdapter::SingleReceiver;
using AttributeVector = decltype(DeepHeaderAdapter::MsgProperties::attributes);

static_assert(std::tuple_size<AttributeVector>::value == attributeTable.size());

std::int32_t s_relation(std::string const& a, std::string const& b) {
    return a.empty() || b.empty() ? Code::unknown : s_domainMatch(a, b);
}

// Nothing is asked for an empty name, which does not resolve.
PendingLookup s_startLookup(std::string const& name) {
    return name.empty() ? PendingLookup()
                        : Resolver::instance().start(RecordType::mailName, name, RecordClass::IN);
}

// A literal needs no look-up, and where nothing was analysed there is nothing to look up.
PendingLookup s_startHeloLookup(SingleReceiver const& hop) {
    return hop.heloIsIP == Code::no ? s_startLookup(hop.helo) : PendingLookup();
}

std::int32_t s_resolves(PendingLookup& lookup) {
    return lookup.wait().isEmpty() ? Code::no : Code::yes;
}

std::int32_t s_sameAddress(SingleReceiver const& deep, SingleReceiver const& first) {
    if (deep.ip.empty()) {
        return Code::unknown;
    }
    return deep.ip == first.ip ? Code::yes : Code::no;
}

void s_copyFirstHop(AttributeVector& attributes, SingleReceiver const& hop) {
    attributes[Attribute::firstHeloIsDomain] = hop.heloIsDomain;
    attributes[Attribute::firstReverseDynamic] = hop.reverseDynamic;
    attributes[Attribute::firstForged] = hop.isForged;
    attributes[Attribute::firstHeloMatchesReverse] = hop.heloMatchesReverse;
    attributes[Attribute::firstFromMatchesHelo] = hop.fromDomainMatchesHelo;
    attributes[Attribute::firstHeloDynamic] = hop.heloDynamic;
    attributes[Attribute::firstFromMatchesBoth] = hop.fromDomainMatchesBoth;
    attributes[Attribute::firstEnvelopeMatches] = hop.envFromDomainMatches;
    attributes[Attribute::firstFromMatchesReverse] = hop.fromDomainMatchesReverse;
}

void s_copyDeepHop(AttributeVector& attributes, SingleReceiver const& hop) {
    attributes[Attribute::deepHeloIsDomain] = hop.heloIsDomain;
    attributes[Attribute::deepReverseDynamic] = hop.reverseDynamic;
    attributes[Attribute::deepHeloMatchesReverse] = hop.heloMatchesReverse;
    attributes[Attribute::deepFromMatchesHelo] = hop.fromDomainMatchesHelo;
    attributes[Attribute::deepFromMatchesReverse] = hop.fromDomainMatchesReverse;
    attributes[Attribute::deepHeloDynamic] = hop.heloDynamic;
}

} // namespace

void DeepHeaderAdapter::getAttributes(MsgProperties& props) {
    std::string const& fromDomain = props.headerFrom.domain();
    std::string envFromDomain = props.envelopeFrom.domain();
    std::string rcptDomain = props.recipient.domain();
    auto& first = props.receivers[0];
    auto const& deep = props.receivers[1];
    auto& attributes = props.attributes;

    // Both are under way before either is waited for: a scan then takes as long as the slower one.
    auto heloLookup = s_startHeloLookup(first);
    auto envelopeLookup = s_startLookup(envFromDomain);

    attributes[Attribute::messageIdHasDot] =
        props.messageIdDomain.find('.') != std::string::npos ? 1 : 0;
    attributes[Attribute::fromMatchesMessageId] = s_relation(fromDomain, props.messageIdDomain);
    attributes[Attribute::fromMatchesEnvelope] = s_relation(fromDomain, envFromDomain);
    s_copyFirstHop(attributes, first);
    attributes[Attribute::firstHeloResolves] =
        first.heloIsIP == Code::no ? s_resolves(heloLookup) : first.heloIsIP;
    attributes[Attribute::envelopeDomainResolves] = s_resolves(envelopeLookup);
    attributes[Attribute::heloIsRecipientNotEnvelope] =
        s_ThreeWayMisMatch(first.helo, rcptDomain, envFromDomain) ? 1 : 0;
    s_copyDeepHop(attributes, deep);
    attributes[Attribute::deepSameAddress] = s_sameAddress(deep, first);
}

} // namespace Quorvane
