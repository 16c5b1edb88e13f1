// SPDX-License-Identifier: Apache-2.0
//
// MilterSettings: what a site tells the daemon besides what all programs share: its socket, what
// becomes of messages, its limits. A plain record; MilterTable.h names each field for the settings
// file.
#pragma once

#include "platform/IPPrefix.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Quorvane::Milter {

// What becomes of a message that was judged.
enum class VerdictAction : std::uint8_t { header, accept, reject, quarantine, discard };

// What becomes of a message that could not be judged.
enum class FailureAction : std::uint8_t { accept, tempfail, reject };

enum class LogTarget : std::uint8_t { standardError, journal, syslog };

struct MilterSettings {
    // "unix:/run/qvmilter/qvmilter.sock", "inet:8891@127.0.0.1", "inet6:8891@[::1]".
    std::string m_socket = "unix:/run/qvmilter/qvmilter.sock";
    // Of a unix socket. Empty: the daemon's group.
    std::string m_socketGroup;
    std::string m_socketMode = "660"; // octal
    // Empty: stays what it is.
    std::string m_user;
    std::string m_pidFile;
    LogTarget m_log = LogTarget::standardError;
    int m_logDetails = 0; // with the attributes of each message, and the hop of its client
    // Address and port of the metrics and the health page; empty: neither.
    std::string m_metrics;

    VerdictAction m_onSpam = VerdictAction::header;
    VerdictAction m_onHam = VerdictAction::header;
    VerdictAction m_onNone = VerdictAction::header;
    std::string m_rejectText = "Message refused: its Received trail looks like that of spam";

    FailureAction m_onNoRules = FailureAction::accept;
    FailureAction m_onScanFailure = FailureAction::accept;
    FailureAction m_onDnsFailure = FailureAction::accept;
    FailureAction m_onOddMessage = FailureAction::accept;
    FailureAction m_onOverload = FailureAction::accept;

    // 1: a verdict counts although look-ups failed; 0: there is none then.
    int m_trustFailedLookups = 0;
    int m_exemptAuthenticated = 1;
    std::vector<IPPrefix> m_exempt;
    int m_addReasons = 0;

    std::uint32_t m_maxScans = 256;     // at once
    std::uint32_t m_maxSessions = 1000; // at once
    // A mail server says nothing while the body of a message comes in, however slowly.
    std::uint32_t m_idleTimeoutSeconds = 7200;
    std::uint32_t m_ruleCheckSeconds = 60;
};

} // namespace Quorvane::Milter
