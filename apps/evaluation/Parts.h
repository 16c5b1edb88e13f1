// SPDX-License-Identifier: Apache-2.0
//
// Pieces that the reports share: texts, parts of pages, and the sections of the evaluation page.
// Pure functions; what is called text is plain, everything else HTML.
#pragma once

#include "apps/evaluation/Report.h"

#include <string>
#include <string_view>
#include <vector>

namespace Quorvane::Reports {

// evaluation.css and evaluation.js.
std::string_view pageStyle();
std::string_view pageScript();

// "1,234 spam and 56 ham".
std::string labelsText(Rules::LabelCounts const& counts);

// "1,234 spam, 5 ham": the kinds that there are, or "none".
std::string kindsText(Rules::KindCounts const& counts);

// "none -> spam".
std::string changeText(Rules::ChangeGroup const& group, std::string const& arrow);

// "node 12, 0.5 spam, adjusted by +0.1", "no rule decided".
std::string rulingText(Rules::JudgedVector const& judged);

// "+0.1", "-0.1", "0".
std::string signedText(double value);

// "84.90 %", or "none" where there are no messages.
std::string shareText(Rules::Rate const& rate);

std::string section(std::string const& id, std::string const& title, std::string const& content);

// Stands where there is nothing to show.
std::string emptyNote(std::string_view whyText);

// A drawing with its name above; `note`: a sentence on how to read it.
std::string figure(std::string_view titleText, std::string_view noteText, std::string const& svg);

// Blocks side by side where there is room.
std::string sideBySide(std::string const& left, std::string const& right);

// `cells`, and four more: hits, total, share, interval. Without messages: zeros and dashes.
std::vector<std::string> withRate(std::vector<std::string> cells, Rules::Rate const& rate);

// A figure of the page's head, within <dl class="tiles">; `note` is HTML.
std::string tile(std::string_view nameText, std::string const& value, std::string const& note);
// A rate with its counts and interval.
std::string rateTile(std::string_view nameText, Rules::Rate const& rate);

// Rules, or kinds of change, as a list. It says that `hidden` more, called `what`, are in the JSON
// report.
std::string ruleList(std::vector<std::string> const& items, std::size_t hidden,
                     std::string const& what);

// The tests that lead to a decider: as the rule language writes them, and folded up in words.
std::string deciderTests(Rules::RuleSet const& set, Rules::Decider const& decider);

// Examples of messages below a title; nothing without any.
std::string sampleList(std::string const& title, std::vector<std::string> const& samples);

// All corpora side by side.
std::string comparisonSection(Rules::Evaluation const& evaluation);

// One corpus, or all together: what the thresholds give, ROC curves, reliability. `id` is its
// anchor on the page.
std::string corpusSection(Rules::CorpusFigures const& figures, std::string const& id,
                          EvaluatedRules const& rules);

// The rules that decide most, and those that are most often wrong.
std::string deciderSection(Rules::Evaluation const& evaluation, EvaluatedRules const& rules);

} // namespace Quorvane::Reports
