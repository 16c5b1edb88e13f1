// SPDX-License-Identifier: Apache-2.0
#include "MsgReceived.h"
#include "include2/HeaderException.h"
#include "received/MsgReceivedImpl.h"
#include "support/VirtualSlot.h"

#include <functional>
#include <gtest/gtest.h>

namespace Quorvane::Testing {
namespace {

constexpr char postfix[] =
    "from A.example (b.example [192.0.2.1]) by mx.example.net with ESMTP; Mon";

void s_expectHeaderException(std::function<void()> const& call, unsigned int line) {
    try {
        call();
        FAIL() << "nothing was thrown, expected line " << line;
    } catch (HeaderException const& exception) {
        EXPECT_EQ(exception.stringParameter(), "HeaderException");
        EXPECT_EQ(exception.intParameter(), 1);
        EXPECT_EQ(exception.fileName(), "Receive");
        EXPECT_EQ(exception.lineNumber(), line);
    }
}

void s_expectNoRecord(MsgReceived& hop) {
    s_expectHeaderException([&] { hop.from(); }, 449);
    s_expectHeaderException([&] { hop.by(); }, 458);
    s_expectHeaderException([&] { hop.reverseName(); }, 467);
    s_expectHeaderException([&] { hop.address(); }, 476);
    s_expectHeaderException([&] { hop.privateIP(); }, 485);
    s_expectHeaderException([&] { hop.authenticated(); }, 494);
    s_expectHeaderException([&] { hop.receiveTime(); }, 503);
    s_expectHeaderException([&] { hop.isForged(); }, 513);
    s_expectHeaderException([&] { hop.isForged(1); }, 522);
}

void s_expectEmptyRecord(MsgReceived const& hop) {
    EXPECT_EQ(hop.from(), "");
    EXPECT_EQ(hop.by(), "");
    EXPECT_EQ(hop.reverseName(), "");
    EXPECT_TRUE(hop.address().isNull());
    EXPECT_TRUE(hop.privateIP());
    EXPECT_FALSE(hop.authenticated());
    EXPECT_EQ(hop.receiveTime(), "");
    EXPECT_EQ(hop.isForged(), 0);
}

TEST(MsgReceivedTest, TypeIsReceivedWithAndWithoutRecord) {
    EXPECT_EQ(MsgReceived().type(), "Received");
    EXPECT_EQ(MsgReceived(std::string(postfix)).type(), "Received");
    EXPECT_EQ(&MsgReceived().type(), &MsgReceived(std::string(postfix)).type());
}

TEST(MsgReceivedTest, AccessorsWithoutRecordThrowFromTheirOwnLines) {
    MsgReceived hop;
    EXPECT_TRUE(hop.isNull());
    s_expectNoRecord(hop);
}

TEST(MsgReceivedTest, NothingIsParsedBeforeTheFirstAccessor) {
    MsgReceived const hop{std::string(postfix)};
    EXPECT_EQ(hop.value(), postfix);
    EXPECT_EQ(hop.from(), "a.example");
    EXPECT_EQ(hop.value(), "from a.example (b.example [192.0.2.1])");
}

TEST(MsgReceivedTest, CopiesShareOneParseAndOneForgedState) {
    MsgReceived hop{std::string(postfix)};
    MsgReceived copy(hop);
    hop.from();
    EXPECT_EQ(copy.value(), "from a.example (b.example [192.0.2.1])");
    EXPECT_TRUE(ReceivedAccess::fields(copy)->m_isParsed);
    copy.isForged(7);
    EXPECT_EQ(hop.isForged(), 7);
    EXPECT_EQ(&hop.from(), &copy.from());
}

TEST(MsgReceivedTest, AssignmentTakesTheTextButNotTheParse) {
    Header const header("rEcEiVeD", postfix);
    MsgReceived hop;
    hop = header;
    EXPECT_EQ(hop.value(), postfix);
    EXPECT_EQ(hop.from(), "a.example");
    EXPECT_EQ(header.value(), postfix);
}

TEST(MsgReceivedTest, AssignmentFromAParsedRecordTakesItsShortenedTextAndNothingElse) {
    MsgReceived source{std::string(postfix)};
    EXPECT_EQ(source.by(), "mx.example.net");
    source.isForged(1);
    MsgReceived hop;
    hop = source;
    EXPECT_EQ(hop.by(), "");
    EXPECT_EQ(hop.from(), "a.example");
    EXPECT_EQ(ReceivedAccess::fields(hop)->m_forged, -1);
    EXPECT_EQ(source.by(), "mx.example.net");
}

TEST(MsgReceivedTest, AssignmentFromANullHeaderGivesAnEmptyRecord) {
    MsgReceived hop{std::string(postfix)};
    hop = Header();
    s_expectEmptyRecord(hop);
    MsgReceived other{std::string(postfix)};
    other = MsgReceived();
    s_expectEmptyRecord(other);
}

TEST(MsgReceivedTest, AssignmentFromAnotherTypeThrowsAndLeavesNoRecord) {
    MsgReceived hop{std::string(postfix)};
    try {
        hop = Header("Subject", postfix);
        FAIL() << "nothing was thrown";
    } catch (Exception const& exception) {
        EXPECT_EQ(exception.stringParameter(), "operator=");
        EXPECT_EQ(exception.intParameter(), 2);
        EXPECT_EQ(exception.fileName(), "");
        EXPECT_EQ(exception.lineNumber(), 0U);
    }
    s_expectNoRecord(hop);
}

TEST(MsgReceivedTest, SelfAssignmentChangesNothing) {
    MsgReceived hop{std::string(postfix)};
    hop.from();
    auto const& same = hop;
    hop = same;
    EXPECT_EQ(hop.by(), "mx.example.net");
}

TEST(MsgReceivedTest, AHandleWithoutRecordGetsAnEmptyOneEvenFromItself) {
    MsgReceived hop;
    auto const& same = hop;
    hop = same;
    ASSERT_FALSE(hop.isNull());
    s_expectEmptyRecord(hop);
}

TEST(MsgReceivedTest, AssignmentReleasesTheOldRecordOnly) {
    MsgReceived hop{std::string(postfix)};
    MsgReceived const copy(hop);
    hop = Header("Received", "from x.example (y.example [192.0.2.2]) by z");
    EXPECT_EQ(hop.from(), "x.example");
    EXPECT_EQ(copy.from(), "a.example");
}

// What the base classes do to a handle leaves it with the record of another header.
struct ForeignRecord {
    char const* m_how;
    void (*m_put)(MsgReceived& hop);
    char const* m_value; // readable all the same
};

ForeignRecord const s_foreignRecords[] = {
    {"newImpl", [](MsgReceived& hop) { hop.newImpl(); }, ""},
    {"newImpl through Header", [](MsgReceived& hop) { static_cast<Header&>(hop).newImpl(); }, ""},
    {"assignment of Header",
     [](MsgReceived& hop) { hop.Header::operator=(Header("Received", "from x")); }, "from x"},
    {"assignment of TypeAndValue",
     [](MsgReceived& hop) { static_cast<TypeAndValue&>(hop) = Header("Received", "from y"); },
     "from y"},
};

TEST(MsgReceivedTest, AccessorsOfAForeignRecordThrowFromTheirOwnLines) {
    for (auto const& row : s_foreignRecords) {
        SCOPED_TRACE(row.m_how);
        for (MsgReceived hop : {MsgReceived(), MsgReceived(std::string(postfix))}) {
            row.m_put(hop);
            EXPECT_FALSE(hop.isNull());
            EXPECT_EQ(ReceivedAccess::fields(hop), nullptr);
            s_expectNoRecord(hop);
            EXPECT_EQ(hop.value(), row.m_value);
            EXPECT_EQ(hop.type(), "Received");
        }
    }
}

TEST(MsgReceivedTest, AForeignRecordIsACopysToo) {
    MsgReceived hop{std::string(postfix)};
    hop.newImpl();
    MsgReceived copy(hop);
    s_expectNoRecord(copy);
}

TEST(MsgReceivedTest, AssignmentFromAForeignRecordTakesItsText) {
    MsgReceived source;
    static_cast<TypeAndValue&>(source) = Header("Received", postfix);
    MsgReceived hop;
    hop = source;
    EXPECT_EQ(hop.from(), "a.example");
    s_expectNoRecord(source);
}

TEST(MsgReceivedTest, ARecordOfItsOwnKindIsSharedByTheBaseClassesAssignment) {
    MsgReceived const source{std::string(postfix)};
    MsgReceived hop;
    static_cast<TypeAndValue&>(hop) = source;
    EXPECT_EQ(&hop.from(), &source.from());
    EXPECT_NE(ReceivedAccess::fields(hop), nullptr);
}

TEST(MsgReceivedTest, TheOrderOfItsVirtualOperationsIsFixed) {
    using Testing::virtualSlot;
    EXPECT_EQ(virtualSlot(&MsgReceived::type), 2U);
    EXPECT_EQ(
        (virtualSlot<TypeAndValue, bool(TypeAndValue const&) const>(&TypeAndValue::operator==)),
        3U);
    EXPECT_EQ(virtualSlot(&Header::asString), 4U);
    EXPECT_EQ(virtualSlot(&Header::newImpl), 5U);
    EXPECT_EQ((virtualSlot<MsgReceived, MsgReceived&(Header const&)>(&MsgReceived::operator=)), 6U);
    EXPECT_EQ((virtualSlot<Header, bool(Header const&) const>(&Header::operator==)), 7U);
}

TEST(MsgReceivedTest, AssignsThroughTheBaseClass) {
    MsgReceived hop;
    Header& base = hop;
    base = Header("Received", postfix);
    EXPECT_EQ(hop.from(), "a.example");
}

} // namespace
} // namespace Quorvane::Testing
