// SPDX-License-Identifier: Apache-2.0
#include "apps/story/RuleStory.h"

#include "apps/story/StepText.h"
#include "apps/text/NumberText.h"
#include "rules/format/RuleTests.h"
#include "rules/format/ValueWords.h"

#include <cmath>
#include <cstddef>
#include <set>
#include <utility>

namespace Quorvane {

namespace {

std::string s_joined(std::vector<DescribedTest> const& tests) {
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
    auto const letter = reasonByte(code);
    return isVisibleReason(letter) ? std::string(1, static_cast<char>(letter))
                                   : std::to_string(int{letter});
}

// Gateways write "unknown" where they found none.
std::string s_reverseName(HopAnalysis const& hop) {
    return hop.reverseName == "unknown" ? std::string() : hop.reverseName;
}

class RuleDescriber {
  public:
    RuleDescriber(ScanRecord const& record, Rules::RuleNames const& ruleNames)
        : m_record(record), m_ruleNames(ruleNames), m_names(sentenceNames(record)) {}

    RuleStory describe() {
        for (auto const& rule : m_record.rules) {
            addRule(rule);
        }
        for (auto const& node : m_record.tree.path) {
            addNode(node);
        }
        return std::move(m_story);
    }

  private:
    DescribedTest described(AttributeTest const& test) const {
        auto const found = isAttribute(test.attribute)
                               ? attributeValue(m_record.attributes, test.attribute)
                               : test.value;
        return {testText(test),
                Rules::fillSentence(Rules::valueSentence(test.attribute, found), m_names)};
    }

    void addRule(RecordedRule const& rule) {
        DescribedRule added{&rule,
                            eliteRuleName(m_ruleNames, rule.type, rule.code),
                            m_record.verdict.decision == Decision::elite &&
                                rule.outcome == RuleOutcome::chosen,
                            {}};
        for (auto const& test : rule.tests) {
            added.m_tests.push_back(described(test));
        }
        if (added.m_isDecider) {
            for (auto const& test : added.m_tests) {
                addSentence(test);
            }
        }
        m_story.m_elite.push_back(std::move(added));
    }

    void addNode(RecordedNode const& node) {
        DescribedNode added{&node, treeNodeName(m_ruleNames, node.number),
                            m_record.verdict.decision == Decision::tree &&
                                node.number == m_record.verdict.node,
                            std::nullopt};
        if (!m_story.m_path.empty()) {
            added.m_test = described(node.test);
            addSentence(*added.m_test);
        }
        m_story.m_path.push_back(std::move(added));
    }

    // Several attributes have the same sentence when there is no deep hop.
    void addSentence(DescribedTest const& test) {
        if (m_known.insert(test.m_words).second) {
            m_story.m_sentences.push_back(test.m_words);
        }
    }

    ScanRecord const& m_record;
    Rules::RuleNames const& m_ruleNames;
    Rules::SentenceNames m_names;
    std::set<std::string> m_known;
    RuleStory m_story;
};

} // namespace

std::string testText(AttributeTest const& test) {
    auto const relation = isEqualityTest(test.test) ? " is " : " is not ";
    if (!isAttribute(test.attribute)) {
        return "attribute " + std::to_string(test.attribute) + relation +
               std::to_string(test.value);
    }
    auto const index = static_cast<std::size_t>(test.attribute);
    return std::string(attributeTable[index].m_name) + relation + valueText(index, test.value);
}

Rules::SentenceNames sentenceNames(ScanRecord const& record) {
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

std::vector<AttributeLine> attributeLines(ScanRecord const& record) {
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

RuleStory describeRules(ScanRecord const& record, Rules::RuleNames const& names) {
    return RuleDescriber(record, names).describe();
}

std::string ruleLine(DescribedRule const& described, ScanRecord const& record) {
    auto const& rule = *described.m_rule;
    auto const name = inBrackets(described.m_name);
    if (rule.outcome == RuleOutcome::adjusted) {
        return "rule " + s_letter(rule.code) + name + " adjusts by " + s_signed(rule.weight) +
               ": " + s_joined(described.m_tests);
    }
    bool const isChosen = rule.outcome == RuleOutcome::chosen;
    return "rule " + std::to_string(rule.code) + name + " says " + spamText(rule.weight) +
           (isChosen ? "" : " (" + outcomeText(rule, record) + ")") + ": " +
           s_joined(described.m_tests);
}

std::string nodeLine(DescribedNode const& described) {
    auto const& node = *described.m_node;
    return "node " + std::to_string(node.number) + inBrackets(described.m_name) + ": " +
           (described.m_test ? described.m_test->m_text : "the root") + "; " +
           spamText(node.confidence) + ", seen in " +
           (isShare(node.support / 100.0) ? numberText(node.support) + " %"
                                          : "an unknown share " + noShareText(node.support)) +
           " of the training mail";
}

} // namespace Quorvane
