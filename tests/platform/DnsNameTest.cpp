// SPDX-License-Identifier: Apache-2.0
#include "platform/internal/DnsName.h"

#include <gtest/gtest.h>
#include <string>

namespace Quorvane::Testing {

using namespace Dns;

namespace {

using std::string_literals::operator""s;

struct WireRow {
    std::string m_wire;
    std::string m_text;
};

class WireNameTest : public testing::TestWithParam<WireRow> {};

TEST_P(WireNameTest, IsReadWithinItsBounds) {
    // A block of the exact size, so that a sanitizer sees a read one byte too far.
    std::string const exact(GetParam().m_wire.data(), GetParam().m_wire.size());
    EXPECT_EQ(wireNameText(exact), GetParam().m_text);
}

INSTANTIATE_TEST_SUITE_P(Data, WireNameTest,
                         testing::Values(WireRow{"\4mail\7example\4test\0"s, "mail.example.test"},
                                         WireRow{"\0"s, ""}, // the root
                                         WireRow{"\3a.b\1\\\0"s, "a\\.b.\\\\"},
                                         WireRow{"\4\0\t \x7f\0"s, "\\000\\009\\032\\127"},
                                         WireRow{"\2\xff\xfe\0"s, "\\255\\254"},
                                         WireRow{"\1a\0trailing"s, "a"},
                                         // Broken data is no name.
                                         WireRow{"", ""}, WireRow{"\4mail"s, ""},
                                         WireRow{"\4mai"s, ""}, WireRow{"\4"s, ""},
                                         WireRow{"\1a\xc0\0"s, ""},
                                         WireRow{"\x40" + std::string(64, 'a') + "\0"s, ""}));

TEST(ReverseNameTest, HasOctetsAndNibblesInReverse) {
    EXPECT_EQ(reverseName(IPAddress("192.0.2.129")), "129.2.0.192.in-addr.arpa");
    EXPECT_EQ(reverseName(IPAddress("::ffff:192.0.2.1")), "1.2.0.192.in-addr.arpa");
    // The example of RFC 3596 section 2.5.
    EXPECT_EQ(reverseName(IPAddress("4321:0:1:2:3:4:567:89ab")),
              "b.a.9.8.7.6.5.0.4.0.0.0.3.0.0.0.2.0.0.0.1.0.0.0.0.0.0.0.1.2.3.4.ip6.arpa");
}

TEST(AskableNameTest, LosesOneTrailingDotAndNothingElse) {
    EXPECT_EQ(askableName("Mail-1._x.Example.TEST."), "Mail-1._x.Example.TEST");
    EXPECT_EQ(askableName("localhost"), "localhost");
    EXPECT_EQ(askableName("192.0.2"), "192.0.2");
    EXPECT_EQ(askableName("192.0.2.256"), "192.0.2.256");
    EXPECT_EQ(askableName("192.0.2.1"), "");
}

TEST(AskableNameTest, BlanksAndControlBytesMakeItEmpty) {
    for (int byte = 0; byte < 256; ++byte) {
        std::string const name = "a"s + static_cast<char>(byte) + "b";
        EXPECT_EQ(askableName(name).empty(), byte <= 0x20 || byte == 0x7f) << byte;
    }
}

TEST(AskableNameTest, WhatIsNoLetterDigitHyphenOrUnderscoreIsEscaped) {
    EXPECT_EQ(askableName("a+b.example"), "a\\043b.example");
    EXPECT_EQ(askableName("a\\046b"), "a\\092046b");
    EXPECT_EQ(askableName("*.m\xfcller.example."), "\\042.m\\252ller.example");
}

TEST(AskableNameTest, AnAddressWithOrWithoutBracketsIsNotAsked) {
    for (auto const* text : {"192.0.2.1", "192.0.2.1.", "[192.0.2.1]", "2001:db8::1", "[::1]",
                             "IPv6:2001:db8::1", "[ipv6:2001:db8::1]"}) {
        EXPECT_EQ(askableName(text), "") << text;
    }
}

} // namespace
} // namespace Quorvane::Testing
