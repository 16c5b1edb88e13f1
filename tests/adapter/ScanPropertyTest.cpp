// SPDX-License-Identifier: Apache-2.0
//
// Whatever a message or a rule file holds, a scan ends. It fails only for a value that a host gives
// past the reader of header sections, and then throws nothing but an engine failure.
#include "Engine.h"
#include "include2/DeepHeaderException.h"
#include "rules/format/AttributeTable.h"

#include <rapidcheck/gtest.h>

namespace Quorvane::Testing {
namespace {

using namespace std::string_literals;

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

std::string s_anyText() {
    return s_join(*rc::gen::container<std::vector<std::string>>(s_piece()));
}

// Received headers whose values, before the reader strips them, end near the one text that a scan
// cannot bear.
std::string s_receivedNearTheEdge() {
    auto const start = rc::gen::element<std::string>("", "stand", "from a.example\r\n\t (", "\v",
                                                     "from a.example (b.example [192.0.2.7])\n\t");
    auto const marker = rc::gen::element<std::string>("by ", "BY ", "by", "x by ", "\tby ");
    auto const blank =
        rc::gen::element<std::string>(" ", "\t", "\r", "\r\n ", "\n\t", "\0"s, "\v", "\f");
    auto const lineBreak = rc::gen::element<std::string>("\n", "\r\n", "\r\r\n", "");
    auto const trailing = *rc::gen::arbitrary<bool>() ? *blank + *blank : "";
    return "Received: " + *start + *marker + trailing + *lineBreak;
}

std::string s_anySection() {
    std::string section;
    for (int count = *rc::gen::element(1, 2, 3); count > 0; --count) {
        section += *rc::gen::arbitrary<bool>() ? s_receivedNearTheEdge() : s_anyText();
    }
    return section;
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

void s_useBothThresholds(Message& message) {
    message.m_settings.spamThreshold = 0.9;
    message.m_settings.hamThreshold = 0.9;
}

RC_GTEST_FIXTURE_PROP(EngineTest, NoHeaderSectionThatTheReaderReadsMakesAScanFail, ()) {
    m_rules.writeTree(treeOf(
        {leaf(Attribute::firstHeloDynamic, 0, 0.99), leaf(Attribute::firstHeloDynamic, 1, 0.01)}));
    Message message(s_anySection());
    s_useBothThresholds(message);
    RC_ASSERT(s_scan(engine(), message));
}

RC_GTEST_FIXTURE_PROP(EngineTest, NoValueThatAHostGivesMakesAScanThrowAnythingButAnEngineFailure,
                      ()) {
    m_rules.writeTree(treeOf(
        {leaf(Attribute::firstHeloDynamic, 0, 0.99), leaf(Attribute::firstHeloDynamic, 1, 0.01)}));
    Message message;
    message.m_headers.append(Header("Received", s_anyText()));
    message.m_headers.append(Header("From", s_anyText()));
    message.m_headers.append(Header("Message-ID", s_anyText()));
    message.m_currentReceived = Header("Received", s_anyText());
    s_useBothThresholds(message);
    s_scan(engine(), message);
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
