// SPDX-License-Identifier: Apache-2.0
#include "adapter/NameRelation.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {
namespace {

struct RelationCase {
    char const* m_why;
    char const* m_a;
    char const* m_b;
    int m_related;
};

RelationCase const relationCases[] = {
    {"a host and its domain", "mail.example.com", "example.com", 1},
    {"a domain and its host", "example.com", "mail.example.com", 1},
    {"a host and its domain, other name", "host.example.org", "example.org", 1},
    {"two hosts of one domain", "a.example.com", "b.example.com", 1},
    {"anywhere in the longer name, not at its end", "example.com", "myexample.com.evil", 1},
    {"letter case counts", "Example.test", "example.test", 0},
    {"the same name", "example.com", "example.com", 1},
    {"different domains", "mail.example.com", "example.net", 0},
    {"a two-character name is related to nothing", "ab", "ab.example.com", 0},
    {"nothing is related to a two-character name", "example.com", "ex", 0},
    {"empty names", "", "", 0},
    {"three characters are enough", "abc", "abc.example", 1},
    {"of equally long names the second gives the key", "xxb.cdef", "a.b.cdef", 1},
    {"of equally long names the first gives no key", "a.b.cdef", "xxb.cdef", 0},
    {"the key of a name with two dots is what follows the first", "h.co.uk", "mail.co.uk", 1},
    {"dots alone", "...", "abc.example.com", 0},
    {"a name that ends in its second dot", "ab.c.", "x.c.example", 1},
};

TEST(DomainMatchTest, RelatesNamesAsTheRulesLearnedThem) {
    for (auto const& row : relationCases) {
        EXPECT_EQ(s_domainMatch(row.m_a, row.m_b), row.m_related)
            << row.m_why << ": " << row.m_a << " / " << row.m_b;
    }
}

bool s_threeWay(std::string a, std::string b, std::string c) {
    return s_ThreeWayMisMatch(a, b, c);
}

TEST(ThreeWayMismatchTest, NeedsTheFirstRelationAndTheLackOfTheSecond) {
    EXPECT_TRUE(s_threeWay("mx.example.com", "example.com", "example.net"));
    EXPECT_FALSE(s_threeWay("mx.example.com", "example.com", "mail.example.com"));
    EXPECT_FALSE(s_threeWay("mx.example.org", "example.com", "example.net"));
    EXPECT_TRUE(s_threeWay("mx.example.com", "example.com", ""));
    EXPECT_FALSE(s_threeWay("", "", ""));
}

} // namespace
} // namespace Quorvane::Testing
