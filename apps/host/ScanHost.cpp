// SPDX-License-Identifier: Apache-2.0
#include "apps/host/ScanHost.h"

#include <utility>

namespace Quorvane {

ScanHost::ScanHost(HostSettings settings, DeepHeaderEngine engine,
                   std::shared_ptr<ReputationTable const> scores)
    : m_settings(std::move(settings)), m_engine(std::move(engine)), m_scores(std::move(scores)) {}

ScanHost ScanHost::judgingWith(DeepHeaderSettings const& judging) const {
    auto host = *this;
    host.m_settings.m_judging = judging;
    return host;
}

RefMessageProperties ScanHost::messageProperties(MessageFacts const& facts) const {
    RefMessageProperties properties(true);
    properties->clientScore(facts.m_clientScore);
    properties->status(facts.m_messageStatus);
    properties->receivedHeaderAnalysis().reputation(m_scores);
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
                          messageProperties(facts));
    return m_engine.scan(query, depth);
}

} // namespace Quorvane
