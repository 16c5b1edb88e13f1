// SPDX-License-Identifier: Apache-2.0
#include "apps/milter/MilterTable.h"

#include "apps/milter/ListenSocket.h"
#include "apps/milter/StatusAddress.h"

#include <algorithm>
#include <array>

namespace Quorvane::Milter {

namespace {

// In the order of the enumerations.
constexpr auto verdictActions =
    std::to_array<std::string_view>({"header", "accept", "reject", "quarantine", "discard"});
constexpr auto failureActions = std::to_array<std::string_view>({"accept", "tempfail", "reject"});
constexpr auto logTargets = std::to_array<std::string_view>({"stderr", "journal", "syslog"});

template<typename Choice, std::size_t Count>
void s_read(std::string const& text, std::array<std::string_view, Count> const& words,
            Choice& field) {
    auto const found = std::find(words.begin(), words.end(), text);
    if (found == words.end()) {
        std::string known;
        for (auto const word : words) {
            known += (known.empty() ? "" : ", ") + std::string(word);
        }
        throw SettingsError("\"" + text + "\" is not one of " + known);
    }
    field = static_cast<Choice>(found - words.begin());
}

template<typename Choice, std::size_t Count>
SettingTexts s_texts(Choice value, std::array<std::string_view, Count> const& words) {
    return {std::string(words.at(static_cast<std::size_t>(value)))};
}

constexpr long long million = 1'000'000;

void s_checkFlag(std::string const& text) {
    readInteger(text, 0, 1);
}

void s_checkCount(std::string const& text) {
    readInteger(text, 1, million);
}

void s_checkSocket(std::string const& text) {
    ListenAddress::parse(text);
}

void s_checkMode(std::string const& text) {
    socketMode(text);
}

// Empty is the default, which --show-config prints.
void s_checkStatusAddress(std::string const& text) {
    if (!text.empty()) {
        StatusAddress::parse(text);
    }
}

// It goes into an SMTP reply of one line (RFC 5321 section 4.5.3.1.5: 512 bytes with the code).
void s_checkRejectText(std::string const& text) {
    bool const isPrintable =
        std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
    if (text.empty() || text.size() > 400 || !isPrintable) {
        throw SettingsError("it has to be one line of at most 400 printable ASCII characters");
    }
}

using enum SettingKind;
constexpr char verdictValues[] = "header|accept|reject|quarantine|discard";
constexpr char failureValues[] = "accept|tempfail|reject";

constexpr auto table = std::to_array<SettingRow<MilterSettings>>({
    settingRow<&MilterSettings::m_socket>(
        {"socket", text, "ADDRESS",
         "where the mail server connects: unix:PATH or inet:PORT@HOST "
         "(unix:/run/qvmilter/qvmilter.sock)"},
        s_checkSocket),
    settingRow<&MilterSettings::m_socketGroup>(
        {"socket-group", text, "GROUP", "group of a unix socket: that of the mail server"}),
    settingRow<&MilterSettings::m_socketMode>(
        {"socket-mode", text, "MODE", "permissions of a unix socket, octal (660)"}, s_checkMode),
    settingRow<&MilterSettings::m_user>(
        {"user", text, "USER", "run as this user once the socket is open"}),
    settingRow<&MilterSettings::m_pidFile>(
        {"pid-file", path, "FILE", "holds the process number while the daemon runs"}),
    settingRow<&MilterSettings::m_log>({"log", text, "stderr|journal|syslog",
                                        "where messages go; instead of stderr syslog in the "
                                        "background, and the journal where systemd "
                                        "has tied stderr to it (stderr)"}),
    settingRow<&MilterSettings::m_logDetails>(
        {"log-details", integer, "0|1",
         "1: the log also has the attributes of each message and the hop of its client (0)"},
        s_checkFlag),
    settingRow<&MilterSettings::m_metrics>(
        {"metrics", text, "HOST:PORT",
         "serve /metrics and /health at this address of this machine (off)"},
        s_checkStatusAddress),
    settingRow<&MilterSettings::m_onSpam>(
        {"on-spam", text, verdictValues, "what becomes of spam (header)"}),
    settingRow<&MilterSettings::m_onHam>(
        {"on-ham", text, verdictValues, "what becomes of ham (header)"}),
    settingRow<&MilterSettings::m_onNone>(
        {"on-none", text, verdictValues, "what becomes of the rest (header)"}),
    settingRow<&MilterSettings::m_rejectText>(
        {"reject-text", text, "TEXT", "what a client reads whose message is rejected"},
        s_checkRejectText),
    settingRow<&MilterSettings::m_onNoRules>(
        {"on-no-rules", text, failureValues, "no rules could be loaded yet (accept)"}),
    settingRow<&MilterSettings::m_onScanFailure>(
        {"on-scan-failure", text, failureValues,
         "the scan failed, as for want of memory (accept)"}),
    settingRow<&MilterSettings::m_onDnsFailure>(
        {"on-dns-failure", text, failureValues,
         "look-ups failed or came late, and trust-failed-lookups is 0 (accept)"}),
    settingRow<&MilterSettings::m_onOddMessage>(
        {"on-odd-message", text, failureValues, "the message is beyond a limit (accept)"}),
    settingRow<&MilterSettings::m_onOverload>(
        {"on-overload", text, failureValues,
         "max-scans messages are being judged, or max-sessions sessions are open (accept)"}),
    settingRow<&MilterSettings::m_trustFailedLookups>(
        {"trust-failed-lookups", integer, "0|1",
         "1: a verdict counts although look-ups failed; 0: it does not (0)"},
        s_checkFlag),
    settingRow<&MilterSettings::m_exemptAuthenticated>(
        {"exempt-authenticated", integer, "0|1", "leave authenticated clients alone (1)"},
        s_checkFlag),
    settingRow<&MilterSettings::m_exempt>(
        {"exempt", list, "PREFIX", "leave clients in this range alone"}),
    settingRow<&MilterSettings::m_addReasons>(
        {"add-reasons", integer, "0|1", "1: a second header says why (0)"}, s_checkFlag),
    settingRow<&MilterSettings::m_maxScans>(
        {"max-scans", integer, "N", "messages judged at once (256)"}, s_checkCount),
    settingRow<&MilterSettings::m_maxSessions>(
        {"max-sessions", integer, "N", "sessions open at once whose messages are judged (1000)"},
        s_checkCount),
    settingRow<&MilterSettings::m_idleTimeoutSeconds>(
        {"idle-timeout", integer, "SECONDS",
         "end sessions in which the mail server says nothing for so long (7200)"},
        s_checkCount),
    settingRow<&MilterSettings::m_ruleCheckSeconds>(
        {"rule-check", integer, "SECONDS", "time between two looks for newer rules (60)"},
        s_checkCount),
});

} // namespace

void readSetting(std::string const& text, VerdictAction& field) {
    s_read(text, verdictActions, field);
}

void readSetting(std::string const& text, FailureAction& field) {
    s_read(text, failureActions, field);
}

void readSetting(std::string const& text, LogTarget& field) {
    s_read(text, logTargets, field);
}

SettingTexts settingTexts(VerdictAction value) {
    return s_texts(value, verdictActions);
}

SettingTexts settingTexts(FailureAction value) {
    return s_texts(value, failureActions);
}

SettingTexts settingTexts(LogTarget value) {
    return s_texts(value, logTargets);
}

std::span<SettingRow<MilterSettings> const> milterRows() {
    return table;
}

} // namespace Quorvane::Milter
