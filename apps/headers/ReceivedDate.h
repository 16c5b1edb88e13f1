// SPDX-License-Identifier: Apache-2.0
//
// Dates, as seconds since 1970. Pure functions, but for the local time zone.
#pragma once

#include "platform/HeaderContainer.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Quorvane {

// When the newest Received header says that the message came; empty when there is none or it has no
// date. The server that stored the message wrote it: older ones, and the Date header, are the
// sender's choice.
std::optional<std::int64_t> receivedDate(HeaderContainer const& headers);

// When the hop with this Received header was recorded, by the header itself; empty without a date.
std::optional<std::int64_t> hopDate(std::string const& value);

// Seconds since 1970 in UTC, for people: "2026-11-20 15:30:00", and for programs (RFC 3339):
// "2026-11-20T15:30:00Z". Empty after the year 9999, which a message may name.
std::string dateText(std::int64_t seconds);
std::string timestamp(std::int64_t seconds);

struct NamedTime {
    std::int64_t m_first = 0; // the second that is named, or the first of the day
    std::int64_t m_after = 0; // the one after it, or after the day
};

// "2026-11-20", "2026-11-20T15:30" or "2026-11-20T15:30:00", with a time zone ("Z", "+01:00") or in
// local time. Empty for another text.
std::optional<NamedTime> namedTime(std::string const& text);

} // namespace Quorvane
