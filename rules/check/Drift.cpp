// SPDX-License-Identifier: Apache-2.0
#include "rules/check/Drift.h"

#include "rules/format/RuleTests.h"
#include "rules/language/Literals.h"
#include "rules/language/RuleText.h"
#include "rules/model/Readme.h"
#include "rules/model/RuleNames.h"

#include <algorithm>

namespace Quorvane::Rules {

namespace {

using File = Finding::File;
using Number = std::optional<std::int32_t>;

// The fields of a record in words, each with its name. Two records are the same when all of their
// fields are.
using Fields = std::vector<std::pair<std::string_view, std::string>>;

// All slots, also those after childCount: "3 4 and 8 empty slots" would not say which.
std::string s_slots(DTNode const& node) {
    std::string text;
    for (std::size_t slot = 0; slot < node.children.size(); ++slot) {
        text += (slot == 0 ? "" : " ") + std::to_string(+node.children[slot]);
    }
    return text;
}

std::string s_counts(DTNode const& node) {
    return std::to_string(+node.value1) + ' ' + std::to_string(+node.value2) + ' ' +
           std::to_string(+node.value3);
}

Fields s_fields(DTNode const& node) {
    return {{"the test", conditionText(testOf(node))},
            {"leaf", std::to_string(+node.isLeaf)},
            {"the number of children", std::to_string(+node.childCount)},
            {"the list of children", s_slots(node)},
            {"counts", s_counts(node)},
            {"confidence", numberText(node.confidence)},
            {"support", numberText(node.support)},
            {"reserved1", hexText(node.reserved1)},
            {"reserved2", std::to_string(+node.reserved2)}};
}

// Without the number of rules, which follows from the rules.
Fields s_fields(EliteFileHeader const& header) {
    return {{"the select mode", std::to_string(+header.selectMode)},
            {"also-tree", std::to_string(+header.alsoWalkTree)},
            {"reserved1", std::to_string(+header.reserved1)},
            {"reserved2", std::to_string(+header.reserved2)},
            {"reserved3", hexText(header.reserved3)}};
}

// Without the conditions.
Fields s_fields(EliteRecord const& rule) {
    return {{"the type", std::to_string(+rule.type)},
            {"the code", std::to_string(+rule.code)},
            {"the weight", numberText(rule.weight)},
            {"support", numberText(rule.support)},
            {"level", std::to_string(+rule.level)},
            {"flag", std::to_string(+rule.flag)},
            {"reserved", std::to_string(+rule.reserved)},
            {"the number of conditions", std::to_string(+rule.conditionCount)}};
}

// Each condition as the language writes it.
std::vector<std::string> s_conditions(EliteNodes const& rule) {
    std::vector<std::string> texts(rule.conditions.size());
    std::transform(rule.conditions.begin(), rule.conditions.end(), texts.begin(), conditionText);
    return texts;
}

// The range of rules that differ, without the equal ones before and after it.
struct Differing {
    std::size_t m_begin = 0;
    std::size_t m_endOurs = 0;
    std::size_t m_endTheirs = 0;
};

bool s_isSame(EliteNodes const& a, EliteNodes const& b) {
    return s_fields(a) == s_fields(b) && s_conditions(a) == s_conditions(b);
}

Differing s_differing(std::vector<EliteNodes> const& ours, std::vector<EliteNodes> const& theirs) {
    Differing found{0, ours.size(), theirs.size()};
    auto const shorter = std::min(ours.size(), theirs.size());
    while (found.m_begin < shorter && s_isSame(ours[found.m_begin], theirs[found.m_begin])) {
        ++found.m_begin;
    }
    while (std::min(found.m_endOurs, found.m_endTheirs) > found.m_begin &&
           s_isSame(ours[found.m_endOurs - 1], theirs[found.m_endTheirs - 1])) {
        --found.m_endOurs;
        --found.m_endTheirs;
    }
    return found;
}

class DriftFinder {
  public:
    DriftFinder(RuleSet const& ours, RuleSet const& theirs, Findings& findings)
        : m_ours(ours), m_theirs(theirs), m_findings(findings) {}

    void run() {
        version();
        elite();
        nodes();
        bytes(File::tree, "the incomplete record at the end", m_ours.m_treeTail,
              m_theirs.m_treeTail);
        names();
    }

  private:
    void add(File file, Number number, std::string const& problem, Number condition = {}) {
        m_findings.push_back(
            {Finding::Severity::difference, "drift", file, problem,
             "write the files again from the rules, or copy the change into the rules", number,
             condition});
    }

    void differs(File file, Number number, std::string_view what, std::string const& ours,
                 std::string const& theirs, Number condition = {}) {
        if (ours != theirs) {
            add(file, number, std::string(what) + " is " + theirs + " in the files, not " + ours,
                condition);
        }
    }

    void bytes(File file, std::string const& what, Bytes const& ours, Bytes const& theirs) {
        if (ours != theirs) {
            add(file, std::nullopt, what + " differs");
        }
    }

    // False when one side has no such thing, and so there is nothing more to compare.
    bool areBothThere(File file, char const* what, bool isOurs, bool isTheirs) {
        if (isOurs != isTheirs) {
            add(file, std::nullopt,
                std::string(what) + (isOurs ? " is missing there" : " is only in the files"));
        }
        return isOurs && isTheirs;
    }

