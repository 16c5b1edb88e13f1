// SPDX-License-Identifier: Apache-2.0
#include "adapter/RecordedScan.h"
#include "adapter/VectorTrial.h"

#include <cstddef>
#include <map>
#include <optional>

namespace Quorvane {

namespace {

// Attribute index and the value that it would need.
using Changes = std::map<std::size_t, std::int32_t>;

// With more changes it would be another message.
constexpr std::size_t maxChanges = 3;

// One wish: that `attribute` equals `value`, or that it differs.
struct Wish {
    std::int32_t m_attribute;
    bool m_isEquality;
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
    if (!wish.m_isEquality) {
        return s_otherValue(facts, wish.m_value);
    }
    return facts.m_values.contains(wish.m_value) ? std::optional(wish.m_value) : std::nullopt;
}

class Search {
  public:
    Search(DeepHeaderAdapter& engine, DeepHeaderSettings const& settings,
           AttributeVector const& attributes)
        : m_engine(engine), m_trial(engine, settings), m_attributes(attributes) {
        auto const now = m_trial.judge(attributes);
        m_wantsSpam = !now.isSpam;
        m_wantsHam = !now.isHam;
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
    Alternative judge(Changes const& changes) {
        auto changed = m_attributes;
        for (auto const& [attribute, value] : changes) {
            changed[attribute] = value;
        }
        auto outcome = m_trial.judge(changed);
        for (auto const& [attribute, value] : changes) {
            outcome.changes.push_back({static_cast<std::int32_t>(attribute), value});
        }
        return outcome;
    }

    bool isMet(Wish const& wish, Changes const& changes) const {
        auto const index = static_cast<std::size_t>(wish.m_attribute);
        auto const changed = changes.find(index);
        auto const value = changed == changes.end() ? m_attributes[index] : changed->second;
        return (value == wish.m_value) == wish.m_isEquality;
    }

    // False when the wish cannot be granted, or takes one change too many.
    bool grant(Wish const& wish, Changes& changes) const {
        if (!isAttribute(wish.m_attribute)) {
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
        for (auto const& rule : m_engine.eliteNodes()) {
            Changes changes;
            bool isGranted = rule.type == EliteType::deciding;
            for (auto const& condition : rule.conditions) {
                isGranted =
                    isGranted && isRealCondition(condition) &&
                    grant({condition.attribute, isEqualityTest(condition.test), condition.value},
                          changes);
            }
            if (isGranted) {
                consider(changes);
            }
        }
    }

    // The changes that lead to a node only grow on the way down, which ends the search early; a
    // node named by several parents is reached on several ways, but on each only once.
    void searchTree(int number, Changes const& changes) {
        auto const& node = m_engine.treeNodes()[static_cast<std::size_t>(number)];
        if (hasTooManyChildren(node) || m_depth >= treeTableSize || --m_budget < 0) {
            return;
        }
        ++m_depth;
        for (int slot = 0; slot < node.childCount; ++slot) {
            searchChild(node.children[static_cast<std::size_t>(slot)], changes);
        }
        --m_depth;
    }

    void searchChild(int child, Changes changes) {
        if (!isChildIndex(child)) {
            return;
        }
        auto const& node = m_engine.treeNodes()[static_cast<std::size_t>(child)];
        if (!grant({node.attribute, isEqualityTest(node.test), node.testValue}, changes)) {
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
        auto const outcome = judge(changes);
        if (outcome.isSpam && !isAtLeastAsGood(m_spam, m_wantsSpam, changes)) {
            m_spam = outcome;
        }
        if (outcome.isHam && !isAtLeastAsGood(m_ham, m_wantsHam, changes)) {
            m_ham = outcome;
        }
    }

    static bool isAtLeastAsGood(std::optional<Alternative> const& best, bool isWanted,
                                Changes const& changes) {
        return !isWanted || (best && best->changes.size() <= changes.size());
    }

    // Node visits; a hostile rule file can make a graph with more ways than anyone can walk.
    static constexpr int maxVisits = 20000;

    DeepHeaderAdapter& m_engine;
    VectorTrial m_trial;
    AttributeVector const& m_attributes;
    bool m_wantsSpam = false;
    bool m_wantsHam = false;
    std::optional<Alternative> m_spam;
    std::optional<Alternative> m_ham;
    int m_depth = 0;
    int m_budget = maxVisits;
};

} // namespace

std::vector<Alternative> findAlternatives(DeepHeaderAdapter& engine,
                                          DeepHeaderSettings const& settings,
                                          AttributeVector const& attributes) {
    return Search(engine, settings, attributes).run();
}

} // namespace Quorvane
