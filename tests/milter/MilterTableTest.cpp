// SPDX-License-Identifier: Apache-2.0
#include "apps/milter/MilterTable.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {
namespace {

TEST(MilterTable, DefaultsThatAreShownReadBackAsTheyAre) {
    Milter::MilterStore store;
    for (auto const& facts : store.facts()) {
        auto const shown = store.texts(facts.m_name);
        store.set(facts.m_name, shown, "again");
        EXPECT_EQ(store.texts(facts.m_name), shown) << facts.m_name;
    }
}

} // namespace
} // namespace Quorvane::Testing
