// SPDX-License-Identifier: Apache-2.0
//
// Whether rules can judge at all under given settings. Adjusting rules count with the most that
// they can add, so what is reported here as out of reach is out of reach for every message.
#include "rules/check/Checks.h"
#include "rules/format/RuleTests.h"
#include "rules/language/Literals.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <limits>
#include <set>
#include <sstream>

namespace Quorvane::Rules {

namespace {

using Severity = Finding::Severity;
using File = Finding::File;

// Every probability is below it.
constexpr double certainty = 1.0;

// A sum without its last digits, which hold rounding errors.
std::string s_rounded(double degree) {
    std::ostringstream text;
    text << std::setprecision(12) << degree;
    return text.str();
}

// The greatest value offered, and what offered it.
struct Best {
    double m_degree = -std::numeric_limits<double>::infinity();
    std::string m_who;

    void offer(double degree, std::string const& who) {
        if (degree > m_degree) {
            m_degree = degree;
            m_who = who;
        }
    }
    bool reaches(double threshold) const { return !m_who.empty() && m_degree >= threshold; }
};

class VerdictChecker {
  public:
    VerdictChecker(TreeLinks const& tree, EliteRun const& run, DeepHeaderSettings const& settings,
                   Findings& findings)
        : m_tree(tree), m_run(run), m_settings(settings), m_findings(findings) {}

    void run() {
        auto const asksTree = m_run.asksTree(m_settings);
        if (m_tree.hasRoot() && !asksTree) {
            closedGate();
        }
        eliteRules();
        if (m_tree.hasRoot() && asksTree) {
            walk(treeRoot, PossibleValues());
        }
        auto const isKnown = m_steps < maxSteps && areAdjustmentsNumbers();
        if (isKnown && !m_spam.reaches(m_settings.spamThreshold)) {
            add("no-spam", File::all,
                "no message can be called spam" +
                    missed("spam", m_settings.spamThreshold, m_spam, " with adjustments"),
                advice("spam", m_settings.spamThreshold, m_spam));
        }
        if (isKnown && m_tree.hasRoot() && asksTree && !m_ham.reaches(m_settings.hamThreshold)) {
            add("no-ham", File::all,
                "no message can be called ham" + missed("ham", m_settings.hamThreshold, m_ham, ""),
                advice("ham", m_settings.hamThreshold, m_ham));
        }
    }

  private:
    // Nodes visited and rules looked at there. Beyond that, a tree made to have very many paths,
    // nothing is reported.
    static constexpr std::size_t maxSteps = 5'000'000;

    void add(char const* id, File file, std::string const& problem, std::string const& advice) {
        m_findings.push_back({Severity::warning, id, file, problem, advice});
    }

    void closedGate() {
        if (m_run.m_hasRules && !m_run.m_alsoTree) {
            add("tree-gate", File::elite,
                "there are elite rules and they do not let the tree be asked, so it never decides "
                "and no message can be called ham",
                "write also-tree, or remove the tree");
        } else {
            add("tree-gate", File::all,
                "a spam threshold of " + numberText(m_settings.spamThreshold) +
                    " keeps the tree out, so no message can be called ham",
                "give a threshold below " + numberText(treeOffThreshold) +
                    "; thresholds are probabilities, as in 0.95");
        }
    }

    // ": the most that ... gives is 0.9 (node 5), and the spam threshold is 0.95".
    static std::string missed(std::string const& verdict, double threshold, Best const& best,
                              char const* how) {
        if (best.m_who.empty()) {
            return ": nothing can decide";
        }
        return ": the most that any rule gives" + std::string(how) + " is " +
               s_rounded(best.m_degree) + " (" + best.m_who + "), and the " + verdict +
               " threshold is " + numberText(threshold);
    }

    static std::string advice(std::string const& verdict, double threshold, Best const& best) {
        if (threshold > certainty) {
            return "thresholds are probabilities, as in 0.95; the library's own default, 95, never "
                   "judges";
        }
        return best.m_who.empty() ? "add a rule that decides"
                                  : "lower " + verdict + "-threshold, or give a rule a " +
                                        (verdict == "spam" ? "greater" : "smaller") + " confidence";
    }

