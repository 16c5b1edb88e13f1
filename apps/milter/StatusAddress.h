// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

namespace Quorvane::Milter {

// An address of this machine for people and programs that look after the daemon: "127.0.0.1:9465",
// "[::1]:9465".
struct StatusAddress {
    std::string m_host;
    std::uint16_t m_port = 0;

    // A SettingsError unless it is a loopback address with a port: what is served there says what
    // mail the site gets, and nobody is asked for a password.
    static StatusAddress parse(std::string const& text);
};

} // namespace Quorvane::Milter
