// SPDX-License-Identifier: Apache-2.0
#include "platform/Host.h"

#include "platform/ResolverFixture.h"

#include <gmock/gmock.h>

namespace Quorvane::Testing {
namespace {

using ::testing::ElementsAre;

class HostTest : public ResolverFixture {
  protected:
    void SetUp() override {
        configure(localSettings({"both.test. AAAA 2001:db8::1", "both.test. A 192.0.2.1",
                                 "both.test. A 192.0.2.2", "six.test. AAAA 2001:db8::6",
                                 "mapped.test. AAAA ::ffff:192.0.2.9",
                                 "mail.test. MX 10 both.test.", "alias.test. CNAME both.test."}));
    }
};

std::vector<std::string> s_addresses(Host const& host) {
    std::vector<std::string> texts;
    for (IPAddress const& address : host.addressList()) {
        texts.push_back(address.asString(true));
    }
    return texts;
}

TEST_F(HostTest, HasItsIPv4AddressesBeforeItsIPv6Addresses) {
    EXPECT_THAT(s_addresses(Host("both.test", true)),
                ElementsAre("192.0.2.1", "192.0.2.2", "2001:db8::1"));
    EXPECT_THAT(s_addresses(Host("six.test", true)), ElementsAre("2001:db8::6"));
}

TEST_F(HostTest, AliasHasTheAddressesOfItsTarget) {
    EXPECT_THAT(s_addresses(Host("alias.test", true)),
                ElementsAre("192.0.2.1", "192.0.2.2", "2001:db8::1"));
}

TEST_F(HostTest, IPv4MappedAddressIsTheIPv4Address) {
    EXPECT_THAT(s_addresses(Host("mapped.test", true)), ElementsAre("192.0.2.9"));
}

TEST_F(HostTest, IsNullWithoutAddress) {
    EXPECT_TRUE(Host("mail.test", true).isNull());
    EXPECT_TRUE(Host("nowhere.test", true).isNull());
    EXPECT_TRUE(Host("", true).isNull());
    EXPECT_FALSE(Host("six.test", true).isNull());
    EXPECT_EQ(failed() + late(), 0U);
}

TEST_F(HostTest, IsNullWhenNotLookedUp) {
    EXPECT_TRUE(Host("both.test", false).isNull());
}

TEST(HostNameTest, IsNullWithoutName) {
    EXPECT_TRUE(HostName().isNull());
    EXPECT_FALSE(HostName("mail.test").isNull());
    EXPECT_EQ(HostName("mail.test").asString(), "mail.test");
}

} // namespace
} // namespace Quorvane::Testing
