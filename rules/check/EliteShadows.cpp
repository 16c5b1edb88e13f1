// SPDX-License-Identifier: Apache-2.0
//
// Which elite rules keep another from ever being used.
//
// The engine runs the list and holds one deciding rule at a time. A rule that matches while another
// is held replaces it or not, which depends on the select mode and the confidences; a held rule
// with code 0 counts as none and is always replaced. So for each pair of rules there is an answer
// to "when both match, can this one be the one that is used in the end?", and a rule is shadowed
// when each of its messages matches a rule to which the answer is no.
#include "rules/check/Checks.h"
#include "rules/format/RuleTests.h"

#include <algorithm>
#include <cmath>

namespace Quorvane::Rules {

namespace {

// Looks for a message that matches none of a list of rules: it takes the rules one after the other
// and follows each way not to match them.
class Coverage {
  public:
    // `looksLeft` is how often a rule may still be looked at.
    Coverage(std::vector<LiveRule const*> rules, std::size_t& looksLeft)
        : m_rules(std::move(rules)), m_looksLeft(looksLeft) {}

    // Whether each message of `values` matches one of the rules from the given one on. False also
    // when that takes too long to find out.
    bool covers(PossibleValues const& values, std::size_t from = 0) {
        from = nextThatMeets(values, from);
        if (from == m_rules.size() || ++m_branches > maxBranches) {
            return false;
        }
        auto inside = values;
        for (auto const& condition : m_rules[from]->m_conditions) {
            auto outside = inside;
            outside.assume(condition, false);
            if (!outside.isNobody() && !covers(outside, from + 1)) {
                return false;
            }
            inside.assume(condition);
        }
        return true;
    }

  private:
    // The ways to miss many rules multiply; rules that people write need a handful.
    static constexpr int maxBranches = 500;

    std::size_t nextThatMeets(PossibleValues const& values, std::size_t from) {
        for (; from < m_rules.size(); ++from) {
            if (m_looksLeft == 0) {
                return m_rules.size();
            }
            --m_looksLeft;
            if (m_rules[from]->doesMeet(values)) {
                break;
            }
        }
        return from;
    }

    std::vector<LiveRule const*> m_rules;
    std::size_t& m_looksLeft;
    int m_branches = 0;
};

class ShadowFinder {
  public:
    explicit ShadowFinder(EliteRun& run) : m_run(run) {
        for (auto const& rule : run.m_rules) {
            m_resetsBefore.push_back(m_resets);
            m_resets += rule.m_isDeciding && rule.m_code == noDecisionCode ? 1 : 0;
        }
    }

    void run() {
        for (std::size_t index = 0; index < m_run.m_rules.size(); ++index) {
            m_run.m_rules[index].m_shadows = shadowsOf(index);
        }
    }

  private:
    // Every pair of 2,000 rules, in about a second. What was not looked at is not reported.
    static constexpr std::size_t maxLooks = 2'000'000;

    std::vector<std::int32_t> shadowsOf(std::size_t index) {
        auto const& rule = m_run.m_rules[index];
        std::vector<LiveRule const*> rivals;
        for (std::size_t other = 0; other < m_run.m_rules.size() && m_looksLeft > 0; ++other) {
            if (!keepsOut(other, index)) {
                continue;
            }
            --m_looksLeft;
            if (m_run.m_rules[other].covers(rule.m_matches)) {
                return {m_run.m_rules[other].m_number};
            }
            rivals.push_back(&m_run.m_rules[other]);
        }
        return fewest(rule, std::move(rivals));
    }

    // Those of `rivals` that are needed to cover the rule; none when all of them do not cover it.
    std::vector<std::int32_t> fewest(LiveRule const& rule, std::vector<LiveRule const*> rivals) {
        if (!Coverage(rivals, m_looksLeft).covers(rule.m_matches)) {
            return {};
        }
        for (auto i = rivals.size(); i > 0; --i) {
            auto others = rivals;
            others.erase(others.begin() + static_cast<std::ptrdiff_t>(i) - 1);
            if (Coverage(others, m_looksLeft).covers(rule.m_matches)) {
                rivals = std::move(others);
            }
        }
        std::vector<std::int32_t> numbers;
        numbers.reserve(rivals.size());
        for (auto const* const rival : rivals) {
            numbers.push_back(rival->m_number);
        }
        return numbers;
    }

    // Whether rules[index] is never used for a message that rules[other] matches as well.
    bool keepsOut(std::size_t other, std::size_t index) const {
        auto const& rule = m_run.m_rules[index];
        auto const& rival = m_run.m_rules[other];
        if (!rival.m_isDeciding || other == index) {
            return false;
        }
        if (endsRun(m_run.m_selectMode)) {
            return other < index;
        }
        if (!rule.m_isDeciding) {
            return false;
        }
        if (other < index) {
            return !replaces(rule, rival) && isStillHeld(other, index);
        }
        return rule.m_code == noDecisionCode || replaces(rival, rule);
    }

    // Whether `next` replaces `held`, whose code is a decision.
    bool replaces(LiveRule const& next, LiveRule const& held) const {
        return Quorvane::replaces(m_run.m_selectMode, next.m_weight, held.m_weight);
    }

    // Whether the run is sure to hold rules[earlier], or one that is not easier to replace, when it
    // reaches rules[later]. A rule with code 0 between the two would be replaced by anything, and
    // comparing with a confidence that is not a number always fails.
    bool isStillHeld(std::size_t earlier, std::size_t later) const {
        auto const& held = m_run.m_rules[earlier];
        return held.m_code != noDecisionCode && !std::isnan(held.m_weight) &&
               m_resetsBefore[earlier] == m_resetsBefore[later];
    }

    EliteRun& m_run;
    // How many rules with code 0 come before each rule.
    std::vector<int> m_resetsBefore;
    int m_resets = 0;
    std::size_t m_looksLeft = maxLooks;
};

// "rule 3", "one of the rules 1, 2 and 5".
std::string s_names(std::vector<std::int32_t> const& numbers) {
    if (numbers.size() == 1) {
        return "rule " + std::to_string(numbers.front());
    }
    std::string text = "one of the rules ";
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        auto const isLast = i + 1 == numbers.size();
        text += (i == 0 ? "" : isLast ? " and " : ", ") + std::to_string(numbers[i]);
    }
    return text;
}

char const* s_advice(std::int32_t selectMode) {
    switch (selectMode) {
    case SelectMode::first:
        return "move it forward, or remove it";
    case SelectMode::last:
        return "move it back, or remove it";
    case SelectMode::highest:
        return "give it a greater confidence, or remove it";
    case SelectMode::lowest:
        return "give it a smaller confidence, or remove it";
    default:
        return "choose first, last, highest or lowest";
    }
}

} // namespace

void findShadows(EliteRun& run) {
    ShadowFinder(run).run();
}

void checkEliteShadows(EliteRun const& run, Findings& findings) {
    auto const isRunEnded = endsRun(run.m_selectMode);
    for (auto const& rule : run.m_rules) {
        if (!rule.m_shadows.empty()) {
            findings.push_back(
                {Finding::Severity::warning, "elite-shadowed", Finding::File::elite,
                 "every message that matches it also matches " + s_names(rule.m_shadows) +
                     (isRunEnded ? ", which ends the run before it" : ", which is used instead") +
                     ", so the rule never fires",
                 s_advice(run.m_selectMode), rule.m_number});
        }
    }
}

} // namespace Quorvane::Rules
