// SPDX-License-Identifier: Apache-2.0
#include "Engine.h"

namespace Quorvane::Testing {
namespace {

void s_expectNeverAnalysed(SingleReceiver const& slot) {
    EXPECT_EQ(slot.helo, "");
    EXPECT_EQ(slot.ip, "");
    EXPECT_EQ(slot.reverseName, "");
    for (auto const code :
         {slot.hasIP, slot.heloIsDomain, slot.heloIsIP, slot.heloDynamic, slot.reverseDynamic,
          slot.reverseIsDomain, slot.isForged, slot.heloMatchesReverse, slot.fromDomainMatchesHelo,
          slot.fromDomainMatchesReverse, slot.envFromDomainMatches, slot.fromDomainMatchesBoth}) {
        EXPECT_EQ(code, 3);
    }
    EXPECT_EQ(slot.heloEqualsIP, 0);
}

TEST(MsgPropertiesTest, StartsEmpty) {
    MsgProperties const props;
    EXPECT_EQ(props.messageIdDomain, "");
    EXPECT_TRUE(props.headerFrom.isNull());
    EXPECT_TRUE(props.envelopeFrom.isNull());
    EXPECT_TRUE(props.recipient.isNull());
    EXPECT_TRUE(props.receivedList.empty());
    EXPECT_EQ(props.scoredHopFound, 0);
    EXPECT_EQ(props.scoredHopIP, "");
    for (auto const& slot : props.receivers) {
        s_expectNeverAnalysed(slot);
    }
}

TEST(MsgPropertiesTest, FiveResultsStartAtCannotBeToldAndTheRestAt0) {
    MsgProperties const props;
    for (std::size_t i = 0; i < props.attributes.size(); ++i) {
        bool const isResult = i == 16 || i == 17 || i == 22 || i == 25 || i == 27;
        EXPECT_EQ(props.attributes[i], isResult ? 2 : 0) << "attribute " << i;
    }
}

using MsgPropertiesScanTest = EngineTest;

TEST_F(MsgPropertiesScanTest, AMessageWithoutPublicHopKeepsItsDefaults) {
    auto const props = chain(Message(received("a.b.example", "a.b.example", "10.0.0.1", "c")));
    for (auto const index : {16U, 17U, 22U, 25U, 27U}) {
        EXPECT_EQ(props.attributes[index], 2);
    }
    for (auto const& slot : props.receivers) {
        s_expectNeverAnalysed(slot);
    }
}

TEST_F(MsgPropertiesScanTest, ASlotFilledFromAHopWithoutAddressKeepsWhatItHeld) {
    MsgProperties props;
    SingleReceiver slot;
    slot.ip = "192.0.2.1";
    slot.heloEqualsIP = 2;
    MsgReceived hop(std::string("from a.example (b.example) by c"));
    EXPECT_EQ(engine().parseSingleReceiver(hop, slot, props), 1);
    EXPECT_EQ(slot.hasIP, 0);
    EXPECT_EQ(slot.ip, "192.0.2.1");
    EXPECT_EQ(slot.heloEqualsIP, 2);
    SingleReceiver fresh;
    engine().parseSingleReceiver(hop, fresh, props);
    EXPECT_EQ(fresh.ip, "");
}

} // namespace
} // namespace Quorvane::Testing
