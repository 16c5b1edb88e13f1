// SPDX-License-Identifier: Apache-2.0
#include "apps/story/JsonRecord.h"

#include "apps/headers/MessageIdentity.h"
#include "apps/headers/ReceivedDate.h"
#include "apps/story/NamedJson.h"
#include "apps/story/OwnRelay.h"
#include "apps/story/ResultText.h"
#include "apps/story/RuleNaming.h"
#include "apps/story/RuleStory.h"
#include "apps/story/StepText.h"
#include "apps/story/TrailTimes.h"
#include "apps/story/VerdictStory.h"
#include "apps/text/Utf8.h"
#include "rules/format/RuleTests.h"
#include "rules/format/ValueWords.h"

#include <nlohmann/json.hpp>
#include <utility>

namespace Quorvane {

namespace {

using Json = nlohmann::ordered_json;

struct Field {
    char const* m_key;
    Json m_value;
};

// An object of these fields, in this order. The library's own way, from nested braces, copies each
// value twice, which took longer than to judge the message.
template<std::size_t count>
Json s_object(Field (&&fields)[count]) {
    Json::object_t object;
    object.reserve(count);
    for (auto& field : fields) {
        // By its base: its own function would first look for the key.
        static_cast<Json::object_t::Container&>(object).emplace_back(field.m_key,
                                                                     std::move(field.m_value));
    }
    return object;
}

Json s_domain(EmailAddress const& address) {
    return address.isNull() ? Json() : Json(toUtf8(address.domain()));
}

Json s_address(IPAddress const& address) {
    return address.isNull() ? Json() : Json(address.asString(true));
}

Json s_fields(RecordedHop const& hop) {
    return s_object({{"from", toUtf8(hop.from)},
                     {"reverseName", toUtf8(hop.reverseName)},
                     {"by", toUtf8(hop.by)},
                     {"address", s_address(hop.address)},
                     {"privateIP", hop.privateIP},
                     {"authenticated", hop.authenticated},
                     {"receiveTime", toUtf8(hop.receiveTime)},
                     {"isForged", hop.isForged}});
}

// The hops that were judged as a chain.
Json s_hops(ScanRecord const& record) {
    auto hops = Json::array();
    for (auto const& hop : record.trail) {
        if (hop.isTaken()) {
            hops.push_back(s_fields(hop));
        }
    }
    return hops;
}

Json s_textOrNull(std::string const& text) {
    return text.empty() ? Json() : Json(toUtf8(text));
}

Json s_orNull(auto const& value) {
    return value ? Json(*value) : Json();
}

Json s_time(HopTime const& time) {
    return s_object({{"time", time.m_time ? s_textOrNull(timestamp(*time.m_time)) : Json()},
                     {"delay", s_orNull(time.m_delay)},
                     {"delayText", time.m_delay ? Json(delayText(*time.m_delay)) : Json()},
                     {"protocol", s_textOrNull(time.m_with.m_protocol)},
                     {"tls", s_textOrNull(time.m_with.m_tls)}});
}

// All hops and their roles.
Json s_trail(ScanRecord const& record, HeaderContainer const& headers) {
    auto trail = Json::array();
    auto const times = trailTimes(record.trail, headers);
    for (std::size_t i = 0; i < times.size(); ++i) {
        auto const& hop = record.trail[i];
        Json entry = s_object({{"role", roleName(hop.role)},
                               {"text", roleText(hop)},
                               {"current", hop.isCurrent},
                               {"vouched", hop.isVouched}});
        entry.update(s_fields(hop));
        entry.update(s_time(times[i]));
        trail.push_back(std::move(entry));
    }
    return trail;
}

Json s_lookups(ScanRecord const& record) {
    auto lookups = Json::array();
    for (auto const& lookup : record.lookups) {
        lookups.push_back(s_object({{"question", questionName(lookup.question)},
                                    {"name", toUtf8(lookup.name)},
                                    {"result", lookupName(lookup.result)},
                                    {"text", lookupText(lookup.result)}}));
    }
    return lookups;
}

Json s_receiver(HopAnalysis const& slot) {
    return s_object({{"helo", toUtf8(slot.helo)},
                     {"ip", toUtf8(slot.ip)},
                     {"reverseName", toUtf8(slot.reverseName)},
                     {"hasIP", slot.hasIP},
                     {"heloIsDomain", slot.heloIsDomain},
                     {"heloIsIP", slot.heloIsIP},
                     {"heloDynamic", slot.heloDynamic},
                     {"heloEqualsIP", slot.heloEqualsIP},
                     {"reverseDynamic", slot.reverseDynamic},
                     {"reverseIsDomain", slot.reverseIsDomain},
                     {"isForged", slot.isForged},
                     {"heloMatchesReverse", slot.heloMatchesReverse},
                     {"fromDomainMatchesHelo", slot.fromDomainMatchesHelo},
                     {"fromDomainMatchesReverse", slot.fromDomainMatchesReverse},
                     {"envFromDomainMatches", slot.envFromDomainMatches},
                     {"fromDomainMatchesBoth", slot.fromDomainMatchesBoth}});
}

Json s_receivers(ScanRecord const& record) {
    auto receivers = Json::array();
    for (auto const& slot : record.receivers) {
        receivers.push_back(s_receiver(slot));
    }
    return receivers;
}

Json s_elite(EliteResult const& hits) {
    return s_object({{"adjust", hits.adjust},
                     {"confidence", hits.confidence},
                     {"support", hits.support},
                     {"code", hits.code},
                     {"reasons", toUtf8(hits.reasons)}});
}

Json s_test(DescribedTest const& test) {
    return s_object({{"test", test.m_text}, {"words", toUtf8(test.m_words)}});
}

Json s_node(DescribedNode const& described) {
    auto const& node = *described.m_node;
    auto const& test = described.m_test;
    auto const& [all, spam, ham] = node.counts;
    return s_object({{"node", node.number},
                     {"test", test ? Json(test->m_text) : Json()},
                     {"words", test ? Json(toUtf8(test->m_words)) : Json()},
                     {"confidence", node.confidence},
                     {"support", node.support},
                     {"counts", s_object({{"all", all}, {"spam", spam}, {"ham", ham}})}});
}

Json s_nodes(RuleStory const& story) {
    auto nodes = Json::array();
    for (auto const& node : story.m_path) {
        nodes.push_back(named(s_node(node), node.m_name));
    }
    return nodes;
}

Json s_tree(ScanRecord const& record, RuleStory const& story) {
    auto path = Json::array();
    for (auto const& node : record.tree.path) {
        path.push_back(node.number);
    }
    return s_object({{"path", path},
                     {"result", record.tree.result},
                     {"use", treeUseName(record.tree.use)},
                     {"end", walkEndName(record.tree.end)},
                     {"text", walkEndText(record.tree.end)},
                     {"nodes", s_nodes(story)}});
}

Json s_rule(DescribedRule const& described, ScanRecord const& record) {
    auto const& rule = *described.m_rule;
    bool const adjusts = rule.type == EliteType::adjusting;
    auto const letter = static_cast<char>(reasonByte(rule.code));
    auto tests = Json::array();
    for (auto const& test : described.m_tests) {
        tests.push_back(s_test(test));
    }
    return s_object(
        {{"code", adjusts ? Json(toUtf8(std::string(1, letter))) : Json(rule.code)},
         {"type", adjusts ? "adjust" : "decide"},
         {"outcome", outcomeName(rule.outcome)},
         {"text", outcomeText(rule, record)},
         {"failedTest", rule.outcome == RuleOutcome::noMatch ? Json(rule.failedTest) : Json()},
         {"replacedBy", rule.outcome == RuleOutcome::replaced ? Json(rule.replacedBy) : Json()},
         {"weight", rule.weight},
         {"support", rule.support},
         {"level", rule.level},
         {"tests", tests},
         {"fired", rule.hasFired()}});
}

Json s_rules(ScanRecord const& record, RuleStory const& story) {
    auto rules = Json::array();
    for (auto const& rule : story.m_elite) {
        rules.push_back(named(s_rule(rule, record), rule.m_name));
    }
    return rules;
}

Json s_needed(std::vector<Requirement> const& list) {
    auto needed = Json::array();
    for (auto const& requirement : list) {
        needed.push_back(s_object({{"verdict", requirement.m_verdict},
                                   {"change", requirement.m_text},
                                   {"words", toUtf8(requirement.m_words)}}));
    }
    return needed;
}

// As a word if there is one, otherwise as a number.
Json s_value(std::size_t attribute, std::int32_t value) {
    auto const word = valueWord(attribute, value);
    return word.empty() ? Json(value) : Json(word);
}

// Null for other verdicts than spam.
Json s_ownRelay(ScanRecord const& record) {
    auto const* const hop = possibleOwnRelay(record);
    if (hop == nullptr) {
        return {};
    }
    return s_object(
        {{"address", hop->address.asString(true)}, {"text", toUtf8(ownRelayNote(record))}});
}

Json s_singleChanges(ScanRecord const& record, Rules::RuleNames const& names) {
    if (!record.singleChanges) {
        return {};
    }
    auto list = Json::array();
    for (auto const& change : record.singleChanges->list) {
        auto const [attribute, value] = change.changes.front();
        auto const index = static_cast<std::size_t>(attribute);
        list.push_back(named(s_object({{"attribute", attributeTable.at(index).m_name},
                                       {"value", s_value(index, value)},
                                       {"verdict", verdictName(change)},
                                       {"node", change.node}}),
                             deciderName(names, change.decision, change.node)));
    }
    return s_object({{"allTried", record.singleChanges->areAllTried},
                     {"list", list},
                     {"text", singleChangeNote(record)}});
}

// Null when the scan did not reach the rules.
Json s_values(ScanRecord const& record) {
    if (!record.isJudged()) {
        return {};
    }
    auto values = Json::object();
    for (auto const& facts : attributeTable) {
        values[std::string(facts.m_name)] =
            s_value(facts.m_index, record.attributes[facts.m_index]);
    }
    return values;
}

Json s_facts(ScanRecord const& record) {
    auto facts = Json::array();
    if (record.isJudged()) {
        for (auto const& line : attributeLines(record)) {
            facts.push_back(s_object({{"attribute", line.m_name},
                                      {"value", line.m_value},
                                      {"words", toUtf8(line.m_words)}}));
        }
    }
    return facts;
}

Json s_explain(ScanRecord const& record, HeaderContainer const& headers,
               DeepHeaderSettings const& settings, Rules::RuleNames const& names) {
    auto const story = describeRules(record, names);
    return s_object({{"messageIdDomain", toUtf8(record.messageIdDomain)},
                     {"headerFrom", s_domain(record.headerFrom)},
                     {"envelopeFrom", s_domain(record.envelopeFrom)},
                     {"recipient", s_domain(record.recipient)},
                     {"hops", s_hops(record)},
                     {"receivers", s_receivers(record)},
                     {"scoredHopFound", record.scoredHopFound},
                     {"scoredHopIP", toUtf8(record.scoredHopIP)},
                     {"scoredHopScore", record.scoredHopScore},
                     {"hopCount", record.hopCount},
                     {"maxPrivateRun", record.maxPrivateRun},
                     {"publicRun", record.publicRun},
                     {"noAddressHops", record.noAddressHops},
                     {"attributes", record.attributes},
                     {"elite", s_elite(record.elite)},
                     {"tree", s_tree(record, story)},
                     {"story", toUtf8(story.m_sentences)},
                     {"because", toUtf8(reasonText(record, settings))},
                     {"needed", s_needed(requirements(record, settings, names))},
                     {"trail", s_trail(record, headers)},
                     {"lookups", s_lookups(record)},
                     {"rules", s_rules(record, story)},
                     {"values", s_values(record)},
                     {"facts", s_facts(record)},
                     {"singleChanges", s_singleChanges(record, names)},
                     {"ownRelay", s_ownRelay(record)}});
}

// What tells people which message it is.
Json s_message(HeaderContainer const& headers) {
    auto const summary = identityOf(headers);
    return s_object({{"date", s_orNull(summary.m_date)},
                     {"messageId", s_orNull(summary.m_messageId)},
                     {"from", s_orNull(summary.m_from)},
                     {"subject", s_orNull(summary.m_subject)}});
}

Json s_verdict(std::string const& source, HeaderContainer const& headers,
               ScanRecord const& record) {
    auto const& verdict = record.verdict;
    Json json = s_object({{"source", toUtf8(source)},
                          {"verdict", verdictName(verdict)},
                          {"node", verdict.node},
                          {"confidence", verdict.node == 0 ? Json() : Json(verdict.confidence)},
                          {"support", verdict.support},
                          {"adjust", verdict.adjust},
                          {"adjustReason", toUtf8(verdict.adjustReason)},
                          {"spam", verdict.isSpam},
                          {"ham", verdict.isHam},
                          {"ips", toUtf8(verdict.ips)},
                          {"reasons", toUtf8(record.answer.getReasons())},
                          {"addresses", toUtf8(judgedAddresses(verdict))},
                          {"message", s_message(headers)}});
    if (record.failure) {
        json["error"] = toUtf8(*record.failure);
    }
    return json;
}

std::string s_line(Json const& json) {
    return json.dump(-1, ' ', true) + "\n";
}

} // namespace

std::string jsonRecord(std::string const& source, HeaderContainer const& headers,
                       ScanRecord const& record, Rules::RuleNames const& names) {
    return s_line(named(s_verdict(source, headers, record), deciderName(names, record.verdict)));
}

std::string jsonExplanation(std::string const& source, HeaderContainer const& headers,
                            ScanRecord const& record, DeepHeaderSettings const& settings,
                            Rules::RuleNames const& names) {
    auto json = s_verdict(source, headers, record);
    json["explain"] = s_explain(record, headers, settings, names);
    return s_line(named(std::move(json), deciderName(names, record.verdict)));
}

} // namespace Quorvane
