// SPDX-License-Identifier: Apache-2.0
//
// DeepHeaderAdapter: the engine. It holds the loaded rules and turns one query into one answer.
//
// Made on the heap only (the rule table is stored inline), counted, and never changed once
// constructed: any number of scans run on one engine at once, each on a MsgProperties record of its
// own. RefDeepHeaderAdapter is the counted handle; its static `instance` keeps the process-wide
// engine, and every caller of it holds DeepHeaderScanner::m_Mutex.
#pragma once

#include "adapter/NameLookups.h"
#include "DeepHeaderAnswer.h"
#include "DeepHeaderQuery.h"
#include "include2/Export.h"
#include "include2/QvaneRefcounted.h"
#include "MsgReceived.h"
#include "platform/DeepHeaderSettings.h"
#include "platform/EmailAddress.h"
#include "rules/format/RuleFiles.h"
#include "rules/format/RuleTests.h"
#include "ScanRecord.h"

#include <array>
#include <cstdint>
#include <iosfwd>
#include <list>
#include <string>

namespace Quorvane {

class DeepHeaderAnswerImpl;
class ScanRecorder;

class QV_API DeepHeaderAdapter : public virtual RefImpl {
  public:
    // The analysis of one hop. Value codes as in AttributeTable.h; 3 means "never analysed".
    struct SingleReceiver : HopAnalysis {};

    // The result of one run over the elite rules.
    struct EliteHits : EliteResult {};

    // The working record of one scan, filled stage by stage.
    struct MsgProperties {
        MsgProperties();

        std::string messageIdDomain; // lower-cased
        EmailAddress headerFrom;
        EmailAddress envelopeFrom;
        EmailAddress recipient;
        // The hops to judge, newest first.
        std::list<MsgReceived, RecycledAllocator<MsgReceived>> receivedList;
        // [0] the first public hop, [1] the deepest of the first run of public hops, [2] the hop
        // analysed into [1] just before.
        std::array<SingleReceiver, 3> receivers;
        std::int32_t scoredHopFound = 0; // 1: a relay's reputation ended the walk
        std::int32_t hopCount = 0;
        std::int32_t maxPrivateRun = 0; // longest run of private hops
        std::int32_t publicRun = 0;     // length of the last run of public hops
        std::int32_t noAddressHops = 0;
        AttributeVector attributes;
        std::string scoredHopIP;
        std::int32_t scoredHopScore = 0;
        NameLookups lookups; // from the first public hop until the vector needs them
        EliteHits elite;
        Decision decision = Decision::notReached;
        TreeUse treeUse = TreeUse::notReached;
        std::int32_t treeResult = -1;     // the node that the walk reached; -1: none
        ScanRecorder* recorder = nullptr; // records each step; null: not wanted
    };

    // Loads the rules; a DeepHeaderException when the tree cannot be loaded. Elite rules that
    // cannot be loaded are left out.
    DeepHeaderAdapter();
    // The same from streams that hold what the two files would; `elite` null: no such file.
    DeepHeaderAdapter(std::istream& tree, std::istream* elite);
    ~DeepHeaderAdapter() override;

    // Judges one message; throws only DeepHeaderException.
    DeepHeaderAnswer scanMessage(DeepHeaderQuery& query);
    // The same, and leaves the working record of the scan in `props`, also when it throws. `props`
    // is a fresh record.
    DeepHeaderAnswer scanMessage(DeepHeaderQuery& query, MsgProperties& props);

    // The stages of a scan, in order.
    void getFields(MsgProperties& props, DeepHeaderQuery& query);
    bool parseFields(MsgProperties& props); // false: no public hop, nothing to judge
    void getAttributes(MsgProperties& props);
    void getResults(DeepHeaderAnswerImpl& answer, DeepHeaderQuery& query, MsgProperties& props);

    // Parts of the stages.
    // Starts the look-ups that getAttributes needs: the announced name of the first slot and the
    // domain of the envelope sender.
    static void startLookups(MsgProperties& props);
    int parseSingleReceiver(MsgReceived& hop, SingleReceiver& slot, MsgProperties& props);
    int checkElite(EliteHits& hits, MsgProperties& props, DeepHeaderSettings const& settings);
    // The node that decides, starting from node `start`; -1 when none does.
    int travelDT(DeepHeaderSettings const& settings, int start, MsgProperties& props);
    // After getResults: the highest spam threshold at which the rules still say spam in a walk to
    // the leaf; minus infinity when at none.
    double spamScore(DeepHeaderSettings const& settings, MsgProperties& props);

    // What was loaded.
    bool hasEliteNodes() const;
    EliteFileHeader const& eliteHeader() const { return m_eliteHeader; }
    std::array<DTNode, treeTableSize> const& treeNodes() const { return m_dtNodes; }
    std::list<EliteNodes> const& eliteNodes() const { return m_eliteNodes; }

  private:
    int loadDTRules();
    int loadDTRules(std::istream& file);
    int loadEliteNodes();
    int loadEliteNodes(std::istream& file);
    // Whether the settings and the elite file let the tree be consulted.
    bool consultsTree(DeepHeaderSettings const& settings) const;
    TreeUse treeUse(EliteHits const& hits, DeepHeaderSettings const& settings) const;
    int isDynamicHostname(std::string& name);
    void classifyNames(SingleReceiver& slot);

    EliteFileHeader m_eliteHeader;
    std::list<EliteNodes> m_eliteNodes;
    // The last one: the reference count comes after it. All threads write to that one, and hardly
    // any scan reads the last nodes of the table.
    std::array<DTNode, treeTableSize> m_dtNodes;
};

class QV_API RefDeepHeaderAdapter : public Ref<DeepHeaderAdapter> {
  public:
    // Empty.
    RefDeepHeaderAdapter();
    // Takes over the engine's initial reference.
    explicit RefDeepHeaderAdapter(DeepHeaderAdapter* adapter);
    RefDeepHeaderAdapter(RefDeepHeaderAdapter const&) = default;
    RefDeepHeaderAdapter(RefDeepHeaderAdapter&&) noexcept = default;
    RefDeepHeaderAdapter& operator=(RefDeepHeaderAdapter const&) = default;
    ~RefDeepHeaderAdapter() override;

    // Publishes `adapter` when it is not null, then returns a counted handle to the engine in
    // force; an empty one before the first. Owns `adapter` from the call on: when memory runs out,
    // it is destroyed, and the engine in force stays. REQUIRES: the caller holds
    // DeepHeaderScanner::m_Mutex.
    static RefDeepHeaderAdapter instance(DeepHeaderAdapter* adapter);
};

} // namespace Quorvane
