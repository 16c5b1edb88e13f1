// SPDX-License-Identifier: Apache-2.0
//
// Construction, publication and the order of the stages.
#include "Engine.h"
#include "include2/DeepHeaderException.h"

#include <functional>

namespace Quorvane::Testing {
namespace {

class AdapterTest : public EngineTest {
  protected:
    // Runs `call` and gives back the engine failure that it must end in.
    static void expectFailure(std::function<void()> const& call, unsigned int line,
                              std::string const& text) {
        try {
            call();
            FAIL() << "nothing was thrown";
        } catch (DeepHeaderException const& exception) {
            EXPECT_EQ(exception.stringParameter(), text);
            EXPECT_EQ(exception.intParameter(), 4);
            EXPECT_EQ(exception.fileName(), "Adapter");
            EXPECT_EQ(exception.lineNumber(), line);
        }
    }
};

std::string s_spamTrail() {
    return received("a.example", "b.example", "192.0.2.7", "c.example");
}

TEST_F(AdapterTest, WithoutTreeAnEngineCannotBeBuilt) {
    m_rules.remove(treeFileName);
    expectFailure([] { DeepHeaderAdapter engine; }, 175, "Error loading the deep header rules");
}

TEST_F(AdapterTest, ADamagedEliteFileDoesNotStopTheEngine) {
    m_rules.writeFile(eliteFileName, "short");
    EXPECT_FALSE(engine().hasEliteNodes());
}

TEST_F(AdapterTest, AFreshEngineHoldsItsCreatorsReference) {
    EXPECT_EQ(engine().references(), 1);
}

// --- publication --------------------------------------------------------------------------------

// Publication is for the life of the process, so one test tells the whole story in order.
TEST_F(AdapterTest, PublicationKeepsAnEngineUntilItsLastScanLetsGo) {
    EXPECT_TRUE(RefDeepHeaderAdapter::instance(nullptr).isEmpty());
    EXPECT_TRUE(RefDeepHeaderAdapter::instance(nullptr).isEmpty()) << "asking publishes nothing";

    auto* const first = new DeepHeaderAdapter;
    EXPECT_EQ(RefDeepHeaderAdapter::instance(first).operator->(), first);
    EXPECT_EQ(first->references(), 1) << "the slot's";

    auto scanning = RefDeepHeaderAdapter::instance(nullptr);
    EXPECT_EQ(scanning.operator->(), first);
    EXPECT_EQ(first->references(), 2);

    auto* const second = new DeepHeaderAdapter;
    RefDeepHeaderAdapter::instance(second);
    EXPECT_EQ(first->references(), 1) << "the scan's";
    EXPECT_EQ(RefDeepHeaderAdapter::instance(nullptr).operator->(), second);
}

TEST_F(AdapterTest, AHandleTakesOverTheEnginesInitialReference) {
    RefDeepHeaderAdapter handle(new DeepHeaderAdapter);
    EXPECT_EQ(handle->references(), 1);
    auto const copy = handle;
    EXPECT_EQ(handle->references(), 2);
}

// --- the scan -----------------------------------------------------------------------------------

// A leaf and an elite rule that fire on every vector, so a verdict would come of any stage that
// runs.
TEST_F(AdapterTest, AMessageWithoutPublicHopGetsADefaultAnswerWhateverTheRules) {
    auto const always = static_cast<std::int32_t>(Attribute::reserved4);
    m_rules.writeTree(treeOf({leaf(always, 0, 0.99)}));
    m_rules.writeElite(eliteHeader(2, 1, 1), {adjusting('a', 0.25), deciding(77, 0.25, 50.0)});
    auto const scan = [this](std::string const& trail) {
        Message message(trail);
        message.m_settings.spamThreshold = 0.9;
        auto query = message.query();
        return engine().scanMessage(query);
    };
    EXPECT_EQ(scan(s_spamTrail()).getNode(), 3) << "these rules decide what can be judged";

    for (auto const& trail :
         {std::string(), received("a.example", "b.example", "10.0.0.1", "c.example"),
          std::string("Received: from a.example (b.example) by c.example\n")}) {
        SCOPED_TRACE(trail);
        auto const answer = scan(trail);
        EXPECT_EQ(answer.getNode(), 0);
        EXPECT_EQ(answer.confidenceDegree(), -1.0F);
        EXPECT_FALSE(answer.isSpam());
        EXPECT_FALSE(answer.isHam());
        EXPECT_EQ(answer.getIPs(), "");
        EXPECT_EQ(answer.getReasons(), " No untrusted public ip! ");
        auto const& record = RecordAccess::record(answer);
        EXPECT_EQ(record.m_supportDegree, 0.0);
        EXPECT_EQ(record.m_adjustReason, "");
    }
}

TEST_F(AdapterTest, ASpamTrailGetsItsVerdictThroughAllStages) {
    m_rules.writeTree(treeOf({leaf(Attribute::firstHeloMatchesReverse, 0, 0.5),
                              leaf(Attribute::firstHeloMatchesReverse, 1, 0.97)}));
    Message message(received("mail.b.example", "b.example", "192.0.2.7", "c.example"));
    message.m_settings.spamThreshold = 0.9;
    auto query = message.query();
    auto const answer = engine().scanMessage(query);
    EXPECT_TRUE(answer.isSpam());
    EXPECT_EQ(answer.getNode(), 4);
    EXPECT_EQ(answer.getIPs(), "192.0.2.7");
    EXPECT_EQ(answer.getReasons(),
              "Node:{4} Confidence degree{ 0.97 } Support degree{ 50 } IP{ 192.0.2.7 } ");
}

TEST_F(AdapterTest, AKeptWorkingRecordIsThatOfTheScan) {
    Message const message(s_spamTrail());
    auto query = message.query();
    MsgProperties props;
    engine().scanMessage(query, props);
    EXPECT_EQ(props.hopCount, 1);
    EXPECT_EQ(props.receivers[0].ip, "192.0.2.7");
}

TEST_F(AdapterTest, ScansOfOneQueryGiveTheSameAnswer) {
    m_rules.writeTree(treeOf({leaf(Attribute::firstHeloMatchesReverse, 0, 0.97)}));
    Message message(s_spamTrail());
    message.m_settings.spamThreshold = 0.9;
    auto query = message.query();
    auto const first = engine().scanMessage(query);
    EXPECT_EQ(engine().scanMessage(query).getReasons(), first.getReasons());
    EXPECT_EQ(message.m_headers.headers().front().value(),
              "from a.example (b.example [192.0.2.7]) by c.example")
        << "the host's headers stay as they were";
}

TEST_F(AdapterTest, AHostLibrarysExceptionBecomesAnEngineFailureWithItsText) {
    Message message(s_spamTrail());
    message.m_properties = RefMessageProperties(false);
    auto query = message.query();
    Exception const cause("operator->", 1, "include2/QvaneRefcounted", 359);
    expectFailure([&] { engine().scanMessage(query); }, 771, cause.asString());
}

TEST_F(AdapterTest, AnyOtherExceptionBecomesAnEngineFailureWithAFixedText) {
    Message message;
    message.m_headers.append(Header("Received", "standby "));
    auto query = message.query();
    expectFailure([&] { engine().scanMessage(query); }, 775, "Error deep header scanning ");
}

} // namespace
} // namespace Quorvane::Testing