    void version() {
        if (!areBothThere(File::readme, versionFileName, m_ours.m_readme.has_value(),
                          m_theirs.m_readme.has_value())) {
            return;
        }
        auto const ours = m_ours.version();
        auto const theirs = m_theirs.version();
        auto const isInstalled = ours && theirs && *theirs > *ours;
        if (ours != theirs && !isInstalled) {
            auto const text = [](Number version) {
                return version ? std::to_string(*version) : "missing";
            };
            differs(File::readme, std::nullopt, "the version", text(ours), text(theirs));
        } else if (m_ours.m_readme != m_theirs.m_readme &&
                   !(isInstalled && m_theirs.m_readme == readmeText(*theirs))) {
            add(File::readme, std::nullopt, "the words of README differ");
        }
    }

    void fields(File file, Number number, Fields const& ours, Fields const& theirs) {
        for (std::size_t i = 0; i < ours.size(); ++i) {
            differs(file, number, ours[i].first, ours[i].second, theirs[i].second);
        }
    }

    void elite() {
        if (!areBothThere(File::elite, eliteFileName, m_ours.m_elite.has_value(),
                          m_theirs.m_elite.has_value())) {
            return;
        }
        auto const& ours = *m_ours.m_elite;
        auto const& theirs = *m_theirs.m_elite;
        if (areBothThere(File::elite, "the header", ours.m_header.has_value(),
                         theirs.m_header.has_value())) {
            fields(File::elite, std::nullopt, s_fields(*ours.m_header), s_fields(*theirs.m_header));
            rules(ours, theirs);
        }
        bytes(File::elite, "the text after the rules", ours.m_tail, theirs.m_tail);
    }

    void rules(EliteFile const& ours, EliteFile const& theirs) {
        auto const range = s_differing(ours.m_rules, theirs.m_rules);
        auto const number = [](std::size_t index) { return static_cast<std::int32_t>(index) + 1; };
        auto const end = std::max(range.m_endOurs, range.m_endTheirs);
        for (auto i = range.m_begin; i < end; ++i) {
            if (i >= range.m_endTheirs) {
                add(File::elite, number(i), "the rule is missing in the files");
            } else if (i >= range.m_endOurs) {
                add(File::elite, std::nullopt,
                    "rule " + std::to_string(number(i)) + " of the files is not among the rules");
            } else {
                rule(number(i), ours.m_rules[i], theirs.m_rules[i]);
            }
        }
        announced(*ours.m_header, *theirs.m_header, ours.m_rules.size(), theirs.m_rules.size());
    }

    // The numbers of rules that the headers announce, if the rules do not explain the difference.
    void announced(EliteFileHeader const& ours, EliteFileHeader const& theirs, std::size_t ourRules,
                   std::size_t theirRules) {
        auto const ourExcess = ours.nodeCount - static_cast<std::int64_t>(ourRules);
        auto const theirExcess = theirs.nodeCount - static_cast<std::int64_t>(theirRules);
        if (ourExcess != theirExcess) {
            differs(File::elite, std::nullopt, "the announced number of rules",
                    std::to_string(+ours.nodeCount), std::to_string(+theirs.nodeCount));
        }
    }

    void rule(std::int32_t number, EliteNodes const& ours, EliteNodes const& theirs) {
        fields(File::elite, number, s_fields(ours), s_fields(theirs));
        auto const mine = s_conditions(ours);
        auto const other = s_conditions(theirs);
        for (std::size_t i = 0; i < std::min(mine.size(), other.size()); ++i) {
            differs(File::elite, number, "the condition", '"' + mine[i] + '"', '"' + other[i] + '"',
                    static_cast<std::int32_t>(i) + 1);
        }
        for (auto i = mine.size(); i < other.size(); ++i) {
            add(File::elite, number, "the files have one more condition, \"" + other[i] + '"');
        }
        for (auto i = other.size(); i < mine.size(); ++i) {
            add(File::elite, number, "the condition is missing in the files",
                static_cast<std::int32_t>(i) + 1);
        }
    }

    void nodes() {
        auto const ours = m_ours.m_nodes.size();
        auto const theirs = m_theirs.m_nodes.size();
        for (std::size_t i = 0; i < std::max(ours, theirs); ++i) {
            auto const number = static_cast<std::int32_t>(i);
            if (i >= theirs) {
                add(File::tree, number, "the node is missing in the files");
            } else if (i >= ours) {
                add(File::tree, number, "the node is only in the files");
            } else {
                fields(File::tree, number, s_fields(m_ours.m_nodes[i]),
                       s_fields(m_theirs.m_nodes[i]));
            }
        }
    }

    void name(RuleKey const& key, std::string const& problem) {
        add(File::names, std::nullopt, problem);
        m_findings.back().m_name = key;
    }

    void names() {
        auto const ours = readNames(m_ours.m_names).m_names;
        auto const theirs = readNames(m_theirs.m_names).m_names;
        auto const before = m_findings.size();
        for (auto const& [key, own] : ours) {
            auto const found = theirs.find(key);
            if (found == theirs.end()) {
                name(key, "the name of " + keyWords(key) + " is missing in the files");
            } else if (found->second != own) {
                name(key, "the name or the sentence of " + keyWords(key) + " differs");
            }
        }
        for (auto const& [key, other] : theirs) {
            if (!ours.contains(key)) {
                name(key, "the name of " + keyWords(key) + " is only in the files");
            }
        }
        if (m_findings.size() == before) {
            bytes(File::names, "the text of qv.names", m_ours.m_names.m_content.value_or(""),
                  m_theirs.m_names.m_content.value_or(""));
        }
    }

    RuleSet const& m_ours;
    RuleSet const& m_theirs;
    Findings& m_findings;
};

} // namespace

Findings driftFindings(RuleSet const& rules, RuleSet const& files) {
    Findings findings;
    DriftFinder(rules, files, findings).run();
    return findings;
}

} // namespace Quorvane::Rules
