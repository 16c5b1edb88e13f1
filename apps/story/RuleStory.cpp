// SPDX-License-Identifier: Apache-2.0
#include "apps/story/RuleStory.h"

#include "apps/text/NumberText.h"
#include "rules/format/RuleTests.h"
#include "rules/format/ValueWords.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

namespace Quorvane {

namespace {

using Record = DeepHeaderAdapter::MsgProperties;

std::string s_joined(std::vector<ToldTest> const& tests) {
    std::string text;
    for (auto const& test : tests) {
        text += (text.empty() ? "" : " and ") + test.m_text;
    }
    return text.empty() ? "always" : text;
}

std::string s_signed(double value) {
    return std::isfinite(value) ? (value < 0 ? "" : "+") + numberText(value)
                                : "an unknown amount " + noShareText(value);
}

std::string s_letter(std::int32_t code) {
    auto const letter = static_cast<unsigned char>(code & 0xFF);
    return letter > 0x20 && letter < 0x7F ? std::string(1, static_cast<char>(letter))
                                          : std::to_string(int{letter});
}

bool s_fired(EliteNodes const& rule, Record const& record, DeepHeaderSettings const& settings) {
    return isWithinLevel(rule, settings.maxEliteLevel) && canFire(rule, settings.minSupport) &&
           matches(rule, record.attributes);
}

std::string s_end(DTNode const& last, int result, DeepHeaderSettings const& settings) {
    if (result < 0) {
        return "no branch of the tree fits: no decision";
    }
    if (last.isLeaf != 0) {
        return "a leaf";
    }
    bool const isSure = settings.walkToLeaf == 0 && last.confidence >= settings.spamThreshold;
    return isSure ? "sure enough of spam to stop here"
                  : "the branch that fits was seen too rarely in training";
}

// Borders write "unknown" where they found none.
std::string s_reverseName(DeepHeaderAdapter::SingleReceiver const& hop) {
    return hop.reverseName == "unknown" ? std::string() : hop.reverseName;
}

class RuleTeller {
  public:
    RuleTeller(ScanHost const& host, ScanOutcome const& outcome)
        : m_engine(*host.engine().operator->()), m_settings(host.settings().m_judging),
          m_outcome(outcome), m_names(sentenceNames(outcome.m_record)) {}

    RuleStory tell() {
        tellElite();
        tellPath();
        if (DeepHeaderAdapter::doesEliteDecide(m_outcome.m_trace.m_elite, m_settings)) {
            for (auto const& rule : m_story.m_elite) {
                if (rule.m_isChosen) {
                    addSentences(rule.m_tests);
                }
            }
        }
        for (auto const& node : m_story.m_path) {
            if (node.m_test) {
                addSentences({*node.m_test});
            }
        }
        return std::move(m_story);
    }

  private:
    ToldTest toldTest(std::int32_t attribute, std::int32_t test, std::int32_t value) const {
        auto const found = isAttribute(attribute)
                               ? m_outcome.m_record.attributes[static_cast<std::size_t>(attribute)]
                               : value;
        return {attribute, testText(attribute, test, value),
                Rules::fillSentence(Rules::valueSentence(attribute, found), m_names)};
    }

    void tellElite() {
        auto const& hits = m_outcome.m_trace.m_elite;
        for (auto const& rule : m_engine.eliteNodes()) {
            if (!s_fired(rule, m_outcome.m_record, m_settings)) {
                continue;
            }
            bool const decides = rule.type == EliteType::deciding;
            ToldRule told{
                &rule, decides && rule.code == hits.code && rule.weight == hits.confidence, {}};
            for (auto const& condition : rule.conditions) {
                told.m_tests.push_back(
                    toldTest(condition.attribute, condition.test, condition.value));
            }
            m_story.m_elite.push_back(std::move(told));
            // The first deciding rule ends the run in this mode.
            if (decides && m_engine.eliteHeader().selectMode == SelectMode::first) {
                return;
            }
        }
    }

