// SPDX-License-Identifier: Apache-2.0
#include "platform/TrustedMTASet.h"

#include "Prefixes.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace Quorvane::Testing {

namespace {

std::vector<IPPrefix> s_prefixes(std::vector<std::string> const& texts) {
    std::vector<IPPrefix> prefixes;
    for (auto const& text : texts) {
        prefixes.push_back(IPPrefix::parse(text));
    }
    return prefixes;
}

// Leaves the process-wide set as it was for the other tests: empty.
class TrustedMTASetInForce : public ::testing::Test {
  protected:
    ~TrustedMTASetInForce() override { TrustedMTASetRef::install({}, {}); }
};

} // namespace

TEST(TrustedMTASet, TrustsNobodyByDefault) {
    TrustedMTASet const set;
    EXPECT_FALSE(set.isTrustedMTA(IPAddress("127.0.0.1")));
    EXPECT_FALSE(set.isTrustedAntiSpamMTA(IPAddress("127.0.0.1")));
}

TEST(TrustedMTASet, TrustsTheRelaysOfItsPrefixes) {
    TrustedMTASet const set(s_prefixes({"192.0.2.0/24", "2001:db8::/32", "198.51.100.7"}),
                            s_prefixes({"203.0.113.9"}));
    EXPECT_TRUE(set.isTrustedMTA(IPAddress("192.0.2.255")));
    EXPECT_TRUE(set.isTrustedMTA(IPAddress("::ffff:192.0.2.1")));
    EXPECT_TRUE(set.isTrustedMTA(IPAddress("2001:db8:ffff::1")));
    EXPECT_TRUE(set.isTrustedMTA(IPAddress("198.51.100.7")));
    EXPECT_FALSE(set.isTrustedMTA(IPAddress("198.51.100.8")));
    EXPECT_FALSE(set.isTrustedMTA(IPAddress("192.0.3.0")));
    EXPECT_FALSE(set.isTrustedMTA(IPAddress("2001:db9::")));
}

TEST(TrustedMTASet, AnAntiSpamRelayIsNotByItselfATrustedRelay) {
    TrustedMTASet const set(s_prefixes({"192.0.2.0/24"}), s_prefixes({"203.0.113.9"}));
    EXPECT_TRUE(set.isTrustedAntiSpamMTA(IPAddress("203.0.113.9")));
    EXPECT_FALSE(set.isTrustedMTA(IPAddress("203.0.113.9")));
    EXPECT_FALSE(set.isTrustedAntiSpamMTA(IPAddress("192.0.2.1")));
}

TEST(TrustedMTASet, TrustsNoNullAddress) {
    auto const everybody = s_prefixes({"0.0.0.0/0", "::/0"});
    TrustedMTASet const set(everybody, everybody);
    EXPECT_FALSE(set.isTrustedMTA(IPAddress()));
    EXPECT_FALSE(set.isTrustedAntiSpamMTA(IPAddress()));
}

struct V6Case {
    char const* m_address;
    bool m_whenStopping;
};

V6Case const v6Cases[] = {
    {"2001:db8::1", true},
    {"IPv6:2001:db8::1", true},
    {"::", true},
    {"::1", true},
    {"fc00::1", true},
    {"fe80::1", true},
    {"2002:c000:201::", true},
    {"64:ff9b::192.0.2.1", true},
    {"::ffff:192.0.2.1", false},
    {"IPv6:::ffff:10.0.0.1", false},
    {"192.0.2.1", false},
    {"10.0.0.1", false},
    {"", false},
};

TEST(TrustedMTASet, AnIPv6RelayCountsAsOneUnlessThoseAreJudged) {
    TrustedMTASet const byDefault;
    TrustedMTASet const stopping({}, {}, {}, IPv6Relays::stop);
    TrustedMTASet const judging({}, {}, {}, IPv6Relays::judge);
    for (auto const& row : v6Cases) {
        IPAddress const address(row.m_address);
        SCOPED_TRACE(row.m_address);
        EXPECT_EQ(byDefault.countsAsV6(address), row.m_whenStopping);
        EXPECT_EQ(stopping.countsAsV6(address), row.m_whenStopping);
        EXPECT_FALSE(judging.countsAsV6(address));
        EXPECT_EQ(address.isV6(), row.m_whenStopping) << "the address itself stays what it is";
    }
}

TEST(TrustedMTASet, TrustDoesNotDependOnWhatIPv6RelaysMean) {
    for (auto const ipv6 : {IPv6Relays::stop, IPv6Relays::judge}) {
        TrustedMTASet const set(s_prefixes({"2001:db8::/32"}), s_prefixes({"2001:db9::/32"}),
                                s_prefixes({"2001:dba::/32"}), ipv6);
        EXPECT_TRUE(set.isTrustedMTA(IPAddress("2001:db8::1")));
        EXPECT_TRUE(set.isTrustedAntiSpamMTA(IPAddress("2001:db9::1")));
        EXPECT_TRUE(set.isInternalMTA(IPAddress("2001:dba::1")));
        EXPECT_FALSE(set.isTrustedMTA(IPAddress("2001:dba::1")));
    }
}

TEST(TrustedMTASet, ReferenceTakesOverTheInitialCount) {
    auto* const set = new TrustedMTASet;
    TrustedMTASetRef const reference(set);
    EXPECT_EQ(1, set->references());
    TrustedMTASetRef copy;
    copy = reference;
    EXPECT_EQ(2, set->references());
}

TEST(TrustedMTASet, DefaultReferenceIsEmpty) {
    EXPECT_TRUE(TrustedMTASetRef().isEmpty());
}

