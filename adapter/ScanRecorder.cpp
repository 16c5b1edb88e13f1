// SPDX-License-Identifier: Apache-2.0
#include "adapter/ScanRecorder.h"

#include "adapter/HeaderFields.h"
#include "received/MsgReceivedImpl.h"

#include <exception>

namespace Quorvane {

namespace {

void s_copyFields(RecordedHop& hop, ReceivedFields const& fields) {
    hop.from = fields.m_from;
    hop.reverseName = fields.m_reverseName;
    hop.by = fields.m_by;
    hop.address = fields.m_address;
    hop.privateIP = fields.m_privateIP;
    hop.authenticated = fields.m_authenticated;
    hop.receiveTime = fields.m_receiveTime;
    hop.isForged = fields.m_forged;
}

AttributeTest s_testOf(DTNode const& node) {
    return {node.attribute, node.test, node.testValue};
}

RecordedRule s_ruleOf(EliteNodes const& node) {
    RecordedRule rule;
    rule.code = node.code;
    rule.type = node.type;
    rule.level = node.level;
    rule.weight = node.weight;
    rule.support = node.support;
    for (auto const& [attribute, test, value] : node.conditions) {
        rule.tests.push_back({attribute, test, value});
    }
    return rule;
}

} // namespace

// --- the trail ----------------------------------------------------------------------------------

RecordedHop& ScanRecorder::addHop(MsgReceived const& hop, bool isCurrent) {
    m_hops.push_back(hop);
    auto& added = m_record.trail.emplace_back();
    added.isCurrent = isCurrent;
    return added;
}

void ScanRecorder::beginHop(MsgReceived const& hop, bool isCurrent) {
    addHop(hop, isCurrent);
    if (isCurrent) {
        m_isCurrentRead = true;
    } else {
        ++m_headersRead;
    }
}

void ScanRecorder::endHop(HopRole role, std::uint32_t score) {
    auto& hop = m_record.trail.back();
    hop.role = role;
    hop.score = score;
}

void ScanRecorder::classifyTaken(HopRole role) {
    while (!m_record.trail[m_nextTaken].isTaken()) {
        ++m_nextTaken;
    }
    m_record.trail[m_nextTaken++].role = role;
}

// Read for displays of the trail only; the scan did not need it.
void ScanRecorder::addNotLookedAt(std::string const& value, bool isCurrent) {
    MsgReceived const hop(value);
    addHop(hop, isCurrent).role = HopRole::notLookedAt;
    try {
        static_cast<void>(hop.from());
    } catch (std::exception const&) {
        // It shows what was found before the text broke off.
    }
}

// The host that passed the message to the site's side wrote the rest of the trail, and may lie.
void ScanRecorder::vouch() {
    bool isOurSide = true;
    for (auto& hop : m_record.trail) {
        hop.isVouched = isOurSide;
        isOurSide = isOurSide && !endsWalk(hop.role) && hop.role != HopRole::firstPublic &&
                    hop.role != HopRole::unreadable;
    }
}

void ScanRecorder::finishTrail(DeepHeaderQuery const& query) {
    if (!m_isCurrentRead && !query.currentReceived().isNull()) {
        addNotLookedAt(query.currentReceived().value(), true);
    }
    std::size_t number = 0;
    for (auto const& header : query.headers().headers()) {
        if (isReceivedHeader(header) && number++ >= m_headersRead) {
            addNotLookedAt(header.value(), false);
        }
    }
    for (std::size_t i = 0; i < m_hops.size(); ++i) {
        s_copyFields(m_record.trail[i], *ReceivedAccess::fields(m_hops[i]));
    }
    vouch();
}

// --- look-ups -----------------------------------------------------------------------------------

void ScanRecorder::recordLookup(RecordedLookup::Question question, std::string const& name,
                                LookupResult result) {
    if (result != LookupResult::notAsked) {
        m_record.lookups.push_back({question, name, result});
    }
}

void ScanRecorder::recordForgedLookup(MsgReceived const& hop) {
    auto const& fields = *ReceivedAccess::fields(hop);
    recordLookup(RecordedLookup::Question::reverseName, fields.m_reverseName,
                 fields.m_forgedLookup);
}

void ScanRecorder::recordLookups(NameLookups::Answers const& answers, std::string const& announced,
                                 std::string const& sender) {
    recordLookup(RecordedLookup::Question::announcedName, announced, answers.m_announced);
    recordLookup(RecordedLookup::Question::envelopeDomain, sender, answers.m_sender);
}

// --- rules --------------------------------------------------------------------------------------

void ScanRecorder::beginRules(std::list<EliteNodes> const& rules) {
    m_record.rules.reserve(rules.size());
    for (auto const& rule : rules) {
        m_record.rules.push_back(s_ruleOf(rule));
    }
}

void ScanRecorder::endRule(RuleOutcome outcome, std::size_t failedTest) {
    auto& rule = m_record.rules[m_nextRule];
    rule.outcome = outcome;
    rule.failedTest = failedTest;
    if (outcome == RuleOutcome::chosen) {
        if (m_chosenRule) {
            auto& before = m_record.rules[*m_chosenRule];
            before.outcome = RuleOutcome::replaced;
            before.replacedBy = m_nextRule;
        }
        m_chosenRule = m_nextRule;
    }
    ++m_nextRule;
}

void ScanRecorder::stepOn(std::int32_t number, DTNode const& node) {
    m_record.tree.path.push_back({number,
                                  s_testOf(node),
                                  node.isLeaf != 0,
                                  node.confidence,
                                  node.support,
                                  {node.value1, node.value2, node.value3}});
}

} // namespace Quorvane
