// SPDX-License-Identifier: Apache-2.0
//
// What a DNS server has to know of a question (RFC 1035 section 4.1), for servers of tests.
#pragma once

#include <cctype>
#include <cstddef>
#include <string>

namespace Quorvane::Testing {

inline constexpr std::size_t dnsHeaderLength = 12;

// The name in the question section, lower-cased, with its last dot. It never is compressed.
inline std::string questionName(std::string const& packet) {
    std::string name;
    std::size_t at = dnsHeaderLength;
    while (at < packet.size() && packet[at] != '\0') {
        auto const length = static_cast<unsigned char>(packet[at]);
        name += packet.substr(at + 1, length) + '.';
        at += length + 1U;
    }
    for (char& c : name) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return name;
}

} // namespace Quorvane::Testing
