// SPDX-License-Identifier: Apache-2.0
#include "apps/headers/ReceivedDate.h"

#include <algorithm>
#include <gmime/gmime.h>
#include <memory>

namespace Quorvane {

namespace {

using Time = std::unique_ptr<GDateTime, void (*)(GDateTime*)>;
using Zone = std::unique_ptr<GTimeZone, void (*)(GTimeZone*)>;

constexpr std::size_t dayLength = 10;    // "2026-11-20"
constexpr std::size_t minuteLength = 16; // "2026-11-20T15:30"
// No line of a header is longer (RFC 5322 section 2.1.1).
constexpr std::size_t longestDate = 998;

Time s_read(std::string const& text, GTimeZone* zone) {
    return {g_date_time_new_from_iso8601(text.c_str(), zone), g_date_time_unref};
}

bool s_isNewest(Header const& header) {
    return header.typeLowerCase() == "received";
}

std::string s_formatted(std::int64_t seconds, char const* format) {
    Time const date(g_date_time_new_from_unix_utc(seconds), g_date_time_unref);
    if (!date) {
        return {};
    }
    std::unique_ptr<char, void (*)(void*)> const text(g_date_time_format(date.get(), format),
                                                      g_free);
    return text.get();
}

} // namespace

std::optional<std::int64_t> receivedDate(HeaderContainer const& headers) {
    auto const& all = headers.headers();
    auto const newest = std::find_if(all.begin(), all.end(), s_isNewest);
    if (newest == all.end()) {
        return std::nullopt;
    }
    return hopDate(newest->value());
}

std::optional<std::int64_t> hopDate(std::string const& value) {
    auto const semicolon = value.rfind(';');
    if (semicolon == std::string::npos) {
        return std::nullopt;
    }
    auto const text = value.substr(semicolon + 1, longestDate);
    Time const date(g_mime_utils_header_decode_date(text.c_str()), g_date_time_unref);
    return date ? std::optional<std::int64_t>(g_date_time_to_unix(date.get())) : std::nullopt;
}

std::string dateText(std::int64_t seconds) {
    return s_formatted(seconds, "%Y-%m-%d %H:%M:%S");
}

std::string timestamp(std::int64_t seconds) {
    return s_formatted(seconds, "%Y-%m-%dT%H:%M:%SZ");
}

std::optional<NamedTime> namedTime(std::string const& text) {
    Zone const local(g_time_zone_new_local(), g_time_zone_unref);
    if (text.size() == dayLength) {
        auto const day = s_read(text + "T00:00:00", local.get());
        if (!day) {
            return std::nullopt;
        }
        Time const next(g_date_time_add_days(day.get(), 1), g_date_time_unref);
        return NamedTime{g_date_time_to_unix(day.get()), g_date_time_to_unix(next.get())};
    }
    auto const time = s_read(text + (text.size() == minuteLength ? ":00" : ""), local.get());
    if (!time) {
        return std::nullopt;
    }
    auto const second = g_date_time_to_unix(time.get());
    return NamedTime{second, second + 1};
}

} // namespace Quorvane