TEST_F(TrustedMTASetInForce, IsTheEmptySetUntilOneIsInstalled) {
    auto const reference = TrustedMTASetRef::instance(false);
    ASSERT_FALSE(reference.isEmpty());
    EXPECT_FALSE(reference->isTrustedMTA(IPAddress("192.0.2.1")));
}

TEST_F(TrustedMTASetInForce, InstallReplacesIt) {
    TrustedMTASetRef::install(s_prefixes({"192.0.2.1"}), s_prefixes({"192.0.2.2"}));
    auto const reference = TrustedMTASetRef::instance(false);
    EXPECT_TRUE(reference->isTrustedMTA(IPAddress("192.0.2.1")));
    EXPECT_TRUE(reference->isTrustedAntiSpamMTA(IPAddress("192.0.2.2")));
    TrustedMTASetRef::install(s_prefixes({"192.0.2.3"}), {});
    EXPECT_FALSE(TrustedMTASetRef::instance(true)->isTrustedMTA(IPAddress("192.0.2.1")));
    EXPECT_TRUE(TrustedMTASetRef::instance(true)->isTrustedMTA(IPAddress("192.0.2.3")));
}

TEST_F(TrustedMTASetInForce, WhoHoldsASupersededSetKeepsIt) {
    TrustedMTASetRef::install(s_prefixes({"192.0.2.1"}), {});
    auto const reference = TrustedMTASetRef::instance(false);
    TrustedMTASetRef::install({}, {});
    EXPECT_FALSE(TrustedMTASetRef::instance(false)->isTrustedMTA(IPAddress("192.0.2.1")));
    EXPECT_TRUE(reference->isTrustedMTA(IPAddress("192.0.2.1")));
}

TEST_F(TrustedMTASetInForce, SaysWhatIPv6RelaysMeanUntilAnotherIsInstalled) {
    IPAddress const relay("2001:db8::1");
    TrustedMTASetRef::install({}, {}, {}, IPv6Relays::judge);
    auto const reference = TrustedMTASetRef::instance(false);
    EXPECT_FALSE(reference->countsAsV6(relay));
    TrustedMTASetRef::install({}, {});
    EXPECT_TRUE(TrustedMTASetRef::instance(false)->countsAsV6(relay));
    EXPECT_FALSE(reference->countsAsV6(relay)) << "who holds the old set keeps it";
}

TEST_F(TrustedMTASetInForce, EachThreadCountsOnALineOfItsOwn) {
    auto const address = [] {
        auto const reference = TrustedMTASetRef::instance(false);
        return reinterpret_cast<std::uintptr_t>(reference.operator->());
    };
    auto const mine = address();
    EXPECT_EQ(mine, address());
    EXPECT_EQ(0U, mine % 64);
    std::uintptr_t theirs = 0;
    std::thread([&] { theirs = address(); }).join();
    EXPECT_NE(mine, theirs);
}

TEST_F(TrustedMTASetInForce, AReferenceOutlivesTheThreadThatTookIt) {
    TrustedMTASetRef::install(s_prefixes({"192.0.2.1"}), {});
    std::optional<TrustedMTASetRef> reference;
    std::thread([&] { reference = TrustedMTASetRef::instance(false); }).join();
    EXPECT_TRUE((*reference)->isTrustedMTA(IPAddress("192.0.2.1")));
    EXPECT_EQ(1, (*reference)->references());
}

TEST_F(TrustedMTASetInForce, CanBeReplacedWhileManyThreadsUseIt) {
    auto const even = s_prefixes({"192.0.2.2", "192.0.2.4"});
    auto const odd = s_prefixes({"192.0.2.1", "192.0.2.3"});
    std::atomic<bool> done{false};
    auto const use = [&] {
        while (!done) {
            auto const reference = TrustedMTASetRef::instance(false);
            TrustedMTASetRef copy;
            copy = reference;
            // A set is seen whole: both addresses of a kind or none.
            ASSERT_EQ(reference->isTrustedMTA(IPAddress("192.0.2.1")),
                      copy->isTrustedMTA(IPAddress("192.0.2.3")));
            ASSERT_EQ(reference->isTrustedMTA(IPAddress("192.0.2.2")),
                      copy->isTrustedMTA(IPAddress("192.0.2.4")));
            // And so is what IPv6 relays mean.
            ASSERT_EQ(reference->isTrustedMTA(IPAddress("192.0.2.2")),
                      !reference->countsAsV6(IPAddress("2001:db8::1")));
        }
    };
    std::vector<std::thread> users;
    for (int i = 0; i < 4; ++i) {
        users.emplace_back(use);
    }
    for (int i = 0; i < 500; ++i) {
        if (i % 2 == 0) {
            TrustedMTASetRef::install(even, {}, {}, IPv6Relays::judge);
        } else {
            TrustedMTASetRef::install(odd, {}, {}, IPv6Relays::stop);
        }
    }
    done = true;
    for (auto& user : users) {
        user.join();
    }
}

RC_GTEST_PROP(TrustedMTASet, TrustsExactlyWhatAPrefixHolds, ()) {
    auto const trusted = *rc::gen::container<std::vector<IPPrefix>>(anyPrefix());
    auto const antiSpam = *rc::gen::container<std::vector<IPPrefix>>(anyPrefix());
    auto const address = *anyAddress();
    auto const holds = [&](IPPrefix const& prefix) { return prefix.contains(address); };
    TrustedMTASet const set(trusted, antiSpam);
    RC_ASSERT(set.isTrustedMTA(address) == std::any_of(trusted.begin(), trusted.end(), holds));
    RC_ASSERT(set.isTrustedAntiSpamMTA(address) ==
              std::any_of(antiSpam.begin(), antiSpam.end(), holds));
}

} // namespace Quorvane::Testing
