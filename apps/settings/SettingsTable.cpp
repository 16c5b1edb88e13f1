// SPDX-License-Identifier: Apache-2.0
#include "apps/settings/SettingsTable.h"

#include "apps/text/NumberText.h"
#include "include2/Exception.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

namespace Quorvane {

namespace {

using Texts = std::vector<std::string>;

constexpr long long minInt32 = std::numeric_limits<std::int32_t>::min();
constexpr long long maxInt32 = std::numeric_limits<std::int32_t>::max();
// More threads than this is a slip of the keyboard.
constexpr long long maxJobs = 1024;

std::int32_t s_int32(std::string const& text) {
    return static_cast<std::int32_t>(readInteger(text, minInt32, maxInt32));
}

IPPrefix s_prefix(std::string const& text) {
    try {
        return IPPrefix::parse(text);
    } catch (Exception const& error) {
        throw SettingsError(error.stringParameter());
    }
}

Texts s_show(std::vector<IPPrefix> const& prefixes) {
    Texts texts;
    for (auto const& prefix : prefixes) {
        texts.push_back(prefix.asString());
    }
    return texts;
}

void s_assignScore(HostSettings& settings, std::string const& text) {
    auto const equals = text.rfind('=');
    if (equals == std::string::npos) {
        throw SettingsError("\"" + text + "\" is no score; write PREFIX=N, as in 192.0.2.0/24=7");
    }
    auto const prefix = s_prefix(text.substr(0, equals));
    settings.m_scores.emplace_back(prefix, s_int32(text.substr(equals + 1)));
}

Texts s_showScores(HostSettings const& settings) {
    Texts texts;
    for (auto const& [prefix, score] : settings.m_scores) {
        texts.push_back(prefix.asString() + "=" + std::to_string(score));
    }
    return texts;
}

void s_checkServer(std::string const& text) {
    auto const at = text.find('@');
    if (!IPAddress::isValidIPAddress(text.substr(0, at))) {
        throw SettingsError("\"" + text +
                            "\" is no resolver; write system, off, or the address of " +
                            "a name server, as in 192.0.2.53 or 192.0.2.53@5353");
    }
    if (at != std::string::npos) {
        readInteger(text.substr(at + 1), 1, 65535);
    }
}

void s_assignDns(HostSettings& settings, std::string const& text) {
    if (text != "system" && text != "off") {
        s_checkServer(text);
    }
    settings.m_dns = text;
}

constexpr auto table = std::to_array<SettingKey>({
    {"root", SettingKind::path, "DIR", "look rules up in DIR/var/spool/etc/antispam (/)",
     [](HostSettings& s, std::string const& t) { s.m_root = t; },
     [](HostSettings const& s) { return Texts{s.m_root}; }, nullptr},
    {"spam-threshold", SettingKind::number, "X", "spam from this probability on, 0..1 (0.95)",
     [](HostSettings& s, std::string const& t) { s.m_judging.spamThreshold = readNumber(t); },
     [](HostSettings const& s) { return Texts{exactNumberText(s.m_judging.spamThreshold)}; },
     nullptr, true},
    {"ham-threshold", SettingKind::number, "X", "ham from this probability of ham on, 0..1 (0.95)",
     [](HostSettings& s, std::string const& t) { s.m_judging.hamThreshold = readNumber(t); },
     [](HostSettings const& s) { return Texts{exactNumberText(s.m_judging.hamThreshold)}; },
     nullptr, true},
    {"min-support", SettingKind::number, "X", "percentage of training mail behind a rule (0.15)",
     [](HostSettings& s, std::string const& t) { s.m_judging.minSupport = readNumber(t); },
     [](HostSettings const& s) { return Texts{exactNumberText(s.m_judging.minSupport)}; }, nullptr,
     true},
    {"max-elite-level", SettingKind::integer, "N", "leave elite rules of a higher level out (1)",
     [](HostSettings& s, std::string const& t) { s.m_judging.maxEliteLevel = s_int32(t); },
     [](HostSettings const& s) { return Texts{std::to_string(s.m_judging.maxEliteLevel)}; },
     nullptr, true},
    {"score-threshold", SettingKind::integer, "N",
     "score from which a relay ends the walk, 0..9 (6)",
     [](HostSettings& s, std::string const& t) { s.m_judging.scoreThreshold = s_int32(t); },
     [](HostSettings const& s) { return Texts{std::to_string(s.m_judging.scoreThreshold)}; },
     nullptr},
    {"walk-to-leaf", SettingKind::integer, "0|1",
     "0: stop at the first node sure enough of spam (1)",
     [](HostSettings& s, std::string const& t) {
         s.m_judging.walkToLeaf = static_cast<std::uint8_t>(readInteger(t, 0, 1));
     },
     [](HostSettings const& s) { return Texts{std::to_string(int{s.m_judging.walkToLeaf})}; },
     nullptr, true},
    {"trusted-mta", SettingKind::list, "PREFIX", "a relay that is skipped along the trail",
     [](HostSettings& s, std::string const& t) { s.m_trusted.push_back(s_prefix(t)); },
     [](HostSettings const& s) { return s_show(s.m_trusted); },
     [](HostSettings& s) { s.m_trusted.clear(); }},
    {"trusted-antispam-mta", SettingKind::list, "PREFIX",
     "a relay that filters already: ends the trail",
     [](HostSettings& s, std::string const& t) { s.m_antiSpam.push_back(s_prefix(t)); },
     [](HostSettings const& s) { return s_show(s.m_antiSpam); },
     [](HostSettings& s) { s.m_antiSpam.clear(); }},
    {"internal", SettingKind::list, "PREFIX", "a relay of this site: newest hops are cut off",
     [](HostSettings& s, std::string const& t) { s.m_internal.push_back(s_prefix(t)); },
     [](HostSettings const& s) { return s_show(s.m_internal); },
     [](HostSettings& s) { s.m_internal.clear(); }},
    {"score", SettingKind::list, "PREFIX=N", "score of relays; the longest prefix wins",
     s_assignScore, s_showScores, [](HostSettings& s) { s.m_scores.clear(); }},
    {"dynamic-patterns", SettingKind::path, "FILE",
     "dynamic host names, instead of the built-in list",
     [](HostSettings& s, std::string const& t) { s.m_dynamicPatterns = t; },
     [](HostSettings const& s) { return Texts{s.m_dynamicPatterns}; }, nullptr},
    {"dns", SettingKind::text, "system|off|HOST[@PORT]", "who answers look-ups", s_assignDns,
     [](HostSettings const& s) { return Texts{s.m_dns}; }, nullptr},
    {"dns-data", SettingKind::path, "FILE", "zone-file lines that answer; nothing else is asked",
     [](HostSettings& s, std::string const& t) { s.m_dnsData = t; },
     [](HostSettings const& s) { return Texts{s.m_dnsData}; }, nullptr},
    {"jobs", SettingKind::integer, "N", "scanning threads (0: one for each core)",
     [](HostSettings& s, std::string const& t) {
         s.m_jobs = static_cast<unsigned int>(readInteger(t, 0, maxJobs));
     },
     [](HostSettings const& s) { return Texts{std::to_string(s.m_jobs)}; }, nullptr},
});

template<typename Number>
bool s_parses(std::string const& text, Number& value) {
    // std::from_chars knows no plus sign.
    bool const hasPlus = text.starts_with('+') && !text.starts_with("+-");
    auto const* const begin = text.data() + (hasPlus ? 1 : 0);
    auto const* const end = text.data() + text.size();
    auto const result = std::from_chars(begin, end, value);
    return result.ec == std::errc() && result.ptr == end;
}

} // namespace

std::span<SettingKey const> settingKeys() {
    return table;
}

SettingKey const* findSetting(std::string_view name) {
    auto const found = std::find_if(table.begin(), table.end(),
                                    [name](SettingKey const& key) { return key.m_name == name; });
    return found == table.end() ? nullptr : &*found;
}

double readNumber(std::string const& text) {
    double value = 0;
    if (!s_parses(text, value) || std::isnan(value)) {
        throw SettingsError("\"" + text + "\" is no number");
    }
    return value;
}

long long readInteger(std::string const& text, long long low, long long high) {
    long long value = 0;
    if (!s_parses(text, value) || value < low || value > high) {
        throw SettingsError("\"" + text + "\" is no whole number from " + std::to_string(low) +
                            " to " + std::to_string(high));
    }
    return value;
}

} // namespace Quorvane
