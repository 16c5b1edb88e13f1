// SPDX-License-Identifier: Apache-2.0
//
// The shapes in which mail servers write the client into a Received header, as far as the learner
// must take them apart to write them down in another server's way.
//
// Pure; may be called from any thread. Text that fits no shape is no error: it has no client here.
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
    // Length of the text, from "from" on, that these were taken from.
    std::size_t m_length = 0;
    std::string_view m_shape; // the name of the shape, for tests and messages
};

// `value` is what stands after "Received:" and its blanks, folding included. Empty when no shape
// fits.
std::optional<ReceivedClient> receivedClient(std::string_view value);

} // namespace Quorvane::Rules
