// SPDX-License-Identifier: Apache-2.0
//
// Reads arbitrary bytes as an address, as a prefix, and as the name of an address in DNS. The C
// library has to agree on what an address is, and how it is written.
#include "Check.h"
#include "include2/Exception.h"
#include "platform/IPAddress.h"
#include "platform/IPPrefix.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

using namespace Quorvane;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace {

bool s_isSystems(int family, std::string const& text) {
    std::array<unsigned char, 16> bytes{};
    return text.find('\0') == std::string::npos &&
           ::inet_pton(family, text.c_str(), bytes.data()) == 1;
}

bool s_isTagged(std::string const& text) {
    constexpr char tag[] = "ipv6:";
    constexpr std::size_t length = sizeof tag - 1;
    auto const lower = [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; };
    return text.size() > length &&
           std::equal(tag, tag + length, text.begin(),
                      [&](char left, char right) { return left == lower(right); }) &&
           s_isSystems(AF_INET6, text.substr(length));
}

// Both forms of its text are read as the same address.
void s_checkAddress(IPAddress const& address) {
    for (bool const isCompressed : {false, true}) {
        auto const text = address.asString(isCompressed);
        check(s_isSystems(address.isV6() ? AF_INET6 : AF_INET, text), "the system reads the text");
        check(IPAddress(text) == address, "the text is read as the same address");
    }
    if (address.isV6()) {
        std::array<char, INET6_ADDRSTRLEN> text{};
        ::inet_ntop(AF_INET6, address.bytes().data(), text.data(), text.size());
        check(address.asString(true) == text.data(), "the system writes the same text");
    }
    auto const labels = address.reversedLabels();
    check(std::count(labels.begin(), labels.end(), '.') == (address.isV6() ? 32 : 4),
          "the name in DNS has a label for each part");
}

void s_checkPrefix(std::string const& text) {
    try {
        auto const prefix = IPPrefix::parse(text);
        auto const again = IPPrefix::parse(prefix.asString());
        check(again.first() == prefix.first() && again.last() == prefix.last() &&
                  again.length() == prefix.length() && again.asString() == prefix.asString(),
              "a prefix that is written is read the same");
        check(prefix.contains(IPAddress::fromBytes(prefix.first())) || prefix.length() < 96,
              "a prefix holds its first address");
        check(prefix.first() <= prefix.last(), "a range has a beginning and an end");
    } catch (Exception const& error) {
        check(error.intParameter() == 3, "a wrong prefix is bad configuration");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string const text(reinterpret_cast<char const*>(data), size);
    bool const isAddress =
        s_isSystems(AF_INET, text) || s_isSystems(AF_INET6, text) || s_isTagged(text);
    check(IPAddress::isValidIPAddress(text) == isAddress, "the system knows the same addresses");
    IPAddress const address(text);
    check(address.isNull() == !isAddress, "what is valid can be read");
    if (isAddress) {
        s_checkAddress(address);
        auto const prefix = IPPrefix::parse(text);
        check(prefix.contains(address), "an address is a prefix of its whole length");
    }
    auto const raw = IPAddress::fromNetwork(text);
    check(raw.isNull() == (size != 4 && size != 16), "addresses have 4 or 16 bytes");
    if (!raw.isNull()) {
        s_checkAddress(raw);
    }
    s_checkPrefix(text);
    return 0;
}
