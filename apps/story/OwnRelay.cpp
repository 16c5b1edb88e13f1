// SPDX-License-Identifier: Apache-2.0
#include "apps/story/OwnRelay.h"

#include "rules/format/AttributeTable.h"

#include <algorithm>
#include <libpsl.h>

namespace Quorvane {

namespace {

// What was registered of a host name; empty without one. ASCII only, as Received headers write
// names.
std::string s_registered(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    while (!name.empty() && name.back() == '.') {
        name.pop_back();
    }
    if (name.empty() || (name.back() >= '0' && name.back() <= '9')) {
        return {}; // an address
    }
    auto const* const domain = psl_registrable_domain(psl_builtin(), name.c_str());
    return domain == nullptr ? "" : domain;
}

bool s_isJudged(RecordedHop const& hop) {
    return hop.role == HopRole::firstPublic || hop.role == HopRole::ipv6End;
}

} // namespace

RecordedHop const* judgedRelay(ScanRecord const& record) {
    auto const hop = std::find_if(record.trail.begin(), record.trail.end(), s_isJudged);
    return hop == record.trail.end() ? nullptr : &*hop;
}

RecordedHop const* possibleOwnRelay(ScanRecord const& record) {
    auto const* const hop = judgedRelay(record);
    if (hop == nullptr || (hop->role == HopRole::firstPublic &&
                           record.receivers.front().reverseDynamic == Code::yes)) {
        return nullptr;
    }
    auto const domain = s_registered(hop->reverseName);
    return !domain.empty() && domain == s_registered(hop->by) ? hop : nullptr;
}

std::string ownRelayNote(ScanRecord const& record) {
    auto const* const hop = possibleOwnRelay(record);
    return hop == nullptr ? std::string()
                          : hop->reverseName + " has the domain of " + hop->by +
                                ", which received from it: is it a relay of this site? Then add "
                                "--internal " +
                                hop->address.asString(true);
}

} // namespace Quorvane
