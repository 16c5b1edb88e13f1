// SPDX-License-Identifier: Apache-2.0
//
// Memory that runs out, at each place in turn: the operation ends as it says, nothing is lost or
// half done, and the next one works.
#include "DeepHeaderScanner.h"
#include "LogCapture.h"
#include "MsgReceived.h"
#include "platform/HeaderContainer.h"
#include "platform/Resolver.h"
#include "rules/format/AttributeTable.h"
#include "support/OwnMemory.h"
#include "support/RuleFolder.h"
#include "support/SteadyScans.h"

#include <gtest/gtest.h>
#include <new>

namespace Quorvane::Testing {
namespace {

class AllocationTest : public testing::Test {
  protected:
    AllocationTest() {
        ResolverSettings settings;
        settings.m_mode = ResolverSettings::Mode::local;
        settings.m_zoneData = {"relay.example. A 192.0.2.7"};
        Resolver::instance().configure(settings);
        writeSet(1);
        m_scanner.init();
    }

    // The confidence of set `number` is its mark.
    void writeSet(int number) const {
        m_rules.writeElite(eliteHeader(1, 1, 1), {adjusting('r', markOf(number))});
        m_rules.writeTree(treeOf({leaf(Attribute::hopBehindFirst, 0, markOf(number))}));
        m_rules.writeReadme("CF_DT_VERSION=" + std::to_string(number) + "\n");
    }

    RuleFolder m_rules;
    DeepHeaderScanner m_scanner;
};

// Everything that the engine may look at, so that every stage allocates.
DeepHeaderQuery s_query() {
    Message message(received("a-long-announced-name.example", "relay.example", "192.0.2.7",
                             "the-receiving-host.example") +
                    received("another-announced-name.example", "unknown", "198.51.100.9",
                             "a-long-announced-name.example") +
                    "From: somebody with a long name <author@organisation.example>\n"
                    "To: recipient@a-long-domain-name.example\n"
                    "Return-Path: <bounces@another-long-domain-name.example>\n"
                    "Message-ID: <0123456789@a-long-announced-name.example>\n");
    message.m_settings.spamThreshold = 0.1;
    return message.query();
}

TEST_F(AllocationTest, AScanEndsWithoutVerdictOrSaysSoAndTheNextOneWorks) {
    auto query = s_query();
    auto const whole = m_scanner.postQuery(query).getReasons();
    LogCapture log;
    int withoutVerdict = 0;
    auto const scan = [&] {
        try {
            auto const answer = m_scanner.postQuery(query);
            withoutVerdict += answer.getNode() == 0 ? 1 : 0;
        } catch (std::bad_alloc const&) { // no memory for the answer
        }
    };
    auto const check = [&](int number) {
        auto again = s_query();
        ASSERT_EQ(m_scanner.postQuery(again).getReasons(), whole) << "after allocation " << number;
    };
    EXPECT_GT(failEachAllocation(scan, check), 30);
    EXPECT_GT(withoutVerdict, 30);
}

TEST_F(AllocationTest, ALoadInstallsAWholeEngineOrNone) {
    LogCapture log;
    int set = 2;
    writeSet(set);
    auto const load = [&] {
        try {
            m_scanner.init();
        } catch (std::bad_alloc const&) { // no memory for the path of README
        }
    };
    auto const check = [&](int number) {
        auto const inForce = numberIn(scanOnce());
        ASSERT_TRUE(inForce == set || inForce == set - 1) << "after allocation " << number;
        EXPECT_TRUE(m_scanner.ready());
        m_scanner.init();
        ASSERT_EQ(numberIn(scanOnce()), set) << "after allocation " << number;
        writeSet(++set);
    };
    EXPECT_GT(failEachAllocation(load, check), 20);
}

// The target has its own value until it has that of the source.
template<typename Handle, typename Read>
void s_tryToAssign(Handle& target, Handle const& source, Read read) {
    auto const before = read(target);
    auto const assign = [&] {
        try {
            target = source;
        } catch (std::bad_alloc const&) {
            EXPECT_EQ(read(target), before);
        }
    };
    EXPECT_GT(failEachAllocation(assign, [](int) {}), 0);
    EXPECT_EQ(read(target), read(source));
}

TEST_F(AllocationTest, AHandleKeepsItsValueWhenAnAssignmentFails) {
    auto query = s_query();
    auto answer = m_scanner.postQuery(query);
    DeepHeaderAnswer other;
    s_tryToAssign(other, answer, [](auto const& handle) { return handle.getReasons(); });

    auto const sender = [](auto const& handle) { return handle.from().domain(); };
    Message message;
    message.m_from = address("a@example.org");
    auto otherQuery = message.query();
    s_tryToAssign(otherQuery, query, sender);

    HeaderContainer headers;
    headers.append(Header("A", "1"));
    HeaderContainer none;
    s_tryToAssign(none, headers, [](auto const& handle) { return handle.headers().size(); });

    Header header("A", "1");
    s_tryToAssign(header, Header("B", "2"), [](auto const& handle) { return handle.asString(); });

    RefMessageProperties properties(true);
    RefMessageProperties scored(true);
    scored->clientScore(7);
    s_tryToAssign(properties, scored, [](auto const& handle) { return handle->clientScore(); });
}

// It lets go of what it had before it looks at the new header.
TEST_F(AllocationTest, AReceivedHeaderWithoutARecordSaysSo) {
    Header const header("Received", "from a.example (b.example [192.0.2.7]) by c.example");
    MsgReceived hop("from d.example (e.example [192.0.2.8]) by f.example");
    auto const assign = [&] {
        try {
            hop = header;
        } catch (std::bad_alloc const&) {
            EXPECT_THROW(hop.from(), Exception);
        }
    };
    EXPECT_GT(failEachAllocation(assign, [](int) {}), 0);
    EXPECT_EQ(hop.from(), "a.example");
}

} // namespace
} // namespace Quorvane::Testing
