// SPDX-License-Identifier: Apache-2.0
#include "apps/host/ScanHost.h"

#include "apps/host/HostSetup.h"
#include "apps/host/OwnHops.h"
#include "DeepHeaderScanner.h"
#include "scanner/records/RecordAccess.h"

#include <exception>
#include <utility>

namespace Quorvane {

namespace {

// The address of a relay as the scan reads it: a record that abandons its parse reads differently
// at the second look, and the scan looks at the authentication mark first.
IPAddress s_relayAddress(Header const& header) {
    try {
        MsgReceived const hop(header.value());
        static_cast<void>(hop.authenticated());
        return hop.address();
    } catch (std::exception const&) {
        return {};
    }
}

Header s_currentHeader(MessageFacts const& facts) {
    return facts.m_currentReceived ? Header("Received", *facts.m_currentReceived) : Header();
}

} // namespace

ScanHost::ScanHost(HostSettings const& settings)
    : m_settings(settings), m_scores(settings.m_scores), m_engine(setUpHost(settings)) {}

ScanHost::ScanHost(HostSettings const& settings, RefDeepHeaderAdapter const& engine)
    : m_settings(settings), m_scores(settings.m_scores), m_engine(engine) {
    setUpPlatform(settings);
}

RefMessageProperties ScanHost::messageProperties(HeaderContainer const& headers,
                                                 MessageFacts const& facts) const {
    RefMessageProperties properties(true);
    properties->clientScore(facts.m_clientScore);
    properties->status(facts.m_messageStatus);
    if (m_settings.m_scores.empty()) {
        return properties;
    }
    for (auto const& header : headers.headers()) {
        if (!isReceived(header)) {
            continue;
        }
        auto const address = s_relayAddress(header);
        if (auto const score = m_scores.score(address)) {
            properties->receivedHeaderAnalysis().push_back({Received(address), *score});
        }
    }
    return properties;
}

void ScanHost::trace(ScanOutcome& outcome) const {
    if (outcome.m_error || !outcome.m_reachedVerdict) {
        return;
    }
    RefDeepHeaderAdapter engine(m_engine);
    auto const& settings = m_settings.m_judging;
    RuleTrace trace;
    if (engine->hasEliteNodes()) {
        engine->checkElite(trace.m_elite, outcome.m_record, settings);
    }
    if (!DeepHeaderAdapter::doesEliteDecide(trace.m_elite, settings) &&
        engine->consultsTree(settings)) {
        trace.m_result = engine->travelDT(settings, treeRoot, outcome.m_record, trace.m_path);
    }
    outcome.m_trace = std::move(trace);
}

ScanOutcome ScanHost::judge(std::optional<AttributeArray> const& attributes) const {
    ScanOutcome outcome;
    outcome.m_isVector = true;
    if (!attributes) {
        return outcome;
    }
    RefDeepHeaderAdapter engine(m_engine);
    DeepHeaderQuery query(HeaderContainer(), Header(), m_settings.m_judging, 0, EmailAddress(),
                          EmailAddress(), EmailAddress(), RefMessageProperties(true));
    outcome.m_record.attributes = *attributes;
    outcome.m_reachedVerdict = true;
    engine->getResults(RecordAccess::record(outcome.m_answer), query, outcome.m_record);
    return outcome;
}

ScanOutcome ScanHost::scan(HeaderContainer const& headers, MessageFacts const& facts) const {
    ScanOutcome outcome;
    RefDeepHeaderAdapter engine(m_engine);
    auto trail = cutOffOwnHops(headers, s_currentHeader(facts), m_settings.m_internal);
    outcome.m_cutOff = std::move(trail.m_cutOff);
    try {
        DeepHeaderQuery query(trail.m_headers, trail.m_current, m_settings.m_judging,
                              facts.m_currentIsForged, facts.m_envelopeFrom, facts.m_headerFrom,
                              facts.m_recipient, messageProperties(trail.m_headers, facts));
        outcome.m_answer = engine->scanMessage(query, outcome.m_record);
    } catch (Exception const& error) {
        outcome.m_error = error.asString();
    }
    outcome.m_reachedVerdict = outcome.m_record.receivers[0].hasIP != Code::notAnalysed;
    return outcome;
}

} // namespace Quorvane
