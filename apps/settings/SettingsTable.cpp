// SPDX-License-Identifier: Apache-2.0
#include "apps/settings/SettingsTable.h"

#include "platform/IPAddress.h"

#include <array>

namespace Quorvane {

namespace {

// More threads than this is a slip of the keyboard.
constexpr long long maxJobs = 1024;

void s_checkDns(std::string const& text) {
    auto const at = text.find('@');
    if (text == "system" || text == "off") {
        return;
    }
    if (!IPAddress::isValidIPAddress(text.substr(0, at))) {
        throw SettingsError("\"" + text +
                            "\" is not a resolver; write system, off, or the address of " +
                            "a name server, as in 192.0.2.53 or 192.0.2.53@5353");
    }
    if (at != std::string::npos) {
        readInteger(text.substr(at + 1), 1, 65535);
    }
}

constexpr auto table = std::to_array<SettingRow<HostSettings>>({
    settingRow<HostSettings>(
        {"root", SettingKind::path, "DIR", "look rules up in DIR/var/spool/etc/antispam (/)"},
        [](auto& s) -> auto& { return s.m_root; }),
    settingRow<HostSettings>(
        {"spam-threshold", SettingKind::number, "X", "spam from this probability on, 0..1 (0.95)",
         true},
        [](auto& s) -> auto& { return s.m_judging.spamThreshold; }),
    settingRow<HostSettings>(
        {"ham-threshold", SettingKind::number, "X",
         "ham from this probability of ham on, 0..1 (0.95)", true},
        [](auto& s) -> auto& { return s.m_judging.hamThreshold; }),
    settingRow<HostSettings>(
        {"min-support", SettingKind::number, "X",
         "percentage of training mail behind a rule (0.15)", true},
        [](auto& s) -> auto& { return s.m_judging.minSupport; }),
    settingRow<HostSettings>(
        {"max-elite-level", SettingKind::integer, "N",
         "leave elite rules of a higher level out (1)", true},
        [](auto& s) -> auto& { return s.m_judging.maxEliteLevel; }),
    settingRow<HostSettings>(
        {"score-threshold", SettingKind::integer, "N",
         "score from which a relay ends the walk, 0..9 (6)"},
        [](auto& s) -> auto& { return s.m_judging.scoreThreshold; }),
    settingRow<HostSettings>(
        {"walk-to-leaf", SettingKind::integer, "0|1",
         "0: stop at the first node sure enough of spam (1)", true},
        [](auto& s) -> auto& { return s.m_judging.walkToLeaf; },
        [](std::string const& t) { readInteger(t, 0, 1); }),
    settingRow<HostSettings>(
        {"trusted-mta", SettingKind::list, "PREFIX", "a relay that is skipped along the trail"},
        [](auto& s) -> auto& { return s.m_trusted; }),
    settingRow<HostSettings>(
        {"trusted-antispam-mta", SettingKind::list, "PREFIX",
         "a relay that filters already: ends the trail"},
        [](auto& s) -> auto& { return s.m_antiSpam; }),
    settingRow<HostSettings>(
        {"internal", SettingKind::list, "PREFIX", "our own relays; their hops are skipped"},
        [](auto& s) -> auto& { return s.m_internal; }),
    settingRow<HostSettings>(
        {"score", SettingKind::list, "PREFIX=N", "score of relays; the longest prefix wins"},
        [](auto& s) -> auto& { return s.m_scores; }),
    settingRow<HostSettings>(
        {"dynamic-patterns", SettingKind::path, "FILE",
         "dynamic host names, instead of the built-in list"},
        [](auto& s) -> auto& { return s.m_dynamicPatterns; }),
    settingRow<HostSettings>(
        {"dns", SettingKind::text, "system|off|HOST[@PORT]", "who answers look-ups"},
        [](auto& s) -> auto& { return s.m_dns; }, [](std::string const& t) { s_checkDns(t); }),
    settingRow<HostSettings>(
        {"dns-data", SettingKind::path, "FILE",
         "zone-file lines that answer; nothing else is asked"},
        [](auto& s) -> auto& { return s.m_dnsData; }),
    settingRow<HostSettings>(
        {"jobs", SettingKind::integer, "N", "scanning threads (0: one for each core)"},
        [](auto& s) -> auto& { return s.m_jobs; },
        [](std::string const& t) { readInteger(t, 0, maxJobs); }),
});

} // namespace

std::span<SettingRow<HostSettings> const> settingRows() {
    return table;
}

} // namespace Quorvane
