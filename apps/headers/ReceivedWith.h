// SPDX-License-Identifier: Apache-2.0
//
// How a hop came, by its Received header: the protocol and the encryption. A pure function over
// text that a sender may have invented.
#pragma once

#include <string>
#include <string_view>

namespace Quorvane {

struct ReceivedWith {
    // The words after "with", as they stand there: "ESMTPS", "Microsoft SMTP Server". Empty: none.
    std::string m_protocol;
    // "TLS 1.3"; "TLS" when only the protocol tells of it (RFC 3848, RFC 6531); empty: none is
    // told.
    std::string m_tls;
};

ReceivedWith receivedWith(std::string_view value);

} // namespace Quorvane
