// SPDX-License-Identifier: Apache-2.0
// When and how each hop of the trail came, as explanations show it.
#include "qvscan/ScanFixture.h"

#include <gmock/gmock.h>

namespace Quorvane::Testing {

namespace {

using ::testing::HasSubstr;

class TrailTimes : public ScanTest {
  protected:
    // A trail of hops with these ends, after the host's name, newest first.
    static std::string trail(Arguments const& ends) {
        std::string text;
        for (auto const& end : ends) {
            text += "Received: from a.example (a.example [192.0.2.7]) by mx.example" + end + "\n";
        }
        return text + "\n";
    }

    std::string text(std::string const& message) const {
        return scan({"--format", "text", "--explain"}, message).m_output;
    }
};

TEST_F(TrailTimes, GiveTheTimeOfEachHopAndTheDelaySinceTheOneBefore) {
    struct {
        char const* m_newer;
        char const* m_older;
        Json m_delay;
        Json m_text;
    } const cases[] = {
        {"10:00:00 +0000", "10:00:00 +0000", 0, "0 s"},
        {"10:00:07 +0000", "11:00:00 +0100", 7, "7 s"},
        {"10:02:05 +0000", "10:00:00 +0000", 125, "2 min 5 s"},
        {"12:00:30 +0000", "10:00:00 +0000", 7230, "2 h"},
        {"20:00:00 -1200", "10:00:00 +1200", 122400, "1 d 10 h"},
        {"10:00:00 +0000", "10:01:00 +0000", -60, "-1 min, backwards"},
    };
    for (auto const& row : cases) {
        auto const hops = explained({}, trail({std::string("; Mon, 1 Jan 2024 ") + row.m_newer,
                                               std::string("; Mon, 1 Jan 2024 ") + row.m_older}))
                              .at("explain")
                              .at("trail");
        EXPECT_EQ(hops[0]["delay"], row.m_delay) << row.m_newer;
        EXPECT_EQ(hops[0]["delayText"], row.m_text) << row.m_newer;
        EXPECT_EQ(hops[1]["delay"], Json()) << "nothing is older";
    }
}

TEST_F(TrailTimes, AHopWithoutATimeIsPassedOver) {
    auto const hops =
        explained({}, trail({"; Mon, 1 Jan 2024 10:00:09 +0000", "",
                             "; Mon, 1 Jan 2024 10:00:00 +0000"}))["explain"]["trail"];
    EXPECT_EQ(hops[0]["time"], "2024-01-01T10:00:09Z");
    EXPECT_EQ(hops[0]["delay"], 9);
    EXPECT_EQ(hops[1]["time"], Json());
    EXPECT_EQ(hops[1]["delay"], Json());
    EXPECT_EQ(hops[2]["time"], "2024-01-01T10:00:00Z");
}

TEST_F(TrailTimes, ProtocolAndEncryptionComeFromTheHeader) {
    auto const hops =
        explained({}, trail({" with ESMTPS (version=TLS1_3 cipher=X) id 4", " with ESMTPSA id 3",
                             " with SMTP", ""}))["explain"]["trail"];
    auto const how = [](Json const& hop) { return Json::array({hop["protocol"], hop["tls"]}); };
    EXPECT_EQ(how(hops[0]), Json::array({"ESMTPS", "TLS 1.3"}));
    EXPECT_EQ(how(hops[1]), Json::array({"ESMTPSA", "TLS"}));
    EXPECT_EQ(how(hops[2]), Json::array({"SMTP", nullptr}));
    EXPECT_EQ(how(hops[3]), Json::array({nullptr, nullptr}));
}

// The hop that the host is about to add is no header of the message.
TEST_F(TrailTimes, BelongToTheirHopsWhenTheHostAddsOne) {
    auto const message = trail({" with LMTP; Mon, 1 Jan 2024 10:00:09 +0000"});
    auto const hops = explained({"--current-received", "from c (c [203.0.113.5]) by mx"},
                                message)["explain"]["trail"];
    ASSERT_EQ(hops.size(), 2U);
    EXPECT_EQ(hops[0]["current"], true);
    EXPECT_EQ(hops[0]["time"], Json());
    EXPECT_EQ(hops[1]["time"], "2024-01-01T10:00:09Z");
    EXPECT_EQ(hops[1]["protocol"], "LMTP");
}

TEST_F(TrailTimes, StandInTheTableOfTheText) {
    auto const shown = text(trail({" with ESMTPS id 1; Mon, 1 Jan 2024 10:00:00 +0000",
                                   " with ESMTP; Mon, 1 Jan 2024 10:05:00 +0000", ""}));
    EXPECT_THAT(shown, HasSubstr("    #  recorded by  time (UTC)           delay              "
                                 "address    announced  reverse name  receiver    with         "
                                 "taken for\n"
                                 "    1  our side     2024-01-01 10:00:00  -5 min, backwards  "
                                 "192.0.2.7  a.example  a.example     mx.example  ESMTPS, TLS  "
                                 "first public hop, judged\n"
                                 "    2  the sender?  2024-01-01 10:05:00  -                  "));
    EXPECT_THAT(shown, HasSubstr("    3  the sender?  -                    -   "));
}

TEST_F(TrailTimes, HostileTextCannotSteerTheTerminal) {
    auto const shown = text(trail({" with a\x1B[2J\x07"
                                   "b"}));
    EXPECT_EQ(shown.find('\x1B'), std::string::npos);
    EXPECT_THAT(shown, HasSubstr("a\\x1B[2J\\x07"
                                 "b  "));
}

} // namespace

} // namespace Quorvane::Testing
