// SPDX-License-Identifier: Apache-2.0
#include "platform/IPPrefix.h"

#include "include2/Exception.h"
#include "Prefixes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <string>

namespace Quorvane::Testing {

namespace {

using ::testing::HasSubstr;

struct Valid {
    char const* m_text;
    char const* m_canonical;
    char const* m_first;
    char const* m_last;
    int m_length;
};

Valid const s_valid[] = {
    {"192.0.2.0/24", "192.0.2.0/24", "192.0.2.0", "192.0.2.255", 120},
    {"192.0.2.1", "192.0.2.1/32", "192.0.2.1", "192.0.2.1", 128},
    {"192.0.2.1/32", "192.0.2.1/32", "192.0.2.1", "192.0.2.1", 128},
    {"0.0.0.0/0", "0.0.0.0/0", "0.0.0.0", "255.255.255.255", 96},
    {"128.0.0.0/1", "128.0.0.0/1", "128.0.0.0", "255.255.255.255", 97},
    {"192.0.2.128/25", "192.0.2.128/25", "192.0.2.128", "192.0.2.255", 121},
    {"::ffff:192.0.2.0/120", "192.0.2.0/24", "192.0.2.0", "192.0.2.255", 120},
    {"::ffff:0:0/96", "0.0.0.0/0", "0.0.0.0", "255.255.255.255", 96},
    {"2001:DB8::/32", "2001:db8::/32", "2001:db8::", "2001:db8:ffff:ffff:ffff:ffff:ffff:ffff", 32},
    {"2001:db8::1", "2001:db8::1/128", "2001:db8::1", "2001:db8::1", 128},
    {"IPv6:2001:db8::1", "2001:db8::1/128", "2001:db8::1", "2001:db8::1", 128},
    {"ipv6:2001:db8::/33", "2001:db8::/33", "2001:db8::", "2001:db8:7fff:ffff:ffff:ffff:ffff:ffff",
     33},
    {"::/0", "::/0", "::", "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff", 0},
};

struct Invalid {
    std::string m_text;
    char const* m_complaint;
};

Invalid const s_invalid[] = {
    {"", "no IPv4 or IPv6 address"},
    {"/24", "no IPv4 or IPv6 address"},
    {"mail.example.org/24", "\"mail.example.org/24\": no IPv4 or IPv6 address"},
    {"192.0.2/24", "no IPv4 or IPv6 address"},
    {"192.0.2.0 /24", "no IPv4 or IPv6 address"},
    {std::string("192.0.2.0\0/24", 13), "no IPv4 or IPv6 address"},
    {"192.0.2.0/", "must be a number from 0 to 32"},
    {"192.0.2.0/33", "must be a number from 0 to 32"},
    {"192.0.2.0/-1", "must be a number from 0 to 32"},
    {"192.0.2.0/+24", "must be a number from 0 to 32"},
    {"192.0.2.0/024", "must be a number from 0 to 32"},
    {"192.0.2.0/24 ", "must be a number from 0 to 32"},
    {"192.0.2.0/24/8", "must be a number from 0 to 32"},
    {"192.0.2.0/255.255.255.0", "must be a number from 0 to 32"},
    {"192.0.2.0/99999999999999999999", "must be a number from 0 to 32"},
    {"192.0.2.0/2\xb2", "must be a number from 0 to 32"},
    {"2001:db8::/129", "must be a number from 0 to 128"},
    {"2001:db8::/999", "must be a number from 0 to 128"},
    {"192.0.2.1/24", "bits are set after the length; the range is 192.0.2.0/24"},
    {"2001:db8::1/32", "bits are set after the length; the range is 2001:db8::/32"},
    {"::ffff:192.0.2.0/24", "bits are set after the length; the range is ::/24"},
};

std::string s_complaint(std::string const& text) {
    try {
        IPPrefix::parse(text);
    } catch (Exception const& exception) {
        EXPECT_EQ(3, exception.intParameter());
        return exception.stringParameter();
    }
    return "accepted";
}

} // namespace

TEST(IPPrefix, ReadsCidrNotationAndSingleAddresses) {
    for (auto const& row : s_valid) {
        SCOPED_TRACE(row.m_text);
        auto const prefix = IPPrefix::parse(row.m_text);
        EXPECT_EQ(row.m_canonical, prefix.asString());
        EXPECT_EQ(IPAddress(row.m_first).bytes(), prefix.first());
        EXPECT_EQ(IPAddress(row.m_last).bytes(), prefix.last());
        EXPECT_EQ(row.m_length, prefix.length());
    }
}

TEST(IPPrefix, SaysWhatIsWrongWithAText) {
    for (auto const& row : s_invalid) {
        SCOPED_TRACE(row.m_text);
        EXPECT_THAT(s_complaint(row.m_text), HasSubstr(row.m_complaint));
    }
}

TEST(IPPrefix, ComplaintAboutAnOverlongTextStaysShort) {
    EXPECT_LT(s_complaint(std::string(100000, '1')).size(), 300U);
}

TEST(IPPrefix, DefaultConstructedHoldsTheUnspecifiedAddressAlone) {
    EXPECT_EQ("::/128", IPPrefix().asString());
    EXPECT_TRUE(IPPrefix().contains(IPAddress("::")));
    EXPECT_FALSE(IPPrefix().contains(IPAddress("::1")));
}

TEST(IPPrefix, HoldsTheAddressesOfItsRange) {
    auto const prefix = IPPrefix::parse("192.0.2.64/26");
    EXPECT_FALSE(prefix.contains(IPAddress("192.0.2.63")));
    EXPECT_TRUE(prefix.contains(IPAddress("192.0.2.64")));
    EXPECT_TRUE(prefix.contains(IPAddress("192.0.2.127")));
    EXPECT_FALSE(prefix.contains(IPAddress("192.0.2.128")));
    EXPECT_TRUE(prefix.contains(IPAddress("::ffff:192.0.2.100")));
}

TEST(IPPrefix, HoldsNoNullAddress) {
    EXPECT_FALSE(IPPrefix::parse("::/0").contains(IPAddress()));
    EXPECT_FALSE(IPPrefix::parse("0.0.0.0/0").contains(IPAddress()));
}

TEST(IPPrefix, FamiliesAreApart) {
    auto const allV6 = IPPrefix::parse("::/0");
    auto const allV4 = IPPrefix::parse("0.0.0.0/0");
    EXPECT_TRUE(allV6.isV6());
    EXPECT_FALSE(allV4.isV6());
    EXPECT_FALSE(allV6.contains(IPAddress("192.0.2.1")));
    EXPECT_TRUE(allV6.contains(IPAddress("2001:db8::1")));
    EXPECT_TRUE(allV4.contains(IPAddress("192.0.2.1")));
    EXPECT_FALSE(allV4.contains(IPAddress("2001:db8::1")));
}

RC_GTEST_PROP(IPPrefix, CanonicalTextReadsBackAsTheSameRange, ()) {
    auto const prefix = *anyPrefix();
    auto const again = IPPrefix::parse(prefix.asString());
    RC_ASSERT(again.asString() == prefix.asString());
    RC_ASSERT(again.first() == prefix.first());
    RC_ASSERT(again.last() == prefix.last());
    RC_ASSERT(again.length() == prefix.length());
}

RC_GTEST_PROP(IPPrefix, HoldsWhatLiesBetweenFirstAndLast, ()) {
    auto const prefix = *anyPrefix();
    auto const address = *anyAddress();
    auto const between = prefix.first() <= address.bytes() && address.bytes() <= prefix.last();
    RC_ASSERT(prefix.contains(address) == (between && prefix.isV6() == address.isV6()));
}

} // namespace Quorvane::Testing
