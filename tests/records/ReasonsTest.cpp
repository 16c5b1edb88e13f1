// SPDX-License-Identifier: Apache-2.0
#include "scanner/records/DeepHeaderAnswerImpl.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace Quorvane {
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

INSTANTIATE_TEST_SUITE_P(Table, ReasonsTest, testing::ValuesIn(reasonsCases),
                         [](auto const& row) { return std::string(row.param.m_name); });

} // namespace
} // namespace Quorvane
