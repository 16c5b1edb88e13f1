// SPDX-License-Identifier: Apache-2.0
#include "rules/check/Drift.h"

#include "rules/check/DriftFields.h"
#include "rules/format/RuleFiles.h"
#include "rules/model/Readme.h"

#include <algorithm>

namespace Quorvane::Rules {

namespace {

using File = Finding::File;
using Number = std::optional<std::int32_t>;

// The rules of both sides, cut down to where they begin to differ and, from the end, cease to.
struct Differing {
    std::size_t m_begin = 0;
    std::size_t m_endOurs = 0;
    std::size_t m_endTheirs = 0;
};

bool s_isSame(EliteNodes const& a, EliteNodes const& b) {
    return fieldsOf(a) == fieldsOf(b) && conditionsOf(a) == conditionsOf(b);
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
    }

  private:
    void add(File file, Number number, std::string const& problem, Number condition = {}) {
        m_findings.push_back(
            {Finding::Severity::difference, "drift", file, number, condition, problem,
             "write the files anew from the rules, or take over what was changed there"});
    }

    void differs(File file, Number number, std::string const& what, std::string const& ours,
                 std::string const& theirs, Number condition = {}) {
        if (ours != theirs) {
            add(file, number, what + " is " + theirs + " in the files, not " + ours, condition);
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
            differs(file, number, ours[i].m_name, ours[i].m_text, theirs[i].m_text);
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
            fields(File::elite, std::nullopt, fieldsOf(*ours.m_header), fieldsOf(*theirs.m_header));
            rules(ours, theirs);
        }
        bytes(File::elite, "what stands after the rules", ours.m_tail, theirs.m_tail);
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
                    "rule " + std::to_string(number(i)) + " of the files is in no rule here");
            } else {
                rule(number(i), ours.m_rules[i], theirs.m_rules[i]);
            }
        }
        announced(*ours.m_header, *theirs.m_header, ours.m_rules.size(), theirs.m_rules.size());
    }

    // The numbers of rules that the headers announce, when they do not follow from the rules.
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
        fields(File::elite, number, fieldsOf(ours), fieldsOf(theirs));
        auto const mine = conditionsOf(ours);
        auto const other = conditionsOf(theirs);
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
                fields(File::tree, number, fieldsOf(m_ours.m_nodes[i]),
                       fieldsOf(m_theirs.m_nodes[i]));
            }
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
