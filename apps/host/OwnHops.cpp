// SPDX-License-Identifier: Apache-2.0
#include "apps/host/OwnHops.h"

#include "MsgReceived.h"
#include "platform/Strings.h"

#include <algorithm>
#include <exception>

namespace Quorvane {

namespace {

bool s_cameFrom(std::vector<IPPrefix> const& own, Header const& header) {
    try {
        MsgReceived const hop(header.value());
        auto const address = hop.address();
        return std::any_of(own.begin(), own.end(),
                           [&address](IPPrefix const& prefix) { return prefix.contains(address); });
    } catch (std::exception const&) {
        return false;
    }
}

} // namespace

bool isReceived(Header const& header) {
    return stringCompareNoCase(header.type(), "received", 0) == 0;
}

EnteringTrail cutOffOwnHops(HeaderContainer const& headers, Header const& current,
                            std::vector<IPPrefix> const& own) {
    EnteringTrail trail{headers, current, {}};
    if (own.empty()) {
        return trail;
    }
    if (!current.isNull()) {
        if (!s_cameFrom(own, current)) {
            return trail;
        }
        trail.m_cutOff.push_back(current);
        trail.m_current = Header();
    }
    trail.m_headers = HeaderContainer();
    bool isCutting = true;
    for (auto const& header : headers.headers()) {
        isCutting = isCutting && (!isReceived(header) || s_cameFrom(own, header));
        if (isCutting && isReceived(header)) {
            trail.m_cutOff.push_back(header);
        } else {
            trail.m_headers.append(header);
        }
    }
    return trail;
}

} // namespace Quorvane
