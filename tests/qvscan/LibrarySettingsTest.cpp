// SPDX-License-Identifier: Apache-2.0
// What the library does with settings that the programs refuse.
#include "qvscan/ScanFixture.h"

namespace Quorvane::Testing {

namespace {

class LibrarySettings : public ScanTest {
  protected:
    LibrarySettings() { m_program = QV_LIBRARY_SETTINGS_PROGRAM; }
};

TEST_F(LibrarySettings, ASpamThresholdOf95KeepsTheTreeOut) {
    EXPECT_EQ(explained({}, spam())["explain"]["tree"]["result"], 3);
    auto const record = explained({"--spam-threshold=95"}, spam());
    EXPECT_EQ(record["explain"]["tree"]["result"], -1);
    EXPECT_EQ(record["verdict"], "none");
    EXPECT_EQ(record["explain"]["because"],
              "thresholds switch the tree off (a spam threshold of 95 or more)");
}

TEST_F(LibrarySettings, AScoreThresholdBelowZeroNeverEndsTheWalk) {
    auto const message = hop("relay.example.org", "relay.example.org", "198.51.100.9") + spam();
    Arguments const score{"--score", "198.51.100.0/24=7"};
    EXPECT_EQ(explained(score, message)["explain"]["scoredHopFound"], 1);
    auto const record = explained({score[0], score[1], "--score-threshold", "-1"}, message);
    EXPECT_EQ(record["explain"]["scoredHopFound"], 0);
}

} // namespace

} // namespace Quorvane::Testing
