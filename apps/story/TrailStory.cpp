// SPDX-License-Identifier: Apache-2.0
#include "apps/story/TrailStory.h"

#include "apps/host/OwnHops.h"
#include "MsgReceived.h"
#include "platform/TrustedMTASet.h"

#include <exception>

namespace Quorvane {

namespace {

constexpr std::uint32_t highestScore = 9;

bool s_endsWalk(HopRole role) {
    return role == HopRole::endsByIPv6 || role == HopRole::endsByAntiSpam ||
           role == HopRole::endsByScore || role == HopRole::unreadable;
}

class TrailTeller {
  public:
    TrailTeller(ScanHost const& host, MessageFacts const& facts)
        : m_host(host), m_facts(facts), m_trusted(TrustedMTASetRef::instance(false)) {}

    void tellOwn(Header const& header) {
        auto hop = read(header);
        hop.m_role = HopRole::ownRelay;
        add(hop);
    }

    void tellCurrent(Header const& header) {
        m_isCurrent = true;
        add(read(header));
        m_isCurrent = false;
    }

    void tell(Header const& header) { add(read(header)); }

    std::vector<StoryHop> take() { return std::move(m_hops); }

  private:
    StoryHop read(Header const& header) const {
        StoryHop hop;
        hop.m_isCurrent = m_isCurrent;
        try {
            MsgReceived const received(header.value());
            bool const isAuthenticated = !m_isCurrent && received.authenticated();
            auto const address = received.address();
            hop.m_address = address.asString(true);
            hop.m_role = role(address, isAuthenticated, hop.m_score);
            hop.m_helo = received.from();
            hop.m_reverseName = received.reverseName();
            hop.m_by = received.by();
        } catch (std::exception const&) {
            hop.m_role = HopRole::unreadable;
        }
        return hop;
    }

    // What the walk makes of a hop; the one that the host is about to add is neither asked for
    // authentication nor for a private address, and its score is the client's.
    HopRole role(IPAddress const& address, bool isAuthenticated, std::uint32_t& score) const {
        if (isAuthenticated) {
            return HopRole::authenticated;
        }
        if (address.isNull()) {
            return HopRole::noAddress;
        }
        auto const& trusted = *m_trusted.operator->();
        if (trusted.isTrustedAntiSpamMTA(address)) {
            return HopRole::endsByAntiSpam;
        }
        if (address.isV6()) {
            return HopRole::endsByIPv6;
        }
        bool const isPrivate = IPAddress::isPrivateAddress(address);
        if (isPrivate && !m_isCurrent) {
            return HopRole::privateAddress;
        }
        if (trusted.isTrustedMTA(address)) {
            return HopRole::trusted;
        }
        score = m_isCurrent ? m_facts.m_clientScore : relayScore(address);
        if (isScoreReached(score)) {
            return HopRole::endsByScore;
        }
        return isPrivate ? HopRole::privateAddress : HopRole::laterPublic;
    }

    std::uint32_t relayScore(IPAddress const& address) const {
        return static_cast<std::uint32_t>(m_host.score(address).value_or(0));
    }

    bool isScoreReached(std::uint32_t score) const {
        auto const threshold =
            static_cast<std::uint32_t>(m_host.settings().m_judging.scoreThreshold);
        return score >= threshold && score <= highestScore;
    }

    void add(StoryHop hop) {
        hop.m_isVouched = !m_isSenderReached;
        if (m_isEnded) {
            hop.m_role = HopRole::notLookedAt;
        } else if (hop.m_role == HopRole::laterPublic && !m_isSenderReached) {
            hop.m_role = HopRole::firstPublic;
        }
        m_isEnded = m_isEnded || s_endsWalk(hop.m_role);
        // What handed the message to our side tells the rest, and may lie.
        m_isSenderReached = m_isSenderReached || m_isEnded || hop.m_role == HopRole::firstPublic;
        m_hops.push_back(std::move(hop));
    }

    ScanHost const& m_host;
    MessageFacts const& m_facts;
    TrustedMTASetRef m_trusted;
    std::vector<StoryHop> m_hops;
    bool m_isCurrent = false; // the hop at hand is the one that the host is about to add
    bool m_isEnded = false;
    bool m_isSenderReached = false;
};

} // namespace

std::vector<StoryHop> tellTrail(ScanHost const& host, HeaderContainer const& headers,
                                MessageFacts const& facts) {
    auto const current =
        facts.m_currentReceived ? Header("Received", *facts.m_currentReceived) : Header();
    auto const trail = cutOffOwnHops(headers, current, host.settings().m_internal);
    TrailTeller teller(host, facts);
    for (auto const& header : trail.m_cutOff) {
        teller.tellOwn(header);
    }
    if (!trail.m_current.isNull()) {
        teller.tellCurrent(trail.m_current);
    }
    for (auto const& header : trail.m_headers.headers()) {
        if (isReceived(header)) {
            teller.tell(header);
        }
    }
    return teller.take();
}

std::string roleText(StoryHop const& hop) {
    switch (hop.m_role) {
    case HopRole::ownRelay:
        return "relay of this site, cut off";
    case HopRole::trusted:
        return "trusted relay, skipped";
    case HopRole::authenticated:
        return "authenticated submission, skipped";
    case HopRole::privateAddress:
        return "private address";
    case HopRole::noAddress:
        return "no address";
    case HopRole::firstPublic:
        return "first public hop, judged";
    case HopRole::laterPublic:
        return "public";
    case HopRole::endsByIPv6:
        return "IPv6: the walk ends here";
    case HopRole::endsByAntiSpam:
        return "filters already: the walk ends here";
    case HopRole::endsByScore:
        return "reputation score " + std::to_string(hop.m_score) + ": the walk ends here";
    case HopRole::notLookedAt:
        return "not looked at";
    case HopRole::unreadable:
        break;
    }
    return "cannot be read: the scan fails";
}

} // namespace Quorvane
