// SPDX-License-Identifier: Apache-2.0
//
// ScanHost: a host of the library: settings, rules with their names, and the reputation of relays,
// by which it judges one header section after another.
//
// A value that never changes: copies share the engine and the tables. scan and judge may be called
// from many threads at once. A program that reloads keeps the current host in a shared pointer,
// which each message copies (HostSetup.h makes hosts).
#pragma once

#include "apps/host/RelayScores.h"
#include "apps/host/RuleLoader.h"
#include "apps/settings/HostSettings.h"
#include "DeepHeaderEngine.h"
#include "platform/HeaderContainer.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace Quorvane {

class ScanHost {
  public:
    // REQUIRES: the engine of `rules` is not empty.
    ScanHost(HostSettings settings, LoadedRules rules);

    // The header fields of a section, as scan takes them: of the hops only the newest, as many as
    // the settings say.
    HeaderContainer read(std::string_view section) const {
        return HeaderReader::read(section, m_settings.m_limits.m_maxHops);
    }

    // `headers`: what read gave. All look-ups together take no longer
    // than the settings say: DNS lists are asked first and get at most half of the time, the names
    // of the scan get what is left. The record holds the look-ups in lists, too.
    ScanRecord scan(HeaderContainer const& headers, MessageFacts const& facts,
                    RecordDepth depth) const;

    // The verdict for a message of which only these attributes are known; empty: the message had
    // nothing to judge.
    ScanRecord judge(std::optional<std::array<std::int32_t, 38>> const& attributes,
                     RecordDepth depth) const;

    HostSettings const& settings() const { return m_settings; }
    DeepHeaderEngine const& engine() const { return m_engine; }
    std::optional<std::int32_t> ruleVersion() const { return m_version; }
    Rules::RuleNames const& ruleNames() const { return m_names->m_names; }
    // Why the rules have no names although there is a file of them; empty: all is well.
    std::string const& namesProblem() const { return m_names->m_problem; }

    // The same host with other thresholds, or other rules. It shares the rest.
    ScanHost judgingWith(DeepHeaderSettings const& judging) const;
    ScanHost judgingWith(LoadedRules rules) const;

  private:
    std::vector<RecordedLookup> describeRelays(HeaderContainer const& headers,
                                               IPAddress const& client,
                                               MessageProperties& properties) const;

    void take(LoadedRules rules);

    HostSettings m_settings;
    DeepHeaderEngine m_engine;
    std::optional<std::int32_t> m_version;
    std::shared_ptr<Rules::NamesRead const> m_names;
    std::shared_ptr<RelayScores const> m_scores;
};

} // namespace Quorvane
