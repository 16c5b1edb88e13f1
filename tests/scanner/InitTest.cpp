// SPDX-License-Identifier: Apache-2.0
//
// When init loads and when it leaves the engine in force. The engine and its version belong to the
// process, so each test begins by loading rules without a version, which always loads.
#include "adapter/DeepHeaderAdapter.h"
#include "DeepHeaderScanner.h"
#include "LogCapture.h"
#include "support/RuleFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace Quorvane::Testing {
namespace {

class InitTest : public testing::Test {
  protected:
    InitTest() {
        m_rules.writeTree({});
        m_scanner.init();
    }

    // The engine in force. A handle is kept, so that no later engine gets the same address.
    DeepHeaderAdapter* inForce() {
        Synchronized const lock(DeepHeaderScanner::m_Mutex);
        m_kept.push_back(RefDeepHeaderAdapter::instance(nullptr));
        return m_kept.back().operator->();
    }

    bool doesLoad() {
        auto* const before = inForce();
        m_scanner.init();
        return inForce() != before;
    }

    bool doesLoad(std::string const& readme) {
        m_rules.writeReadme(readme);
        return doesLoad();
    }

    RuleFolder m_rules;
    LogCapture m_log;
    DeepHeaderScanner m_scanner;
    std::vector<RefDeepHeaderAdapter> m_kept;
};

TEST_F(InitTest, WithoutReadmeEveryCallLoads) {
    EXPECT_TRUE(doesLoad());
    EXPECT_TRUE(doesLoad());
    EXPECT_TRUE(m_scanner.ready());
}

TEST_F(InitTest, LoadsOnlyWhatIsNewer) {
    EXPECT_TRUE(doesLoad("CF_DT_VERSION=5\n"));
    EXPECT_FALSE(doesLoad("CF_DT_VERSION=5\n"));
    EXPECT_FALSE(doesLoad("CF_DT_VERSION=4\n"));
    EXPECT_TRUE(doesLoad("CF_DT_VERSION=6\n"));
    EXPECT_FALSE(doesLoad("CF_DT_VERSION=5\n"));
    EXPECT_TRUE(m_scanner.ready());
}

TEST_F(InitTest, AReadmeThatLosesItsVersionLoadsAgain) {
    EXPECT_TRUE(doesLoad("CF_DT_VERSION=5\n"));
    EXPECT_TRUE(doesLoad("nothing\n"));
    EXPECT_TRUE(doesLoad("CF_DT_VERSION=3\n")) << "3 is more than the unknown version's -1";
}

TEST_F(InitTest, AVersionOfMinus1IsLikeNone) {
    EXPECT_TRUE(doesLoad("CF_DT_VERSION=-1\n"));
    EXPECT_TRUE(doesLoad("CF_DT_VERSION=-1\n"));
}

TEST_F(InitTest, Version0AfterAnUnknownOneLoadsButDoesNotReadAsReady) {
    EXPECT_TRUE(m_scanner.ready());
    EXPECT_TRUE(doesLoad("CF_DT_VERSION=0\n"));
    EXPECT_FALSE(m_scanner.ready());
    EXPECT_FALSE(doesLoad("CF_DT_VERSION=0\n"));
    EXPECT_NE(inForce(), nullptr) << "there is an engine all the same";
}

TEST_F(InitTest, AFailedLoadIsLoggedAndLeavesWhatWasInForce) {
    doesLoad("CF_DT_VERSION=5\n");
    m_log.take();
    m_rules.remove(treeFileName);
    EXPECT_FALSE(doesLoad("CF_DT_VERSION=6\n"));
    EXPECT_TRUE(m_scanner.ready());
    auto const records = m_log.take();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].m_id, 50332198);
    EXPECT_NE(records[0].m_text.find("Error loading the deep header rules"), std::string::npos);
    EXPECT_NE(records[0].m_text.find("Adapter:175"), std::string::npos);
    m_rules.writeTree({});
    EXPECT_TRUE(doesLoad()) << "the version was not taken over";
}

TEST_F(InitTest, AFailedReloadWithoutVersionKeepsReady) {
    m_rules.remove(treeFileName);
    EXPECT_FALSE(doesLoad());
    EXPECT_TRUE(m_scanner.ready());
}

// Whoever opened a pipe would wait for its writer.
TEST_F(InitTest, APipeInPlaceOfAFileIsNoFile) {
    for (auto const* name : {versionFileName, eliteFileName, treeFileName}) {
        m_rules.remove(name);
        ASSERT_EQ(::mkfifo(m_rules.path(name).c_str(), 0600), 0);
        EXPECT_EQ(doesLoad(), std::string(name) != treeFileName) << name;
        m_rules.remove(name);
        m_rules.writeTree({});
    }
}

TEST_F(InitTest, AnUnreadableReadmeCountsAsNone) {
    std::filesystem::create_directory(m_rules.path(versionFileName));
    EXPECT_TRUE(doesLoad());
    EXPECT_TRUE(m_scanner.ready());
}

} // namespace
} // namespace Quorvane::Testing
