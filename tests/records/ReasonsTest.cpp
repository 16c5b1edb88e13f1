// SPDX-License-Identifier: Apache-2.0
#include "scanner/records/DeepHeaderAnswerImpl.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <locale>

namespace Quorvane::Testing {
namespace {

struct ReasonsCase {
    char const* m_name;
    std::int32_t m_node;
    double m_confidence;
    double m_support;
    char const* m_ips;
    double m_adjust;
    char const* m_adjustReason;
    char const* m_text;
};

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

ReasonsCase const reasonsCases[] = {
    {"DefaultAnswer", 0, -1.0, 0.0, "", 0.0, "", " No untrusted public ip! "},
    {"UndecidedShowsJustTheAddresses", 0, -1.0, 0.0, "192.0.2.1,192.0.2.2", 1.0, "x",
     "192.0.2.1,192.0.2.2"},
    {"Decided", 17, 0.97, 0.4, "192.0.2.7", 0.0, "",
     "Node:{17} Confidence degree{ 0.97 } Support degree{ 0.4 } IP{ 192.0.2.7 } "},
    {"DecidedWithAdjustment", 17, 0.97, 0.4, "192.0.2.7", 0.05, "R",
     "Node:{17} Confidence degree{ 0.97 } Support degree{ 0.4 } IP{ 192.0.2.7 } Adjust{ 0.05, R} "},
    {"DecidedWithNegativeAdjustment", 17, 0.97, 0.4, "192.0.2.7", -0.05, "d",
     "Node:{17} Confidence degree{ 0.97 } Support degree{ 0.4 } IP{ 192.0.2.7 } Adjust{ -0.05, "
     "d} "},
    {"EmptyAddressesLeaveTwoBlanks", 3, 0.5, 95.0, "", 0.0, "",
     "Node:{3} Confidence degree{ 0.5 } Support degree{ 95 } IP{  } "},
    {"NegativeNodeIsDecided", -5, 0.5, 1.0, "", 0.0, "",
     "Node:{-5} Confidence degree{ 0.5 } Support degree{ 1 } IP{  } "},
    {"NegativeZeroAdjustmentIsNone", 3, 0.5, 1.0, "", -0.0, "x",
     "Node:{3} Confidence degree{ 0.5 } Support degree{ 1 } IP{  } "},
    {"NanAdjustmentIsShown", 3, 0.5, 1.0, "", nan, "x",
     "Node:{3} Confidence degree{ 0.5 } Support degree{ 1 } IP{  } Adjust{ nan, x} "},
    {"ConfidenceNeverSet", 3, -1.0, 0.0, "", 0.0, "",
     "Node:{3} Confidence degree{ -1 } Support degree{ 0 } IP{  } "},
    {"SixSignificantDigits", 3, 0.123456789, 1234567.0, "", 0.0, "",
     "Node:{3} Confidence degree{ 0.123457 } Support degree{ 1.23457e+06 } IP{  } "},
};

class ReasonsTest : public testing::TestWithParam<ReasonsCase> {};

TEST_P(ReasonsTest, RendersTheAnswerAsOneLine) {
    auto const& row = GetParam();
    DeepHeaderAnswerImpl record;
    record.m_node = row.m_node;
    record.m_confidenceDegree = row.m_confidence;
    record.m_supportDegree = row.m_support;
    record.m_ips = row.m_ips;
    record.m_adjust = row.m_adjust;
    record.m_adjustReason = row.m_adjustReason;
    EXPECT_EQ(record.getReasons(), row.m_text);
    EXPECT_EQ(record.getReasons(), row.m_text) << "a second rendering differs";
}

// As a host in Central Europe sets it for its whole process.
class GroupedDigits : public std::numpunct<char> {
  protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(ReasonsLocaleTest, TheHostsLocaleChangesNothing) {
    DeepHeaderAnswerImpl record;
    record.m_node = 1234567;
    record.m_confidenceDegree = 0.97;
    record.m_supportDegree = 12345.5;
    record.m_adjust = -0.05;
    record.m_adjustReason = "d";
    auto const before = std::locale::global(std::locale(std::locale(), new GroupedDigits));
    auto const text = record.getReasons();
    std::locale::global(before);
    EXPECT_EQ(text, "Node:{1234567} Confidence degree{ 0.97 } Support degree{ 12345.5 } IP{  } "
                    "Adjust{ -0.05, d} ");
}

INSTANTIATE_TEST_SUITE_P(Table, ReasonsTest, testing::ValuesIn(reasonsCases),
                         [](auto const& row) { return std::string(row.param.m_name); });

} // namespace
} // namespace Quorvane::Testing
