// SPDX-License-Identifier: Apache-2.0
//
// ScanHost: a host of the library. It puts the settings in force (rules, trusted relays,
// reputation, name patterns, resolver), loads the engine, and turns one header section after
// another into an outcome that holds the verdict and the working record of the scan.
//
// One object a process: the engine and the platform's tables are process-wide. Once constructed it
// never changes; scan may be called from many threads at once, each call with its own message.
#pragma once

#include "adapter/DeepHeaderAdapter.h"
#include "apps/settings/HostSettings.h"
#include "apps/settings/MessageFacts.h"
#include "DeepHeaderAnswer.h"
#include "platform/HeaderContainer.h"
#include "platform/ReputationTable.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Quorvane {

// What the rules answered on the way to a verdict.
struct RuleTrace {
    DeepHeaderAdapter::EliteHits m_elite;
    // The nodes that the walk stood on and its result; empty and -1 when the tree was not asked.
    std::vector<int> m_path;
    int m_result = -1;
};

using AttributeArray = decltype(DeepHeaderAdapter::MsgProperties::attributes);

struct ScanOutcome {
    DeepHeaderAnswer m_answer;
    // Why the scan failed; the answer is then the default one.
    std::optional<std::string> m_error;
    // The record as the scan left it.
    DeepHeaderAdapter::MsgProperties m_record;
    // There was no message, just its attributes.
    bool m_isVector = false;
    // The scan found a public hop and came to ask the rules.
    bool m_reachedVerdict = false;
    // Filled by ScanHost::trace.
    RuleTrace m_trace;
    // Hops of the site's own relays that were cut off before the scan.
    std::vector<Header> m_cutOff;
};

class ScanHost {
  public:
    // Throws a SettingsError when a file or server that the settings name is no good, or when the
    // rules cannot be loaded.
    explicit ScanHost(HostSettings const& settings);
    // Takes this engine; the rules that the settings name are not looked at.
    ScanHost(HostSettings const& settings, RefDeepHeaderAdapter const& engine);

    // `headers`: the header section as HeaderReader split it.
    ScanOutcome scan(HeaderContainer const& headers, MessageFacts const& facts) const;

    // What the rules say of a message of which nothing is known but these attributes; empty: that
    // there was nothing to judge in it.
    ScanOutcome judge(std::optional<AttributeArray> const& attributes) const;

    // Asks the rules once more, for whoever shows how they came to their answer: a scan does not
    // keep that, and they are pure.
    void trace(ScanOutcome& outcome) const;

    HostSettings const& settings() const { return m_settings; }
    RefDeepHeaderAdapter const& engine() const { return m_engine; }
    // The reputation of a relay; empty when the settings know none.
    std::optional<std::int32_t> score(IPAddress const& address) const {
        return m_scores.score(address);
    }

  private:
    RefMessageProperties messageProperties(HeaderContainer const& headers,
                                           MessageFacts const& facts) const;

    HostSettings m_settings;
    ReputationTable m_scores;
    RefDeepHeaderAdapter m_engine;
};

} // namespace Quorvane
