// SPDX-License-Identifier: Apache-2.0
#include "DeepHeaderQuery.h"
#include "scanner/records/RecordAccess.h"

#include <climits>
#include <gtest/gtest.h>

namespace Quorvane::Testing {
namespace {

DeepHeaderQuery s_query(int forged = 0, DeepHeaderSettings const& settings = {}) {
    return {HeaderContainer(),
            Header("Received", "from a by b"),
            settings,
            forged,
            EmailAddress::rfc5322Parse("sender@example.com", true),
            EmailAddress::rfc5322Parse("author@example.net", true),
            EmailAddress::rfc5322Parse("recipient@example.org", true),
            RefMessageProperties(true)};
}

TEST(QueryTest, FreshRecordHasTheDefaultSettings) {
    DeepHeaderQueryImpl const record;
    EXPECT_EQ(record.references(), 1);
    EXPECT_EQ(record.m_currentIsForged, 0);
    EXPECT_TRUE(record.m_currentReceived.isNull());
    EXPECT_TRUE(record.m_headers.headers().empty());
    EXPECT_TRUE(record.m_from.isNull());
    EXPECT_TRUE(record.m_headerFrom.isNull());
    EXPECT_TRUE(record.m_recipient.isNull());
    EXPECT_TRUE(record.m_messageProperties.isEmpty());
    EXPECT_EQ(record.m_settings.walkToLeaf, 1);
    EXPECT_EQ(record.m_settings.spamThreshold, 95.0);
    EXPECT_EQ(record.m_settings.hamThreshold, 95.0);
    EXPECT_EQ(record.m_settings.minSupport, 0.15);
    EXPECT_EQ(record.m_settings.maxEliteLevel, 1);
    EXPECT_EQ(record.m_settings.scoreThreshold, 6);
}

TEST(QueryTest, GivesBackWhatItWasBuiltWith) {
    DeepHeaderSettings settings;
    settings.walkToLeaf = 0;
    settings.spamThreshold = 0.9;
    settings.scoreThreshold = 3;
    auto const query = s_query(0, settings);
    EXPECT_EQ(query.settings().walkToLeaf, 0);
    EXPECT_EQ(query.settings().spamThreshold, 0.9);
    EXPECT_EQ(query.settings().scoreThreshold, 3);
    EXPECT_EQ(query.currentReceived().value(), "from a by b");
    EXPECT_EQ(query.from().domain(), "example.com");
    EXPECT_EQ(query.headerFrom().domain(), "example.net");
    EXPECT_EQ(query.recipient().domain(), "example.org");
    EXPECT_FALSE(query.messageProperties().isEmpty());
}

TEST(QueryTest, SharesTheHostsHeadersAndProperties) {
    HeaderContainer headers;
    RefMessageProperties properties(true);
    DeepHeaderQuery const query(headers, Header(), {}, 0, {}, {}, {}, properties);
    headers.append(Header("Subject", "x"));
    properties->status(3);
    EXPECT_EQ(query.headers().headers().size(), 1U);
    EXPECT_EQ(query.messageProperties()->status(), 3);
}

TEST(QueryTest, ForgedFlagIsHandedThroughWhateverItsValue) {
    for (int const forged : {0, 1, -1, 42, INT_MAX, INT_MIN}) {
        EXPECT_EQ(s_query(forged).currentIsForged(), forged);
    }
}

TEST(QueryTest, CopiesAndAssignmentsShareOneRecord) {
    auto const query = s_query(1);
    DeepHeaderQuery const copy(query);
    auto assigned = s_query(2);
    assigned = query;
    EXPECT_EQ(&copy.settings(), &query.settings());
    EXPECT_EQ(&assigned.settings(), &query.settings());
    EXPECT_EQ(RecordAccess::record(query).references(), 3);
}

TEST(QueryTest, SelfAssignmentLeavesTheHandleAndTheCount) {
    auto query = s_query(1);
    auto const& same = query;
    query = same;
    EXPECT_EQ(RecordAccess::record(query).references(), 1);
    EXPECT_EQ(query.currentIsForged(), 1);
}

TEST(QueryTest, CopyOutlivesTheOriginal) {
    auto* const query = new DeepHeaderQuery(s_query(7));
    DeepHeaderQuery const copy(*query);
    delete query;
    EXPECT_EQ(copy.currentIsForged(), 7);
}

} // namespace
} // namespace Quorvane::Testing
