// SPDX-License-Identifier: Apache-2.0
#include "platform/Header.h"
#include "platform/HeaderContainer.h"
#include "platform/MessageProperties.h"

#include <functional>
#include <gtest/gtest.h>

namespace Quorvane::Testing {
namespace {

void s_expectCategory1(std::function<void()> const& call) {
    try {
        call();
        FAIL() << "nothing was thrown";
    } catch (Exception const& exception) {
        EXPECT_EQ(exception.intParameter(), 1);
    }
}

TEST(HeaderTest, KeepsNameAndValueAsTheyStand) {
    Header const header("Message-ID", " <a@b>\r\n\tx ");
    EXPECT_FALSE(header.isNull());
    EXPECT_EQ(header.type(), "Message-ID");
    EXPECT_EQ(header.typeLowerCase(), "message-id");
    EXPECT_EQ(header.value(), " <a@b>\r\n\tx ");
    EXPECT_EQ(Header("To", "x").asString(), "To: x");
}

TEST(HeaderTest, ADefaultHandleIsNull) {
    Header const header;
    EXPECT_TRUE(header.isNull());
    EXPECT_EQ(header.asString(), "");
    s_expectCategory1([&] { header.type(); });
    s_expectCategory1([&] { header.value(); });
    s_expectCategory1([&] { header.typeLowerCase(); });
}

TEST(HeaderTest, CopiesShareTheTexts) {
    Header const header("To", "x");
    Header const copy(header);
    Header assigned;
    assigned = header;
    EXPECT_EQ(&copy.value(), &header.value());
    EXPECT_EQ(&assigned.value(), &header.value());
}

TEST(HeaderTest, NewImplGivesFreshEmptyTexts) {
    Header header("To", "x");
    Header const copy(header);
    header.newImpl();
    EXPECT_FALSE(header.isNull());
    EXPECT_EQ(header.type(), "");
    EXPECT_EQ(header.value(), "");
    EXPECT_EQ(copy.value(), "x");
}

TEST(HeaderTest, EqualityLooksAtTheNameWithoutLetterCaseAndAtTheValue) {
    EXPECT_TRUE(Header("To", "x") == Header("TO", "x"));
    EXPECT_FALSE(Header("To", "x") == Header("To", "X"));
    EXPECT_FALSE(Header("To", "x") == Header("Cc", "x"));
    EXPECT_FALSE(Header("To", "x") == Header());
    EXPECT_TRUE(Header() == Header());
}

TEST(HeaderContainerTest, KeepsTheOrderAndSharesTheList) {
    HeaderContainer container;
    EXPECT_TRUE(container.headers().empty());
    HeaderContainer const copy(container);
    HeaderContainer assigned;
    assigned = container;
    container.append(Header("A", "1"));
    container.append(Header("B", "2"));
    for (auto const& shared : {container, copy, assigned}) {
        ASSERT_EQ(shared.headers().size(), 2U);
        EXPECT_EQ(shared.headers().front().type(), "A");
    }
}

TEST(MessagePropertiesTest, AnEmptyHandleHasNoRecordAndAFreshOneHas) {
    RefMessageProperties empty(false);
    s_expectCategory1([&] { empty->status(); });
    RefMessageProperties properties(true);
    EXPECT_EQ(properties->status(), 0);
    EXPECT_EQ(properties->clientScore(), 0U);
    EXPECT_TRUE(properties->receivedHeaderAnalysis().empty());
}

TEST(MessagePropertiesTest, CopiesShareTheRecord) {
    RefMessageProperties properties(true);
    RefMessageProperties copy(properties);
    properties->clientScore(7);
    EXPECT_EQ(copy->clientScore(), 7U);
}

} // namespace
} // namespace Quorvane::Testing
