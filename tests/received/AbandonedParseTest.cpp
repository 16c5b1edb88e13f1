// SPDX-License-Identifier: Apache-2.0
//
// A header whose names hold a blank abandons the parse; such a record is parsed again at each
// accessor call, from the text that the call before left.
#include "MsgReceived.h"
#include "received/MsgReceivedImpl.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {
namespace {

TEST(AbandonedParseTest, ReceivingHostIsKnownOnlyAfterTheFirstParse) {
    MsgReceived const hop(std::string("from a b (c [192.0.2.1]) by d"));
    EXPECT_EQ(hop.by(), "d");
    EXPECT_EQ(hop.by(), "");
    EXPECT_EQ(hop.from(), "");
    EXPECT_EQ(hop.by(), "");
    EXPECT_EQ(hop.value(), "from a b (c [192.0.2.1])");
}

TEST(AbandonedParseTest, LeavesTheRestOfTheFieldsAtTheirStart) {
    MsgReceived const hop(std::string("from a b (c [192.0.2.1]) (authenticated); x by d"));
    EXPECT_EQ(hop.from(), "");
    EXPECT_TRUE(hop.address().isNull());
    EXPECT_TRUE(hop.privateIP());
    EXPECT_FALSE(hop.authenticated());
    EXPECT_EQ(hop.receiveTime(), "");
    EXPECT_EQ(hop.reverseName(), "");
}

TEST(AbandonedParseTest, ABlankInTheReverseNameAbandonsToo) {
    MsgReceived const hop(std::string("from a (b c [192.0.2.1]) by d"));
    EXPECT_EQ(hop.from(), "a");
    EXPECT_EQ(hop.reverseName(), "");
    EXPECT_TRUE(hop.address().isNull());
    EXPECT_EQ(hop.by(), "");
}

TEST(AbandonedParseTest, ATabOrALineBreakInANameIsNoBlank) {
    MsgReceived const hop(std::string("from a\tb (c\r\nd [192.0.2.1]) by e"));
    EXPECT_EQ(hop.from(), "a\tb");
    EXPECT_EQ(hop.reverseName(), "c\r\nd");
    EXPECT_EQ(hop.address().asString(true), "192.0.2.1");
}

TEST(AbandonedParseTest, TheSecondParseMayFindAnotherTrail) {
    // The first parse cuts at the tab's marker and gives up; the second finds a marker further in
    // front and understands what is left.
    MsgReceived const hop(std::string("from 192.0.2.1 by b (c [192.0.2.2])\tby d"));
    EXPECT_EQ(hop.by(), "d");
    EXPECT_EQ(hop.by(), "b");
    EXPECT_EQ(hop.address().asString(true), "192.0.2.1");
    EXPECT_EQ(hop.value(), "from 192.0.2.1");
}

TEST(AbandonedParseTest, ALookAtTheFieldsDoesNotParse) {
    MsgReceived const hop(std::string("from a b (c [192.0.2.1]) by d"));
    auto const* const fields = ReceivedAccess::fields(hop);
    ASSERT_NE(fields, nullptr);
    EXPECT_EQ(fields->m_by, "");
    EXPECT_EQ(hop.by(), "d");
    EXPECT_EQ(fields->m_by, "d");
    EXPECT_FALSE(fields->m_isParsed);
    EXPECT_EQ(fields->m_by, "d");
}

TEST(AbandonedParseTest, ALookAtAHandleWithoutRecordGivesNothing) {
    EXPECT_EQ(ReceivedAccess::fields(MsgReceived()), nullptr);
}

} // namespace
} // namespace Quorvane::Testing
