// SPDX-License-Identifier: Apache-2.0
#include "adapter/RecordedScan.h"

#include "adapter/ScanRecorder.h"
#include "adapter/VectorTrial.h"
#include "scanner/records/RecordAccess.h"

#include <algorithm>
#include <utility>

namespace Quorvane {

namespace {

using MsgProperties = DeepHeaderAdapter::MsgProperties;

void s_takeVerdict(RecordedVerdict& verdict, DeepHeaderAnswerImpl const& answer) {
    verdict.node = answer.m_node;
    verdict.confidence = answer.m_confidenceDegree;
    verdict.support = answer.m_supportDegree;
    verdict.adjust = answer.m_adjust;
    verdict.adjustReason = answer.m_adjustReason;
    verdict.isSpam = answer.m_isSpam;
    verdict.isHam = answer.m_isHam;
    verdict.ips = answer.m_ips;
}

void s_takeMessage(ScanRecord& record, MsgProperties&& props) {
    record.messageIdDomain = std::move(props.messageIdDomain);
    record.headerFrom = std::move(props.headerFrom);
    record.envelopeFrom = std::move(props.envelopeFrom);
    record.recipient = std::move(props.recipient);
    std::move(props.receivers.begin(), props.receivers.end(), record.receivers.begin());
    record.scoredHopFound = props.scoredHopFound;
    record.scoredHopIP = std::move(props.scoredHopIP);
    record.scoredHopScore = props.scoredHopScore;
    record.hopCount = props.hopCount;
    record.maxPrivateRun = props.maxPrivateRun;
    record.publicRun = props.publicRun;
    record.noAddressHops = props.noAddressHops;
}

// What is known once the stages have run, however far they got.
void s_takeResult(ScanRecord& record, DeepHeaderAdapter& engine, MsgProperties& props,
                  DeepHeaderSettings const& settings, RecordDepth depth) {
    record.attributes = props.attributes;
    record.verdict.decision = props.decision;
    record.elite = props.elite;
    record.tree.use = props.treeUse;
    record.tree.result = props.treeResult;
    s_takeVerdict(record.verdict, RecordAccess::record(record.answer));
    if (!record.isJudged()) {
        return;
    }
    record.verdict.spamScore = engine.spamScore(settings, props);
    if (depth != RecordDepth::alternatives) {
        return;
    }
    record.alternatives = findAlternatives(engine, settings, props.attributes);
    if (record.verdict.isSpam) {
        record.singleChanges = findSingleChanges(engine, settings, props.attributes);
    }
}

} // namespace

ScanRecord recordScan(DeepHeaderAdapter& engine, DeepHeaderQuery& query, RecordDepth depth) {
    ScanRecord record;
    ScanRecorder recorder(record);
    MsgProperties props;
    if (depth != RecordDepth::result) {
        props.recorder = &recorder;
    }
    try {
        record.answer = engine.scanMessage(query, props);
    } catch (Exception const& error) {
        record.failure = error.asString();
    }
    if (depth != RecordDepth::result) {
        recorder.finishTrail(query);
    }
    s_takeResult(record, engine, props, query.settings(), depth);
    s_takeMessage(record, std::move(props));
    return record;
}

ScanRecord recordJudgement(DeepHeaderAdapter& engine, AttributeVector const& attributes,
                           DeepHeaderSettings const& settings, RecordDepth depth) {
    ScanRecord record;
    ScanRecorder recorder(record);
    record.isVector = true;
    MsgProperties props;
    props.attributes = attributes;
    if (depth != RecordDepth::result) {
        props.recorder = &recorder;
    }
    auto query = vectorQuery(settings);
    engine.getResults(RecordAccess::record(record.answer), query, props);
    s_takeResult(record, engine, props, settings, depth);
    return record;
}

} // namespace Quorvane
