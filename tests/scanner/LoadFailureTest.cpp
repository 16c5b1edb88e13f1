// SPDX-License-Identifier: Apache-2.0
//
// What init makes of failures: which of them it logs, under which number, and which reach the host.
#include "DeepHeaderScanner.h"
#include "FileHook.h"
#include "include2/Exception.h"
#include "LogCapture.h"
#include "rules/format/AttributeTable.h"
#include "support/RuleFolder.h"
#include "support/SteadyScans.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace Quorvane::Testing {
namespace {

// An engine is in force, and a newer version is on disk.
class LoadFailureTest : public testing::Test {
  protected:
    LoadFailureTest() {
        m_rules.writeTree(treeOf({leaf(Attribute::hopBehindFirst, 0, markOf(1))}));
        m_scanner.init();
        m_rules.writeTree(treeOf({leaf(Attribute::hopBehindFirst, 0, markOf(2))}));
        m_rules.writeReadme("CF_DT_VERSION=5\n");
        m_log.take();
    }

    // That nothing was installed: neither the engine nor its version.
    void expectAnEngineStillToLoad() {
        EXPECT_TRUE(m_scanner.ready());
        EXPECT_EQ(numberIn(scanOnce()), 1);
        m_scanner.init();
        EXPECT_EQ(numberIn(scanOnce()), 2);
    }

    void expectLogged(int id, std::string const& text) {
        auto const records = m_log.take();
        ASSERT_EQ(records.size(), 1U);
        EXPECT_EQ(records[0].m_id, id);
        EXPECT_EQ(records[0].m_reserved, 0);
        EXPECT_EQ(records[0].m_format, "%s");
        EXPECT_EQ(records[0].m_text, text);
    }

    // init, where making the path of the file `name` throws `failure`.
    template<typename Failure>
    void initWithout(std::string const& name, Failure const& failure) {
        FileHook const hook([&](std::string const& asked) {
            if (asked == name) {
                throw failure;
            }
        });
        m_scanner.init();
    }

    RuleFolder m_rules;
    LogCapture m_log;
    DeepHeaderScanner m_scanner;
    Exception const m_exception{"the disk is on fire", 3, "File", 7};
};

TEST_F(LoadFailureTest, AnExceptionOfTheLoadIsLoggedWithItsText) {
    for (auto const* name : {eliteFileName, treeFileName}) {
        initWithout(name, m_exception);
        expectLogged(50332198, m_exception.asString());
    }
    expectAnEngineStillToLoad();
}

TEST_F(LoadFailureTest, AnythingElseThatTheLoadThrowsIsLoggedWithABlank) {
    for (auto const* name : {eliteFileName, treeFileName}) {
        initWithout(name, std::runtime_error("no exception of ours"));
        expectLogged(50332199, " ");
    }
    expectAnEngineStillToLoad();
}

TEST_F(LoadFailureTest, AnExceptionBeforeTheLoadIsLoggedWithItsText) {
    initWithout(versionFileName, m_exception);
    expectLogged(50332201, m_exception.asString());
    expectAnEngineStillToLoad();
}

TEST_F(LoadFailureTest, AnythingElseThatIsThrownBeforeTheLoadReachesTheHost) {
    EXPECT_THROW(initWithout(versionFileName, std::runtime_error("no exception of ours")),
                 std::runtime_error);
    EXPECT_TRUE(m_log.take().empty());
    expectAnEngineStillToLoad();
}

} // namespace
} // namespace Quorvane::Testing
