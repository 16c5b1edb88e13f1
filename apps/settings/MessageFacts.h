// SPDX-License-Identifier: Apache-2.0
//
// MessageFacts: what a host knows about a message besides its text. A plain record.
#pragma once

#include "platform/EmailAddress.h"
#include "platform/IPAddress.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Quorvane {

struct MessageFacts {
    // Value of the Received header that the host is about to add.
    std::optional<std::string> m_currentReceived;
    std::int32_t m_currentIsForged = 0;
    // Of the client; not null: its score is looked up, and m_clientScore does not count.
    IPAddress m_client;
    std::uint32_t m_clientScore = 0;
    std::int32_t m_messageStatus = 0;
    EmailAddress m_envelopeFrom;
    EmailAddress m_headerFrom;
    EmailAddress m_recipient;
};

} // namespace Quorvane
