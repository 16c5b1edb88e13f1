// SPDX-License-Identifier: Apache-2.0
#include "platform/ReputationTable.h"

#include "Prefixes.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Quorvane::Testing {

namespace {

using Entries = std::vector<ReputationTable::Entry>;

ReputationTable s_table(std::vector<std::pair<char const*, std::int32_t>> const& rows) {
    Entries entries;
    for (auto const& [prefix, score] : rows) {
        entries.emplace_back(IPPrefix::parse(prefix), score);
    }
    return ReputationTable(entries);
}

std::optional<std::int32_t> s_score(ReputationTable const& table, char const* address) {
    return table.score(IPAddress(address));
}

// The meaning, spelled out: among the prefixes that hold the address the longest one, and of equal
// ones the last.
std::optional<std::int32_t> s_naiveScore(Entries const& entries, IPAddress const& address) {
    std::optional<std::int32_t> score;
    int longest = -1;
    for (auto const& [prefix, value] : entries) {
        if (prefix.contains(address) && prefix.length() >= longest) {
            longest = prefix.length();
            score = value;
        }
    }
    return score;
}

IPAddress s_v4(std::uint32_t number) {
    IPAddress::Bytes bytes{};
    bytes[10] = bytes[11] = 0xff;
    for (std::size_t i = 0; i < 4; ++i) {
        bytes.at(12 + i) = static_cast<std::uint8_t>(number >> (24 - 8 * i));
    }
    return IPAddress::fromBytes(bytes);
}

} // namespace

TEST(ReputationTable, EmptyTableKnowsNobody) {
    ReputationTable const table({});
    EXPECT_EQ(std::nullopt, s_score(table, "192.0.2.1"));
    EXPECT_EQ(std::nullopt, s_score(table, "2001:db8::1"));
    EXPECT_EQ(0U, table.size());
}

TEST(ReputationTable, KnowsNoNullAddress) {
    auto const table = s_table({{"0.0.0.0/0", 1}, {"::/0", 2}});
    EXPECT_EQ(std::nullopt, table.score(IPAddress()));
}

TEST(ReputationTable, TheLongestPrefixWinsWhateverTheOrder) {
    std::vector<std::pair<char const*, std::int32_t>> const rows[] = {
        {{"192.0.2.0/24", 1}, {"192.0.2.64/26", 2}, {"192.0.2.65", 3}},
        {{"192.0.2.65", 3}, {"192.0.2.64/26", 2}, {"192.0.2.0/24", 1}},
    };
    for (auto const& order : rows) {
        auto const table = s_table(order);
        EXPECT_EQ(std::nullopt, s_score(table, "192.0.1.255"));
        EXPECT_EQ(1, s_score(table, "192.0.2.0"));
        EXPECT_EQ(1, s_score(table, "192.0.2.63"));
        EXPECT_EQ(2, s_score(table, "192.0.2.64"));
        EXPECT_EQ(3, s_score(table, "192.0.2.65"));
        EXPECT_EQ(2, s_score(table, "192.0.2.66"));
        EXPECT_EQ(2, s_score(table, "192.0.2.127"));
        EXPECT_EQ(1, s_score(table, "192.0.2.128"));
        EXPECT_EQ(1, s_score(table, "192.0.2.255"));
        EXPECT_EQ(std::nullopt, s_score(table, "192.0.3.0"));
    }
}

TEST(ReputationTable, OfTheSamePrefixTheLaterEntryCounts) {
    auto const table = s_table({{"192.0.2.0/24", 1}, {"192.0.2.0/24", 9}, {"192.0.0.0/16", 5}});
    EXPECT_EQ(9, s_score(table, "192.0.2.1"));
    EXPECT_EQ(5, s_score(table, "192.0.3.1"));
}

TEST(ReputationTable, BothEndsOfTheAddressSpaceAreCovered) {
    auto const table = s_table({{"0.0.0.0/0", 1},
                                {"255.255.255.255", 2},
                                {"0.0.0.0", 3},
                                {"::/0", 4},
                                {"ffff::/16", 5},
                                {"ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff", 6}});
    EXPECT_EQ(3, s_score(table, "0.0.0.0"));
    EXPECT_EQ(1, s_score(table, "0.0.0.1"));
    EXPECT_EQ(1, s_score(table, "255.255.255.254"));
    EXPECT_EQ(2, s_score(table, "255.255.255.255"));
    EXPECT_EQ(4, s_score(table, "::"));
    EXPECT_EQ(5, s_score(table, "ffff::"));
    EXPECT_EQ(6, s_score(table, "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff"));
}

