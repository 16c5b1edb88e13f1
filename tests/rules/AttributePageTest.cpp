// SPDX-License-Identifier: Apache-2.0
#include "rules/language/AttributePage.h"
#include "rules/model/Files.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

// After a change of the table: qvrules attributes > docs/attributes.md
TEST(AttributePageTest, ThePageInTheDocumentationIsTheOneMadeFromTheTable) {
    EXPECT_EQ(Rules::readFile(QV_DOCS "/attributes.md"), attributePage());
}

} // namespace
} // namespace Quorvane::Testing
