// SPDX-License-Identifier: Apache-2.0
//
// Bit-wise comparison of addresses in their 16-byte form. Pure functions.
#pragma once

#include "platform/IPAddress.h"

#include <algorithm>
#include <cstddef>

namespace Quorvane::internal {

inline constexpr int addressBits = 128;
// An IPv4-mapped address begins with ten zero bytes and two of 0xff.
inline constexpr int mappedBits = 96;

// True when the first `length` bits are the same. REQUIRES: 0 <= length <= addressBits.
inline bool sameLeadingBits(IPAddress::Bytes const& a, IPAddress::Bytes const& b, int length) {
    auto const whole = static_cast<std::size_t>(length) / 8;
    if (!std::equal(a.begin(), a.begin() + whole, b.begin())) {
        return false;
    }
    auto const rest = static_cast<unsigned>(length) % 8;
    if (rest == 0) {
        return true;
    }
    auto const differing = static_cast<unsigned>(a.at(whole) ^ b.at(whole));
    return differing >> (8 - rest) == 0;
}

inline bool isMapped(IPAddress::Bytes const& bytes) {
    constexpr IPAddress::Bytes mapped = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff};
    return sameLeadingBits(bytes, mapped, mappedBits);
}

} // namespace Quorvane::internal