    void tellPath() {
        for (int const number : m_outcome.m_trace.m_path) {
            auto const& node = m_engine.treeNodes()[static_cast<std::size_t>(number)];
            ToldNode told{number, &node, std::nullopt};
            if (!m_story.m_path.empty()) {
                told.m_test = toldTest(node.attribute, node.test, node.testValue);
            }
            m_story.m_path.push_back(std::move(told));
        }
        if (!m_story.m_path.empty()) {
            m_story.m_end =
                s_end(*m_story.m_path.back().m_node, m_outcome.m_trace.m_result, m_settings);
        }
    }

    void addSentences(std::vector<ToldTest> const& tests) {
        for (auto const& test : tests) {
            // Several attributes say that there is no deep hop.
            if (m_said.insert(test.m_words).second) {
                m_story.m_sentences.push_back(test.m_words);
            }
        }
    }

    DeepHeaderAdapter const& m_engine;
    DeepHeaderSettings const& m_settings;
    ScanOutcome const& m_outcome;
    Rules::SentenceNames m_names;
    std::set<std::string> m_said;
    RuleStory m_story;
};

} // namespace

std::string testText(std::int32_t attribute, std::int32_t test, std::int32_t value) {
    auto const relation = isEqualityTest(test) ? " is " : " is not ";
    if (!isAttribute(attribute)) {
        return "attribute " + std::to_string(attribute) + relation + std::to_string(value);
    }
    auto const index = static_cast<std::size_t>(attribute);
    return std::string(attributeTable[index].m_name) + relation + valueText(index, value);
}

Rules::SentenceNames sentenceNames(Record const& record) {
    namespace Name = Rules::SentenceName;
    auto const& first = record.receivers[0];
    auto const& deep = record.receivers[1];
    Rules::SentenceNames names{
        {Name::firstHelo, first.helo},
        {Name::firstReverse, s_reverseName(first)},
        {Name::firstAddress, first.ip},
        {Name::deepHelo, deep.helo},
        {Name::deepReverse, s_reverseName(deep)},
        {Name::deepAddress, deep.ip},
        {Name::authorDomain, record.headerFrom.domain()},
        {Name::envelopeDomain, record.envelopeFrom.domain()},
        {Name::recipientDomain, record.recipient.domain()},
        {Name::messageIdDomain, record.messageIdDomain},
    };
    std::erase_if(names, [](auto const& name) { return name.second.empty(); });
    return names;
}

std::vector<AttributeLine> tellAttributes(Record const& record) {
    auto const names = sentenceNames(record);
    std::vector<AttributeLine> lines;
    for (auto const& facts : attributeTable) {
        auto const value = record.attributes[facts.m_index];
        if (value != facts.m_start) {
            auto const index = static_cast<std::int32_t>(facts.m_index);
            lines.push_back({std::string(facts.m_name), valueText(facts.m_index, value),
                             Rules::fillSentence(Rules::valueSentence(index, value), names)});
        }
    }
    return lines;
}

RuleStory tellRules(ScanHost const& host, ScanOutcome const& outcome) {
    return RuleTeller(host, outcome).tell();
}

std::string ruleLine(ToldRule const& told) {
    auto const& rule = *told.m_rule;
    if (rule.type == EliteType::adjusting) {
        return "rule " + s_letter(rule.code) + " adjusts by " + s_signed(rule.weight) + ": " +
               s_joined(told.m_tests);
    }
    return "rule " + std::to_string(rule.code) + " says " + spamText(rule.weight) +
           (told.m_isChosen ? "" : " (another was chosen)") + ": " + s_joined(told.m_tests);
}

std::string nodeLine(ToldNode const& told) {
    auto const& node = *told.m_node;
    return "node " + std::to_string(told.m_number) + ": " +
           (told.m_test ? told.m_test->m_text : "the root") + "; " + spamText(node.confidence) +
           ", seen in " +
           (isShare(node.support / 100.0) ? numberText(node.support) + " %"
                                          : "an unknown share " + noShareText(node.support)) +
           " of the training mail";
}

} // namespace Quorvane
