// SPDX-License-Identifier: Apache-2.0
//
// First stage of a scan: the message's addresses, the domain of its Message-ID, and the hops to
// judge, newest first. Hops that the site trusts and authenticated submissions are left out; the
// list ends before a trusted anti-spam relay, an IPv6 relay or a relay of good reputation, because
// what lies behind one of those was judged elsewhere or cannot be judged by these rules.
#include "adapter/HeaderFields.h"

#include "adapter/DeepHeaderAdapter.h"
#include "platform/Strings.h"
#include "platform/TrustedMTASet.h"

namespace Quorvane {

namespace {

constexpr auto npos = std::string::npos;

// Scores are 0..9; what lies above is no score.
constexpr std::uint32_t highestScore = 9;

using MsgProperties = DeepHeaderAdapter::MsgProperties;

bool s_isNamed(Header const& header, char const* name) {
    return stringCompareNoCase(header.type(), name, 0) == 0;
}

bool s_endsTrail(TrustedMTASet const& trusted, IPAddress const& address) {
    return trusted.isTrustedAntiSpamMTA(address) || address.isV6();
}

// Unsigned on both sides: a negative threshold is never reached, one of 0 always.
bool s_isScoreReached(std::uint32_t score, std::int32_t threshold) {
    return score >= static_cast<std::uint32_t>(threshold) && score <= highestScore;
}

void s_recordScoredHop(MsgProperties& props, IPAddress const& address, std::uint32_t score) {
    props.scoredHopFound = 1;
    props.scoredHopIP = address.asString(true);
    props.scoredHopScore = static_cast<std::int32_t>(score);
}

// True when the host gave at least one address: then none is taken from the headers.
bool s_takeGivenAddresses(MsgProperties& props, DeepHeaderQuery const& query) {
    if (query.recipient().isNull() && query.headerFrom().isNull() && query.from().isNull()) {
        return false;
    }
    props.headerFrom = query.headerFrom();
    props.envelopeFrom = query.from();
    props.recipient = query.recipient();
    return true;
}

// True when the header was one of the address headers. Of authors and recipients the last header
// counts, of envelope senders the first.
bool s_takeAddressHeader(MsgProperties& props, Header const& header) {
    if (s_isNamed(header, "from")) {
        props.headerFrom = s_createEmailAddress(header.value());
    } else if (s_isNamed(header, "To")) {
        props.recipient = s_createEmailAddress(header.value());
    } else if (s_isNamed(header, "Return-Path") || s_isNamed(header, "X-QV-ORIG-ENV-FROM")) {
        if (props.envelopeFrom.isNull()) {
            props.envelopeFrom = s_createEmailAddress(header.value());
        }
    } else {
        return false;
    }
    return true;
}

void s_takeMessageIdDomain(MsgProperties& props, std::string const& value) {
    props.messageIdDomain.clear();
    auto const at = value.find('@');
    if (at == npos) {
        return;
    }
    auto const start = at + 1;
    auto const end = value.find('>', start);
    copyStringToLower(value, props.messageIdDomain, start, end == npos ? npos : end - start);
}

void s_takeOtherHeader(MsgProperties& props, Header const& header, bool areAddressesGiven) {
    if (!areAddressesGiven && s_takeAddressHeader(props, header)) {
        return;
    }
    if (s_isNamed(header, "Message-ID")) {
        s_takeMessageIdDomain(props, header.value());
    }
}

// The hop that the host is about to add for the connection at hand. Its score is the host's own,
// and it is judged even when it is private or authenticated: the host asked about it. True when the
// trail ends here.
bool s_takeCurrentHop(MsgProperties& props, DeepHeaderQuery const& query,
                      MessageProperties const& message, TrustedMTASet const& trusted) {
    MsgReceived hop(query.currentReceived().value());
    auto const& address = hop.address();
    if (!address.isNull()) {
        if (s_endsTrail(trusted, address)) {
            return true;
        }
        if (trusted.isTrustedMTA(address)) {
            return false;
        }
        auto const score = message.clientScore();
        if (s_isScoreReached(score, query.settings().scoreThreshold)) {
            s_recordScoredHop(props, address, score);
            return true;
        }
    }
    hop.isForged(query.currentIsForged());
    props.receivedList.push_back(hop);
    return false;
}

// A hop that the message itself tells of. True when the trail ends here.
bool s_takeHop(MsgProperties& props, std::string const& value, ReceivedHeaderAnalysis& analysis,
               TrustedMTASet const& trusted, std::int32_t scoreThreshold) {
    MsgReceived hop(value);
    if (hop.authenticated()) {
        return false;
    }
    auto const& address = hop.address();
    if (!address.isNull()) {
        if (s_endsTrail(trusted, address)) {
            return true;
        }
        if (!IPAddress::isPrivateAddress(address)) {
            if (trusted.isTrustedMTA(address)) {
                return false;
            }
            auto const score =
                static_cast<std::uint32_t>(s_getTVAS(analysis, address.asString(true)));
            if (s_isScoreReached(score, scoreThreshold)) {
                s_recordScoredHop(props, address, score);
                return true;
            }
        }
    }
    props.receivedList.push_back(hop);
    return false;
}

} // namespace

int s_getTVAS(ReceivedHeaderAnalysis& analysis, std::string const& ip) {
    for (auto const& entry : analysis) {
        auto const& address = entry.m_received.address();
        if (!address.isNull() && address.asString(true) == ip) {
            return entry.m_score;
        }
    }
    return 0;
}

EmailAddress s_createEmailAddress(std::string const& text) {
    return EmailAddress::rfc5322Parse(text, true);
}

void DeepHeaderAdapter::getFields(MsgProperties& props, DeepHeaderQuery& query) {
    auto properties = query.messageProperties();
    props.attributes[Attribute::statusIndicated] =
        properties->status() == indicatedMessageStatus ? 1 : 0;
    bool const areAddressesGiven = s_takeGivenAddresses(props, query);

    auto trustedRef = TrustedMTASetRef::instance(false);
    TrustedMTASet const& trusted = *trustedRef.operator->();
    bool isTrailEnded = !query.currentReceived().isNull() &&
                        s_takeCurrentHop(props, query, *properties.operator->(), trusted);

    auto& analysis = properties->receivedHeaderAnalysis();
    auto const scoreThreshold = query.settings().scoreThreshold;
    for (auto const& header : query.headers().headers()) {
        if (!s_isNamed(header, "received")) {
            s_takeOtherHeader(props, header, areAddressesGiven);
        } else if (!isTrailEnded) {
            isTrailEnded = s_takeHop(props, header.value(), analysis, trusted, scoreThreshold);
        }
    }
}

} // namespace Quorvane
