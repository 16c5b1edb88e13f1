// SPDX-License-Identifier: Apache-2.0
#include "apps/settings/SettingsTable.h"
#include "apps/show/MessageExplainer.h"

#include <gmock/gmock.h>

namespace Quorvane::Testing {

using namespace Show;

namespace {

using ::testing::HasSubstr;

std::string s_problem(std::string_view query) {
    try {
        askedSettings({}, query);
    } catch (SettingsError const& error) {
        return error.what();
    }
    return "none";
}

TEST(AskedSettingsTest, WhatIsNotNamedStaysAsTheHostHasIt) {
    HostSettings host;
    host.m_judging.minSupport = 7;
    host.m_judging.scoreThreshold = 3;
    auto const asked = askedSettings(host, "spam-threshold=0.9&walk-to-leaf=0&ham-threshold=-inf");
    EXPECT_EQ(asked.m_judging.spamThreshold, 0.9);
    EXPECT_EQ(asked.m_judging.walkToLeaf, 0);
    EXPECT_LT(asked.m_judging.hamThreshold, -1e300);
    EXPECT_EQ(asked.m_judging.minSupport, 7);
    EXPECT_EQ(asked.m_judging.scoreThreshold, 3);
    EXPECT_EQ(askedSettings(host, "").m_judging.minSupport, 7);
}

TEST(AskedSettingsTest, ReadsWhatFormsWrite) {
    EXPECT_EQ(askedSettings({}, "max-elite-level=%2B3").m_judging.maxEliteLevel, 3);
    EXPECT_EQ(askedSettings({}, "min%2Dsupport=%31%2e5").m_judging.minSupport, 1.5);
    EXPECT_THAT(s_problem("min-support=1+2"), HasSubstr("\"1 2\" is not a number"));
    for (auto const* odd : {"%", "%4", "%zz", "%4x", "% 4"}) {
        EXPECT_THAT(s_problem(std::string("min-support=") + odd),
                    HasSubstr("settings of a page: "));
    }
}

TEST(AskedSettingsTest, RefusesOtherSettingsAndWrongValues) {
    struct Case {
        char const* m_query;
        char const* m_problem;
    };
    for (auto const& [query, problem] : {
             Case{"root=/tmp", "cannot set \"root\""},
             Case{"dns-data=/etc/passwd", "cannot set \"dns-data\""},
             Case{"score-threshold=1", "cannot set \"score-threshold\""},
             Case{"x", "settings of a page: "},
             Case{"min-support=%FF", "settings of a page: "},
             Case{"min-support=%00", "settings of a page: "},
             Case{"=1", "cannot set \"\""},
             Case{"spam-threshold=", "spam-threshold: \"\" is not a number"},
             Case{"spam-threshold=nan", "spam-threshold: \"nan\" is not a number"},
             Case{"spam-threshold=1&walk-to-leaf=2", "walk-to-leaf: \"2\" is not a whole number"},
         }) {
        EXPECT_THAT(s_problem(query), HasSubstr(problem)) << query;
    }
}

} // namespace
} // namespace Quorvane::Testing
