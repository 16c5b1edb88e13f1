// SPDX-License-Identifier: Apache-2.0
#include "apps/host/ScanHost.h"

#include <utility>

namespace Quorvane {

ScanHost::ScanHost(HostSettings settings, DeepHeaderEngine engine,
                   std::optional<std::int32_t> version)
    : m_settings(std::move(settings)), m_engine(std::move(engine)), m_version(version),
      m_scores(std::make_shared<RelayScores const>(m_settings.m_scores, m_settings.m_dnsLists)) {}

ScanHost ScanHost::judgingWith(DeepHeaderSettings const& judging) const {
    auto host = *this;
    host.m_settings.m_judging = judging;
    return host;
}

ScanHost ScanHost::judgingWith(DeepHeaderEngine engine, std::optional<std::int32_t> version) const {
    auto host = *this;
    host.m_version = version;
    host.m_engine = std::move(engine);
    return host;
}

RefMessageProperties ScanHost::messageProperties(HeaderContainer const& headers,
                                                 MessageFacts const& facts) const {
    RefMessageProperties properties(true);
    properties->clientScore(facts.m_clientScore);
    properties->status(facts.m_messageStatus);
    m_scores->describe(headers, facts.m_client, *properties.operator->());
    return properties;
}

ScanRecord ScanHost::judge(std::optional<std::array<std::int32_t, 38>> const& attributes,
                           RecordDepth depth) const {
    if (attributes) {
        return m_engine.judge(*attributes, m_settings.m_judging, depth);
    }
    ScanRecord record;
    record.isVector = true;
    return record;
}

ScanRecord ScanHost::scan(HeaderContainer const& headers, MessageFacts const& facts,
                          RecordDepth depth) const {
    auto const current =
        facts.m_currentReceived ? Header("Received", *facts.m_currentReceived) : Header();
    DeepHeaderQuery query(headers, current, m_settings.m_judging, facts.m_currentIsForged,
                          facts.m_envelopeFrom, facts.m_headerFrom, facts.m_recipient,
                          messageProperties(headers, facts));
    return m_engine.scan(query, depth);
}

} // namespace Quorvane
