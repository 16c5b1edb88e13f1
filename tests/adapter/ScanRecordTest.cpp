// SPDX-License-Identifier: Apache-2.0
//
// What the record of a scan says: the role of each hop, each look-up, what became of each elite
// rule, the path through the tree and why it ended, who decided, and what another verdict needs.
#include "adapter/RecordedScan.h"

#include "Engine.h"
#include "rules/format/RuleTests.h"
#include "support/DnsServer.h"
#include "support/SilentDnsServer.h"

#include <gmock/gmock.h>
#include <limits>
#include <sstream>

namespace Quorvane::Testing {
namespace {

using testing::ElementsAre;

class ScanRecordTest : public EngineTest {
  protected:
    ScanRecord record(Message const& message, RecordDepth depth = RecordDepth::steps) {
        auto query = message.query();
        return recordScan(engine(), query, depth);
    }

    // Of a message with attributes 5 and 10 as given, the others 0.
    ScanRecord judge(DeepHeaderSettings const& settings, std::int32_t five = 0,
                     std::int32_t ten = 0, RecordDepth depth = RecordDepth::steps) {
        AttributeVector vector{};
        vector[Attribute::firstHeloDynamic] = five;
        vector[Attribute::firstReverseDynamic] = ten;
        return recordJudgement(engine(), vector, settings, depth);
    }

    static std::vector<HopRole> roles(ScanRecord const& record) {
        std::vector<HopRole> roles;
        for (auto const& hop : record.trail) {
            roles.push_back(hop.role);
        }
        return roles;
    }

    static std::vector<RuleOutcome> outcomes(ScanRecord const& record) {
        std::vector<RuleOutcome> outcomes;
        for (auto const& rule : record.rules) {
            outcomes.push_back(rule.outcome);
        }
        return outcomes;
    }

