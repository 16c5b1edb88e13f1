// SPDX-License-Identifier: Apache-2.0
//
// ReceivedFields: what the scanner of Received text finds, a plain record. It outlives a parse: a
// header that is parsed again starts from the fields that the parse before left.
#pragma once

#include "platform/IPAddress.h"
#include "platform/Resolver.h"

#include <cstdint>
#include <string>

namespace Quorvane {

// The forged state before anyone asked.
inline constexpr std::int32_t forgedNotKnown = -1;

struct ReceivedFields {
    bool m_isParsed = false; // set by a completed parse
    std::string m_from;
    std::string m_reverseName;
    std::string m_by;
    IPAddress m_address;
    std::int32_t m_forged = forgedNotKnown;               // else the cached answer
    LookupResult m_forgedLookup = LookupResult::notAsked; // what that answer rests on
    bool m_privateIP = true;                              // a hop without address counts as private
    bool m_authenticated = false;
    std::string m_receiveTime;
};

} // namespace Quorvane
