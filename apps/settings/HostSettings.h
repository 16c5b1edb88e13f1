// SPDX-License-Identifier: Apache-2.0
//
// HostSettings: what a site tells every program that scans: where the rules are, the thresholds,
// its relays, its resolver. A plain record; SettingsTable.h names each field for the settings file
// and the command line.
#pragma once

#include "apps/settings/DnsList.h"
#include "platform/DeepHeaderSettings.h"
#include "platform/IPPrefix.h"
#include "platform/ReputationTable.h"

#include <string>
#include <vector>

namespace Quorvane {

// The library's own thresholds mean "never judge"; these are on the scale of the rules (0..1).
inline constexpr double defaultSpamThreshold = 0.95;
inline constexpr double defaultHamThreshold = 0.95;

inline DeepHeaderSettings programDefaults() {
    DeepHeaderSettings settings;
    settings.spamThreshold = defaultSpamThreshold;
    settings.hamThreshold = defaultHamThreshold;
    return settings;
}

struct HostSettings {
    // The rule files are looked up below this folder.
    std::string m_root = "/";
    DeepHeaderSettings m_judging = programDefaults();
    std::vector<IPPrefix> m_trusted;
    std::vector<IPPrefix> m_antiSpam;
    // Relays of the site itself: the newest hops that came from them are skipped.
    std::vector<IPPrefix> m_internal;
    std::vector<ReputationTable::Entry> m_scores;
    // Asked about relays that m_scores says nothing about.
    std::vector<DnsList> m_dnsLists;
    // File of patterns; empty: the built-in list.
    std::string m_dynamicPatterns;
    // "system", "off" or a server.
    std::string m_dns = "system";
    // Seconds that the look-ups of one message may take in all.
    double m_dnsTimeout = 2.0;
    // File of zone lines; empty: none. Given, nothing else is asked.
    std::string m_dnsData;
    // The same as lines, for programs that make them; they come after those of the file.
    std::vector<std::string> m_zoneLines;
    // Scanning threads; 0: one for each core.
    unsigned int m_jobs = 0;
};

} // namespace Quorvane
