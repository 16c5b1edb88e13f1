// SPDX-License-Identifier: Apache-2.0
#include "include2/Exception.h"
#include "include2/DeepHeaderException.h"
#include "include2/HeaderException.h"
#include "support/VirtualSlot.h"

#include <gtest/gtest.h>
#include <type_traits>

namespace Quorvane::Testing {
namespace {

TEST(ExceptionTest, KeepsTextCategoryFileAndLine) {
    Exception const exception("text", 2, "File", 17);
    EXPECT_EQ(exception.stringParameter(), "text");
    EXPECT_EQ(exception.intParameter(), 2);
    EXPECT_EQ(exception.fileName(), "File");
    EXPECT_EQ(exception.lineNumber(), 17U);
}

TEST(ExceptionTest, NullFileNameMeansNoLocation) {
    Exception const exception("text", 4, nullptr, 0);
    EXPECT_EQ(exception.fileName(), "");
    EXPECT_EQ(exception.asString(), "text (category 4)");
}

TEST(ExceptionTest, SettersReplaceEveryPart) {
    Exception exception("text", 2, "File", 17);
    exception.stringParameter("other");
    exception.intParameter(3);
    exception.fileName(std::string("Elsewhere"));
    exception.lineNumber(18);
    EXPECT_EQ(exception.asString(), "other (category 3, Elsewhere:18)");
    char const* const none = nullptr;
    exception.fileName(none);
    EXPECT_EQ(exception.fileName(), "");
}

TEST(ExceptionTest, RendersOnOneLineWhateverTheTextHolds) {
    Exception const exception(std::string("a\nb\0c\x7f", 6), 1, "F", 1);
    EXPECT_EQ(exception.asString(), "a\\x0ab\\x00c\\x7f (category 1, F:1)");
}

TEST(ExceptionTest, KeepsACopyOfItsCause) {
    Exception exception("outer", 4, nullptr, 0);
    EXPECT_FALSE(exception.hasCause());
    {
        Exception const inner("inner", 1, "F", 2);
        exception.cause(inner);
    }
    Exception const copy = exception;
    ASSERT_TRUE(copy.hasCause());
    EXPECT_EQ(copy.cause().stringParameter(), "inner");
    EXPECT_FALSE(copy.cause().hasCause());
}

template<typename Signature>
std::size_t s_slot(Signature Exception::*operation) {
    return Testing::virtualSlot(operation);
}

TEST(ExceptionTest, TheOrderOfItsVirtualOperationsIsFixed) {
    EXPECT_EQ(s_slot<std::string const&() const>(&Exception::stringParameter), 2U);
    EXPECT_EQ(s_slot<void(std::string const&)>(&Exception::stringParameter), 3U);
    EXPECT_EQ(s_slot<int() const>(&Exception::intParameter), 4U);
    EXPECT_EQ(s_slot<void(int)>(&Exception::intParameter), 5U);
    EXPECT_EQ(s_slot<std::string const&() const>(&Exception::fileName), 6U);
    EXPECT_EQ(s_slot<void(std::string const&)>(&Exception::fileName), 7U);
    EXPECT_EQ(s_slot<void(char const*)>(&Exception::fileName), 8U);
    EXPECT_EQ(s_slot<unsigned int() const>(&Exception::lineNumber), 9U);
    EXPECT_EQ(s_slot<void(unsigned int)>(&Exception::lineNumber), 10U);
    EXPECT_EQ(s_slot<void(Exception const&)>(&Exception::cause), 11U);
    EXPECT_EQ(s_slot<Exception const&() const>(&Exception::cause), 12U);
    EXPECT_EQ(s_slot<bool() const>(&Exception::hasCause), 13U);
}

TEST(ExceptionTest, EngineFailuresHaveCategory4AndTheirOwnNameAsText) {
    DeepHeaderException const exception("Adapter", 771);
    EXPECT_EQ(exception.stringParameter(), "DeepHeaderException");
    EXPECT_EQ(exception.intParameter(), 4);
    EXPECT_EQ(exception.fileName(), "Adapter");
    EXPECT_EQ(exception.lineNumber(), 771U);
}

TEST(ExceptionTest, HeaderFailuresHaveCategory1AndTheirOwnNameAsText) {
    HeaderException const exception("Receive", 449);
    EXPECT_EQ(exception.stringParameter(), "HeaderException");
    EXPECT_EQ(exception.intParameter(), 1);
    EXPECT_EQ(exception.fileName(), "Receive");
    EXPECT_EQ(exception.lineNumber(), 449U);
}

TEST(ExceptionTest, IsToldApartFromStandardExceptionsByType) {
    EXPECT_FALSE((std::is_base_of_v<std::exception, Exception>));
    EXPECT_THROW(throw DeepHeaderException("Adapter", 1), Exception);
    EXPECT_THROW(throw HeaderException("Receive", 1), Exception);
}

} // namespace
} // namespace Quorvane::Testing
