// SPDX-License-Identifier: Apache-2.0
#include "apps/story/TrailTable.h"

#include "apps/headers/ReceivedDate.h"
#include "apps/story/StepText.h"
#include "apps/story/TextTable.h"
#include "apps/story/TrailTimes.h"

#include <algorithm>
#include <numeric>

namespace Quorvane {

namespace {

bool s_isTelling(RecordedHop const& hop) {
    switch (hop.role) {
    case HopRole::unreadable:
    case HopRole::trustedPartner:
    case HopRole::ipv6End:
    case HopRole::scoredEnd:
    case HopRole::firstPublic:
    case HopRole::analysed:
        return true;
    default:
        return false;
    }
}

// "ESMTPS, TLS 1.3"
std::string s_with(ReceivedWith const& with) {
    bool const hasBoth = !with.m_protocol.empty() && !with.m_tls.empty();
    return textCell(with.m_protocol + (hasBoth ? ", " : "") + with.m_tls);
}

// The numbers count the headers of the message.
std::string s_number(std::vector<RecordedHop> const& trail, std::size_t place) {
    if (trail[place].isCurrent) {
        return "now";
    }
    bool const hasCurrent = trail.front().isCurrent;
    return std::to_string(place + (hasCurrent ? 0 : 1));
}

} // namespace

std::vector<std::size_t> tellingHops(std::vector<RecordedHop> const& trail, std::size_t most) {
    std::vector<std::size_t> places(trail.size());
    std::iota(places.begin(), places.end(), std::size_t{0});
    if (places.size() > most) {
        std::stable_partition(places.begin(), places.end(),
                              [&trail](std::size_t place) { return s_isTelling(trail[place]); });
        places.resize(most);
        std::sort(places.begin(), places.end());
    }
    return places;
}

std::string trailTable(ScanRecord const& record, HeaderContainer const& headers,
                       std::vector<std::size_t> const& places) {
    if (places.empty()) {
        return {};
    }
    auto const times = trailTimes(record.trail, headers);
    std::vector<TextRow> rows{{"#", "recorded by", "time (UTC)", "delay", "address", "announced",
                               "reverse name", "receiver", "with", "taken for"}};
    for (auto const place : places) {
        auto const& hop = record.trail[place];
        auto const& time = times[place];
        rows.push_back({s_number(record.trail, place), hop.isVouched ? "our side" : "the sender?",
                        textCell(time.m_time ? dateText(*time.m_time) : ""),
                        time.m_delay ? delayText(*time.m_delay) : "-",
                        textCell(hop.address.asString(true)), textCell(hop.from),
                        textCell(hop.reverseName), textCell(hop.by), s_with(time.m_with),
                        roleText(hop)});
    }
    return textTable(rows);
}

} // namespace Quorvane
