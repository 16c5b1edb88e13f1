// SPDX-License-Identifier: Apache-2.0
//
// RuleStory: which rules came to the answer and why, in plain words. Pure functions; what they
// return points into the engine and must not outlive it. The words hold names of the message as
// they stand there: toPrintable or toUtf8 makes them fit to be shown.
#pragma once

#include "adapter/DeepHeaderAdapter.h"
#include "apps/host/ScanHost.h"
#include "rules/language/Sentences.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Quorvane {

// "first_reverse_dynamic is yes", "is not yes" for a test other than 0; an index that is no
// attribute is shown as a number.
std::string testText(std::int32_t attribute, std::int32_t test, std::int32_t value);

// The names that sentences about this message can hold.
Rules::SentenceNames sentenceNames(DeepHeaderAdapter::MsgProperties const& record);

struct AttributeLine {
    std::string m_name;
    std::string m_value; // in a word or a number
    std::string m_words;
};

// The attributes that differ from what they are before a scan.
std::vector<AttributeLine> tellAttributes(DeepHeaderAdapter::MsgProperties const& record);

// A test that holds.
struct ToldTest {
    std::int32_t m_attribute;
    std::string m_text;  // the test itself
    std::string m_words; // the value of the message that fulfils it
};

// An elite rule that fired.
struct ToldRule {
    EliteNodes const* m_rule;
    bool m_isChosen; // of the deciding ones
    std::vector<ToldTest> m_tests;
};

// A node that the walk through the tree stood on.
struct ToldNode {
    int m_number;
    DTNode const* m_node;
    std::optional<ToldTest> m_test; // none on the root
};

struct RuleStory {
    std::vector<ToldRule> m_elite;
    std::vector<ToldNode> m_path;
    std::string m_end; // why the walk ended; empty when the tree was not asked
    // What came to the answer, each fact once: of the elite rule that decided, or of the path.
    std::vector<std::string> m_sentences;
};

// REQUIRES: host.trace(outcome) was called.
RuleStory tellRules(ScanHost const& host, ScanOutcome const& outcome);

// "rule 9001 says 0.97 spam: first_reverse_dynamic is yes and hop_behind_first is no".
std::string ruleLine(ToldRule const& told);
// "node 13: first_reverse_dynamic is no; 0.25 spam, seen in 55 % of the training mail".
std::string nodeLine(ToldNode const& told);

} // namespace Quorvane
