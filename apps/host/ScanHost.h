// SPDX-License-Identifier: Apache-2.0
//
// ScanHost: a host of the library: settings, the engine and the reputation of relays, by which it
// judges one header section after another.
//
// A value that never changes: copies share the engine and the table. scan and judge may be called
// from many threads at once. A program that reloads keeps the current host in a shared pointer,
// which each message copies (HostSetup.h makes hosts).
#pragma once

#include "apps/host/RelayScores.h"
#include "apps/settings/HostSettings.h"
#include "DeepHeaderEngine.h"
#include "platform/HeaderContainer.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>

namespace Quorvane {

class ScanHost {
  public:
    // REQUIRES: `engine` is not empty.
    // `version`: of the rules; empty: they have none.
    ScanHost(HostSettings settings, DeepHeaderEngine engine,
             std::optional<std::int32_t> version = std::nullopt);

    // `headers`: the header section as HeaderReader split it.
    ScanRecord scan(HeaderContainer const& headers, MessageFacts const& facts,
                    RecordDepth depth) const;

    // The verdict for a message of which only these attributes are known; empty: the message had
    // nothing to judge.
    ScanRecord judge(std::optional<std::array<std::int32_t, 38>> const& attributes,
                     RecordDepth depth) const;

    HostSettings const& settings() const { return m_settings; }
    std::optional<std::int32_t> ruleVersion() const { return m_version; }

    // The same host with other thresholds, or other rules. It shares the rest.
    ScanHost judgingWith(DeepHeaderSettings const& judging) const;
    ScanHost judgingWith(DeepHeaderEngine engine, std::optional<std::int32_t> version) const;

  private:
    RefMessageProperties messageProperties(HeaderContainer const& headers,
                                           MessageFacts const& facts) const;

    HostSettings m_settings;
    DeepHeaderEngine m_engine;
    std::optional<std::int32_t> m_version;
    std::shared_ptr<RelayScores const> m_scores;
};

} // namespace Quorvane
