// SPDX-License-Identifier: Apache-2.0
#include "apps/charts/Charts.h"
#include "apps/evaluation/Parts.h"
#include "apps/page/Escape.h"
#include "apps/text/NumberText.h"
#include "apps/workshop/DeciderText.h"
#include "rules/evaluate/FigureText.h"

#include <algorithm>

namespace Quorvane::Reports {

namespace {

using Figures = Rules::DeciderFigures;

std::string s_wrong(Figures const& one) {
    auto const& wrong = one.m_wrong;
    if (wrong.total() == 0) {
        return "none wrong";
    }
    return wrong.m_ham > 0 ? groupedText(wrong.m_ham) + " ham called spam"
                           : groupedText(wrong.m_spam) + " spam called ham";
}

std::string s_item(Figures const& one, Rules::RuleSet const& set, std::uint64_t most) {
    std::vector<std::string> samples;
    for (auto const& sample : one.m_samples) {
        samples.push_back("<code>" + Page::isolated(sample) + "</code>");
    }
    return "<p class=\"decider\"><strong>" + Workshop::deciderName(one.m_decider) + "</strong> " +
           groupedText(one.m_reached.m_spam) + " spam, " + groupedText(one.m_reached.m_ham) +
           " ham; " + s_wrong(one) + "; confidence " + Rules::fixedText(one.m_confidence, 4) +
           "</p>\n" + Charts::deciderBar(one.m_reached, most) + deciderTests(set, one.m_decider) +
           sampleList("Judged wrongly, for example:", samples);
}

std::string s_list(std::vector<Figures> const& deciders, Rules::RuleSet const& set) {
    std::uint64_t most = 1;
    auto const shown = std::min(deciders.size(), shownDeciders);
    for (std::size_t i = 0; i < shown; ++i) {
        most = std::max(most, deciders[i].m_reached.total());
    }
    std::vector<std::string> items;
    for (std::size_t i = 0; i < shown; ++i) {
        items.push_back(s_item(deciders[i], set, most));
    }
    return ruleList(items, deciders.size() - shown, "");
}

} // namespace

std::string deciderSection(Rules::Evaluation const& evaluation, EvaluatedRules const& rules) {
    auto const byUse = evaluation.m_deciders.byUse();
    auto const byErrors = evaluation.m_deciders.byErrors();
    return section("uses", "What decides most",
                   "<p>Nodes of the tree and elite rules, over all corpora, with the tests that "
                   "lead to them. A rule that is not sure enough for a verdict is listed, "
                   "too.</p>\n" +
                       (byUse.empty() ? emptyNote("No rule decided anything.")
                                      : s_list(byUse, rules.m_set))) +
           section("errors", "What is wrong most often",
                   byErrors.empty() ? emptyNote("No message was judged wrongly.")
                                    : s_list(byErrors, rules.m_set));
}

} // namespace Quorvane::Reports
