// SPDX-License-Identifier: Apache-2.0
// The JSON record: its keys, their order and meaning, which other programs rely on.
#include "qvscan/ScanFixture.h"
#include "rules/format/AttributeTable.h"

namespace Quorvane::Testing {

namespace {

Arguments s_keys(Json const& object) {
    Arguments keys;
    for (auto const& item : object.items()) {
        keys.push_back(item.key());
    }
    return keys;
}

using JsonRecord = ScanTest;

TEST_F(JsonRecord, HoldsItsKeysInOrder) {
    auto const found = records(scan({}, spam()));
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(s_keys(found[0]),
              (Arguments{"source", "verdict", "node", "confidence", "support", "adjust",
                         "adjustReason", "spam", "ham", "ips", "reasons", "addresses", "message"}));
}

TEST_F(JsonRecord, TellsWhichMessageItIs) {
    auto const message = "Date: Mon, 1 Jan 2024 10:00:00 +0000\n"
                         "Subject: =?utf-8?q?caf=C3=A9?=\n one\n" +
                         spam();
    auto const found = records(scan({}, message)).at(0)["message"];
    EXPECT_EQ(s_keys(found), (Arguments{"date", "messageId", "from", "subject"}));
    EXPECT_EQ(found["date"], "Mon, 1 Jan 2024 10:00:00 +0000");
    EXPECT_EQ(found["messageId"], "<1@Host.Example.NET>");
    EXPECT_EQ(found["from"], "Ann <ann@example.net>");
    EXPECT_EQ(found["subject"], "caf\xC3\xA9 one");
    EXPECT_EQ(explained({}, message)["message"], found);
    auto const unknown = records(scan({}, "To: x\n\n")).at(0)["message"];
    for (auto const& item : unknown.items()) {
        EXPECT_TRUE(item.value().is_null()) << item.key();
    }
}

TEST_F(JsonRecord, TextOfTheMessageIsAsciiWhateverItHolds) {
    auto const result = scan({}, "Subject: a\x1B[31m\xFF\"\xE2\x80\xAE\nFrom: =?utf-8?q?=00?=\n\n");
    EXPECT_NE(result.m_output.find(R"("subject":"a\u001b[31m\u00ff\"\u202e")"), std::string::npos)
        << result.m_output;
    EXPECT_NE(result.m_output.find(R"("from":"?")"), std::string::npos) << result.m_output;
}

TEST_F(JsonRecord, ListsTheAddressesOneByOne) {
    EXPECT_EQ(records(scan({}, hop("a.example", "b.example", "198.51.100.9") + spam()))
                  .at(0)["addresses"],
              Json::array({"198.51.100.9", "192.0.2.7"}));
    EXPECT_EQ(records(scan({}, spam())).at(0)["addresses"], Json::array({"192.0.2.7"}));
    EXPECT_EQ(records(scan({}, "To: x\n\n")).at(0)["addresses"], Json::array());
}

TEST_F(JsonRecord, WithoutADecisionNothingIsSure) {
    for (auto const& message : {std::string("To: x\n\n"), hop("a", "b", "10.0.0.1") + "\n"}) {
        auto const record = records(scan({}, message)).at(0);
        EXPECT_EQ(record["node"], 0);
        EXPECT_TRUE(record["confidence"].is_null());
    }
    EXPECT_EQ(records(scan({"--min-support", "11"}, spam())).at(0)["confidence"], Json());
    EXPECT_EQ(records(scan({}, none())).at(0)["confidence"], 0.5) << "a node decided";
}

TEST_F(JsonRecord, ExplainHoldsItsKeysInOrder) {
    auto const record = explained({}, spam());
    EXPECT_EQ(s_keys(record).back(), "explain");
    auto const& explain = record["explain"];
    EXPECT_EQ(s_keys(explain), (Arguments{"messageIdDomain",
                                          "headerFrom",
                                          "envelopeFrom",
                                          "recipient",
                                          "hops",
                                          "receivers",
                                          "scoredHopFound",
                                          "scoredHopIP",
                                          "scoredHopScore",
                                          "hopCount",
                                          "maxPrivateRun",
                                          "publicRun",
                                          "noAddressHops",
                                          "attributes",
                                          "elite",
                                          "tree",
                                          "story",
                                          "because",
                                          "needed",
                                          "trail",
                                          "lookups",
                                          "rules",
                                          "values",
                                          "facts",
                                          "singleChanges",
                                          "ownRelay"}));
    EXPECT_EQ(s_keys(explain["hops"][0]),
              (Arguments{"from", "reverseName", "by", "address", "privateIP", "authenticated",
                         "receiveTime", "isForged"}));
    EXPECT_EQ(s_keys(explain["trail"][0]),
              (Arguments{"role", "text", "current", "vouched", "from", "reverseName", "by",
                         "address", "privateIP", "authenticated", "receiveTime", "isForged", "time",
                         "delay", "delayText", "protocol", "tls"}));
    EXPECT_EQ(
        s_keys(explain["receivers"][0]),
        (Arguments{"helo", "ip", "reverseName", "hasIP", "heloIsDomain", "heloIsIP", "heloDynamic",
                   "heloEqualsIP", "reverseDynamic", "reverseIsDomain", "isForged",
                   "heloMatchesReverse", "fromDomainMatchesHelo", "fromDomainMatchesReverse",
                   "envFromDomainMatches", "fromDomainMatchesBoth"}));
    EXPECT_EQ(s_keys(explain["elite"]),
              (Arguments{"adjust", "confidence", "support", "code", "reasons"}));
    EXPECT_EQ(s_keys(explain["tree"]),
              (Arguments{"path", "result", "use", "end", "text", "nodes"}));
    EXPECT_EQ(explain["receivers"].size(), 3U);
    EXPECT_EQ(explain["attributes"].size(), 38U);
}

TEST_F(JsonRecord, NamesFollowTheOtherKeys) {
    auto const bare = records(scan({}, spam())).at(0);
    writeNames({{{Kind::node, 3}, {"A dynamic name", "It \xc3\xbc."}},
                {{Kind::adjust, 'a'}, {"An addend", ""}},
                {{Kind::node, 4}, {"A server", ""}}});
    auto named = records(scan({}, spam())).at(0);
    auto keys = s_keys(bare);
    keys.insert(keys.end(), {"ruleName", "ruleSentence"});
    EXPECT_EQ(s_keys(named), keys);
    EXPECT_EQ(named["ruleName"], "A dynamic name");
    EXPECT_EQ(named["ruleSentence"], "It \xc3\xbc.");
    named.erase("ruleName");
    named.erase("ruleSentence");
    EXPECT_EQ(named, bare);
    auto const other = records(scan({}, ham())).at(0);
    EXPECT_EQ(other["ruleName"], "A server");
    EXPECT_FALSE(other.contains("ruleSentence"));
    EXPECT_FALSE(records(scan({}, none())).at(0).contains("ruleName")) << "node 5 has none";
}

TEST_F(JsonRecord, ExplainNamesRulesAndNodes) {
    writeNames({{{Kind::node, 3}, {"A dynamic name", ""}},
                {{Kind::adjust, 'a'}, {"An addend", "Why."}},
                {{Kind::node, 4}, {"A server", ""}}});
    auto const record = explained({}, spam());
    EXPECT_EQ(s_keys(record).back(), "ruleName");
    auto const& explain = record["explain"];
    EXPECT_EQ(s_keys(explain["rules"][0]).back(), "ruleSentence");
    EXPECT_EQ(explain["rules"][0]["ruleName"], "An addend");
    EXPECT_FALSE(explain["rules"][1].contains("ruleName"));
    EXPECT_EQ(explain["tree"]["nodes"][1]["ruleName"], "A dynamic name");
    EXPECT_EQ(explain["singleChanges"]["list"][0]["ruleName"], "A server");
    EXPECT_EQ(explain["needed"][0]["change"],
              "first_reverse_dynamic is no (it is yes); then node 4 (A server) decides");
}

TEST_F(JsonRecord, TellsATreeVerdict) {
    auto const record = explained({}, spam());
    EXPECT_EQ(record["source"], "-");
    EXPECT_EQ(record["verdict"], "spam");
    EXPECT_EQ(record["node"], 3);
    EXPECT_EQ(record["confidence"], 0.99);
    EXPECT_EQ(record["support"], 10.0);
    EXPECT_EQ(record["spam"], true);
    EXPECT_EQ(record["ham"], false);
    EXPECT_EQ(record["ips"], "192.0.2.7");
    EXPECT_EQ(record["reasons"],
              "Node:{3} Confidence degree{ 0.99 } Support degree{ 10 } IP{ 192.0.2.7 } ");
    auto const& tree = record["explain"]["tree"];
    EXPECT_EQ(tree["path"], Json::array({2, 3}));
    EXPECT_EQ(tree["result"], 3);
    EXPECT_EQ(tree["use"], "walked");
    EXPECT_EQ(tree["end"], "leaf");
    EXPECT_EQ(tree["nodes"][1]["test"], "first_reverse_dynamic is yes");
    EXPECT_EQ(record["explain"]["because"], "0.99 spam reaches the spam threshold 0.95");
    EXPECT_EQ(record["explain"]["attributes"][Attribute::firstReverseDynamic], 1);
    EXPECT_EQ(record["explain"]["story"],
              Json::array({"the reverse name of the first relay, dsl-192-0-2-7.dyn.example.net, "
                           "looks dynamically assigned"}));
}

TEST_F(JsonRecord, ShowsEveryHopWithItsRoleAndOnlyTheJudgedOnesAsHops) {
    auto const explain = explained(
        {"--internal", "10.0.0.1", "--score", "198.51.100.9=7"},
        hop("o.example", "o.example", "10.0.0.1") + hop("f.example", "f.example", "203.0.113.1") +
            hop("s.example", "s.example", "198.51.100.9") +
            hop("z.example", "z.example", "203.0.113.9") + "\n")["explain"];
    std::vector<std::string> roles;
    for (auto const& hop : explain["trail"]) {
        roles.push_back(hop["role"]);
    }
    EXPECT_EQ(roles,
              (std::vector<std::string>{"internal", "firstPublic", "scoredEnd", "notLookedAt"}));
    EXPECT_EQ(explain["hops"].size(), 1U);
    EXPECT_EQ(explain["trail"][1]["vouched"], true);
    EXPECT_EQ(explain["trail"][3]["vouched"], false);
    EXPECT_EQ(explain["trail"][3]["address"], "203.0.113.9");
}

TEST_F(JsonRecord, TellsHamAndNone) {
    EXPECT_EQ(explained({}, ham())["verdict"], "ham");
    auto const record = explained({}, none());
    EXPECT_EQ(record["verdict"], "none");
    EXPECT_EQ(record["node"], 5);
}

TEST_F(JsonRecord, TellsAnEliteVerdictAndLeavesTheTreeOut) {
    auto const record = explained({"--max-elite-level", "2", "--message-status", "3"}, ham());
    EXPECT_EQ(record["verdict"], "spam");
    EXPECT_EQ(record["node"], 901);
    EXPECT_EQ(
        record["explain"]["elite"],
        Json::parse(R"({"adjust":0.0,"confidence":0.96,"support":5.0,"code":901,"reasons":""})"));
    auto const& tree = record["explain"]["tree"];
    EXPECT_EQ(tree["path"], Json::array());
    EXPECT_EQ(tree["result"], -1);
    EXPECT_EQ(tree["use"], "eliteDecided");
}

TEST_F(JsonRecord, TellsAnAdjustment) {
    auto const record =
        explained({}, hop("a.example", "mail.example.com", "198.51.100.9") + spam());
    EXPECT_EQ(record["adjust"], 0.01);
    EXPECT_EQ(record["adjustReason"], "a");
    EXPECT_EQ(record["ips"], "198.51.100.9,192.0.2.7");
}

TEST_F(JsonRecord, ShowsTheRecordOfAScanThatEndedEarly) {
    auto const record =
        explained({}, hop("a.example", "b.example", "10.0.0.1") + "From: a@b.example\n\n");
    EXPECT_EQ(record["verdict"], "none");
    EXPECT_EQ(record["node"], 0);
    EXPECT_EQ(record["confidence"], Json());
    EXPECT_EQ(record["reasons"], " No untrusted public ip! ");
    auto const& explain = record["explain"];
    EXPECT_EQ(explain["hops"].size(), 1U);
    EXPECT_EQ(explain["hopCount"], 1);
    EXPECT_EQ(explain["receivers"][0]["hasIP"], 3);
    EXPECT_EQ(explain["attributes"][Attribute::messageIdMatchesReverse], 2);
    EXPECT_EQ(explain["elite"]["confidence"], 0.0);
    EXPECT_EQ(explain["tree"]["result"], -1);
    EXPECT_EQ(explain["story"], Json::array());
}

TEST_F(JsonRecord, ShowsNullForAddressesThatAreNull) {
    auto const record = explained({}, "Received: by mx.example.org; Mon, 1 Jan 2024\n\n");
    auto const& explain = record["explain"];
    EXPECT_EQ(explain["messageIdDomain"], "");
    EXPECT_TRUE(explain["headerFrom"].is_null());
    EXPECT_TRUE(explain["envelopeFrom"].is_null());
    EXPECT_TRUE(explain["recipient"].is_null());
    EXPECT_TRUE(explain["hops"][0]["address"].is_null());
}

TEST_F(JsonRecord, NeverAskedForgedStateIsMinusOne) {
    auto const record = explained({}, hop("x.example", "y.example", "10.0.0.1") + spam());
    EXPECT_EQ(record["explain"]["hops"][0]["isForged"], -1);
    EXPECT_EQ(record["explain"]["hops"][1]["isForged"], 0);
}

// A name with a blank abandons the parse, and each accessor call parses what the call before left:
// had the display asked, it would have changed what it shows.
TEST_F(JsonRecord, ShowingAHopDoesNotParseIt) {
    auto const record =
        explained({}, "Received: from a b.example (c.example [192.0.2.1]) by d\n\n");
    auto const again = explained({}, "Received: from a b.example (c.example [192.0.2.1]) by d\n\n");
    EXPECT_EQ(record, again);
}

TEST_F(JsonRecord, KeepsUtf8AndShowsOtherBytesAsLatin1) {
    auto const record = explained({}, "Message-ID: <1@b\xC3\xBC"
                                      "cher\xFF\xC3.example>\n" +
                                          spam());
    auto const result = scan({"--explain"}, "Message-ID: <1@b\xC3\xBC"
                                            "cher\xFF\xC3.example>\n\n");
    EXPECT_EQ(records(result)[0]["explain"]["messageIdDomain"], "b\xC3\xBC"
                                                                "cher\xC3\xBF\xC3\x83.example");
    EXPECT_NE(result.m_output.find("b\\u00fccher\\u00ff\\u00c3.example"), std::string::npos);
}

TEST_F(JsonRecord, AScanThatFailedTellsItsError) {
    auto const record = explained({"--current-received", "by "}, spam());
    EXPECT_EQ(record["verdict"], "none");
    EXPECT_EQ(record["node"], 0);
    auto const keys = s_keys(record);
    EXPECT_EQ(keys[keys.size() - 2], "error");
    EXPECT_NE(record["error"].get<std::string>().find("Error deep header scanning "),
              std::string::npos);
}

} // namespace

} // namespace Quorvane::Testing
