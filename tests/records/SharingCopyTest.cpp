// SPDX-License-Identifier: Apache-2.0
//
// What the copies and assignments of the public handles do with the records, also where no host can
// see it: no public operation makes a handle without record.
#include "scanner/records/SharingCopy.h"

#include "scanner/records/DeepHeaderAnswerImpl.h"
#include "scanner/records/DeepHeaderQueryImpl.h"
#include "support/ReferenceWitness.h"

#include <gtest/gtest.h>
#include <optional>

namespace Quorvane::Testing {
namespace {

template<typename T>
class SharingCopyTest : public testing::Test {
  protected:
    static void expectNoRecord(Exception const& exception) {
        EXPECT_EQ(exception.stringParameter(), "RefCounted constructor for RefImpl failed.");
        EXPECT_EQ(exception.intParameter(), 4);
        EXPECT_EQ(exception.fileName(), "");
        EXPECT_EQ(exception.lineNumber(), 0U);
    }

    RefCounted<T> const m_empty{nullptr, false};
};
using Records = testing::Types<DeepHeaderAnswerImpl, DeepHeaderQueryImpl>;
TYPED_TEST_SUITE(SharingCopyTest, Records);

TYPED_TEST(SharingCopyTest, AHandleWithoutRecordCannotBeCopied) {
    try {
        delete s_share(&this->m_empty);
        FAIL() << "nothing was thrown";
    } catch (Exception const& exception) {
        this->expectNoRecord(exception);
    }
}

TYPED_TEST(SharingCopyTest, AssigningAHandleWithoutRecordReleasesTheOldRecordAndFails) {
    RefCounted<TypeParam> const witness;
    auto* target = new RefCounted<TypeParam>(witness.impl(), true);
    try {
        s_shareAssign(target, &this->m_empty);
        FAIL() << "nothing was thrown";
    } catch (Exception const& exception) {
        this->expectNoRecord(exception);
    }
    EXPECT_EQ(target, nullptr);
    EXPECT_EQ(witness.impl()->references(), 1);
}

TEST(SharingAssignmentTest, ReleasesTheOldReferenceBeforeItTakesTheNew) {
    std::optional<std::int32_t> seen;
    RefCounted<Testing::ReferenceWitness> const source;
    auto* target = new RefCounted<Testing::ReferenceWitness>;
    target->impl()->watch(source.impl(), &seen);
    s_shareAssign(target, &source);
    EXPECT_EQ(seen, 1);
    EXPECT_EQ(source.impl()->references(), 2);
    delete target;
}

} // namespace
} // namespace Quorvane::Testing
