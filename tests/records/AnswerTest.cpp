// SPDX-License-Identifier: Apache-2.0
#include "DeepHeaderAnswer.h"
#include "scanner/records/RecordAccess.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {
namespace {

TEST(AnswerTest, DefaultAnswerIsNoVerdict) {
    DeepHeaderAnswer const answer;
    EXPECT_EQ(answer.getNode(), 0);
    EXPECT_EQ(answer.confidenceDegree(), -1.0F);
    EXPECT_FALSE(answer.isSpam());
    EXPECT_FALSE(answer.isHam());
    EXPECT_EQ(answer.getIPs(), "");
    EXPECT_EQ(answer.getReasons(), " No untrusted public ip! ");
    EXPECT_EQ(RecordAccess::record(answer).m_supportDegree, 0.0);
}

TEST(AnswerTest, CopyShowsWhatIsFilledLaterThroughAnotherHandle) {
    DeepHeaderAnswer const answer;
    DeepHeaderAnswer const copy(answer);
    DeepHeaderAnswer assigned;
    assigned = answer;
    auto& record = RecordAccess::record(answer);
    record.m_node = 17;
    record.m_isSpam = true;
    record.m_ips = "192.0.2.7";
    for (DeepHeaderAnswer const* shared :
         {&copy, static_cast<DeepHeaderAnswer const*>(&assigned)}) {
        EXPECT_EQ(shared->getNode(), 17);
        EXPECT_TRUE(shared->isSpam());
        EXPECT_EQ(shared->getIPs(), "192.0.2.7");
    }
    EXPECT_EQ(record.references(), 3);
}

TEST(AnswerTest, SpamAndHamAreTwoMarks) {
    DeepHeaderAnswer const answer;
    auto& record = RecordAccess::record(answer);
    record.m_isSpam = true;
    EXPECT_TRUE(answer.isSpam());
    EXPECT_FALSE(answer.isHam());
    record.m_isSpam = false;
    record.m_isHam = true;
    EXPECT_FALSE(answer.isSpam());
    EXPECT_TRUE(answer.isHam());
}

TEST(AnswerTest, SelfAssignmentLeavesTheHandleAndTheCount) {
    DeepHeaderAnswer answer;
    auto const& same = answer;
    answer = same;
    EXPECT_EQ(RecordAccess::record(answer).references(), 1);
    EXPECT_EQ(answer.getNode(), 0);
}

TEST(AnswerTest, AssignmentReleasesTheOldRecord) {
    DeepHeaderAnswer answer;
    DeepHeaderAnswer const witness(answer);
    answer = DeepHeaderAnswer();
    EXPECT_EQ(RecordAccess::record(witness).references(), 1);
}

TEST(AnswerTest, ConfidenceIsNarrowedToTheNearestFloat) {
    DeepHeaderAnswer const answer;
    RecordAccess::record(answer).m_confidenceDegree = 0.1;
    EXPECT_EQ(answer.confidenceDegree(), 0.1F);
    EXPECT_NE(static_cast<double>(answer.confidenceDegree()), 0.1);
}

} // namespace
} // namespace Quorvane::Testing
