// SPDX-License-Identifier: Apache-2.0
//
// Second stage of a scan: the hops, newest first, are classified as public, private or without
// address; the public ones of the first run are analysed into three slots (HopAnalysis.cpp); and
// the chain is checked for breaks after the first public hop.
#include "adapter/DeepHeaderAdapter.h"
#include "adapter/ScanRecorder.h"

#include <algorithm>

namespace Quorvane {

namespace {

using MsgProperties = DeepHeaderAdapter::MsgProperties;

// What the walk keeps from hop to hop.
class ChainWalk {
  public:
    ChainWalk(DeepHeaderAdapter& adapter, MsgProperties& props)
        : m_adapter(adapter), m_props(props) {}

    void visit(MsgReceived& hop) {
        checkChain(hop);
        if (hop.address().isNull()) {
            visitWithoutAddress();
        } else if (hop.privateIP()) {
            visitPrivate();
        } else {
            visitPublic(hop);
        }
    }

    // True when there was a public hop.
    bool finish() {
        m_props.hopCount = static_cast<std::int32_t>(m_props.receivedList.size());
        m_props.maxPrivateRun = std::max(m_maxPrivateRun, m_privateRun);
        m_props.publicRun = m_publicRun;
        m_props.noAddressHops = m_noAddressHops;
        m_props.attributes[Attribute::hopBehindFirst] = m_stage == Stage::afterFirst ? 1 : 0;
        m_props.attributes[Attribute::chainBroken] = m_isChainBroken ? 1 : 0;
        return m_stage != Stage::beforeFirst;
    }

  private:
    enum class Run : std::uint8_t { none, privateHops, publicHops };
    enum class Stage : std::uint8_t { beforeFirst, atFirst, afterFirst };

    // After the first public hop every relay should have received from the next one.
    void checkChain(MsgReceived& hop) {
        if (m_stage == Stage::beforeFirst) {
            return;
        }
        if (hop.by() != m_previousFrom) {
            m_isChainBroken = true;
        }
        m_previousFrom = hop.from();
        m_stage = Stage::afterFirst;
    }

    // Neither ends nor extends a run, but slots are no longer filled after it.
    void visitWithoutAddress() {
        record(HopRole::noAddress);
        ++m_noAddressHops;
        stopCollectingAfterPublic();
    }

    void visitPrivate() {
        record(HopRole::privateAddress);
        if (m_run == Run::privateHops) {
            ++m_privateRun;
            return;
        }
        m_maxPrivateRun = std::max(m_maxPrivateRun, m_privateRun);
        m_privateRun = 1;
        stopCollectingAfterPublic();
        m_run = Run::privateHops;
    }

    void visitPublic(MsgReceived& hop) {
        if (m_run == Run::publicHops) {
            ++m_publicRun;
            record(m_isCollecting ? HopRole::analysed : HopRole::publicNotJudged);
            if (m_isCollecting) {
                m_props.receivers[2] = m_props.receivers[1];
                m_adapter.parseSingleReceiver(hop, m_props.receivers[1], m_props);
            }
            return;
        }
        m_run = Run::publicHops;
        m_publicRun = 1;
        record(m_isCollecting ? HopRole::firstPublic : HopRole::publicNotJudged);
        if (m_isCollecting) {
            visitFirstPublic(hop);
        }
    }

    void visitFirstPublic(MsgReceived& hop) {
        m_adapter.parseSingleReceiver(hop, m_props.receivers[0], m_props);
        // isForged may wait for DNS. The names that the vector needs looked up are known by
        // now and asked for meanwhile: a scan then takes as long as its slowest look-up.
        DeepHeaderAdapter::startLookups(m_props);
        m_props.receivers[0].isForged = hop.isForged();
        if (m_props.recorder != nullptr) {
            m_props.recorder->recordForgedLookup(hop);
        }
        m_previousFrom = hop.from();
        m_stage = Stage::atFirst;
    }

    void record(HopRole role) {
        if (m_props.recorder != nullptr) {
            m_props.recorder->classifyTaken(role);
        }
    }

    void stopCollectingAfterPublic() {
        if (m_run == Run::publicHops) {
            m_isCollecting = false;
        }
    }

    DeepHeaderAdapter& m_adapter;
    MsgProperties& m_props;
    Run m_run = Run::none;
    Stage m_stage = Stage::beforeFirst;
    bool m_isCollecting = true;
    bool m_isChainBroken = false;
    std::int32_t m_publicRun = 0;
    std::int32_t m_noAddressHops = 0;
    std::int32_t m_privateRun = 0;
    std::int32_t m_maxPrivateRun = 0;
    std::string m_previousFrom;
};

} // namespace

bool DeepHeaderAdapter::parseFields(MsgProperties& props) {
    ChainWalk walk(*this, props);
    for (auto& hop : props.receivedList) {
        walk.visit(hop);
    }
    return walk.finish();
}

} // namespace Quorvane
