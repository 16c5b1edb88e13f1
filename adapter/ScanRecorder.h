// SPDX-License-Identifier: Apache-2.0
//
// ScanRecorder: records what the stages of a scan do, while they do it. A stage that finds none in
// the working record (MsgProperties::recorder) records nothing.
// One object a scan, one thread; what it fills outlives it.
#pragma once

#include "adapter/NameLookups.h"
#include "DeepHeaderQuery.h"
#include "MsgReceived.h"
#include "rules/format/RuleFiles.h"
#include "ScanRecord.h"

#include <cstddef>
#include <list>
#include <optional>
#include <string>
#include <vector>

namespace Quorvane {

class ScanRecorder {
  public:
    explicit ScanRecorder(ScanRecord& record) : m_record(record) {}

    // A hop is about to be read. Until endHop it counts as unreadable.
    void beginHop(MsgReceived const& hop, bool isCurrent);
    void endHop(HopRole role, std::uint32_t score);
    // What the chain analysis makes of the next hop that was taken.
    void classifyTaken(HopRole role);

    // Of the first public hop, whose names are then known to be forged or not.
    void recordForgedLookup(MsgReceived const& hop);
    void recordLookups(NameLookups::Answers const& answers, std::string const& announced,
                       std::string const& sender);

    // All rules, of which none has been reached yet.
    void beginRules(std::list<EliteNodes> const& rules);
    // The next rule, in order.
    void endRule(RuleOutcome outcome, std::size_t failedTest);

    void stepOn(std::int32_t number, DTNode const& node);
    void endWalk(WalkEnd end) { m_record.tree.end = end; }

    // After the last stage, or the one that failed: the fields of the hops, and the hops of `query`
    // that no stage reached.
    void finishTrail(DeepHeaderQuery const& query);

  private:
    RecordedHop& addHop(MsgReceived const& hop, bool isCurrent);
    void addNotLookedAt(std::string const& value, bool isCurrent);
    void vouch();
    void recordLookup(RecordedLookup::Question question, std::string const& name,
                      LookupResult result);

    ScanRecord& m_record;
    std::vector<MsgReceived> m_hops; // of the trail, in order
    std::size_t m_headersRead = 0;
    bool m_isCurrentRead = false;
    std::size_t m_nextTaken = 0; // in the trail
    std::size_t m_nextRule = 0;
    std::optional<std::size_t> m_chosenRule;
};

} // namespace Quorvane
