// SPDX-License-Identifier: Apache-2.0
//
// Judgement: what the daemon found of one message, and what becomes of it. Plain values and pure
// functions.
#pragma once

#include "apps/milter/MilterSettings.h"
#include "ScanRecord.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Quorvane::Milter {

// Why there is no verdict.
enum class Failure : std::uint8_t { noRules, scanFailed, dnsFailed, oddMessage, overload };

struct Judgement {
    RecordedVerdict m_verdict; // of the rules; none when there was a failure
    std::optional<Failure> m_failure;
    std::optional<ScanRecord> m_record; // empty: there was no scan
};

// What a scan found. Look-ups that failed take the verdict away, unless the settings trust it.
Judgement judgementOf(ScanRecord record, MilterSettings const& settings);
Judgement failureOf(Failure failure);

// What happens to the message: the action of the verdict, or of the failure.
struct Action {
    VerdictAction m_action = VerdictAction::header; // of a failure only header and reject
    bool m_isTemporary = false;                     // tempfail; m_action does not count then
};
Action actionOn(Judgement const& judgement, MilterSettings const& settings);

// The words of header, log and metrics: "dns-failure"; "quarantine". A verdict is named as in every
// display (apps/story/VerdictStory.h).
char const* failureWord(Failure failure);
std::string actionWord(Action const& action);

// Names of the headers that the daemon adds, and takes out of what comes in.
inline constexpr char resultHeader[] = "X-QV-Deep-Header";
inline constexpr char reasonsHeader[] = "X-QV-Deep-Header-Reasons";

// "spam; node=17; confidence=0.9731; support=0.42; ips=192.0.2.55".
std::string resultText(Judgement const& judgement);

} // namespace Quorvane::Milter
