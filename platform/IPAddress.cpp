// SPDX-License-Identifier: Apache-2.0
#include "platform/IPAddress.h"

#include "platform/internal/AddressBits.h"
#include "platform/Strings.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cstddef>
#include <netinet/in.h>
#include <optional>

namespace Quorvane {

namespace {

using Bytes = IPAddress::Bytes;

constexpr std::size_t s_mappedBytes = internal::mappedBits / 8;
constexpr std::size_t s_longestText = INET6_ADDRSTRLEN - 1;
// RFC 5321 section 4.1.3; letter case does not count.
constexpr char s_tag[] = "IPv6:";
constexpr std::size_t s_tagLength = sizeof s_tag - 1;

struct V4Range {
    std::uint32_t m_network;
    std::uint32_t m_mask;
};

constexpr V4Range s_v4Range(std::uint32_t a, std::uint32_t b, unsigned int length) {
    return {a << 24U | b << 16U, ~std::uint32_t{0} << (32U - length)};
}

// IANA IPv4 Special-Purpose Address Registry.
constexpr std::array s_privateV4Ranges = {
    s_v4Range(0, 0, 8),      s_v4Range(10, 0, 8),    s_v4Range(100, 64, 10),  s_v4Range(127, 0, 8),
    s_v4Range(169, 254, 16), s_v4Range(172, 16, 12), s_v4Range(192, 168, 16),
};

struct V6Range {
    Bytes m_network;
    int m_length;
};

// IANA IPv6 Special-Purpose Address Registry.
constexpr std::array s_privateV6Ranges = {
    V6Range{{}, 128},
    V6Range{{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}, 128},
    V6Range{{0xfc}, 7},
    V6Range{{0xfe, 0x80}, 10},
};

bool s_isPrivateV4(Bytes const& bytes) {
    auto const number = boost::endian::load_big_u32(bytes.data() + s_mappedBytes);
    return std::any_of(
        s_privateV4Ranges.begin(), s_privateV4Ranges.end(),
        [number](V4Range const& range) { return (number & range.m_mask) == range.m_network; });
}

bool s_isPrivateV6(Bytes const& bytes) {
    return std::any_of(s_privateV6Ranges.begin(), s_privateV6Ranges.end(),
                       [&](V6Range const& range) {
                           return internal::sameLeadingBits(bytes, range.m_network, range.m_length);
                       });
}

bool s_isTagged(std::string_view text) {
    return text.size() > s_tagLength &&
           stringCompareNoCase(text.substr(0, s_tagLength), s_tag, 0) == 0;
}

// Whether inet_pton may take it at all; most of what is asked about are host names.
bool s_mayBeV4(std::string_view text) {
    return !text.empty() && text.front() >= '0' && text.front() <= '9';
}

bool s_mayBeV6(std::string_view text) {
    return text.find(':') != std::string_view::npos;
}

// inet_pton sees C strings: a NUL byte would hide what follows it. The bound on the length limits
// the work that a hostile text can cause.
std::optional<Bytes> s_parse(std::string const& text) {
    bool const isV6 = s_mayBeV6(text);
    bool const tagged = isV6 && s_isTagged(text);
    auto const start = tagged ? s_tagLength : 0;
    if (text.size() - start > s_longestText || text.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    Bytes bytes = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff};
    bool const isTaken = isV6 ? inet_pton(AF_INET6, text.c_str() + start, bytes.data()) == 1
                              : s_mayBeV4(text) && inet_pton(AF_INET, text.c_str(),
                                                             bytes.data() + s_mappedBytes) == 1;
    return isTaken ? std::optional(bytes) : std::nullopt;
}

char* s_writeNumber(char* at, std::uint8_t number) {
    if (number >= 100) {
        *at++ = static_cast<char>('0' + number / 100);
    }
    if (number >= 10) {
        *at++ = static_cast<char>('0' + number / 10 % 10);
    }
    *at++ = static_cast<char>('0' + number % 10);
    return at;
}

// inet_ntop goes through printf, which takes ten times as long.
std::string s_dottedQuad(Bytes const& bytes) {
    std::array<char, INET_ADDRSTRLEN> text{};
    auto* end = s_writeNumber(text.data(), bytes[s_mappedBytes]);
    for (auto at = s_mappedBytes + 1; at < bytes.size(); ++at) {
        *end++ = '.';
        end = s_writeNumber(end, bytes.at(at));
    }
    return {text.data(), end};
}

std::string s_fullGroups(Bytes const& bytes) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i > 0 && i % 2 == 0) {
            text += ':';
        }
        text += digits[bytes.at(i) >> 4U];
        text += digits[bytes.at(i) & 0x0fU];
    }
    return text;
}

} // namespace

IPAddress::IPAddress(std::string const& text) {
    if (auto const bytes = s_parse(text)) {
        m_bytes = *bytes;
        m_isSet = true;
    }
}

IPAddress IPAddress::fromBytes(Bytes const& bytes) {
    IPAddress address;
    address.m_bytes = bytes;
    address.m_isSet = true;
    return address;
}

bool IPAddress::isValidIPAddress(std::string const& text) {
    return s_parse(text).has_value();
}

bool IPAddress::isPrivateAddress(IPAddress const& address) {
    if (address.isNull()) {
        return false;
    }
    return address.isV6() ? s_isPrivateV6(address.m_bytes) : s_isPrivateV4(address.m_bytes);
}

bool IPAddress::isV6() const {
    return m_isSet && !internal::isMapped(m_bytes);
}

std::string IPAddress::asString(bool compressed) const {
    if (!m_isSet) {
        return {};
    }
    if (isV6() && !compressed) {
        return s_fullGroups(m_bytes);
    }
    if (!isV6()) {
        return s_dottedQuad(m_bytes);
    }
    std::array<char, INET6_ADDRSTRLEN> text{};
    inet_ntop(AF_INET6, m_bytes.data(), text.data(), text.size());
    return text.data();
}

IPAddress IPAddress::fromNetwork(std::string_view bytes) {
    Bytes all = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff};
    if (bytes.size() != all.size() && bytes.size() != all.size() - s_mappedBytes) {
        return {};
    }
    std::transform(bytes.rbegin(), bytes.rend(), all.rbegin(),
                   [](char c) { return static_cast<std::uint8_t>(c); });
    return fromBytes(all);
}

std::string IPAddress::reversedLabels() const {
    static constexpr char digits[] = "0123456789abcdef";
    std::string labels;
    if (isNull()) {
        return labels;
    }
    auto const end = isV6() ? m_bytes.rend() : m_bytes.rend() - s_mappedBytes;
    for (auto byte = m_bytes.rbegin(); byte != end; ++byte) {
        labels += isV6() ? std::string{digits[*byte & 0xfU], '.', digits[*byte >> 4U]}
                         : std::to_string(*byte);
        labels += '.';
    }
    return labels;
}

} // namespace Quorvane
