// SPDX-License-Identifier: Apache-2.0
#include "apps/host/OwnHops.h"

#include "platform/HeaderReader.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

namespace {

std::string s_hop(std::string const& address) {
    return "Received: from a.example (b.example [" + address + "]) by mx\n";
}

struct TrailCase {
    char const* m_why;
    std::string m_headers;
    std::size_t m_cutOff;
    std::size_t m_left; // headers of any name
};

TrailCase const trailCases[] = {
    {"none of ours", s_hop("192.0.2.1") + s_hop("10.0.0.1"), 0, 2},
    {"the newest one", s_hop("10.0.0.1") + s_hop("192.0.2.1"), 1, 1},
    {"two, one by IPv6", s_hop("2001:db8::1") + s_hop("10.0.0.1") + s_hop("192.0.2.1"), 2, 1},
    {"one behind a stranger stays", s_hop("10.0.0.1") + s_hop("192.0.2.1") + s_hop("10.0.0.2"), 1,
     2},
    {"one behind a hop without address stays",
     "Received: by mx (Postfix, from userid 1000)\n" + s_hop("10.0.0.1"), 0, 2},
    {"all of them", s_hop("10.0.0.1") + s_hop("10.0.0.2"), 2, 0},
    {"other headers stay", "From: a@b\n" + s_hop("10.0.0.1") + "To: c@d\n" + s_hop("192.0.2.1"), 1,
     3},
};

TEST(OwnHops, CutsTheNewestHopsOfTheSite) {
    std::vector<IPPrefix> const own{IPPrefix::parse("10.0.0.0/8"),
                                    IPPrefix::parse("2001:db8::/32")};
    for (auto const& row : trailCases) {
        auto const trail = cutOffOwnHops(HeaderReader::read(row.m_headers), Header(), own);
        EXPECT_EQ(trail.m_cutOff.size(), row.m_cutOff) << row.m_why;
        EXPECT_EQ(trail.m_headers.headers().size(), row.m_left) << row.m_why;
    }
}

TEST(OwnHops, TheHopToBeAddedComesFirst) {
    std::vector<IPPrefix> const own{IPPrefix::parse("10.0.0.0/8")};
    auto const headers = HeaderReader::read(s_hop("10.0.0.1"));
    auto const ours =
        cutOffOwnHops(headers, Header("Received", "from a (b [10.0.0.9]) by mx"), own);
    EXPECT_TRUE(ours.m_current.isNull());
    EXPECT_EQ(ours.m_cutOff.size(), 2U);
    auto const other =
        cutOffOwnHops(headers, Header("Received", "from a (b [192.0.2.9]) by mx"), own);
    EXPECT_FALSE(other.m_current.isNull());
    EXPECT_EQ(other.m_cutOff.size(), 0U);
    EXPECT_EQ(other.m_headers.headers().size(), 1U);
}

TEST(OwnHops, AHeaderThatCannotBeParsedStays) {
    std::vector<IPPrefix> const own{IPPrefix::parse("10.0.0.0/8")};
    auto const headers = HeaderReader::read(s_hop("10.0.0.1"));
    auto const trail = cutOffOwnHops(headers, Header("Received", "by "), own);
    EXPECT_FALSE(trail.m_current.isNull());
    EXPECT_EQ(trail.m_cutOff.size(), 0U);
}

} // namespace

} // namespace Quorvane::Testing
