// SPDX-License-Identifier: Apache-2.0
//
// Generators of prefixes and addresses for property tests. The bits come from a small set, so that
// prefixes nest, touch and repeat, and addresses hit them.
#pragma once

#include "platform/IPAddress.h"
#include "platform/IPPrefix.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace Quorvane::Testing {

inline rc::Gen<IPAddress> anyAddress() {
    return rc::gen::exec([] {
        IPAddress::Bytes bytes{};
        bool const v4 = *rc::gen::arbitrary<bool>();
        if (v4) {
            bytes[10] = bytes[11] = 0xff;
        }
        for (std::size_t i = v4 ? 12 : 0; i < bytes.size(); ++i) {
            bytes.at(i) = *rc::gen::element<std::uint8_t>(0, 0, 0xff, 0xff, 0x80, 1);
        }
        return IPAddress::fromBytes(bytes);
    });
}

inline rc::Gen<IPPrefix> anyPrefix() {
    return rc::gen::exec([] {
        auto const address = *anyAddress();
        int const bits = address.isV6() ? 128 : 32;
        int const length = *rc::gen::inRange(0, bits + 1);
        auto bytes = address.bytes();
        for (int bit = 128 - bits + length; bit < 128; ++bit) {
            auto& byte = bytes.at(static_cast<std::size_t>(bit) / 8);
            byte = static_cast<std::uint8_t>(byte & ~(0x80 >> (bit % 8)));
        }
        return IPPrefix::parse(IPAddress::fromBytes(bytes).asString(true) + '/' +
                               std::to_string(length));
    });
}

} // namespace Quorvane::Testing

namespace rc {

inline void showValue(Quorvane::IPAddress const& address, std::ostream& out) {
    out << address.asString(true);
}

inline void showValue(Quorvane::IPPrefix const& prefix, std::ostream& out) {
    out << prefix.asString();
}

} // namespace rc