    static std::vector<std::int32_t> path(ScanRecord const& record) {
        std::vector<std::int32_t> numbers;
        for (auto const& node : record.tree.path) {
            numbers.push_back(node.number);
        }
        return numbers;
    }
};

DeepHeaderSettings s_settings(double spam = 0.9, double ham = 0.9) {
    DeepHeaderSettings settings;
    settings.spamThreshold = spam;
    settings.hamThreshold = ham;
    return settings;
}

std::string s_hop(std::string const& ip) {
    return received("a.example", "b.example", ip, "c.example");
}

std::vector<IPPrefix> s_prefix(std::string const& text) {
    return {IPPrefix::parse(text)};
}

// --- the trail ----------------------------------------------------------------------------------

struct TrailCase {
    char const* m_why;
    std::string m_headers;
    std::vector<HopRole> m_roles;
};

TEST_F(ScanRecordTest, EveryHopHasTheRoleThatTheScanGaveIt) {
    using Role = HopRole;
    TrailCase const cases[] = {
        {"first and further public hops",
         s_hop("192.0.2.1") + s_hop("192.0.2.2") + s_hop("192.0.2.3"),
         {Role::firstPublic, Role::analysed, Role::analysed}},
        {"private and addressless hops around them",
         s_hop("10.0.0.1") + s_hop("192.0.2.1") + "Received: from a (b) by c\n" +
             s_hop("192.0.2.2") + s_hop("10.0.0.2") + s_hop("192.0.2.3"),
         {Role::privateAddress, Role::firstPublic, Role::noAddress, Role::publicNotJudged,
          Role::privateAddress, Role::publicNotJudged}},
        {"skipped ones",
         s_hop("10.9.0.1") + s_hop("198.51.100.1") +
             "Received: from a (b [192.0.2.1]) (authenticated) by c\n" + s_hop("192.0.2.2"),
         {Role::internal, Role::trusted, Role::authenticated, Role::firstPublic}},
        {"a filtering relay ends the walk",
         s_hop("192.0.2.1") + s_hop("203.0.113.1") + s_hop("192.0.2.2"),
         {Role::firstPublic, Role::trustedPartner, Role::notLookedAt}},
        {"an IPv6 relay ends the walk",
         s_hop("2001:db8::1") + s_hop("192.0.2.2"),
         {Role::ipv6End, Role::notLookedAt}},
        {"no trail", "Subject: x\n", {}},
    };
    TrustedMTASetRef::install(s_prefix("198.51.100.0/24"), s_prefix("203.0.113.0/24"),
                              s_prefix("10.9.0.0/16"));
    for (auto const& row : cases) {
        EXPECT_EQ(roles(record(Message(row.m_headers))), row.m_roles) << row.m_why;
    }
}

TEST_F(ScanRecordTest, AJudgedIPv6RelayIsTakenForWhatAnyOtherWouldBe) {
    TrustedMTASetRef::install(s_prefix("2001:db8:7::/48"), {}, s_prefix("2001:db8:1::/48"),
                              IPv6Relays::judge);
    EXPECT_THAT(
        roles(record(Message(s_hop("2001:db8:1::1") + s_hop("2001:db8:7::1") +
                             s_hop("2001:db8::1") + s_hop("fe80::1") + s_hop("2001:db8::2")))),
        ElementsAre(HopRole::internal, HopRole::trusted, HopRole::firstPublic,
                    HopRole::privateAddress, HopRole::publicNotJudged));
}

TEST_F(ScanRecordTest, AScoredRelayIsRecordedWithItsScore) {
    Message message(s_hop("192.0.2.1") + s_hop("192.0.2.2"));
    message.m_properties->receivedHeaderAnalysis().push_back({Received(IPAddress("192.0.2.2")), 8});
    auto const scanned = record(message);
    EXPECT_THAT(roles(scanned), ElementsAre(HopRole::firstPublic, HopRole::scoredEnd));
    EXPECT_EQ(scanned.trail[1].score, 8U);
    EXPECT_EQ(scanned.scoredHopIP, "192.0.2.2");
}

TEST_F(ScanRecordTest, OnlyWhatOurSideWroteDownIsVouchedFor) {
    TrustedMTASetRef::install(s_prefix("198.51.100.0/24"), {});
    auto const scanned =
        record(Message(s_hop("198.51.100.1") + s_hop("192.0.2.1") + s_hop("198.51.100.2")));
    ASSERT_EQ(scanned.trail.size(), 3U);
    EXPECT_TRUE(scanned.trail[0].isVouched);
    EXPECT_TRUE(scanned.trail[1].isVouched) << "the border wrote down who handed over";
    EXPECT_FALSE(scanned.trail[2].isVouched);
}

TEST_F(ScanRecordTest, TheHopAboutToBeAddedIsMarkedAndComesFirst) {
    Message message(s_hop("192.0.2.2"));
    message.m_currentReceived = Header("Received", "from a (b [192.0.2.1]) by mx");
    message.m_currentIsForged = 5;
    auto const scanned = record(message);
    ASSERT_THAT(roles(scanned), ElementsAre(HopRole::firstPublic, HopRole::analysed));
    EXPECT_TRUE(scanned.trail[0].isCurrent);
    EXPECT_EQ(scanned.trail[0].isForged, 5);
    EXPECT_FALSE(scanned.trail[1].isCurrent);
}

TEST_F(ScanRecordTest, HopsThatNobodyLookedAtShowTheirFields) {
    auto const scanned = record(Message(s_hop("2001:db8::1") + s_hop("192.0.2.2")));
    ASSERT_EQ(scanned.trail.size(), 2U);
    EXPECT_EQ(scanned.trail[1].address.asString(true), "192.0.2.2");
    EXPECT_EQ(scanned.trail[1].from, "a.example");
    EXPECT_EQ(scanned.trail[1].reverseName, "b.example");
    EXPECT_EQ(scanned.trail[1].by, "c.example");
}

TEST_F(ScanRecordTest, FieldsOfTakenHopsAreAsTheScanLeftThem) {
    // The parse is abandoned, and the second look loses the receiving host.
    auto const scanned = record(Message("Received: from a b (c [192.0.2.1]) by d\n"));
    ASSERT_THAT(roles(scanned), ElementsAre(HopRole::noAddress));
    EXPECT_EQ(scanned.trail[0].by, "");
}

TEST_F(ScanRecordTest, AScanThatFailsSaysWhereAndHowFarItCame) {
    Message message(s_hop("192.0.2.1"));
    message.m_headers.append(Header("Received", "by "));
    message.m_headers.append(Header("Received", "from a (b [192.0.2.2]) by c"));
    auto const scanned = record(message);
    ASSERT_TRUE(scanned.failure.has_value());
    EXPECT_NE(scanned.failure->find("Error deep header scanning "), std::string::npos);
    EXPECT_THAT(roles(scanned),
                ElementsAre(HopRole::listed, HopRole::unreadable, HopRole::notLookedAt));
    EXPECT_FALSE(scanned.isJudged());
    EXPECT_EQ(scanned.answer.getNode(), 0);
}

TEST_F(ScanRecordTest, AFailureBeforeTheFirstHopLeavesThemAllNotLookedAt) {
    Message message(s_hop("192.0.2.1"));
    message.m_currentReceived = Header("Received", "from a (b [192.0.2.9]) by mx");
    message.m_properties = RefMessageProperties(false);
    auto const scanned = record(message);
    EXPECT_TRUE(scanned.failure.has_value());
    EXPECT_THAT(roles(scanned), ElementsAre(HopRole::notLookedAt, HopRole::notLookedAt));
}

// --- look-ups -----------------------------------------------------------------------------------

std::vector<LookupResult> s_results(ScanRecord const& record) {
    std::vector<LookupResult> results;
    for (auto const& lookup : record.lookups) {
        results.push_back(lookup.result);
    }
    return results;
}

void s_askServer(std::string const& address, std::chrono::milliseconds deadline) {
    ResolverSettings settings;
    settings.m_mode = ResolverSettings::Mode::servers;
    settings.m_servers = {address};
    settings.m_deadline = deadline;
    Resolver::instance().configure(settings);
}

TEST_F(ScanRecordTest, EveryLookupIsRecordedWithItsNameAndResult) {
    DnsServer const server(std::vector<DnsZone>{{"here.test", "mail A 192.0.2.7\n", false},
                                                {"broken.test", "", true}});
    s_askServer(server.address(), std::chrono::seconds(20));
    Message message(received("name.broken.test", "mail.here.test", "192.0.2.7", "mx.test"));
    message.m_from = address("x@gone.here.test");
    auto const scanned = record(message);
    ASSERT_EQ(scanned.lookups.size(), 3U);
    EXPECT_EQ(scanned.lookups[0].question, RecordedLookup::Question::reverseName);
    EXPECT_EQ(scanned.lookups[0].name, "mail.here.test");
    EXPECT_EQ(scanned.lookups[1].question, RecordedLookup::Question::announcedName);
    EXPECT_EQ(scanned.lookups[1].name, "name.broken.test");
    EXPECT_EQ(scanned.lookups[2].question, RecordedLookup::Question::envelopeDomain);
    EXPECT_EQ(scanned.lookups[2].name, "gone.here.test");
    EXPECT_THAT(s_results(scanned), ElementsAre(LookupResult::answered, LookupResult::failed,
                                                LookupResult::doesNotExist));
}

TEST_F(ScanRecordTest, ALookupWithoutAnswerIsLate) {
    SilentDnsServer const server;
    s_askServer(server.address(), std::chrono::milliseconds(20));
    auto const scanned =
        record(Message(received("helo.test", "reverse.test", "192.0.2.7", "mx.test")));
    EXPECT_THAT(s_results(scanned), ElementsAre(LookupResult::late, LookupResult::late));
}

TEST_F(ScanRecordTest, NothingThatWasNotAskedIsRecorded) {
    EXPECT_TRUE(record(Message(s_hop("192.0.2.1"))).lookups.empty()) << "the resolver is off";
    Message message("Received: from [192.0.2.7] (mail.test [192.0.2.7]) by mx.test\n");
    EXPECT_TRUE(record(message).lookups.empty());
}

// --- elite rules --------------------------------------------------------------------------------

constexpr EliteCondition holds{Attribute::firstHeloDynamic, Comparison::equals, 0};
constexpr EliteCondition fails{Attribute::firstHeloDynamic, Comparison::equals, 1};

EliteNodes s_ofLevel(EliteNodes rule, std::int32_t level) {
    rule.level = level;
    return rule;
}

EliteNodes s_ofType(EliteNodes rule, std::int32_t type) {
    rule.type = type;
    return rule;
}

TEST_F(ScanRecordTest, EveryEliteRuleHasItsOutcomeInOrder) {
    m_rules.writeElite(eliteHeader(8, SelectMode::first),
                       {s_ofLevel(deciding(1, 0.9, 5.0), 2), deciding(2, 0.9, 5.0, {holds, fails}),
                        s_ofType(deciding(3, 0.9, 5.0), 7), deciding(4, 0.9, 0.1),
                        adjusting('a', 0.05, {holds}), deciding(5, 0.95, 5.0, {holds}),
                        deciding(6, 0.99, 5.0), adjusting('b', 0.05)});
    auto const judged = judge(s_settings());
    EXPECT_THAT(outcomes(judged),
                ElementsAre(RuleOutcome::level, RuleOutcome::noMatch, RuleOutcome::unknownType,
                            RuleOutcome::support, RuleOutcome::adjusted, RuleOutcome::chosen,
                            RuleOutcome::notReached, RuleOutcome::notReached));
    EXPECT_EQ(judged.rules[1].failedTest, 1U);
    EXPECT_EQ(judged.rules[4].tests.size(), 1U);
    EXPECT_EQ(judged.elite.reasons, "a");
    EXPECT_EQ(judged.verdict.decision, Decision::elite);
    EXPECT_EQ(judged.verdict.node, 5);
}

TEST_F(ScanRecordTest, OfTwoFiringRulesOfEqualCodeAndWeightOneIsChosen) {
    m_rules.writeElite(eliteHeader(2, SelectMode::last),
                       {deciding(9, 0.95, 5.0), deciding(9, 0.95, 5.0)});
    auto const judged = judge(s_settings());
    EXPECT_THAT(outcomes(judged), ElementsAre(RuleOutcome::replaced, RuleOutcome::chosen));
    EXPECT_EQ(judged.rules[0].replacedBy, 1U);
}

TEST_F(ScanRecordTest, ARuleOfLowerConfidenceIsPassedOver) {
    m_rules.writeElite(eliteHeader(3, SelectMode::highest),
                       {deciding(7, 0.92, 5.0), deciding(8, 0.95, 5.0), deciding(9, 0.95, 5.0)});
    EXPECT_THAT(outcomes(judge(s_settings())),
                ElementsAre(RuleOutcome::replaced, RuleOutcome::chosen, RuleOutcome::passedOver));
}

// --- the tree -----------------------------------------------------------------------------------

struct WalkCase {
    char const* m_why;
    std::vector<DTNode> m_nodes;
    DeepHeaderSettings m_settings;
    WalkEnd m_end;
    std::vector<std::int32_t> m_path;
    std::int32_t m_result;
};

std::vector<DTNode> s_circle() {
    auto nodes = treeOf({node(Attribute::firstHeloDynamic, 0, 0.5)});
    nodes[3].childCount = 1;
    nodes[3].children[0] = 3;
    return nodes;
}

std::vector<DTNode> s_badChild() {
    auto nodes = treeOf({node(Attribute::firstHeloDynamic, 0, 0.5)});
    nodes[3].childCount = 1;
    nodes[3].children[0] = 500;
    return nodes;
}

std::vector<DTNode> s_deep(double support) {
    auto nodes = treeOf({node(Attribute::firstHeloDynamic, 0, 0.97)});
    nodes[3].childCount = 1;
    nodes[3].children[0] = 4;
    nodes.push_back(leaf(Attribute::firstReverseDynamic, 0, 0.99, support));
    return nodes;
}

TEST_F(ScanRecordTest, TheWalkIsRecordedWithWhyItEnded) {
    auto hasty = s_settings();
    hasty.walkToLeaf = 0;
    WalkCase const cases[] = {
        {"a leaf", s_deep(50.0), s_settings(), WalkEnd::leaf, {2, 3, 4}, 4},
        {"a rare branch", s_deep(0.1), s_settings(), WalkEnd::rareChild, {2, 3}, 3},
        {"sure enough", s_deep(50.0), hasty, WalkEnd::sureEnough, {2, 3}, 3},
        {"no branch fits",
         treeOf({leaf(Attribute::firstHeloDynamic, 1, 0.5)}),
         s_settings(),
         WalkEnd::noBranch,
         {2},
         -1},
        {"a child that is not there", s_badChild(), s_settings(), WalkEnd::badNode, {2, 3}, -1},
    };
    for (auto const& row : cases) {
        m_rules.writeTree(row.m_nodes);
        DeepHeaderAdapter fresh;
        AttributeVector const vector{};
        auto const judged = recordJudgement(fresh, vector, row.m_settings, RecordDepth::steps);
        EXPECT_EQ(judged.tree.use, TreeUse::walked) << row.m_why;
        EXPECT_EQ(judged.tree.end, row.m_end) << row.m_why;
        EXPECT_EQ(path(judged), row.m_path) << row.m_why;
        EXPECT_EQ(judged.tree.result, row.m_result) << row.m_why;
    }
}

TEST_F(ScanRecordTest, AWalkInCirclesIsTooLong) {
    m_rules.writeTree(s_circle());
    auto const judged = judge(s_settings());
    EXPECT_EQ(judged.tree.end, WalkEnd::tooLong);
    EXPECT_EQ(judged.tree.path.size(), 500U);
}

TEST_F(ScanRecordTest, NodesCarryTheirTestAndFigures) {
    auto nodes = s_deep(12.5);
    nodes[4].value1 = 70;
    nodes[4].value2 = 60;
    nodes[4].value3 = 10;
    m_rules.writeTree(nodes);
    auto const judged = judge(s_settings());
    ASSERT_EQ(judged.tree.path.size(), 3U);
    auto const& last = judged.tree.path.back();
    EXPECT_EQ(last.test.attribute, std::int32_t{Attribute::firstReverseDynamic});
    EXPECT_TRUE(last.isLeaf);
    EXPECT_EQ(last.confidence, 0.99);
    EXPECT_EQ(last.support, 12.5);
    EXPECT_THAT(last.counts, ElementsAre(70, 60, 10));
}

// --- who decided --------------------------------------------------------------------------------

TEST_F(ScanRecordTest, TheTreeIsNotAskedForAReason) {
    m_rules.writeTree(s_deep(50.0));
    m_rules.writeElite(eliteHeader(1, SelectMode::first), {deciding(9, 0.95, 5.0, {fails})});
    auto const leftOut = judge(s_settings());
    EXPECT_EQ(leftOut.tree.use, TreeUse::leftOut);
    EXPECT_EQ(leftOut.verdict.decision, Decision::none);
    EXPECT_EQ(judge(s_settings(), 1).tree.use, TreeUse::eliteDecided);
    EXPECT_EQ(judge(s_settings(95.0)).tree.use, TreeUse::switchedOff);
    EXPECT_TRUE(leftOut.tree.path.empty());
}

TEST_F(ScanRecordTest, AScanWithoutPublicHopDidNotReachTheRules) {
    auto const scanned = record(Message(s_hop("10.0.0.1")));
    EXPECT_FALSE(scanned.isJudged());
    EXPECT_EQ(scanned.verdict.decision, Decision::notReached);
    EXPECT_EQ(scanned.tree.use, TreeUse::notReached);
    EXPECT_TRUE(scanned.rules.empty());
    EXPECT_FALSE(scanned.failure.has_value());
}

TEST_F(ScanRecordTest, TheScoreIsTheHighestThresholdThatStillSaysSpam) {
    m_rules.writeTree(s_deep(50.0)); // a leaf of 0.99
    m_rules.writeElite(eliteHeader(2, SelectMode::first, 1),
                       {adjusting('a', -0.01), deciding(9, 0.95, 5.0, {holds})});
    EXPECT_DOUBLE_EQ(judge(s_settings(0.5)).verdict.spamScore, 0.98)
        << "the tree says more than the elite rule that decided";
    EXPECT_TRUE(judge(s_settings(0.5)).tree.path.empty()) << "and was not asked for that";
    EXPECT_EQ(judge(s_settings(), 3).verdict.spamScore, -std::numeric_limits<double>::infinity());
}

// --- another verdict ----------------------------------------------------------------------------

TEST_F(ScanRecordTest, AlternativesAreTheFewestChangesThatLeadThere) {
    m_rules.writeTree(treeOf({leaf(Attribute::firstHeloDynamic, 0, 0.5),
                              leaf(Attribute::firstHeloDynamic, 1, 0.99),
                              leaf(Attribute::firstHeloDynamic, 2, 0.01)}));
    auto const judged = judge(s_settings(), 0, 0, RecordDepth::alternatives);
    ASSERT_EQ(judged.alternatives.size(), 2U);
    EXPECT_TRUE(judged.alternatives[0].isSpam);
    EXPECT_EQ(judged.alternatives[0].node, 4);
    ASSERT_EQ(judged.alternatives[0].changes.size(), 1U);
    EXPECT_EQ(judged.alternatives[0].changes[0].attribute,
              std::int32_t{Attribute::firstHeloDynamic});
    EXPECT_EQ(judged.alternatives[0].changes[0].value, 1);
    EXPECT_FALSE(judged.alternatives[1].isSpam);
    EXPECT_EQ(judged.alternatives[1].node, 5);
    EXPECT_TRUE(judge(s_settings()).alternatives.empty()) << "only when asked for";
}

TEST_F(ScanRecordTest, AConditionThatNoMessageMeetsIsNoAlternative) {
    EliteCondition const odd{Attribute::firstHeloDynamic, -1, 0};
    m_rules.writeElite(eliteHeader(1, SelectMode::first), {deciding(9, 0.99, 5.0, {odd})});
    EXPECT_TRUE(judge(s_settings(), 1, 0, RecordDepth::alternatives).alternatives.empty());
}

// --- depth, and engines from memory -------------------------------------------------------------

TEST_F(ScanRecordTest, EveryDepthGivesTheSameVerdict) {
    m_rules.writeTree(s_deep(50.0));
    Message message(s_hop("192.0.2.1") + s_hop("192.0.2.2"));
    message.m_settings = s_settings();
    auto query = message.query();
    auto const plain = engine().scanMessage(query);
    for (auto const depth : {RecordDepth::result, RecordDepth::steps, RecordDepth::alternatives}) {
        auto const scanned = record(message, depth);
        EXPECT_EQ(scanned.verdict.node, plain.getNode());
        EXPECT_EQ(scanned.verdict.isSpam, plain.isSpam());
        EXPECT_EQ(scanned.verdict.ips, plain.getIPs());
        EXPECT_EQ(scanned.answer.getReasons(), plain.getReasons());
        EXPECT_EQ(scanned.trail.empty(), depth == RecordDepth::result);
        EXPECT_EQ(scanned.hopCount, 2);
    }
}

TEST_F(ScanRecordTest, AnEngineFromStreamsIsThatOfTheSameFiles) {
    auto const nodes = s_deep(50.0);
    std::vector<EliteNodes> const rules{deciding(9, 0.5, 5.0, {holds})};
    std::istringstream tree(treeBytes(nodes));
    std::istringstream elite(eliteBytes(eliteHeader(1, SelectMode::first, 1), rules));
    DeepHeaderAdapter fromMemory(tree, &elite);
    EXPECT_EQ(fromMemory.eliteNodes().size(), 1U);
    AttributeVector const vector{};
    EXPECT_EQ(recordJudgement(fromMemory, vector, s_settings(), RecordDepth::result).verdict.node,
              4);
    std::istringstream empty;
    DeepHeaderAdapter const bare(empty, nullptr);
    EXPECT_FALSE(bare.hasEliteNodes());
}

TEST_F(ScanRecordTest, ATreeThatCannotBeLoadedFromAStreamIsRefused) {
    auto nodes = treeOf({leaf(Attribute::firstHeloDynamic, 0, 0.5)});
    nodes[3].attribute = 99;
    std::istringstream tree(treeBytes(nodes));
    EXPECT_THROW(DeepHeaderAdapter(tree, nullptr), Exception);
}

} // namespace
} // namespace Quorvane::Testing
