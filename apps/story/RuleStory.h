// SPDX-License-Identifier: Apache-2.0
//
// Which rules led to the answer and why, in plain words. Pure functions; their results point into
// the record and the names and must not outlive them. The words hold names of the message
// unchanged: convert them with toPrintable or toUtf8 before showing them.
#pragma once

#include "apps/story/RuleNaming.h"
#include "rules/language/Sentences.h"
#include "ScanRecord.h"

#include <optional>
#include <string>
#include <vector>

namespace Quorvane {

// "first_reverse_dynamic is yes", "is not yes" for a test other than 0; an index that is not an
// attribute is shown as a number.
std::string testText(AttributeTest const& test);

// The names that sentences about this message can hold.
Rules::SentenceNames sentenceNames(ScanRecord const& record);

struct AttributeLine {
    std::string m_name;
    std::string m_value; // in a word or a number
    std::string m_words;
};

// The attributes that differ from what they are before a scan.
std::vector<AttributeLine> attributeLines(ScanRecord const& record);

struct DescribedTest {
    std::string m_text;  // the test itself
    std::string m_words; // what the message has there
};

struct DescribedRule {
    RecordedRule const* m_rule;
    Rules::RuleName const* m_name; // null: none
    bool m_isDecider;              // the verdict is its own
    std::vector<DescribedTest> m_tests;
};

struct DescribedNode {
    RecordedNode const* m_node;
    Rules::RuleName const* m_name; // null: none
    bool m_isDecider;
    std::optional<DescribedTest> m_test; // none on the root
};

struct RuleStory {
    std::vector<DescribedRule> m_elite; // all, in the order of the engine's list
    std::vector<DescribedNode> m_path;
    // The facts that led to the answer, each once: of the elite rule that decided, or of the path.
    std::vector<std::string> m_sentences;
};

RuleStory describeRules(ScanRecord const& record, Rules::RuleNames const& names);

// "rule 9001 (A consumer line) says 0.97 spam: first_reverse_dynamic is yes and hop_behind_first is
// no"; of a rule that fired.
std::string ruleLine(DescribedRule const& described, ScanRecord const& record);
// "node 13: first_reverse_dynamic is no; 0.25 spam, seen in 55 % of the training mail".
std::string nodeLine(DescribedNode const& described);

} // namespace Quorvane
