// SPDX-License-Identifier: Apache-2.0
//
// Addresses in their 16-byte form as numbers, and their leading bits. Pure functions.
#pragma once

#include "platform/IPAddress.h"

#include <boost/endian/conversion.hpp>

namespace Quorvane::internal {

inline constexpr int addressBits = 128;
// An IPv4-mapped address begins with ten zero bytes and two of 0xff.
inline constexpr int mappedBits = 96;

__extension__ using AddressNumber = unsigned __int128;

inline AddressNumber toNumber(IPAddress::Bytes const& bytes) {
    AddressNumber const high = boost::endian::load_big_u64(bytes.data());
    return high << 64U | boost::endian::load_big_u64(bytes.data() + 8);
}

inline IPAddress::Bytes toBytes(AddressNumber number) {
    IPAddress::Bytes bytes{};
    boost::endian::store_big_u64(bytes.data(), static_cast<std::uint64_t>(number >> 64U));
    boost::endian::store_big_u64(bytes.data() + 8, static_cast<std::uint64_t>(number));
    return bytes;
}

// All bits after the first `length`. REQUIRES: 0 <= length <= addressBits.
inline AddressNumber bitsAfter(int length) {
    return length == addressBits ? 0 : ~AddressNumber{0} >> length;
}

// True when the first `length` bits are the same. REQUIRES: 0 <= length <= addressBits.
inline bool sameLeadingBits(IPAddress::Bytes const& a, IPAddress::Bytes const& b, int length) {
    return (toNumber(a) ^ toNumber(b)) <= bitsAfter(length);
}

inline bool isMapped(IPAddress::Bytes const& bytes) {
    return toNumber(bytes) >> (addressBits - mappedBits) == 0xffff;
}

} // namespace Quorvane::internal
