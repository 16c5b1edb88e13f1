// SPDX-License-Identifier: Apache-2.0
#include "rules/adapt/PlanChoice.h"

#include <algorithm>
#include <optional>

namespace Quorvane::Rules {

namespace {

constexpr std::size_t partsOfWhichOneIsAside = 3;
constexpr std::size_t foldsForPlans = 4;
// What a site may lose in any case.
constexpr double oneInThousand = 0.001;

// Every combination; of plans that do equally well the first one counts.
std::vector<AdaptPlan> s_plans() {
    constexpr unsigned choices = 5;
    std::vector<AdaptPlan> plans;
    for (unsigned plan = 0; plan < 1U << choices; ++plan) {
        auto const pick = [plan](unsigned choice, auto first, auto second) {
            return (plan >> choice & 1U) == 0 ? first : second;
        };
        plans.push_back({pick(4, 50.0, 200.0), pick(3, 10.0, 50.0), pick(2, 3.0, 6.0),
                         pick(1, false, true), pick(0, true, false)});
    }
    return plans;
}

RuleFigures s_figures(CountedVectors const& mail, Judge const& judge) {
    auto const figures = figuresOf(mail, judge);
    return {figures.judged(),
            {figures.m_spamVerdicts.m_spam, figures.m_hamVerdicts.m_spam},
            figures.m_roc.area(),
            figures.m_roc.atFalsePositives(oneInThousand).m_called};
}

void s_add(RuleFigures& sum, RuleFigures const& more) {
    sum.m_messages += more.m_messages;
    sum.m_calledSpam += more.m_calledSpam;
    sum.m_area += more.m_area; // compared only with sums of as many
    sum.m_atOneInThousand += more.m_atOneInThousand;
}

bool s_losesTooMuch(RuleFigures const& figures, RuleFigures const& present) {
    auto const allowed = oneInThousand * static_cast<double>(figures.m_messages.m_ham);
    return static_cast<double>(figures.m_calledSpam.m_ham) >
           std::max(allowed, static_cast<double>(present.m_calledSpam.m_ham));
}

// Spam caught counts before the order of the rest.
bool s_isBetter(RuleFigures const& a, RuleFigures const& b) {
    return a.m_calledSpam.m_spam != b.m_calledSpam.m_spam
               ? a.m_calledSpam.m_spam > b.m_calledSpam.m_spam
               : a.m_area > b.m_area;
}

class PlanTrial {
  public:
    PlanTrial(RuleSet const& rules, CountedVectors const& mail, AdaptLimits const& limits,
              JudgeMaker const& makeJudge)
        : m_rules(rules), m_limits(limits), m_makeJudge(makeJudge),
          m_parts(dealtOut(mail, foldsForPlans)), m_present(s_figures(mail, makeJudge(rules))) {}

    AdaptPlan best(PlanProgress const& progress) const {
        auto const plans = s_plans();
        AdaptPlan best = plans.front();
        std::optional<RuleFigures> bestFigures;
        for (std::size_t i = 0; i < plans.size(); ++i) {
            if (progress) {
                progress(i, plans.size());
            }
            auto const figures = figuresOf(plans[i]);
            if (!s_losesTooMuch(figures, m_present) &&
                (!bestFigures || s_isBetter(figures, *bestFigures))) {
                best = plans[i];
                bestFigures = figures;
            }
        }
        return best;
    }

  private:
    RuleFigures figuresOf(AdaptPlan const& plan) const {
        RuleFigures sum;
        sum.m_area = 0.0;
        for (std::size_t fold = 0; fold < m_parts.size(); ++fold) {
            auto const adapted =
                adaptRules(m_rules, allBut(m_parts, fold), plan, m_limits, m_makeJudge);
            s_add(sum, s_figures(m_parts[fold], m_makeJudge(adapted.m_set)));
        }
        return sum;
    }

    RuleSet const& m_rules;
    AdaptLimits const& m_limits;
    JudgeMaker const& m_makeJudge;
    std::vector<CountedVectors> m_parts;
    RuleFigures m_present;
};

} // namespace

bool AdaptOutcome::isBetter() const {
    if (s_losesTooMuch(m_after, m_before)) {
        return false;
    }
    return m_after.m_calledSpam.m_spam > m_before.m_calledSpam.m_spam ||
           m_after.m_calledSpam.m_ham < m_before.m_calledSpam.m_ham ||
           (m_after.m_calledSpam == m_before.m_calledSpam && m_after.m_area > m_before.m_area);
}

AdaptOutcome adaptToSite(RuleSet const& rules, CountedVectors const& mail,
                         AdaptLimits const& limits, JudgeMaker const& makeJudge,
                         PlanProgress const& progress) {
    auto const parts = dealtOut(mail, partsOfWhichOneIsAside);
    auto const& aside = parts.back();
    auto const rest = allBut(parts, parts.size() - 1);
    AdaptOutcome outcome;
    outcome.m_plan = PlanTrial(rules, rest, limits, makeJudge).best(progress);
    outcome.m_before = s_figures(aside, makeJudge(rules));
    auto const tried = adaptRules(rules, rest, outcome.m_plan, limits, makeJudge);
    outcome.m_after = s_figures(aside, makeJudge(tried.m_set));
    outcome.m_rules = adaptRules(rules, mail, outcome.m_plan, limits, makeJudge);
    return outcome;
}

} // namespace Quorvane::Rules
