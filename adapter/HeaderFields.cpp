// SPDX-License-Identifier: Apache-2.0
//
// First stage of a scan: the message's addresses, the domain of its Message-ID, and the hops to
// judge, newest first. Hops that the site trusts and authenticated submissions are skipped; the
// list ends before a trusted anti-spam relay, an IPv6 relay (unless the site has those judged) or a
// relay of good reputation, because what is older than one of those was judged elsewhere or cannot
// be judged by these rules.
#include "adapter/HeaderFields.h"

#include "adapter/DeepHeaderAdapter.h"
#include "adapter/ScanRecorder.h"
#include "platform/Strings.h"
#include "platform/TrustedMTASet.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace Quorvane {

namespace {

constexpr auto npos = std::string::npos;

// Scores are 0..9; a higher number is not a score.
constexpr std::uint32_t highestScore = 9;

using MsgProperties = DeepHeaderAdapter::MsgProperties;

// Unsigned on both sides: a negative threshold is never reached, one of 0 always.
bool s_isScoreReached(std::uint32_t score, std::int32_t threshold) {
    return score >= static_cast<std::uint32_t>(threshold) && score <= highestScore;
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
    auto const& type = header.type();
    if (isSameNoCase(type, "from")) {
        props.headerFrom = s_createEmailAddress(header.value());
    } else if (isSameNoCase(type, "To")) {
        props.recipient = s_createEmailAddress(header.value());
    } else if (isSameNoCase(type, "Return-Path") || isSameNoCase(type, "X-QV-ORIG-ENV-FROM")) {
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
    if (isSameNoCase(header.type(), "Message-ID")) {
        s_takeMessageIdDomain(props, header.value());
    }
}

int s_tableScore(ReceivedHeaderAnalysis const& analysis, IPAddress const& address) {
    auto const* const table = analysis.reputation();
    return table == nullptr ? 0 : table->score(address).value_or(0);
}

// Gives what s_getTVAS gives, for many hops: whoever writes a trail of thousands of hops must not
// make each of them search a list of thousands of relays.
class RelayScoreIndex {
  public:
    explicit RelayScoreIndex(ReceivedHeaderAnalysis const& analysis) : m_analysis(analysis) {
        m_scores.reserve(analysis.size());
        for (auto const& entry : analysis) {
            auto const& address = entry.m_received.address();
            if (!address.isNull()) {
                m_scores.emplace_back(address.bytes(), entry.m_score);
            }
        }
        // Stable: of equal addresses the first counts.
        std::stable_sort(m_scores.begin(), m_scores.end(), s_isBefore);
    }

    // REQUIRES: `address` is not null.
    int score(IPAddress const& address) const {
        Entry const sought(address.bytes(), 0);
        auto const found = std::lower_bound(m_scores.begin(), m_scores.end(), sought, s_isBefore);
        bool const isListed = found != m_scores.end() && found->first == sought.first;
        return isListed ? found->second : s_tableScore(m_analysis, address);
    }

  private:
    using Entry = std::pair<IPAddress::Bytes, std::int32_t>;

    static bool s_isBefore(Entry const& a, Entry const& b) { return a.first < b.first; }

    ReceivedHeaderAnalysis const& m_analysis;
    std::vector<Entry> m_scores;
};

// The walk along the hops, newest first: which are taken, and where it ends.
class TrailWalk {
  public:
    TrailWalk(MsgProperties& props, DeepHeaderQuery const& query, MessageProperties& message)
        : m_props(props), m_query(query), m_message(message),
          m_trustedRef(TrustedMTASetRef::instance(false)), m_trusted(*m_trustedRef.operator->()) {}

    // The hop that the host is about to add for the current connection. Its score is the host's
    // own, and it is judged even when it is private or authenticated: the host asked about it.
    void takeCurrent(std::string const& value) {
        auto& hop = begin(value, true);
        auto const& address = hop.address();
        auto const role = currentRole(address);
        if (role == HopRole::listed) {
            hop.isForged(m_query.currentIsForged());
        }
        end(address, role);
    }

    // A hop that is recorded in the message itself.
    void take(std::string const& value) {
        auto const& hop = begin(value, false);
        bool const isAuthenticated = hop.authenticated();
        auto const& address = hop.address();
        end(address, trailRole(address, isAuthenticated));
    }

    bool isEnded() const { return m_isEnded; }

  private:
    // The site's own newest relays are skipped: the walk begins where the message entered. The
    // first hop of another origin ends that, also one without address: nobody vouches for
    // anything older.
    bool isInternal(IPAddress const& address) {
        m_isInside = m_isInside && m_trusted.isInternalMTA(address);
        return m_isInside;
    }

    HopRole currentRole(IPAddress const& address) {
        if (isInternal(address)) {
            return HopRole::internal;
        }
        if (address.isNull()) {
            return HopRole::listed;
        }
        if (auto const role = endingRole(address); role != HopRole::listed) {
            return role;
        }
        return m_trusted.isTrustedMTA(address) ? HopRole::trusted
                                               : scoredRole(m_message.clientScore());
    }

    HopRole trailRole(IPAddress const& address, bool isAuthenticated) {
        if (isInternal(address)) {
            return HopRole::internal;
        }
        if (isAuthenticated) {
            return HopRole::authenticated;
        }
        if (address.isNull()) {
            return HopRole::listed;
        }
        if (auto const role = endingRole(address); role != HopRole::listed) {
            return role;
        }
        if (IPAddress::isPrivateAddress(address)) {
            return HopRole::listed;
        }
        if (m_trusted.isTrustedMTA(address)) {
            return HopRole::trusted;
        }
        return scoredRole(static_cast<std::uint32_t>(trailScore(address)));
    }

    int trailScore(IPAddress const& address) {
        if (!m_relayScores) {
            m_relayScores.emplace(m_message.receivedHeaderAnalysis());
        }
        return m_relayScores->score(address);
    }

    HopRole endingRole(IPAddress const& address) const {
        if (m_trusted.isTrustedAntiSpamMTA(address)) {
            return HopRole::trustedPartner;
        }
        return m_trusted.countsAsV6(address) ? HopRole::ipv6End : HopRole::listed;
    }

    HopRole scoredRole(std::uint32_t score) {
        m_score = score;
        return s_isScoreReached(score, m_query.settings().scoreThreshold) ? HopRole::scoredEnd
                                                                          : HopRole::listed;
    }

    MsgReceived& begin(std::string const& value, bool isCurrent) {
        m_score = 0;
        m_hop.clear();
        auto& hop = m_hop.emplace_back(value);
        if (m_props.recorder != nullptr) {
            m_props.recorder->beginHop(hop, isCurrent);
        }
        return hop;
    }

    void end(IPAddress const& address, HopRole role) {
        if (m_props.recorder != nullptr) {
            m_props.recorder->endHop(role, m_score);
        }
        if (role == HopRole::listed) {
            m_props.receivedList.splice(m_props.receivedList.end(), m_hop);
        } else if (role == HopRole::scoredEnd) {
            m_props.scoredHopFound = 1;
            m_props.scoredHopIP = address.asString(true);
            m_props.scoredHopScore = static_cast<std::int32_t>(m_score);
        }
        m_isEnded = endsWalk(role);
    }

    MsgProperties& m_props;
    DeepHeaderQuery const& m_query;
    MessageProperties& m_message;
    TrustedMTASetRef m_trustedRef;
    TrustedMTASet const& m_trusted;
    std::optional<RelayScoreIndex> m_relayScores; // once a hop of the trail needs it
    decltype(MsgProperties::receivedList) m_hop;  // the current one, until it has a role
    std::uint32_t m_score = 0;                    // of the current hop
    bool m_isInside = true;                       // all hops so far came from relays of the site
    bool m_isEnded = false;
};

} // namespace

bool isReceivedHeader(Header const& header) {
    return isSameNoCase(header.type(), "received");
}

bool endsWalk(HopRole role) {
    return role == HopRole::trustedPartner || role == HopRole::ipv6End ||
           role == HopRole::scoredEnd;
}

int s_getTVAS(ReceivedHeaderAnalysis& analysis, std::string const& ip) {
    for (auto const& entry : analysis) {
        auto const& address = entry.m_received.address();
        if (!address.isNull() && address.asString(true) == ip) {
            return entry.m_score;
        }
    }
    return s_tableScore(analysis, IPAddress(ip));
}

EmailAddress s_createEmailAddress(std::string const& text) {
    return EmailAddress::rfc5322Parse(text, true);
}

void DeepHeaderAdapter::getFields(MsgProperties& props, DeepHeaderQuery& query) {
    auto properties = query.messageProperties();
    props.attributes[Attribute::statusIndicated] =
        properties->status() == indicatedMessageStatus ? 1 : 0;
    bool const areAddressesGiven = s_takeGivenAddresses(props, query);

    TrailWalk walk(props, query, *properties.operator->());
    if (!query.currentReceived().isNull()) {
        walk.takeCurrent(query.currentReceived().value());
    }
    for (auto const& header : query.headers().headers()) {
        if (!isReceivedHeader(header)) {
            s_takeOtherHeader(props, header, areAddressesGiven);
        } else if (!walk.isEnded()) {
            walk.take(header.value());
        }
    }
}

} // namespace Quorvane
