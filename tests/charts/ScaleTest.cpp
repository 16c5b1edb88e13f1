// SPDX-License-Identifier: Apache-2.0
#include "apps/charts/Axes.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

using namespace Charts;

namespace {

TEST(Scale, LinearSpreadsSharesEvenly) {
    Scale const scale(Scale::Kind::linear, 100.0, 0.0);
    EXPECT_DOUBLE_EQ(scale.at(0.0), 100.0);
    EXPECT_DOUBLE_EQ(scale.at(0.25), 75.0);
    EXPECT_DOUBLE_EQ(scale.at(1.0), 0.0);
}

TEST(Scale, LogarithmicGivesEachDecadeTheSameRoom) {
    Scale const scale(Scale::Kind::logarithmic, 10.0, 410.0);
    EXPECT_DOUBLE_EQ(scale.at(0.0001), 10.0);
    EXPECT_DOUBLE_EQ(scale.at(0.001), 110.0);
    EXPECT_DOUBLE_EQ(scale.at(0.01), 210.0);
    EXPECT_DOUBLE_EQ(scale.at(1.0), 410.0);
}

TEST(Scale, WhatLiesBeyondTheEndsLiesAtTheEnds) {
    Scale const logarithmic(Scale::Kind::logarithmic, 10.0, 410.0);
    EXPECT_DOUBLE_EQ(logarithmic.at(0.0), 10.0);
    EXPECT_DOUBLE_EQ(logarithmic.at(0.00001), 10.0);
    Scale const linear(Scale::Kind::linear, 0.0, 50.0);
    EXPECT_DOUBLE_EQ(linear.at(-0.5), 0.0);
    EXPECT_DOUBLE_EQ(linear.at(1.5), 50.0);
}

TEST(Scale, LabelsAreRound) {
    Scale const logarithmic(Scale::Kind::logarithmic, 0.0, 1.0);
    std::string labels;
    for (double const tick : logarithmic.ticks()) {
        labels += logarithmic.label(tick) + '|';
    }
    EXPECT_EQ(labels, "\xE2\x89\xA4 0.01 %|0.1 %|1 %|10 %|100 %|");
    EXPECT_EQ(Scale(Scale::Kind::linear, 0.0, 1.0).label(0.6), "60 %");
    EXPECT_EQ(Scale(Scale::Kind::confidence, 0.0, 1.0).label(0.6), "0.6");
}

} // namespace
} // namespace Quorvane::Testing
