// SPDX-License-Identifier: Apache-2.0
//
// Third stage of a scan: completes the attribute vector from the hop slots and the addresses, with
// at most two DNS look-ups, which the previous stage has started.
#include "adapter/DeepHeaderAdapter.h"
#include "adapter/NameRelation.h"
#include "adapter/ScanRecorder.h"

namespace Quorvane {

namespace {

using SingleReceiver = DeepHeaderAdapter::SingleReceiver;

PendingLookup s_startLookup(std::string const& name) {
    return name.empty() ? PendingLookup()
                        : Resolver::instance().start(RecordType::mailName, name, RecordClass::IN);
}

std::int32_t s_relation(std::string const& a, std::string const& b) {
    return a.empty() || b.empty() ? Code::unknown : s_domainMatch(a, b);
}

std::int32_t s_yesOrNo(bool isSo) {
    return isSo ? Code::yes : Code::no;
}

std::int32_t s_doesResolve(LookupResult result) {
    return s_yesOrNo(result == LookupResult::answered);
}

std::int32_t s_sameAddress(SingleReceiver const& deep, SingleReceiver const& first) {
    if (deep.ip.empty()) {
        return Code::unknown;
    }
    return s_yesOrNo(deep.ip == first.ip);
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

void NameLookups::start(std::string const& announced, std::string const& sender) {
    m_announced = s_startLookup(announced);
    m_sender = s_startLookup(sender);
    m_arePending = true;
}

NameLookups::Answers NameLookups::finish() {
    Answers const answers{m_announced.wait().result(), m_sender.wait().result()};
    *this = NameLookups();
    return answers;
}

// A literal needs no look-up, and where nothing was analysed there is nothing to look up.
void DeepHeaderAdapter::startLookups(MsgProperties& props) {
    std::string const nothing;
    auto const& first = props.receivers[0];
    props.lookups.start(first.heloIsIP == Code::no ? first.helo : nothing,
                        props.envelopeFrom.domain());
}

void DeepHeaderAdapter::getAttributes(MsgProperties& props) {
    std::string const& fromDomain = props.headerFrom.domain();
    std::string const& envFromDomain = props.envelopeFrom.domain();
    auto& first = props.receivers[0];
    auto const& deep = props.receivers[1];
    auto& attributes = props.attributes;

    if (!props.lookups.arePending()) {
        startLookups(props);
    }
    auto const answers = props.lookups.finish();
    if (props.recorder != nullptr) {
        props.recorder->recordLookups(answers, first.helo, envFromDomain);
    }

    attributes[Attribute::messageIdHasDot] =
        props.messageIdDomain.find('.') != std::string::npos ? 1 : 0;
    attributes[Attribute::fromMatchesMessageId] = s_relation(fromDomain, props.messageIdDomain);
    attributes[Attribute::fromMatchesEnvelope] = s_relation(fromDomain, envFromDomain);
    s_copyFirstHop(attributes, first);
    attributes[Attribute::firstHeloResolves] =
        first.heloIsIP == Code::no ? s_doesResolve(answers.m_announced) : first.heloIsIP;
    attributes[Attribute::envelopeDomainResolves] = s_doesResolve(answers.m_sender);
    attributes[Attribute::heloIsRecipientNotEnvelope] =
        isThreeWayMismatch(first.helo, props.recipient.domain(), envFromDomain) ? 1 : 0;
    s_copyDeepHop(attributes, deep);
    attributes[Attribute::deepSameAddress] = s_sameAddress(deep, first);
}

} // namespace Quorvane
