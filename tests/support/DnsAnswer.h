// SPDX-License-Identifier: Apache-2.0
//
// What a DNS server of a test answers when it answers well: every name has the address 192.0.2.7
// and nothing else (RFC 1035 section 4.1).
#pragma once

#include "support/DnsQuestion.h"

#include <string>

namespace Quorvane::Testing {

// The end of the question section, which is all that an answer repeats; 0 for what is no question.
inline std::size_t questionEnd(std::string const& packet) {
    constexpr std::size_t typeAndClassLength = 4;
    auto const end = packet.find('\0', dnsHeaderLength);
    auto const whole = end + 1 + typeAndClassLength;
    return end != std::string::npos && whole <= packet.size() ? whole : 0;
}

// An answer with one address, or, for another type than A, with nothing. REQUIRES:
// questionEnd(packet) != 0.
inline std::string addressAnswer(std::string const& packet) {
    constexpr char typeA = 1;
    auto const end = questionEnd(packet);
    auto answer = packet.substr(0, end);
    auto const isAddress = packet[end - 4] == 0 && packet[end - 3] == typeA;
    answer[2] = static_cast<char>(0x84 | (packet[2] & 1)); // an answer, authoritative
    answer[3] = static_cast<char>(0x80);                   // recursion available, no error
    answer.replace(6, 6, std::string{0, isAddress ? '\1' : '\0', 0, 0, 0, 0});
    if (isAddress) {
        // The name of the question, A, IN, 0 seconds to live, four bytes of address.
        answer += std::string("\xC0\x0C\0\1\0\1\0\0\0\0\0\4\xC0\0\2\7", 16);
    }
    return answer;
}

} // namespace Quorvane::Testing
