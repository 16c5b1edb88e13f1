// SPDX-License-Identifier: Apache-2.0
//
// What the drawings of the figures hold: positions that follow from the figures, and texts.
#include "apps/charts/Charts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Quorvane::Testing {

using namespace Charts;

namespace {

using Rules::LabelCounts;
using ::testing::HasSubstr;
using ::testing::Not;

Caption const caption{"id", "title", "description"};

std::size_t s_count(std::string const& text, std::string const& part) {
    std::size_t count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

// The points of the first line with these classes.
std::string s_points(std::string const& svg, std::string const& classes) {
    auto const head = "class=\"" + classes + "\" points=\"";
    auto const begin = svg.find(head) + head.size();
    return svg.substr(begin, svg.find('"', begin) - begin);
}

// 50 of 100 spam at no ham, 80 at 10 of 1000 ham, 100 at 500 ham.
Rules::RocCurve s_curve() {
    return Rules::RocCurve(
        {{0.9, {50, 0}}, {0.8, {30, 10}}, {0.3, {20, 490}}, {Rules::noScore, {0, 500}}});
}

RocMarks s_marks() {
    return {{0.001, 0.01}, {10, 1000}, {80, 100}, "threshold 0.8"};
}

// The plot of a ROC chart lies from 46 to 378 and from 268 up to 26.
TEST(RocChart, JoinsThresholdsOnLinearAxes) {
    auto const svg = rocChart(caption, s_curve(), s_marks(), Scale::Kind::linear);
    EXPECT_EQ(s_points(svg, "curve"), "46,268 46,147 49.3,74.4 212,26");
    EXPECT_EQ(s_points(svg, "curve undecided"), "212,26 378,26");
    EXPECT_THAT(svg, HasSubstr(">threshold 0.8</text>"));
    EXPECT_THAT(svg, Not(HasSubstr("class=\"unseen\"")));
}

TEST(RocChart, IsAStaircaseOnALogarithmicAxis) {
    auto const svg = rocChart(caption, s_curve(), s_marks(), Scale::Kind::logarithmic);
    // A decade has 83 pixels: 1 % lies at 212, 50 % at 353.
    EXPECT_EQ(s_points(svg, "curve"), "46,147 212,147 212,74.4 353,74.4 353,26 378,26");
    EXPECT_THAT(svg, HasSubstr(">0.1 %: 50.0 %</text>"));
    EXPECT_THAT(svg, HasSubstr(">1 %: 80.0 %</text>"));
}

TEST(RocChart, ShadesWhatIsLessThanOneMessage) {
    auto const svg = rocChart(caption, s_curve(), s_marks(), Scale::Kind::logarithmic);
    EXPECT_THAT(svg, HasSubstr("<rect class=\"unseen\" x=\"46\" y=\"26\" width=\"83\""));
}

TEST(RateChart, ShowsEachRateWithItsInterval) {
    auto const svg =
        rateChart(caption, {{"a<b", {50, 100}}, {"empty", {0, 0}}}, Scale::Kind::linear, "spam");
    EXPECT_THAT(svg, HasSubstr(">a&lt;b</text>"));
    EXPECT_THAT(svg, HasSubstr(">50.00 %</text>"));
    EXPECT_THAT(svg, HasSubstr(">no messages</text>"));
    EXPECT_THAT(svg, HasSubstr("<circle class=\"mark-spam\" cx=\"190\" cy=\"26\""));
    // From 6 to 374: 40.38 and 59.62 %.
    EXPECT_THAT(svg, HasSubstr("<line class=\"whisker\" x1=\"154.6\" y1=\"26\" x2=\"225.4\""));
    EXPECT_EQ(s_count(svg, "<circle"), 1U);
}

TEST(RateChart, LongNamesLeaveRoomForTheRate) {
    auto const svg =
        rateChart(caption, {{std::string(200, 'n'), {1, 100}}}, Scale::Kind::logarithmic, "ham");
    EXPECT_THAT(svg, Not(HasSubstr(std::string(50, 'n'))));
    EXPECT_THAT(svg, HasSubstr("n\xE2\x80\xA6</text>"));
    EXPECT_THAT(svg, Not(HasSubstr("soft-ham"))); // a bar has no beginning on this axis
}

TEST(VerdictChart, DividesSpamAndHam) {
    auto const svg = verdictChart(caption, {{"Spam", {50, 25, 25}}, {"Ham", {}}});
    // From 1 to 379: spam, no verdict, ham.
    EXPECT_THAT(svg, HasSubstr("<rect class=\"fill-spam\" x=\"1\" y=\"44\" width=\"189\""));
    EXPECT_THAT(svg, HasSubstr("<rect class=\"fill-none\" x=\"190\" y=\"44\" width=\"94.5\""));
    EXPECT_THAT(svg, HasSubstr("<rect class=\"fill-ham\" x=\"284.5\" y=\"44\" width=\"94.5\""));
    EXPECT_EQ(s_count(svg, "class=\"missing\""), 1U); // no ham
}

TEST(VerdictChart, AFewAmongThousandsStayVisible) {
    EXPECT_THAT(verdictChart(caption, {{"Ham", {1, 99999, 0}}}),
                HasSubstr("<rect class=\"fill-spam\" x=\"1\" y=\"44\" width=\"1.5\""));
}

TEST(ReliabilityChart, PutsSpamAgainstConfidence) {
    Rules::CorpusFigures figures;
    figures.m_reliability[9] = {95.0 * 0.96, {80, 20}};
    figures.m_reliability[0] = {0.0, {0, 12345}};
    auto const svg = reliabilityChart(caption, figures);
    EXPECT_THAT(svg, HasSubstr("mean confidence 0.912, spam 80 of 100 (80.00 %"));
    EXPECT_EQ(s_count(svg, "class=\"mark-accent\""), 2U);
    EXPECT_THAT(svg, HasSubstr(">12k</text>"));
    EXPECT_THAT(svg, HasSubstr(">100</text>"));
}

TEST(DeciderBar, IsAsLongAsItsMessages) {
    auto const svg = deciderBar({100, 50}, 200);
    EXPECT_THAT(svg, HasSubstr("class=\"fill-spam\" x=\"0\" y=\"0\" width=\"160\""));
    EXPECT_THAT(svg, HasSubstr("class=\"fill-ham\" x=\"160\" y=\"0\" width=\"80\""));
}

} // namespace
} // namespace Quorvane::Testing
