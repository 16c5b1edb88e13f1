// SPDX-License-Identifier: Apache-2.0
//
// CurrentHop: the hop that the mail server is about to add for the client of a session. A filter
// never sees that header, so it is written here from what the mail server says of the client, in
// the mail server's own format.
#pragma once

#include "apps/milter/MailServer.h"
#include "platform/IPAddress.h"

#include <cstdint>
#include <string>

namespace Quorvane::Milter {

// What is known of a client.
struct Client {
    std::string m_name;     // confirmed by DNS; empty: none
    std::string m_reverse;  // what its address resolves to, confirmed or not; empty: unknown
    std::string m_resolved; // OK, FAIL, FORGED, TEMP; empty: the mail server does not say
    IPAddress m_address;    // null: it came by a local socket
    std::string m_helo;
};

// `hostName` and `address` as the mail server hands them over at connect.
Client clientOf(MailServer& server, std::string const& hostName, IPAddress const& address);

// The name that a client announced, as mail servers write it down: with "?" for each character that
// could end the name there. A client could else write an address of its choice into the hop.
std::string heloNameOf(std::string name);

// The value of the Received header, up to the queue number: what follows says nothing about the
// hop. REQUIRES: called while a callback of the message runs.
std::string receivedText(MailServer& server, Client const& client);

// Whether the reverse name is forged: it names the client, and its addresses do not include the
// client's. 0 no, 1 yes, -1 the mail server does not say.
std::int32_t forgedFlag(Client const& client);

} // namespace Quorvane::Milter
