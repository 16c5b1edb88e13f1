// SPDX-License-Identifier: Apache-2.0
#include "rules/check/Checks.h"
#include "rules/check/PossibleValues.h"
#include "rules/format/RuleTests.h"
#include "rules/format/ValueWords.h"
#include "rules/language/Literals.h"
#include "rules/language/RuleText.h"

#include <cmath>
#include <utility>

namespace Quorvane::Rules {

namespace {

using Severity = Finding::Severity;

std::string s_text(EliteCondition const& condition) {
    return '"' + conditionText(condition) + '"';
}

class EliteChecker {
  public:
    EliteChecker(EliteFile const& elite, DeepHeaderSettings const& settings, Findings& findings)
        : m_elite(elite), m_settings(settings), m_findings(findings) {}

    void run() {
        if (!m_elite.m_header) {
            add(Severity::error, "elite-header-cut",
                "the file is shorter than its header of 32 bytes, so no elite rule is loaded",
                "compile it again, or remove it");
            return;
        }
        header(*m_elite.m_header);
        tail(*m_elite.m_header);
        for (auto const& rule : m_elite.m_rules) {
            m_rule = m_rule.value_or(0) + 1;
            m_condition.reset();
            checkRule(rule);
        }
    }

  private:
    void add(Severity severity, char const* id, std::string const& problem,
             std::string const& advice) {
        m_findings.push_back(
            {severity, id, Finding::File::elite, problem, advice, m_rule, m_condition});
    }

    void header(EliteFileHeader const& header) {
        if (!isSelectMode(header.selectMode)) {
            add(Severity::warning, "elite-select",
                "select mode " + std::to_string(header.selectMode) +
                    " is unknown; engines take the first deciding rule and skip the others",
                "choose first, last, highest or lowest");
        }
        if (header.alsoWalkTree != 0 && header.alsoWalkTree != 1) {
            add(Severity::warning, "elite-also-tree",
                "also-tree " + std::to_string(header.alsoWalkTree) +
                    " counts as 0: the tree is not consulted",
                "write also-tree, or leave it out");
        }
    }

    // Why the loader stopped before the announced number of rules, and what it left unread.
    void tail(EliteFileHeader const& header) {
        auto const read = std::to_string(m_elite.m_rules.size());
        if (m_elite.m_rules.size() >= maxEliteNodes && header.nodeCount > maxEliteNodes) {
            add(Severity::error, "elite-too-many",
                "the header announces " + std::to_string(header.nodeCount) +
                    " rules; engines stop after " + read,
                "remove rules");
        } else if (header.nodeCount < 0) {
            add(Severity::warning, "elite-count", "the header announces a negative number of rules",
                "compile it again");
        } else if (std::cmp_less(m_elite.m_rules.size(), header.nodeCount)) {
            add(Severity::error, "elite-cut",
                "the header announces " + std::to_string(header.nodeCount) + " rules, but only " +
                    read + " can be read: the next is cut off or has more than 100 conditions",
                "compile the rules again from their text");
        } else if (!m_elite.m_tail.empty()) {
            add(Severity::warning, "elite-tail",
                std::to_string(m_elite.m_tail.size()) +
                    " bytes after the last announced rule are not read",
                "compile the rules again from their text");
        }
    }

    void checkRule(EliteNodes const& rule) {
        if (!isLoadedFlag(rule.flag)) {
            add(Severity::error, "elite-flag",
                "flag " + std::to_string(rule.flag) + " makes engines drop the rule",
                "leave the flag out");
        }
        kind(rule);
        if (!isWithinLevel(rule, m_settings.maxEliteLevel)) {
            add(Severity::warning, "elite-level",
                "level " + std::to_string(rule.level) + " is above the limit of " +
                    std::to_string(m_settings.maxEliteLevel) +
                    " (max-elite-level), so the rule never fires",
                "lower the level, or raise the limit on every host");
        }
        conditions(rule);
    }

    void kind(EliteNodes const& rule) {
        if (rule.type == EliteType::adjusting) {
            adjusting(rule);
        } else if (rule.type == EliteType::deciding) {
            deciding(rule);
        } else {
            add(Severity::error, "elite-type",
                "a rule of type " + std::to_string(rule.type) + " never fires",
                "write adjust or decide");
        }
    }

    void adjusting(EliteNodes const& rule) {
        if (!isVisibleReason(reasonByte(rule.code))) {
            add(Severity::warning, "elite-code",
                "code " + std::to_string(rule.code) + " cannot be shown in an answer",
                "give the rule a letter or a digit");
        }
        if (!std::isfinite(rule.weight) || std::abs(rule.weight) > 1.0) {
            add(Severity::warning, "elite-weight",
                "a weight of " + numberText(rule.weight) + " cannot be added to a probability",
                "use a number between -1 and 1");
        }
    }

    void deciding(EliteNodes const& rule) {
        if (!(rule.weight >= 0.0 && rule.weight <= 1.0)) {
            add(Severity::warning, "elite-weight", notAProbability(rule.weight),
                "use a number from 0 to 1");
        }
        if (!isSupported(rule.support, m_settings.minSupport)) {
            add(Severity::warning, "elite-support",
                belowMinimum(rule.support, m_settings.minSupport) + ", so the rule never fires",
                "use the percentage of messages that the rule matches, or leave it out");
        } else if (rule.support > 100.0) {
            add(Severity::warning, "elite-support", notAPercentage(rule.support),
                "use a number from 0 to 100");
        }
        if (rule.code == noDecisionCode) {
            add(Severity::warning, "elite-code",
                "code 0 counts as \"nothing decided yet\", so the next match replaces the rule",
                "give the rule another code");
        }
    }

    // The first condition that no message passes is reported; what follows cannot matter.
    void conditions(EliteNodes const& rule) {
        PossibleValues values;
        std::int32_t number = 0;
        for (auto const& condition : rule.conditions) {
            m_condition = ++number;
            if (!checkCondition(condition, values)) {
                return;
            }
            values.assume(condition);
        }
    }

    bool checkCondition(EliteCondition const& condition, PossibleValues const& values) {
        if (!isLoadedCondition(condition)) {
            add(Severity::error, "elite-condition",
                s_text(condition) + " makes engines drop the whole rule",
                "use an attribute from 0 to 37, and == or !=");
        } else if (!isRealCondition(condition)) {
            add(Severity::error, "elite-condition",
                s_text(condition) + " never holds, so the rule never fires",
                "use an attribute from 0 to 37, and == or !=");
        } else if (!PossibleValues().admits(condition)) {
            auto const& facts = attributeTable.at(static_cast<std::size_t>(condition.attribute));
            add(Severity::error, "elite-impossible",
                s_text(condition) + " never holds, so the rule never fires",
                std::string(facts.m_name) + " takes " + valueChoices(facts));
        } else if (!values.admits(condition)) {
            add(Severity::error, "elite-contradiction",
                s_text(condition) +
                    " contradicts the conditions before it, so the rule never fires",
                "remove one of them, or make two rules");
        } else {
            return true;
        }
        return false;
    }

    EliteFile const& m_elite;
    DeepHeaderSettings const& m_settings;
    Findings& m_findings;
    std::optional<std::int32_t> m_rule; // empty: the header
    std::optional<std::int32_t> m_condition;
};

} // namespace

void checkElite(EliteFile const& elite, DeepHeaderSettings const& settings, Findings& findings) {
    EliteChecker(elite, settings, findings).run();
}

} // namespace Quorvane::Rules
