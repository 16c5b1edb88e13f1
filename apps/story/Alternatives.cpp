// SPDX-License-Identifier: Apache-2.0
#include "apps/story/Alternatives.h"

#include "rules/format/AttributeTable.h"
#include "scanner/records/RecordAccess.h"

#include <optional>
#include <utility>

namespace Quorvane {

namespace {

using Record = DeepHeaderAdapter::MsgProperties;
using Changes = std::map<std::size_t, std::int32_t>;

// One wish: that `attribute` equals `value`, or (test other than 0) that it differs.
struct Wish {
    std::int32_t m_attribute;
    std::int32_t m_test;
    std::int32_t m_value;
};

std::optional<std::int32_t> s_otherValue(AttributeFacts const& facts, std::int32_t value) {
    if (facts.m_values.m_isCounter) {
        return value == 0 ? 1 : 0;
    }
    for (auto const code : facts.m_values.m_codes) {
        if (code != value) {
            return code;
        }
    }
    return std::nullopt;
}

// A value that grants the wish and that the engine can write; empty when there is none.
std::optional<std::int32_t> s_granted(Wish const& wish) {
    auto const& facts = attributeTable[static_cast<std::size_t>(wish.m_attribute)];
    if (wish.m_test != 0) {
        return s_otherValue(facts, wish.m_value);
    }
    return facts.m_values.contains(wish.m_value) ? std::optional(wish.m_value) : std::nullopt;
}

class Search {
  public:
    Search(RefDeepHeaderAdapter const& engine, DeepHeaderSettings const& settings,
           Record const& record)
        : m_engine(engine), m_record(record),
          m_query(HeaderContainer(), Header(), settings, 0, EmailAddress(), EmailAddress(),
                  EmailAddress(), RefMessageProperties(true)) {
        auto const now = judge({});
        m_wantsSpam = !now.isSpam();
        m_wantsHam = !now.isHam();
    }

    std::vector<Alternative> run() {
        searchElite();
        searchTree(treeRoot, {});
        std::vector<Alternative> found;
        for (auto const& best : {m_spam, m_ham}) {
            if (best) {
                found.push_back(*best);
            }
        }
        return found;
    }

  private:
    DeepHeaderAnswer judge(Changes const& changes) {
        auto record = m_record;
        for (auto const& [attribute, value] : changes) {
            record.attributes[attribute] = value;
        }
        DeepHeaderAnswer answer;
        m_engine->getResults(RecordAccess::record(answer), m_query, record);
        return answer;
    }

    bool isMet(Wish const& wish, Changes const& changes) const {
        auto const index = static_cast<std::size_t>(wish.m_attribute);
        auto const changed = changes.find(index);
        auto const value = changed == changes.end() ? m_record.attributes[index] : changed->second;
        return (value == wish.m_value) == (wish.m_test == 0);
    }

    // False when the wish cannot be granted, or takes one change too many.
    bool grant(Wish const& wish, Changes& changes) const {
        if (wish.m_attribute < 0 || wish.m_attribute > maxAttribute) {
            return false;
        }
        if (isMet(wish, changes)) {
            return true;
        }
        auto const value = s_granted(wish);
        if (!value) {
            return false;
        }
        changes[static_cast<std::size_t>(wish.m_attribute)] = *value;
        return changes.size() <= maxChanges;
    }

    void searchElite() {
        for (auto const& rule : m_engine->eliteNodes()) {
            Changes changes;
            bool isGranted = rule.type == EliteType::deciding;
            for (auto const& condition : rule.conditions) {
                isGranted = isGranted &&
                            grant({condition.attribute, condition.test, condition.value}, changes);
            }
            if (isGranted) {
                consider(changes);
            }
        }
    }

    // The changes that lead to a node only grow on the way down, which ends the search early; a
    // node named by several parents is reached on several ways, but on each only once.
    void searchTree(int number, Changes const& changes) {
        auto const& node = m_engine->treeNodes()[static_cast<std::size_t>(number)];
        if (node.childCount > maxChildren || m_depth >= treeTableSize || --m_budget < 0) {
            return;
        }
        ++m_depth;
        for (int slot = 0; slot < node.childCount; ++slot) {
            searchChild(node.children[static_cast<std::size_t>(slot)], changes);
        }
        --m_depth;
    }

    void searchChild(int child, Changes changes) {
        if (child < 1 || child >= treeTableSize) {
            return;
        }
        auto const& node = m_engine->treeNodes()[static_cast<std::size_t>(child)];
        if (!grant({node.attribute, node.test, node.testValue}, changes)) {
            return;
        }
        consider(changes);
        searchTree(child, changes);
    }

    void consider(Changes const& changes) {
        bool const isWorse = isAtLeastAsGood(m_spam, m_wantsSpam, changes) &&
                             isAtLeastAsGood(m_ham, m_wantsHam, changes);
        if (changes.empty() || isWorse) {
            return;
        }
        auto const answer = judge(changes);
        if (answer.isSpam() && !isAtLeastAsGood(m_spam, m_wantsSpam, changes)) {
            m_spam = Alternative{true, answer.getNode(), changes};
        }
        if (answer.isHam() && !isAtLeastAsGood(m_ham, m_wantsHam, changes)) {
            m_ham = Alternative{false, answer.getNode(), changes};
        }
    }

    static bool isAtLeastAsGood(std::optional<Alternative> const& best, bool isWanted,
                                Changes const& changes) {
        return !isWanted || (best && best->m_changes.size() <= changes.size());
    }

    // Node visits; a hostile rule file can make a graph with more ways than anyone can walk.
    static constexpr int maxVisits = 20000;

    RefDeepHeaderAdapter m_engine;
    Record const& m_record;
    DeepHeaderQuery m_query;
    bool m_wantsSpam = false;
    bool m_wantsHam = false;
    std::optional<Alternative> m_spam;
    std::optional<Alternative> m_ham;
    int m_depth = 0;
    int m_budget = maxVisits;
};

} // namespace

std::vector<Alternative> findAlternatives(RefDeepHeaderAdapter const& engine,
                                          DeepHeaderSettings const& settings,
                                          Record const& record) {
    return Search(engine, settings, record).run();
}

} // namespace Quorvane