    bool areAdjustmentsNumbers() const {
        return std::all_of(m_run.m_rules.begin(), m_run.m_rules.end(), [](LiveRule const& rule) {
            return rule.m_isDeciding || std::isfinite(rule.m_weight);
        });
    }

    // The most that the first `count` rules add for any of these messages. What an adjusting rule
    // takes away counts when it fires for all of them.
    double mostAdded(PossibleValues const& values, std::size_t count) const {
        double sum = 0.0;
        auto isReached = true;
        for (std::size_t i = 0; i < count; ++i) {
            auto const& rule = m_run.m_rules[i];
            if (rule.m_isDeciding) {
                auto const mayEndRun = endsRun(m_run.m_selectMode);
                isReached = isReached && !(mayEndRun && rule.doesMeet(values));
            } else if (rule.m_weight > 0.0 ? rule.m_shadows.empty() && rule.doesMeet(values)
                                           : isReached && rule.covers(values)) {
                sum += rule.m_weight;
            }
        }
        return sum;
    }

    void eliteRules() {
        auto const all = m_run.m_rules.size();
        for (std::size_t i = 0; i < all; ++i) {
            auto const& rule = m_run.m_rules[i];
            if (rule.m_isDeciding && rule.m_shadows.empty()) {
                auto const count = endsRun(m_run.m_selectMode) ? i : all;
                m_spam.offer(rule.m_weight + mostAdded(rule.m_matches, count),
                             "elite rule " + std::to_string(rule.m_number));
            }
        }
        // Without a deciding rule the adjustments alone count, with a support of 0.
        if (m_run.m_hasRules && m_settings.minSupport <= 0.0) {
            m_spam.offer(mostAdded(PossibleValues(), all), "the adjusting rules");
        }
    }

    // Follows every path that the walk of an engine can take.
    void walk(std::int32_t number, PossibleValues const& values) {
        auto const& node = m_tree.at(number);
        if (++m_steps >= maxSteps) {
            return;
        }
        if (isLeaf(node) || isSure(node, m_settings.walkToLeaf != 0, m_settings.spamThreshold,
                                   m_settings.minSupport)) {
            decide(number, values);
            return;
        }
        m_path.insert(number);
        auto left = values;
        for (auto const child : m_tree.links(number).m_children) {
            auto const test = testOf(m_tree.at(child));
            if (left.admits(test)) {
                auto inside = left;
                inside.assume(test);
                enter(number, child, inside);
            }
            left.assume(test, false);
        }
        m_path.erase(number);
    }

    void enter(std::int32_t parent, std::int32_t child, PossibleValues const& values) {
        if (!isSupported(m_tree.at(child).support, m_settings.minSupport)) {
            decide(parent, values);
        } else if (m_path.count(child) == 0) { // otherwise the walk goes round and gives up
            walk(child, values);
        }
    }

    void decide(std::int32_t number, PossibleValues const& values) {
        if (canDecide(number)) {
            m_steps += m_run.m_rules.size();
            double const confidence = m_tree.at(number).confidence;
            m_spam.offer(mostAdded(values, m_run.m_rules.size()) + confidence, nodeName(number));
            m_ham.offer(certainty - confidence, nodeName(number));
        }
    }

    TreeLinks const& m_tree;
    EliteRun const& m_run;
    DeepHeaderSettings const& m_settings;
    Findings& m_findings;
    std::set<std::int32_t> m_path;
    Best m_spam;
    Best m_ham;
    std::size_t m_steps = 0;
};

} // namespace

void checkVerdicts(TreeLinks const& tree, EliteRun const& run, DeepHeaderSettings const& settings,
                   Findings& findings) {
    VerdictChecker(tree, run, settings, findings).run();
}

} // namespace Quorvane::Rules