TEST(ReputationTable, NestedRangesThatEndTogetherLeaveNothingBehind) {
    auto const table = s_table({{"128.0.0.0/1", 1}, {"192.0.0.0/2", 2}, {"224.0.0.0/3", 3}});
    EXPECT_EQ(std::nullopt, s_score(table, "0.0.0.0"));
    EXPECT_EQ(1, s_score(table, "128.0.0.0"));
    EXPECT_EQ(2, s_score(table, "192.0.0.0"));
    EXPECT_EQ(3, s_score(table, "255.255.255.255"));
    EXPECT_EQ(3U, table.size());
}

TEST(ReputationTable, FamiliesAreApart) {
    auto const table = s_table({{"::/0", 1}});
    EXPECT_EQ(std::nullopt, s_score(table, "192.0.2.1"));
    EXPECT_EQ(1, s_score(table, "2001:db8::1"));
}

TEST(ReputationTable, ScoresOutsideTheUsualRangeAreKept) {
    constexpr auto lowest = std::numeric_limits<std::int32_t>::min();
    EXPECT_EQ(lowest, s_score(s_table({{"192.0.2.1", lowest}}), "192.0.2.1"));
    EXPECT_EQ(0, s_score(s_table({{"192.0.2.1", 0}}), "192.0.2.1"));
}

TEST(ReputationTable, NeighboursWithTheSameScoreBecomeOneInterval) {
    EXPECT_EQ(1U, s_table({{"192.0.2.0/25", 4}, {"192.0.2.128/25", 4}}).size());
    EXPECT_EQ(2U, s_table({{"192.0.2.0/25", 4}, {"192.0.2.128/25", 5}}).size());
    EXPECT_EQ(1U, s_table({{"192.0.2.0/24", 4}, {"192.0.2.7", 4}}).size());
}

TEST(ReputationTable, CanBeMoved) {
    auto table = s_table({{"192.0.2.1", 1}});
    auto other = s_table({{"192.0.2.1", 2}});
    table = std::move(other);
    EXPECT_EQ(2, s_score(table, "192.0.2.1"));
}

// As large as the lists that sites really load; the answers are known by construction.
TEST(ReputationTable, HoldsAMillionPrefixes) {
    constexpr std::uint32_t count = 1000000;
    constexpr std::uint32_t stride = 4096;
    Entries entries;
    entries.reserve(count);
    for (std::uint32_t i = count; i-- > 0;) {
        entries.emplace_back(IPPrefix::parse(s_v4(i * stride).asString(true)),
                             static_cast<std::int32_t>(i));
    }
    ReputationTable const table(entries);
    EXPECT_EQ(count, table.size());
    for (std::uint32_t i = 0; i < count; i += 997) {
        ASSERT_EQ(static_cast<std::int32_t>(i), table.score(s_v4(i * stride)));
        ASSERT_EQ(std::nullopt, table.score(s_v4(i * stride + 1)));
    }
}

RC_GTEST_PROP(ReputationTable, AnswersAsTheNaiveSearchDoes, ()) {
    auto const entries = *rc::gen::container<Entries>(
        rc::gen::pair(anyPrefix(), rc::gen::inRange<std::int32_t>(0, 4)));
    ReputationTable const table(entries);
    for (auto const& address : *rc::gen::container<std::vector<IPAddress>>(anyAddress())) {
        RC_ASSERT(table.score(address) == s_naiveScore(entries, address));
    }
    for (auto const& entry : entries) {
        auto const first = IPAddress::fromBytes(entry.first.first());
        auto const last = IPAddress::fromBytes(entry.first.last());
        RC_ASSERT(table.score(first) == s_naiveScore(entries, first));
        RC_ASSERT(table.score(last) == s_naiveScore(entries, last));
    }
}

} // namespace Quorvane::Testing
