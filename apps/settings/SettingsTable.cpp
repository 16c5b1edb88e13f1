// SPDX-License-Identifier: Apache-2.0
#include "apps/settings/SettingsTable.h"

#include "apps/text/NumberText.h"
#include "platform/IPAddress.h"
#include "rules/format/RuleTests.h"

#include <array>
#include <cstdint>
#include <limits>

namespace Quorvane {

namespace {

template<int Low, int High>
void s_checkNumber(std::string const& text) {
    readNumber(text, Low, High);
}

// Probabilities, and beyond them the numbers with which the library itself says "never", up to its
// default.
void s_checkThreshold(std::string const& text) {
    if (auto const value = readNumber(text); value < 0 || value > treeOffThreshold) {
        throw SettingsError("\"" + text + "\" is not a probability; write a number from 0 to 1");
    }
}

template<int Low, int High>
void s_checkInteger(std::string const& text) {
    readInteger(text, Low, High);
}

constexpr int million = 1'000'000;
constexpr int mostJobs = 1024; // more is a typing error
constexpr int highestLevel = std::numeric_limits<std::int32_t>::max();

void s_checkTimeout(std::string const& text) {
    if (auto const seconds = readNumber(text); seconds < 0.01 || seconds > 600) {
        throw SettingsError("\"" + text + "\" is not a time; write seconds, from 0.01 to 600");
    }
}

void s_checkDns(std::string const& text) {
    auto const at = text.find('@');
    if (text == "auto" || text == "system" || text == "off") {
        return;
    }
    if (!IPAddress::isValidIPAddress(text.substr(0, at))) {
        throw SettingsError("\"" + text +
                            "\" is not a resolver; write auto, system, off, or the address of " +
                            "a name server, as in 192.0.2.53 or 192.0.2.53@5353");
    }
    if (at != std::string::npos) {
        readInteger(text.substr(at + 1), 1, 65535);
    }
}

constexpr auto settings = std::to_array<SettingRow<HostSettings>>({
    settingRow<&HostSettings::m_root>(
        {"root", SettingKind::path, "DIR",
         "read the rules from DIR/var/spool/etc/antispam, or from DIR itself (/)"}),
    settingRow<&HostSettings::m_judging, &DeepHeaderSettings::spamThreshold>(
        {"spam-threshold", SettingKind::number, "X", "minimum probability for spam, 0..1 (0.95)",
         true},
        s_checkThreshold),
    settingRow<&HostSettings::m_judging, &DeepHeaderSettings::hamThreshold>(
        {"ham-threshold", SettingKind::number, "X", "minimum probability for ham, 0..1 (0.95)",
         true},
        s_checkThreshold),
    settingRow<&HostSettings::m_judging, &DeepHeaderSettings::minSupport>(
        {"min-support", SettingKind::number, "X",
         "minimum percentage of training mail for a rule, 0..100 (0.15)", true},
        s_checkNumber<0, 100>),
    settingRow<&HostSettings::m_judging, &DeepHeaderSettings::maxEliteLevel>(
        {"max-elite-level", SettingKind::integer, "N",
         "ignore elite rules of a higher level; -1: all of them (1)", true},
        s_checkInteger<-1, highestLevel>),
    settingRow<&HostSettings::m_judging, &DeepHeaderSettings::scoreThreshold>(
        {"score-threshold", SettingKind::integer, "N",
         "reputation score at which a relay ends the walk, 0..9 (6)"},
        s_checkInteger<lowestScore, highestScore>),
    settingRow<&HostSettings::m_judging, &DeepHeaderSettings::walkToLeaf>(
        {"walk-to-leaf", SettingKind::integer, "0|1",
         "0: stop at the first node sure enough of spam (1)", true},
        s_checkInteger<0, 1>),
    settingRow<&HostSettings::m_trusted>(
        {"trusted-mta", SettingKind::list, "PREFIX", "trusted relay: skipped along the trail"}),
    settingRow<&HostSettings::m_antiSpam>({"trusted-antispam-mta", SettingKind::list, "PREFIX",
                                           "relay that already filters mail: ends the walk"}),
    settingRow<&HostSettings::m_internal>(
        {"internal", SettingKind::list, "PREFIX", "the site's own relays; their hops are skipped"}),
    settingRow<&HostSettings::m_ipv6>(
        {"ipv6", SettingKind::text, "stop|judge",
         "IPv6 relays: stop the walk there, or judge them by their names like any other (stop)"}),
    settingRow<&HostSettings::m_scores>(
        {"score", SettingKind::list, "PREFIX=N",
         "reputation score of relays, 0..9; the longest prefix wins"}),
    settingRow<&HostSettings::m_dnsLists>(
        {"dns-list", SettingKind::list, "LIST",
         "DNS list, for relays without a score: \"ZONE ANSWER=N ...\"; the lowest score wins"}),
    settingRow<&HostSettings::m_dynamicPatterns>(
        {"dynamic-patterns", SettingKind::path, "FILE",
         "patterns of dynamic host names, instead of the built-in list"}),
    settingRow<&HostSettings::m_dns>(
        {"dns", SettingKind::text, "auto|system|off|HOST[@PORT]",
         "which resolver answers look-ups; auto: like system if rules or output need it (auto)"},
        s_checkDns),
    settingRow<&HostSettings::m_dnsTimeout>(
        {"dns-timeout", SettingKind::number, "SECONDS",
         "for all look-ups of a message; late answers do not count (2)"},
        s_checkTimeout),
    settingRow<&HostSettings::m_dnsData>(
        {"dns-data", SettingKind::path, "FILE",
         "zone file that answers all look-ups; no server is asked"}),
    settingRow<&HostSettings::m_limits, &HeaderLimits::m_maxFields>(
        {"max-headers", SettingKind::integer, "N",
         "header fields of a message; one with more is not judged (1000)"},
        s_checkInteger<1, 100 * million>),
    settingRow<&HostSettings::m_limits, &HeaderLimits::m_maxBytes>(
        {"max-header-bytes", SettingKind::integer, "N",
         "bytes of all header fields of a message; one with more is not judged (1048576)"},
        s_checkInteger<1024, 100 * million>),
    settingRow<&HostSettings::m_limits, &HeaderLimits::m_maxHops>(
        {"max-hops", SettingKind::integer, "N",
         "newest hops of a message that are looked at (100)"},
        s_checkInteger<1, 100 * million>),
    settingRow<&HostSettings::m_jobs>(
        {"jobs", SettingKind::integer, "N", "scanning threads (0: one per core)"},
        s_checkInteger<0, mostJobs>),
});

constexpr auto facts = std::to_array<SettingRow<MessageFacts>>({
    settingRow<&MessageFacts::m_envelopeFrom>(
        {"env-from", SettingKind::text, "A", "envelope sender"}),
    settingRow<&MessageFacts::m_headerFrom>({"header-from", SettingKind::text, "A", "author"}),
    settingRow<&MessageFacts::m_recipient>({"recipient", SettingKind::text, "A", "recipient"}),
    settingRow<&MessageFacts::m_currentReceived>(
        {"current-received", SettingKind::text, "TEXT",
         "Received header that the server is about to add"}),
    settingRow<&MessageFacts::m_currentIsForged>(
        {"current-forged", SettingKind::integer, "N",
         "is the reverse name in it forged? 0, 1, or -1: ask DNS (0)"}),
    settingRow<&MessageFacts::m_clientScore>(
        {"client-score", SettingKind::integer, "N", "reputation score of the client (0)"}),
    settingRow<&MessageFacts::m_messageStatus>(
        {"message-status", SettingKind::integer, "N",
         "status of the message; rules can only test whether it is 3 (0)"}),
});

} // namespace

std::vector<std::string> settingWarnings(SettingsStore const& store) {
    auto const& judging = store.values().m_judging;
    std::vector<std::string> warnings;
    auto const add = [&](std::string_view name, double threshold, std::string_view verdict) {
        if (threshold > 1) {
            warnings.push_back(std::string(name) + " " + numberText(threshold) + " (" +
                               store.origin(name) + ") is above 1: no message can be called " +
                               std::string(verdict) + "; thresholds are probabilities, as in 0.95");
        }
    };
    add("spam-threshold", judging.spamThreshold, "spam");
    add("ham-threshold", judging.hamThreshold, "ham");
    return warnings;
}

std::span<SettingRow<HostSettings> const> settingRows() {
    return settings;
}

std::span<SettingRow<MessageFacts> const> factRows() {
    return facts;
}

} // namespace Quorvane
