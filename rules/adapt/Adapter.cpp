// SPDX-License-Identifier: Apache-2.0
#include "rules/adapt/Adapter.h"

#include "rules/adapt/AdaptedTree.h"

#include <algorithm>
#include <map>
#include <optional>

namespace Quorvane::Rules {

namespace {

using ByCode = std::map<std::int32_t, LabelCounts>;

// A probability that weighs as much as so many messages, and messages beside it.
double s_estimate(double probability, double weight, LabelCounts const& counts) {
    return (probability * weight + static_cast<double>(counts.m_spam)) /
           (weight + static_cast<double>(counts.total()));
}

ByCode s_decidedByElite(CountedVectors const& mail, Judge const& judge) {
    ByCode decided;
    for (auto const& row : mail) {
        auto const judged = judge(row.m_vector);
        if (judged.m_decider.m_isElite) {
            decided[judged.m_decider.m_number] += row.m_counts;
        }
    }
    return decided;
}

class EliteAdapter {
  public:
    EliteAdapter(AdaptedRules& adapted, CountedVectors const& mail, AdaptPlan const& plan,
                 AdaptLimits const& limits, JudgeMaker const& makeJudge)
        : m_adapted(adapted), m_mail(mail), m_plan(plan), m_limits(limits), m_makeJudge(makeJudge) {
    }

    void adapt() {
        if (!m_adapted.m_set.m_elite) {
            return;
        }
        if (!m_plan.m_keepsAdjusting) {
            leaveAdjustingOut();
        }
        // One at a time: what one rule no longer decides reaches the next.
        while (auto const code = worstRule()) {
            leaveOut(*code);
        }
        for (auto& rule : rules()) {
            if (rule.type == EliteType::deciding) {
                auto const after = estimate(rule);
                note(rule, after, false);
                rule.weight = after;
            }
        }
        finish();
    }

  private:
    std::vector<EliteNodes>& rules() { return m_adapted.m_set.m_elite->m_rules; }

    double estimate(EliteNodes const& rule) {
        return s_estimate(rule.weight, m_plan.m_ruleMessages, m_decided[rule.code]);
    }

    void note(EliteNodes const& rule, double after, bool isLeftOut) {
        auto const kind =
            rule.type == EliteType::deciding ? RuleKey::Kind::decide : RuleKey::Kind::adjust;
        m_adapted.m_changes.push_back(
            {{kind, rule.code}, m_decided[rule.code], rule.weight, after, isLeftOut});
    }

    void leaveAdjustingOut() {
        for (auto const& rule : rules()) {
            if (rule.type == EliteType::adjusting) {
                note(rule, 0.0, true);
            }
        }
        std::erase_if(rules(), [](auto const& rule) { return rule.type == EliteType::adjusting; });
    }

    // The code of the rule that holds least, among those that do not hold. A rule below the
    // threshold decides nothing anyway.
    std::optional<std::int32_t> worstRule() {
        m_decided = s_decidedByElite(m_mail, m_makeJudge(m_adapted.m_set));
        std::optional<std::int32_t> worst;
        double lowest = m_limits.m_spamThreshold;
        for (auto const& rule : rules()) {
            bool const decides =
                rule.type == EliteType::deciding && rule.weight >= m_limits.m_spamThreshold;
            if (decides && estimate(rule) < lowest) {
                worst = rule.code;
                lowest = estimate(rule);
            }
        }
        return worst;
    }

    void leaveOut(std::int32_t code) {
        auto const isIt = [code](EliteNodes const& rule) {
            return rule.type == EliteType::deciding && rule.code == code;
        };
        for (auto const& rule : rules()) {
            if (isIt(rule)) {
                note(rule, estimate(rule), true);
            }
        }
        std::erase_if(rules(), isIt);
    }

    void finish() {
        if (rules().empty()) {
            m_adapted.m_set.m_elite.reset();
        } else {
            m_adapted.m_set.m_elite->m_header->nodeCount =
                static_cast<std::int32_t>(rules().size());
        }
        std::stable_sort(m_adapted.m_changes.begin(), m_adapted.m_changes.end(),
                         [](auto const& a, auto const& b) { return a.m_rule < b.m_rule; });
    }

    AdaptedRules& m_adapted;
    CountedVectors const& m_mail;
    AdaptPlan const& m_plan;
    AdaptLimits const& m_limits;
    JudgeMaker const& m_makeJudge;
    ByCode m_decided; // by the rules as they are now
};

// Adjusting rules hold the nodes back. Without any, a node above the threshold calls messages spam.
TreeAdaptation s_treeAdaptation(RuleSet const& rules, AdaptPlan const& plan,
                                AdaptLimits const& limits) {
    constexpr double none = 2.0; // no probability reaches it
    bool const areHeldBack =
        rules.m_elite &&
        std::any_of(rules.m_elite->m_rules.begin(), rules.m_elite->m_rules.end(),
                    [](auto const& rule) { return rule.type == EliteType::adjusting; });
    return {plan.m_nodeMessages,
            plan.m_ruleMessages,
            plan.m_unseenHam,
            plan.m_grows,
            limits.m_minSupport,
            plan.m_keepsAdjusting ? none : limits.m_spamThreshold,
            areHeldBack ? none : limits.m_spamThreshold};
}

// The names of what is no longer there.
void s_dropNames(RuleSet& set, std::vector<RuleChange> const& changes) {
    auto names = readNames(set.m_names).m_names;
    for (auto const& change : changes) {
        if (change.m_isLeftOut) {
            names.erase(change.m_rule);
        }
    }
    if (set.m_names.m_content) {
        set.m_names.m_content = namesText(names);
    }
}

} // namespace

AdaptedRules adaptRules(RuleSet const& rules, CountedVectors const& mail, AdaptPlan const& plan,
                        AdaptLimits const& limits, JudgeMaker const& makeJudge) {
    AdaptedRules adapted{rules, {}, 0};
    EliteAdapter(adapted, mail, plan, limits, makeJudge).adapt();
    s_dropNames(adapted.m_set, adapted.m_changes);
    adapted.m_nodesAdded = adaptTree(adapted.m_set.m_nodes, mail, makeJudge(adapted.m_set),
                                     s_treeAdaptation(rules, plan, limits));
    return adapted;
}

} // namespace Quorvane::Rules
