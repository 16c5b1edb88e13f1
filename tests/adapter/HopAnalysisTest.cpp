// SPDX-License-Identifier: Apache-2.0
#include "Engine.h"
#include "platform/DynamicIdentifier.h"
#include "rules/format/AttributeTable.h"

namespace Quorvane::Testing {
namespace {

class HopAnalysisTest : public EngineTest {
  protected:
    HopAnalysisTest() {
        Telvanis::DynamicIdentifierSingleton::install(
            Telvanis::DynamicIdentifier::compile("dyn", "test patterns"));
    }
    ~HopAnalysisTest() override {
        Telvanis::DynamicIdentifierSingleton::install(Telvanis::DynamicIdentifier::builtIn());
    }

    SingleReceiver analyse(std::string const& value) {
        MsgProperties props;
        return analyse(value, props);
    }

    SingleReceiver analyse(std::string const& value, MsgProperties& props) {
        SingleReceiver slot;
        MsgReceived hop(value);
        engine().parseSingleReceiver(hop, slot, props);
        return slot;
    }
};

// --- the names of one hop -----------------------------------------------------------------------

struct HeloCase {
    char const* m_helo;
    char const* m_normalised;
    int m_isDomain;
    int m_isIP;
    int m_dynamic;
    int m_equalsIP;
};

HeloCase const heloCases[] = {
    {"mail.example.com", "mail.example.com", 1, 0, 0, 0},
    {"a.dyn.example", "a.dyn.example", 1, 0, 1, 0},
    {"dyn.example", "dyn.example", 1, 0, 0, 0}, // a single dot: never asked
    {"friend", "friend", 0, 8, 8, 0},
    {"localhost.localdomain", "localhost.localdomain", 0, 8, 8, 0},
    {"localhost", "localhost", 0, 8, 8, 0},
    {"x.localhost.example", "x.localhost.example", 0, 8, 8, 0},
    {"[192.0.2.1]", "192.0.2.1", 1, 2, 2, 2},
    {"192.0.2.1", "192.0.2.1", 1, 2, 2, 2},
    {"[192.0.2.5]", "192.0.2.5", 1, 2, 2, 0},
    {"[[192.0.2.1]]", "[192.0.2.1]", 1, 0, 0, 0}, // one bracket of each kind is removed
    {"[2001:db8::1]", "2001:db8::1", 0, 8, 8, 0}, // a literal without dot is no domain
    {"[ipv6:::ffff:192.0.2.1]", "ipv6:::ffff:192.0.2.1", 1, 2, 2, 0},
};

TEST_F(HopAnalysisTest, TheAnnouncedNameIsClassified) {
    for (auto const& row : heloCases) {
        auto const slot =
            analyse("from " + std::string(row.m_helo) + " (b.example [192.0.2.1]) by c");
        SCOPED_TRACE(row.m_helo);
        EXPECT_EQ(slot.helo, row.m_normalised);
        EXPECT_EQ(slot.heloIsDomain, row.m_isDomain);
        EXPECT_EQ(slot.heloIsIP, row.m_isIP);
        EXPECT_EQ(slot.heloDynamic, row.m_dynamic);
        EXPECT_EQ(slot.heloEqualsIP, row.m_equalsIP);
        EXPECT_EQ(slot.hasIP, 1);
        EXPECT_EQ(slot.ip, "192.0.2.1");
    }
}

TEST_F(HopAnalysisTest, AnEmptyAnnouncedNameCannotBeTold) {
    auto const slot = analyse("from (b.example [192.0.2.1]) by c");
    EXPECT_EQ(slot.heloIsDomain, 2);
    EXPECT_EQ(slot.heloIsIP, 8);
    EXPECT_EQ(slot.heloDynamic, 8);
    EXPECT_EQ(slot.heloMatchesReverse, 2);
}

struct ReverseCase {
    char const* m_reverse;
    int m_dynamic;
    int m_isDomain;
    int m_matches;
};

ReverseCase const reverseCases[] = {
    {"mail.example.com", 0, 1, 1}, {"x.dyn.example", 1, 1, 0}, {"host", 0, 0, 0},
    {"unknown", 2, 2, 2},          {"UNKNOWN", 2, 2, 2},       {"", 2, 2, 2},
};

TEST_F(HopAnalysisTest, TheReverseNameIsClassified) {
    for (auto const& row : reverseCases) {
        auto const name = std::string(row.m_reverse);
        auto const slot = analyse("from mail.example.com (" + name + (name.empty() ? "" : " ") +
                                  "[192.0.2.1]) by c");
        SCOPED_TRACE(row.m_reverse);
        EXPECT_EQ(slot.reverseDynamic, row.m_dynamic);
        EXPECT_EQ(slot.reverseIsDomain, row.m_isDomain);
        EXPECT_EQ(slot.heloMatchesReverse, row.m_matches);
    }
}

// Names of one length, so that only their bytes tell them apart.
TEST_F(HopAnalysisTest, EachNameIsDynamicByItself) {
    struct {
        char const* m_helo;
        char const* m_reverse;
        int m_heloDynamic;
        int m_reverseDynamic;
    } const cases[] = {
        {"a.dyn.example", "a.dyn.example", 1, 1},
        {"a.dyn.example", "a.fix.example", 1, 0},
        {"a.fix.example", "a.dyn.example", 0, 1},
        {"a.fix.example", "a.fix.example", 0, 0},
    };
    for (auto const& row : cases) {
        SCOPED_TRACE(std::string(row.m_helo) + ' ' + row.m_reverse);
        auto const slot = analyse("from " + std::string(row.m_helo) + " (" + row.m_reverse +
                                  " [192.0.2.1]) by c");
        EXPECT_EQ(slot.heloDynamic, row.m_heloDynamic);
        EXPECT_EQ(slot.reverseDynamic, row.m_reverseDynamic);
    }
}

// --- the addresses ------------------------------------------------------------------------------

constexpr char plainHop[] = "from mail.example.com (mail.example.com [192.0.2.1]) by c";
constexpr char foreignHop[] = "from mail.other.example (mail.other.example [192.0.2.1]) by c";
constexpr char heloOnlyHop[] = "from mail.example.com (mail.other.example [192.0.2.1]) by c";
constexpr char noReverseHop[] = "from mail.example.com ([192.0.2.1]) by c";

TEST_F(HopAnalysisTest, WithoutAuthorNothingIsToldOfTheAuthor) {
    MsgProperties props;
    auto const slot = analyse(plainHop, props);
    EXPECT_EQ(slot.fromDomainMatchesHelo, 2);
    EXPECT_EQ(slot.fromDomainMatchesReverse, 2);
    EXPECT_EQ(slot.fromDomainMatchesBoth, 8);
    EXPECT_EQ(props.attributes[Attribute::fromMatchesHelo], 2);
    EXPECT_EQ(props.attributes[Attribute::fromMatchesReverse], 2);
    EXPECT_EQ(props.attributes[Attribute::fromMatchesBoth], 2);
}

struct AuthorCase {
    char const* m_hop;
    int m_helo;
    int m_reverse;
    int m_both;
};

AuthorCase const authorCases[] = {
    {plainHop, 1, 1, 1}, {foreignHop, 0, 0, 0}, {heloOnlyHop, 1, 0, 0}, {noReverseHop, 1, 2, 8}};

TEST_F(HopAnalysisTest, TheAuthorsDomainIsRelatedToBothNames) {
    for (auto const& row : authorCases) {
        MsgProperties props;
        props.headerFrom = address("a@example.com");
        auto const slot = analyse(row.m_hop, props);
        SCOPED_TRACE(row.m_hop);
        EXPECT_EQ(slot.fromDomainMatchesHelo, row.m_helo);
        EXPECT_EQ(slot.fromDomainMatchesReverse, row.m_reverse);
        EXPECT_EQ(slot.fromDomainMatchesBoth, row.m_both);
        EXPECT_EQ(props.attributes[Attribute::fromMatchesHelo], row.m_helo);
        EXPECT_EQ(props.attributes[Attribute::fromMatchesReverse], row.m_reverse);
        EXPECT_EQ(props.attributes[Attribute::fromMatchesBoth], row.m_both == 8 ? 2 : row.m_both);
    }
}

TEST_F(HopAnalysisTest, ResultsOverTheHopsStayAtYes) {
    MsgProperties props;
    props.headerFrom = address("a@example.com");
    analyse(foreignHop, props);
    EXPECT_EQ(props.attributes[Attribute::fromMatchesHelo], 0);
    EXPECT_EQ(props.attributes[Attribute::fromMatchesBoth], 0);
    analyse(plainHop, props);
    EXPECT_EQ(props.attributes[Attribute::fromMatchesHelo], 1);
    EXPECT_EQ(props.attributes[Attribute::fromMatchesReverse], 1);
    EXPECT_EQ(props.attributes[Attribute::fromMatchesBoth], 1);
    analyse(foreignHop, props);
    EXPECT_EQ(props.attributes[Attribute::fromMatchesHelo], 1);
    EXPECT_EQ(props.attributes[Attribute::fromMatchesReverse], 1);
    EXPECT_EQ(props.attributes[Attribute::fromMatchesBoth], 1);
}

TEST_F(HopAnalysisTest, TheEnvelopeSenderMustBeRelatedToBothNames) {
    struct {
        char const* m_hop;
        char const* m_sender;
        int m_matches;
    } const rows[] = {
        {plainHop, "a@example.com", 1},
        {heloOnlyHop, "a@example.com", 0},
        {foreignHop, "a@example.com", 0},
        {noReverseHop, "a@example.com", 8},
        {plainHop, "", 8},
        {"from friend (mail.example.com [192.0.2.1]) by c", "a@example.com", 8},
        {"from (mail.example.com [192.0.2.1]) by c", "a@example.com", 0},
    };
    for (auto const& row : rows) {
        MsgProperties props;
        props.envelopeFrom = address(row.m_sender);
        EXPECT_EQ(analyse(row.m_hop, props).envFromDomainMatches, row.m_matches)
            << row.m_hop << " / " << row.m_sender;
    }
}

TEST_F(HopAnalysisTest, TheMessageIdIsRelatedToTheAnnouncedAndThenTheReverseName) {
    struct {
        char const* m_hop;
        char const* m_domain;
        int m_reverse; // attribute 16
        int m_helo;    // attribute 17
    } const rows[] = {
        {plainHop, "example.com", 1, 1},
        {heloOnlyHop, "example.com", 0, 1},
        {foreignHop, "example.com", 0, 0},
        {noReverseHop, "example.com", 2, 1},
        {plainHop, "", 2, 2},
        {"from (x.y [192.0.2.1]) by c", "example.com", 2, 2},
        // The reverse name would match, but the announced one does not.
        {"from mail.other.example (mail.example.com [192.0.2.1]) by c", "example.com", 0, 0},
    };
    for (auto const& row : rows) {
        MsgProperties props;
        props.messageIdDomain = row.m_domain;
        analyse(row.m_hop, props);
        EXPECT_EQ(props.attributes[Attribute::messageIdMatchesReverse], row.m_reverse)
            << row.m_hop << " / " << row.m_domain;
        EXPECT_EQ(props.attributes[Attribute::messageIdMatchesHelo], row.m_helo)
            << row.m_hop << " / " << row.m_domain;
    }
}

TEST_F(HopAnalysisTest, AMessageIdOnceMatchedStaysMatched) {
    MsgProperties props;
    props.messageIdDomain = "example.com";
    analyse(plainHop, props);
    analyse(foreignHop, props);
    EXPECT_EQ(props.attributes[Attribute::messageIdMatchesReverse], 1);
    EXPECT_EQ(props.attributes[Attribute::messageIdMatchesHelo], 1);
}

TEST_F(HopAnalysisTest, ALaterHopsReverseNameCountsOnceAnEarlierAnnouncedNameMatched) {
    MsgProperties props;
    props.messageIdDomain = "example.com";
    analyse(noReverseHop, props);
    analyse("from mail.other.example (mail.example.com [192.0.2.1]) by c", props);
    EXPECT_EQ(props.attributes[Attribute::messageIdMatchesReverse], 1);
}

TEST_F(HopAnalysisTest, CountersCountTheAnalysedHops) {
    MsgProperties props;
    analyse(plainHop, props);
    EXPECT_EQ(props.attributes[Attribute::hopsHeloMismatchesReverse], 0);
    EXPECT_EQ(props.attributes[Attribute::hopsReverseDynamic], 0);
    EXPECT_EQ(props.attributes[Attribute::hopsReverseNoDomain], 0);
    EXPECT_EQ(props.attributes[Attribute::hopsHeloNoDomain], 0);
    analyse("from friend (x.dyn.example [192.0.2.1]) by c", props);
    analyse("from friend (unknown [192.0.2.1]) by c", props);
    EXPECT_EQ(props.attributes[Attribute::hopsHeloMismatchesReverse], 2);
    EXPECT_EQ(props.attributes[Attribute::hopsReverseDynamic], 1);
    EXPECT_EQ(props.attributes[Attribute::hopsReverseNoDomain], 1);
    EXPECT_EQ(props.attributes[Attribute::hopsHeloNoDomain], 2);
}

} // namespace
} // namespace Quorvane::Testing
