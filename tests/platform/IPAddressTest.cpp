// SPDX-License-Identifier: Apache-2.0
#include "platform/IPAddress.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <arpa/inet.h>
#include <cstdint>
#include <netinet/in.h>
#include <ostream>
#include <string>

namespace Quorvane::Testing {

namespace {

using namespace std::string_literals;

// The bytes after a text, asked of the C library alone.
IPAddress s_fromLibrary(int family, std::string const& text) {
    IPAddress::Bytes bytes{};
    bool const v4 = family == AF_INET;
    if (v4) {
        bytes[10] = bytes[11] = 0xff;
    }
    return inet_pton(family, text.c_str(), bytes.data() + (v4 ? 12 : 0)) == 1
               ? IPAddress::fromBytes(bytes)
               : IPAddress();
}

struct TextCase {
    char const* m_text;
    char const* m_compressed;
    char const* m_full;
    bool m_v6;
    char const* m_origin;
};

std::ostream& operator<<(std::ostream& out, TextCase const& row) {
    return out << row.m_origin << ": " << row.m_text;
}

TextCase const s_valid[] = {
    {"192.0.2.1", "192.0.2.1", "192.0.2.1", false, "dotted quad"},
    {"0.0.0.0", "0.0.0.0", "0.0.0.0", false, "the unspecified IPv4 address is an address"},
    {"255.255.255.255", "255.255.255.255", "255.255.255.255", false, "broadcast"},
    {"::", "::", "0000:0000:0000:0000:0000:0000:0000:0000", true, "unspecified IPv6 address"},
    {"::1", "::1", "0000:0000:0000:0000:0000:0000:0000:0001", true, "IPv6 loopback"},
    {"2001:DB8::A", "2001:db8::a", "2001:0db8:0000:0000:0000:0000:0000:000a", true, "capitals"},
    {"2001:db8:0:0:1:0:0:1", "2001:db8::1:0:0:1", "2001:0db8:0000:0000:0001:0000:0000:0001", true,
     "the first of two equal runs of zeros is shortened"},
    {"IPv6:2001:db8::5", "2001:db8::5", "2001:0db8:0000:0000:0000:0000:0000:0005", true,
     "RFC 5321 section 4.1.3"},
    {"ipv6:2001:db8::5", "2001:db8::5", "2001:0db8:0000:0000:0000:0000:0000:0005", true,
     "tag in small letters"},
    {"IPV6:2001:db8::5", "2001:db8::5", "2001:0db8:0000:0000:0000:0000:0000:0005", true,
     "tag in capitals"},
    {"::ffff:192.0.2.1", "192.0.2.1", "192.0.2.1", false, "IPv4-mapped, RFC 4291 section 2.5.5.2"},
    {"::ffff:c000:201", "192.0.2.1", "192.0.2.1", false, "IPv4-mapped in groups"},
    {"IPv6:::ffff:192.0.2.1", "192.0.2.1", "192.0.2.1", false, "IPv4-mapped after the tag"},
    {"0000:0000:0000:0000:0000:ffff:255.255.255.255", "255.255.255.255", "255.255.255.255", false,
     "the longest text there is"},
    {"IPv6:0000:0000:0000:0000:0000:ffff:255.255.255.255", "255.255.255.255", "255.255.255.255",
     false, "the longest text after the tag"},
    {"::192.0.2.1", "::192.0.2.1", "0000:0000:0000:0000:0000:0000:c000:0201", true,
     "IPv4-compatible is not IPv4-mapped"},
};

std::string const s_invalid[] = {
    ""s,
    " "s,
    "192.0.2"s,
    "192.0.2.256"s,
    "192.0.2.01"s, // leading zeros: octal to some readers
    "0xC0.0.2.1"s,
    "192.0.2.1 "s,
    " 192.0.2.1"s,
    "192.0.2.1\n"s,
    "[192.0.2.1]"s,
    "192.0.2.1/24"s,
    "192.0.2.1\0"s, // C strings end here
    "192.0.2.1\0.example.org"s,
    "\0"
    "192.0.2.1"s,
    "IPv6:"s,
    "IPv6:192.0.2.1"s, // the tag promises IPv6
    "IPv6:IPv6:2001:db8::1"s,
    "IPv6: 2001:db8::1"s,
    "IPv6 2001:db8::1"s,
    "IPv4:192.0.2.1"s,
    "IPv6:2001:db8::1\0"s,
    "2001:db8::1%eth0"s,
    "2001:db8::1::2"s,
    "2001:db8:0:0:0:0:0:0:1"s,
    "2001:db8::12345"s,
    ":::"s,
    "host.example.org"s,
    "0000:0000:0000:0000:0000:ffff:255.255.255.2555"s,
};

struct PrivateCase {
    char const* m_text;
    bool m_private;
    char const* m_origin;
};

// First and last address of every range, and their neighbours outside.
PrivateCase const s_privateCases[] = {
    {"0.0.0.0", true, "0.0.0.0/8"},
    {"0.255.255.255", true, "0.0.0.0/8"},
    {"1.0.0.0", false, "after 0.0.0.0/8"},
    {"9.255.255.255", false, "before 10.0.0.0/8"},
    {"10.0.0.0", true, "10.0.0.0/8"},
    {"10.255.255.255", true, "10.0.0.0/8"},
    {"11.0.0.0", false, "after 10.0.0.0/8"},
    {"100.63.255.255", false, "before 100.64.0.0/10"},
    {"100.64.0.0", true, "100.64.0.0/10"},
    {"100.127.255.255", true, "100.64.0.0/10"},
    {"100.128.0.0", false, "after 100.64.0.0/10"},
    {"126.255.255.255", false, "before 127.0.0.0/8"},
    {"127.0.0.0", true, "127.0.0.0/8"},
    {"127.255.255.255", true, "127.0.0.0/8"},
    {"128.0.0.0", false, "after 127.0.0.0/8"},
    {"169.253.255.255", false, "before 169.254.0.0/16"},
    {"169.254.0.0", true, "169.254.0.0/16"},
    {"169.254.255.255", true, "169.254.0.0/16"},
    {"169.255.0.0", false, "after 169.254.0.0/16"},
    {"172.15.255.255", false, "before 172.16.0.0/12"},
    {"172.16.0.0", true, "172.16.0.0/12"},
    {"172.31.255.255", true, "172.16.0.0/12"},
    {"172.32.0.0", false, "after 172.16.0.0/12"},
    {"192.167.255.255", false, "before 192.168.0.0/16"},
    {"192.168.0.0", true, "192.168.0.0/16"},
    {"192.168.255.255", true, "192.168.0.0/16"},
    {"192.169.0.0", false, "after 192.168.0.0/16"},
    {"::", true, "::/128"},
    {"::1", true, "::1/128"},
    {"::2", false, "after ::1/128"},
    {"fbff:ffff::", false, "before fc00::/7"},
    {"fc00::", true, "fc00::/7"},
    {"fdff:ffff:ffff:ffff:ffff:ffff:ffff:ffff", true, "fc00::/7"},
    {"fe00::", false, "after fc00::/7"},
    {"fe7f:ffff::", false, "before fe80::/10"},
    {"fe80::", true, "fe80::/10"},
    {"febf:ffff:ffff:ffff:ffff:ffff:ffff:ffff", true, "fe80::/10"},
    {"fec0::", false, "after fe80::/10"},
    {"::ffff:10.1.2.3", true, "IPv4-mapped 10.0.0.0/8"},
    {"::ffff:198.51.100.1", false, "IPv4-mapped documentation range"},
    {"::10.1.2.3", false, "IPv4-compatible is no IPv4 address"},
    {"192.0.2.1", false, "documentation range"},
    {"198.51.100.1", false, "documentation range"},
    {"203.0.113.1", false, "documentation range"},
    {"2001:db8::1", false, "documentation range"},
    {"8.8.8.8", false, "public"},
    {"255.255.255.255", false, "broadcast"},
};

// Texts close to addresses, where the borderline cases are.
rc::Gen<std::string> s_nearlyAnAddress() {
    return rc::gen::container<std::string>(
        rc::gen::element('0', '1', '2', '5', 'f', 'F', ':', ':', '.', '.', '%', ' ', 'x'));
}

} // namespace

TEST(IPAddress, DefaultConstructedIsNull) {
    IPAddress const address;
    EXPECT_TRUE(address.isNull());
    EXPECT_FALSE(address.isV6());
    EXPECT_EQ("", address.asString(true));
    EXPECT_EQ("", address.asString(false));
    EXPECT_FALSE(IPAddress::isPrivateAddress(address));
}

TEST(IPAddress, NullIsNotTheUnspecifiedAddress) {
    EXPECT_NE(IPAddress(), IPAddress("::"));
    EXPECT_EQ(IPAddress(), IPAddress("no address"));
}

TEST(IPAddress, ReadsValidTextAndPrintsItCanonically) {
    for (auto const& row : s_valid) {
        SCOPED_TRACE(row);
        IPAddress const address(row.m_text);
        EXPECT_TRUE(IPAddress::isValidIPAddress(row.m_text));
        EXPECT_FALSE(address.isNull());
        EXPECT_EQ(row.m_v6, address.isV6());
        EXPECT_EQ(row.m_compressed, address.asString(true));
        EXPECT_EQ(row.m_full, address.asString(false));
    }
}

TEST(IPAddress, InvalidTextIsNull) {
    for (auto const& text : s_invalid) {
        SCOPED_TRACE(::testing::PrintToString(text));
        EXPECT_FALSE(IPAddress::isValidIPAddress(text));
        EXPECT_TRUE(IPAddress(text).isNull());
    }
}

TEST(IPAddress, OverlongTextIsNull) {
    EXPECT_FALSE(IPAddress::isValidIPAddress(std::string(1000000, '0')));
    EXPECT_FALSE(IPAddress::isValidIPAddress("IPv6:" + std::string(1000000, ':')));
}

TEST(IPAddress, MappedAddressEqualsTheIPv4Address) {
    EXPECT_EQ(IPAddress("192.0.2.1"), IPAddress("::ffff:192.0.2.1"));
    EXPECT_NE(IPAddress("192.0.2.1"), IPAddress("::192.0.2.1"));
}

TEST(IPAddress, PrivateRangesEndWhereTheRegistriesSay) {
    for (auto const& row : s_privateCases) {
        SCOPED_TRACE(std::string(row.m_origin) + ": " + row.m_text);
        IPAddress const address{std::string(row.m_text)};
        ASSERT_FALSE(address.isNull());
        EXPECT_EQ(row.m_private, IPAddress::isPrivateAddress(address));
    }
}

RC_GTEST_PROP(IPAddress, TextOfAnyBytesReadsBackAsTheSameBytes, (IPAddress::Bytes bytes)) {
    auto const address = IPAddress::fromBytes(bytes);
    RC_ASSERT(IPAddress(address.asString(true)) == address);
    RC_ASSERT(IPAddress(address.asString(false)) == address);
    RC_ASSERT(address.isV6() == (IPAddress("IPv6:" + address.asString(true)) == address));
}

RC_GTEST_PROP(IPAddress, TextOfAnyIPv4AddressIsADottedQuad, (std::uint32_t number)) {
    IPAddress::Bytes bytes{};
    bytes[10] = bytes[11] = 0xff;
    std::string quad;
    for (std::size_t i = 0; i < 4; ++i) {
        bytes.at(12 + i) = static_cast<std::uint8_t>(number >> (24 - 8 * i));
        quad += (i == 0 ? "" : ".") + std::to_string(bytes.at(12 + i));
    }
    RC_ASSERT(IPAddress(quad) == IPAddress::fromBytes(bytes));
    RC_ASSERT(IPAddress(quad).asString(true) == quad);
}

RC_GTEST_PROP(IPAddress, AcceptsUntaggedTextExactlyWhenTheLibraryDoes, ()) {
    auto const text = *s_nearlyAnAddress();
    auto const v4 = s_fromLibrary(AF_INET, text);
    auto const expected = v4.isNull() ? s_fromLibrary(AF_INET6, text) : v4;
    RC_ASSERT(IPAddress(text) == expected);
    RC_ASSERT(IPAddress("ipV6:" + text) == s_fromLibrary(AF_INET6, text));
}

TEST(IPAddressTest, ComesFromTheBytesOfRecordsAndSockets) {
    using namespace std::string_literals;
    EXPECT_EQ(IPAddress::fromNetwork("\xc0\0\x02\x0a"s), IPAddress("192.0.2.10"));
    EXPECT_EQ(IPAddress::fromNetwork("\x20\x01\x0d\xb8\0\0\0\0\0\0\0\0\0\0\0\x05"s),
              IPAddress("2001:db8::5"));
    for (auto const length : {0, 3, 5, 15, 17}) {
        EXPECT_TRUE(
            IPAddress::fromNetwork(std::string(static_cast<std::size_t>(length), 'x')).isNull())
            << length;
    }
}

TEST(IPAddressTest, IsReversedForNamesInDns) {
    EXPECT_EQ(IPAddress("192.0.2.10").reversedLabels(), "10.2.0.192.");
    EXPECT_EQ(IPAddress("2001:db8::5f").reversedLabels(),
              "f.5.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.8.b.d.0.1.0.0.2.");
    EXPECT_EQ(IPAddress().reversedLabels(), "");
}

} // namespace Quorvane::Testing
