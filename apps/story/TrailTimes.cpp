// SPDX-License-Identifier: Apache-2.0
#include "apps/story/TrailTimes.h"

#include "apps/headers/ReceivedDate.h"

#include <array>
#include <cstdlib>

namespace Quorvane {

namespace {

struct Unit {
    char const* m_name;
    std::int64_t m_seconds;
};

constexpr std::array<Unit, 4> units{{{"d", 86400}, {"h", 3600}, {"min", 60}, {"s", 1}}};

// The largest unit and the one below it.
std::string s_length(std::int64_t seconds) {
    for (std::size_t i = 0; i < units.size(); ++i) {
        auto const [name, size] = units.at(i);
        if (seconds < size) {
            continue;
        }
        auto text = std::to_string(seconds / size) + " " + name;
        if (i + 1 < units.size() && seconds % size >= units.at(i + 1).m_seconds) {
            auto const [nextName, nextSize] = units.at(i + 1);
            text += " " + std::to_string(seconds % size / nextSize) + " " + nextName;
        }
        return text;
    }
    return "0 s";
}

void s_addDelays(std::vector<HopTime>& times) {
    std::optional<std::int64_t> before;
    for (auto hop = times.rbegin(); hop != times.rend(); ++hop) {
        if (hop->m_time && before) {
            hop->m_delay = *hop->m_time - *before;
        }
        before = hop->m_time ? hop->m_time : before;
    }
}

} // namespace

// The trail holds the Received headers in the order of the message.
std::vector<HopTime> trailTimes(std::vector<RecordedHop> const& trail,
                                HeaderContainer const& headers) {
    std::vector<HopTime> times(trail.size());
    std::size_t at = 0;
    for (auto const& header : headers.headers()) {
        if (header.typeLowerCase() != "received") {
            continue;
        }
        while (at < trail.size() && trail[at].isCurrent) {
            ++at;
        }
        if (at == trail.size()) {
            break;
        }
        times[at++] = {hopDate(header.value()), std::nullopt, receivedWith(header.value())};
    }
    s_addDelays(times);
    return times;
}

std::string delayText(std::int64_t seconds) {
    return seconds < 0 ? "-" + s_length(-seconds) + ", backwards" : s_length(seconds);
}

} // namespace Quorvane
