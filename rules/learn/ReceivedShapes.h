// SPDX-License-Identifier: Apache-2.0
//
// The shapes in which mail servers record the client in a Received header, as far as the learner
// needs them to rewrite a header in the way of another server.
//
// Pure; may be called from any thread.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Quorvane::Rules {

// What a Received header says about the client.
struct ReceivedClient {
    std::string m_helo;    // the announced name, as written
    std::string m_address; // without brackets and "IPv6:"
    // Length of the text, from "from" on, that holds both.
    std::size_t m_length = 0;
};

// `value` is the text after "Received:" and its blanks, folding included. Empty when no shape fits.
std::optional<ReceivedClient> receivedClient(std::string_view value);

} // namespace Quorvane::Rules
