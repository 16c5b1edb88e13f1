// SPDX-License-Identifier: Apache-2.0
#include "apps/settings/SettingsTable.h"

#include "platform/IPAddress.h"

#include <array>

namespace Quorvane {

namespace {

void s_checkJobs(std::string const& text) {
    readInteger(text, 0, 1024); // more threads are a slip of the keyboard
}

void s_checkFlag(std::string const& text) {
    readInteger(text, 0, 1);
}

void s_checkTimeout(std::string const& text) {
    if (auto const seconds = readNumber(text); seconds < 0.01 || seconds > 600) {
        throw SettingsError("\"" + text + "\" is not a time; write seconds, from 0.01 to 600");
    }
}

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
    settingRow<&HostSettings::m_root>(
        {"root", SettingKind::path, "DIR", "look rules up in DIR/var/spool/etc/antispam (/)"}),
    settingRow<&HostSettings::m_judging, &DeepHeaderSettings::spamThreshold>(
        {"spam-threshold", SettingKind::number, "X", "spam from this probability on, 0..1 (0.95)",
         true}),
    settingRow<&HostSettings::m_judging, &DeepHeaderSettings::hamThreshold>(
        {"ham-threshold", SettingKind::number, "X",
         "ham from this probability of ham on, 0..1 (0.95)", true}),
    settingRow<&HostSettings::m_judging, &DeepHeaderSettings::minSupport>(
        {"min-support", SettingKind::number, "X",
         "percentage of training mail that a rule rests on (0.15)", true}),
    settingRow<&HostSettings::m_judging, &DeepHeaderSettings::maxEliteLevel>(
        {"max-elite-level", SettingKind::integer, "N",
         "leave elite rules of a higher level out (1)", true}),
    settingRow<&HostSettings::m_judging, &DeepHeaderSettings::scoreThreshold>(
        {"score-threshold", SettingKind::integer, "N",
         "score from which a relay ends the walk, 0..9 (6)"}),
    settingRow<&HostSettings::m_judging, &DeepHeaderSettings::walkToLeaf>(
        {"walk-to-leaf", SettingKind::integer, "0|1",
         "0: stop at the first node sure enough of spam (1)", true},
        s_checkFlag),
    settingRow<&HostSettings::m_trusted>(
        {"trusted-mta", SettingKind::list, "PREFIX", "a relay that is skipped along the trail"}),
    settingRow<&HostSettings::m_antiSpam>({"trusted-antispam-mta", SettingKind::list, "PREFIX",
                                           "a relay that filters already: ends the trail"}),
    settingRow<&HostSettings::m_internal>(
        {"internal", SettingKind::list, "PREFIX", "our own relays; their hops are skipped"}),
    settingRow<&HostSettings::m_scores>(
        {"score", SettingKind::list, "PREFIX=N", "score of relays; the longest prefix wins"}),
    settingRow<&HostSettings::m_dnsLists>(
        {"dns-list", SettingKind::list, "LIST",
         "DNS list of relays without a score: \"ZONE ANSWER=N ...\"; the lowest score wins"}),
    settingRow<&HostSettings::m_dynamicPatterns>(
        {"dynamic-patterns", SettingKind::path, "FILE",
         "dynamic host names, instead of the built-in list"}),
    settingRow<&HostSettings::m_dns>(
        {"dns", SettingKind::text, "system|off|HOST[@PORT]", "who answers look-ups"}, s_checkDns),
    settingRow<&HostSettings::m_dnsTimeout>(
        {"dns-timeout", SettingKind::number, "SECONDS",
         "for all look-ups of a message; late answers do not count (2)"},
        s_checkTimeout),
    settingRow<&HostSettings::m_dnsData>({"dns-data", SettingKind::path, "FILE",
                                          "zone-file lines that answer; nothing else is asked"}),
    settingRow<&HostSettings::m_jobs>(
        {"jobs", SettingKind::integer, "N", "scanning threads (0: one for each core)"},
        s_checkJobs),
});

} // namespace

std::span<SettingRow<HostSettings> const> settingRows() {
    return table;
}

} // namespace Quorvane
