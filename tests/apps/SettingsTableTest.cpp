// SPDX-License-Identifier: Apache-2.0
#include "apps/settings/SettingsTable.h"
#include "apps/settings/SettingSources.h"
#include "support/TemporaryFolder.h"

#include <cmath>
#include <gtest/gtest.h>
#include <set>

namespace Quorvane::Testing {

namespace {

void s_load(std::string const& path, SettingsStore& store) {
    SettingsSection* const sections[] = {&store};
    loadSettingsFile(path, "qvscan", sections);
}

TEST(SettingsTable, NamesAreUnique) {
    std::set<std::string_view> names;
    SettingsStore const store;
    for (auto const& facts : store.facts()) {
        EXPECT_TRUE(names.insert(facts.m_name).second) << facts.m_name;
    }
}

TEST(SettingsTable, WhatIsShownReadsBackAsItIs) {
    SettingsStore store;
    for (auto const& facts : store.facts()) {
        auto const shown = store.texts(facts.m_name);
        store.set(facts.m_name, shown, "again");
        EXPECT_EQ(store.texts(facts.m_name), shown) << facts.m_name;
    }
}

TEST(SettingsTable, ProgramsJudgeFromNinetyFivePercentOn) {
    HostSettings const settings;
    EXPECT_EQ(settings.m_judging.spamThreshold, 0.95);
    EXPECT_EQ(settings.m_judging.hamThreshold, 0.95);
    EXPECT_EQ(settings.m_judging.minSupport, 0.15);
    EXPECT_EQ(settings.m_judging.maxEliteLevel, 1);
    EXPECT_EQ(settings.m_judging.scoreThreshold, 6);
    EXPECT_EQ(settings.m_judging.walkToLeaf, 1);
}

TEST(SettingsTable, ReadsNumbersWholeOrNotAtAll) {
    EXPECT_EQ(readNumber("0.5"), 0.5);
    EXPECT_EQ(readNumber("+1e-3"), 0.001);
    EXPECT_TRUE(std::isinf(readNumber("inf")));
    EXPECT_EQ(readInteger("-7", -10, 10), -7);
    for (auto const* const text : {"", " 1", "1 ", "1x", "0x1", "1,5", "+-1", "--1"}) {
        EXPECT_THROW(readNumber(text), SettingsError) << text;
        EXPECT_THROW(readInteger(text, -10, 10), SettingsError) << text;
    }
    // Nothing compares with it: a threshold that is NaN would quietly judge nothing.
    EXPECT_THROW(readNumber("nan"), SettingsError);
    EXPECT_THROW(readInteger("11", -10, 10), SettingsError);
    EXPECT_THROW(readInteger("99999999999999999999", -10, 10), SettingsError);
}

TEST(SettingsTable, AListIsReplacedAsAWhole) {
    SettingsStore store;
    store.set("trusted-mta", {"192.0.2.1", "192.0.2.2"}, "file");
    store.set("trusted-mta", {"192.0.2.3"}, "command line");
    EXPECT_EQ(store.values().m_trusted.size(), 1U);
    EXPECT_EQ(store.origin("trusted-mta"), "command line");
    EXPECT_EQ(store.origin("root"), "default");
}

TEST(SettingsFile, PathsAreRelativeToTheFile) {
    TemporaryFolder const folder;
    SettingsStore store;
    s_load(folder.write("etc/a.toml", "dns-data = \"zones/a\"\nroot = \"/srv\"\n"), store);
    EXPECT_EQ(store.values().m_dnsData, (folder.path() / "etc/zones/a").string());
    EXPECT_EQ(store.values().m_root, "/srv");
}

TEST(SettingsFile, TakesNumbersInEitherForm) {
    TemporaryFolder const folder;
    SettingsStore store;
    s_load(folder.write("a.toml", "spam-threshold = 1\nham-threshold = 0.5\n"
                                  "walk-to-leaf = false\nscore = \"192.0.2.1=3\"\n"),
           store);
    EXPECT_EQ(store.values().m_judging.spamThreshold, 1.0);
    EXPECT_EQ(store.values().m_judging.hamThreshold, 0.5);
    EXPECT_EQ(store.values().m_judging.walkToLeaf, 0);
    EXPECT_EQ(store.values().m_scores.size(), 1U);
}

} // namespace

} // namespace Quorvane::Testing
