// SPDX-License-Identifier: Apache-2.0
#include "apps/story/JsonRecord.h"

#include "apps/story/RuleStory.h"
#include "apps/story/VerdictStory.h"
#include "apps/text/Utf8.h"
#include "received/ReceivedAccess.h"
#include "scanner/records/RecordAccess.h"

#include <nlohmann/json.hpp>

namespace Quorvane {

namespace {

using Json = nlohmann::ordered_json;
using Record = DeepHeaderAdapter::MsgProperties;

Json s_domain(EmailAddress const& address) {
    return address.isNull() ? Json() : Json(toUtf8(address.domain()));
}

// Shows a hop as the scan left it: the accessors of MsgReceived might parse.
Json s_hop(MsgReceived const& hop) {
    auto const& fields = *ReceivedAccess::fields(hop);
    return {{"from", toUtf8(fields.m_from)},
            {"reverseName", toUtf8(fields.m_reverseName)},
            {"by", toUtf8(fields.m_by)},
            {"address", fields.m_address.isNull() ? Json() : Json(fields.m_address.asString(true))},
            {"privateIP", fields.m_privateIP},
            {"authenticated", fields.m_authenticated},
            {"receiveTime", toUtf8(fields.m_receiveTime)},
            {"isForged", fields.m_forged}};
}

Json s_hops(Record const& record) {
    auto hops = Json::array();
    for (auto const& hop : record.receivedList) {
        hops.push_back(s_hop(hop));
    }
    return hops;
}

Json s_receiver(DeepHeaderAdapter::SingleReceiver const& slot) {
    return {{"helo", toUtf8(slot.helo)},
            {"ip", toUtf8(slot.ip)},
            {"reverseName", toUtf8(slot.reverseName)},
            {"hasIP", slot.hasIP},
            {"heloIsDomain", slot.heloIsDomain},
            {"heloIsIP", slot.heloIsIP},
            {"heloDynamic", slot.heloDynamic},
            {"heloEqualsIP", slot.heloEqualsIP},
            {"reverseDynamic", slot.reverseDynamic},
            {"reverseIsDomain", slot.reverseIsDomain},
            {"isForged", slot.isForged},
            {"heloMatchesReverse", slot.heloMatchesReverse},
            {"fromDomainMatchesHelo", slot.fromDomainMatchesHelo},
            {"fromDomainMatchesReverse", slot.fromDomainMatchesReverse},
            {"envFromDomainMatches", slot.envFromDomainMatches},
            {"fromDomainMatchesBoth", slot.fromDomainMatchesBoth}};
}

Json s_receivers(Record const& record) {
    auto receivers = Json::array();
    for (auto const& slot : record.receivers) {
        receivers.push_back(s_receiver(slot));
    }
    return receivers;
}

Json s_elite(DeepHeaderAdapter::EliteHits const& hits) {
    return {{"adjust", hits.adjust},
            {"confidence", hits.confidence},
            {"support", hits.support},
            {"code", hits.code},
            {"reasons", toUtf8(hits.reasons)}};
}

Json s_explain(ScanHost const& host, ScanOutcome const& outcome) {
    auto const& record = outcome.m_record;
    return {{"messageIdDomain", toUtf8(record.messageIdDomain)},
            {"headerFrom", s_domain(record.headerFrom)},
            {"envelopeFrom", s_domain(record.envelopeFrom)},
            {"recipient", s_domain(record.recipient)},
            {"hops", s_hops(record)},
            {"receivers", s_receivers(record)},
            {"scoredHopFound", record.scoredHopFound},
            {"scoredHopIP", toUtf8(record.scoredHopIP)},
            {"scoredHopScore", record.scoredHopScore},
            {"hopCount", record.hopCount},
            {"maxPrivateRun", record.maxPrivateRun},
            {"publicRun", record.publicRun},
            {"noAddressHops", record.noAddressHops},
            {"attributes", record.attributes},
            {"elite", s_elite(outcome.m_trace.m_elite)},
            {"tree", {{"path", outcome.m_trace.m_path}, {"result", outcome.m_trace.m_result}}},
            {"story", toUtf8(tellRules(host, outcome).m_sentences)}};
}

} // namespace

std::string jsonRecord(ScanHost const& host, std::string const& source, ScanOutcome const& outcome,
                       bool explain) {
    auto const& answer = RecordAccess::record(outcome.m_answer);
    Json record = {{"source", toUtf8(source)},
                   {"verdict", verdictName(outcome.m_answer)},
                   {"node", answer.m_node},
                   {"confidence", answer.m_confidenceDegree},
                   {"support", answer.m_supportDegree},
                   {"adjust", answer.m_adjust},
                   {"adjustReason", toUtf8(answer.m_adjustReason)},
                   {"spam", answer.m_isSpam},
                   {"ham", answer.m_isHam},
                   {"ips", toUtf8(answer.m_ips)},
                   {"reasons", toUtf8(outcome.m_answer.getReasons())}};
    if (outcome.m_error) {
        record["error"] = toUtf8(*outcome.m_error);
    }
    if (explain) {
        record["explain"] = s_explain(host, outcome);
    }
    return record.dump(-1, ' ', true) + "\n";
}

} // namespace Quorvane
