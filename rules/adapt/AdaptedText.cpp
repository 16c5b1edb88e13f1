// SPDX-License-Identifier: Apache-2.0
#include "rules/adapt/AdaptedText.h"

#include "rules/evaluate/FigureText.h"

#include <sstream>

namespace Quorvane::Rules {

namespace {

std::string s_row(std::string const& name, RuleFigures const& figures) {
    auto const& all = figures.m_messages;
    return "  " + name + "\n    spam called spam            " +
           rateText({figures.m_calledSpam.m_spam, all.m_spam}) +
           "\n    ham called spam             " +
           rateText({figures.m_calledSpam.m_ham, all.m_ham}) +
           "\n    area under the ROC curve    " + fixedText(figures.m_area, 4) +
           "\n    spam caught at 0.1 % wrong  " +
           rateText({figures.m_atOneInThousand.m_spam, all.m_spam}) + '\n';
}

std::string s_commented(std::string const& lines) {
    std::istringstream text(lines);
    std::string commented;
    for (std::string line; std::getline(text, line);) {
        commented += "# " + line + '\n';
    }
    return commented;
}

std::string s_counts(LabelCounts const& counts) {
    return std::to_string(counts.m_spam) + " spam and " + std::to_string(counts.m_ham) + " ham";
}

std::string s_changeLine(RuleChange const& change) {
    auto const rule = keyText(change.m_rule);
    if (change.m_rule.m_kind == RuleKey::Kind::adjust) {
        return rule + " left out: this site's mail shows what it guessed";
    }
    auto const probability =
        fixedText(change.m_before, 4) + " before, " + fixedText(change.m_after, 4) + " now";
    return change.m_isLeftOut
               ? rule + " left out: it decided " + s_counts(change.m_decided) + "; " + probability
               : rule + ": " + s_counts(change.m_decided) + "; " + probability;
}

} // namespace

std::string adaptedFigures(AdaptOutcome const& outcome) {
    return s_row("the present rules", outcome.m_before) + s_row("adapted", outcome.m_after);
}

std::string adaptedComment(CountedVectors const& mail, AdaptOutcome const& outcome) {
    auto const& plan = outcome.m_plan;
    std::string text =
        "Learned from " + s_counts(sumOf(mail)) +
        " messages of one site, beginning with other rules.\n"
        "What an elite rule said counts like " +
        fixedText(plan.m_ruleMessages, 0) + " messages, what a node said like " +
        fixedText(plan.m_nodeMessages, 0) + ". Nodes have " + fixedText(plan.m_unseenHam, 0) +
        " more ham than seen. " + std::to_string(outcome.m_rules.m_nodesAdded) +
        " nodes are new.\n" +
        "A third of the mail was kept aside and judged by rules made of the rest:\n" +
        adaptedFigures(outcome);
    if (!outcome.m_rules.m_changes.empty()) {
        text += "What each elite rule decided here, and its probability of spam:\n";
    }
    for (auto const& change : outcome.m_rules.m_changes) {
        text += "  " + s_changeLine(change) + '\n';
    }
    return s_commented(text);
}

} // namespace Quorvane::Rules
