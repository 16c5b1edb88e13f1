// SPDX-License-Identifier: Apache-2.0
//
// Whatever a message or a rule file holds, a scan ends, and throws nothing but an engine failure.
#include "Engine.h"
#include "include2/DeepHeaderException.h"

#include <rapidcheck/gtest.h>

namespace Quorvane::Testing {
namespace {

rc::Gen<std::string> s_piece() {
    return rc::gen::oneOf(
        rc::gen::element<std::string>("Received:", "From:", "To:", "Return-Path:", "Message-ID:",
                                      "X-QV-ORIG-ENV-FROM:", "from ", " by ", "\tby ", "by ", "(",
                                      ")", "[", "]", "helo=", "helo ", " ", "\n", "\n\t", "\r\n",
                                      "192.0.2.1", "10.0.0.1", "IPv6:2001:db8::1", "a.example", "@",
                                      "<", ">", "authenticated user", ";"),
        rc::gen::string<std::string>());
}

std::string s_join(std::vector<std::string> const& pieces) {
    std::string text;
    for (auto const& piece : pieces) {
        text += piece;
    }
    return text;
}

// True when the scan gave an answer; an engine failure is the only other way out.
bool s_scan(DeepHeaderAdapter& engine, Message const& message) {
    auto query = message.query();
    try {
        auto const answer = engine.scanMessage(query);
        RC_ASSERT(!(answer.isSpam() && answer.isHam()));
        return true;
    } catch (DeepHeaderException const& exception) {
        RC_ASSERT(exception.lineNumber() == 775U);
        return false;
    }
}

RC_GTEST_FIXTURE_PROP(EngineTest, NoMessageMakesAScanThrowAnythingButAnEngineFailure, ()) {
    m_rules.writeTree(treeOf({leaf(5, 0, 0.99), leaf(5, 1, 0.01)}));
    DeepHeaderAdapter engine;
    Message message(s_join(*rc::gen::container<std::vector<std::string>>(s_piece())));
    message.m_currentReceived =
        Header("Received", s_join(*rc::gen::container<std::vector<std::string>>(s_piece())));
    message.m_settings.spamThreshold = 0.9;
    message.m_settings.hamThreshold = 0.9;
    s_scan(engine, message);
}

RC_GTEST_FIXTURE_PROP(EngineTest, NoRuleFileMakesAScanFail, ()) {
    auto const numbers =
        rc::gen::oneOf(rc::gen::inRange<std::int32_t>(-2, 12), rc::gen::inRange<std::int32_t>(0, 8),
                       rc::gen::arbitrary<std::int32_t>());
    std::vector<DTNode> nodes(*rc::gen::inRange<std::size_t>(0, 12));
    for (auto& record : nodes) {
        record = node(*numbers, *numbers, 0.5, 50.0);
        record.test = *rc::gen::inRange(-1, 2);
        record.childCount = *numbers;
        for (std::size_t slot = 0; slot < maxChildren; ++slot) {
            record.children[slot] = *numbers;
        }
    }
    m_rules.writeTree(nodes);
    EliteNodes elite = deciding(*numbers, 0.5, 1.0, {{*numbers, *numbers, *numbers}});
    m_rules.writeElite(eliteHeader(*numbers, *numbers, 1), {elite, elite});
    std::unique_ptr<DeepHeaderAdapter> engine;
    try {
        engine = std::make_unique<DeepHeaderAdapter>();
    } catch (DeepHeaderException const&) {
        RC_DISCARD("the loader refused the tree");
    }
    Message message(received("a.example", "b.example", "192.0.2.7", "c.example"));
    message.m_settings.spamThreshold = 0.9;
    RC_ASSERT(s_scan(*engine, message));
}

} // namespace
} // namespace Quorvane::Testing
