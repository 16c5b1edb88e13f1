// SPDX-License-Identifier: Apache-2.0
//
// HostSettings: what a site sets for every program that scans: where the rules are, the thresholds,
// its relays, its resolver. Plain records; SettingsTable.h names each field for the settings file
// and the command line.
#pragma once

#include "apps/settings/DnsList.h"
#include "platform/DeepHeaderSettings.h"
#include "platform/EmailAddress.h"
#include "platform/HeaderReader.h"
#include "platform/IPAddress.h"
#include "platform/IPPrefix.h"
#include "platform/ReputationTable.h"
#include "platform/TrustedMTASet.h"

#include <chrono>
#include <cstdint>
#include <optional>
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

// A value of the setting "dns".
inline constexpr char dnsAsNeeded[] = "auto";

struct HostSettings {
    // The rule files are looked up below this folder.
    std::string m_root = "/";
    DeepHeaderSettings m_judging = programDefaults();
    std::vector<IPPrefix> m_trusted;
    std::vector<IPPrefix> m_antiSpam;
    // Relays of the site itself: the newest hops that came from them are skipped.
    std::vector<IPPrefix> m_internal;
    // Internal relays are skipped, and those that filter end the walk, under both values.
    IPv6Relays m_ipv6 = IPv6Relays::stop;
    std::vector<ReputationTable::Entry> m_scores;
    // Asked about relays that m_scores says nothing about.
    std::vector<DnsList> m_dnsLists;
    // File of patterns; empty: the built-in list.
    std::string m_dynamicPatterns;
    // "auto", "system", "off" or a server. "auto" asks like "system" when a rule tests what comes
    // from DNS, and otherwise nothing.
    std::string m_dns = dnsAsNeeded;
    // Seconds that the look-ups of one message may take in all.
    double m_dnsTimeout = 2.0;
    std::chrono::milliseconds lookupTime() const {
        return std::chrono::ceil<std::chrono::milliseconds>(
            std::chrono::duration<double>(m_dnsTimeout));
    }
    // File of zone lines; empty: none. When it is given, nothing else is asked.
    std::string m_dnsData;
    // More zone lines, from the program itself; they follow those of the file.
    std::vector<std::string> m_zoneLines;
    // What the two files hold, if they have been read already (SettingFiles.h).
    std::optional<std::string> m_patternText;
    std::optional<std::string> m_zoneText;
    // Messages beyond these are not judged; of hops the newest are.
    HeaderLimits m_limits;
    // Scanning threads; 0: one for each core.
    unsigned int m_jobs = 0;
};

// What a host knows about a message besides its text.
struct MessageFacts {
    // Value of the Received header that the host is about to add.
    std::optional<std::string> m_currentReceived;
    std::int32_t m_currentIsForged = 0;
    // Of the client; not null: its score is looked up, and m_clientScore does not count.
    IPAddress m_client;
    std::uint32_t m_clientScore = 0;
    std::int32_t m_messageStatus = 0;
    EmailAddress m_envelopeFrom;
    EmailAddress m_headerFrom;
    EmailAddress m_recipient;
};

} // namespace Quorvane
