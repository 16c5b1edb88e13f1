// SPDX-License-Identifier: Apache-2.0
//
// What one other value of one attribute would have led to. All values that can matter are tried, so
// that it is known when none would have led to another verdict.
#include "adapter/RecordedScan.h"
#include "adapter/VectorTrial.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <set>
#include <utility>

namespace Quorvane {

namespace {

using Values = std::set<std::int32_t>;

// Judgements of one search. Real rules need some dozens; a hostile rule file can name any number of
// values.
constexpr int maxTries = 1000;

// The values that the rules compare each attribute with.
class NamedValues {
  public:
    explicit NamedValues(DeepHeaderAdapter const& engine) {
        for (auto const& rule : engine.eliteNodes()) {
            for (auto const& condition : rule.conditions) {
                add(condition);
            }
        }
        for (auto const& node : engine.treeNodes()) {
            add(testOf(node));
        }
    }

    Values const& of(AttributeFacts const& facts) const { return m_values[facts.m_index]; }

  private:
    void add(EliteCondition const& test) {
        if (isAttribute(test.attribute)) {
            m_values[static_cast<std::size_t>(test.attribute)].insert(test.value);
        }
    }

    std::array<Values, attributeCount> m_values;
};

// Values that the engine can write, such that every other one acts like one of them: of a counter
// those that rules name, and one that none names.
Values s_valuesToTry(AttributeFacts const& facts, Values const& named) {
    Values values(facts.m_values.m_codes.begin(), facts.m_values.m_codes.end());
    if (facts.m_values.m_isCounter || facts.m_values.m_isOpen) {
        std::copy_if(named.begin(), named.end(), std::inserter(values, values.end()),
                     [&facts](std::int32_t value) { return facts.m_values.contains(value); });
        std::int32_t unnamed = 0;
        while (values.contains(unnamed)) {
            ++unnamed;
        }
        values.insert(unnamed);
    }
    return values;
}

class Search {
  public:
    Search(DeepHeaderAdapter& engine, DeepHeaderSettings const& settings,
           AttributeVector const& attributes)
        : m_named(engine), m_trial(engine, settings), m_attributes(attributes) {}

    SingleChanges run() {
        for (auto const& facts : attributeTable) {
            auto const& named = m_named.of(facts);
            if (named.empty()) {
                continue; // no rule asks
            }
            for (auto const value : s_valuesToTry(facts, named)) {
                tryValue(facts.m_index, value);
            }
        }
        return std::move(m_found);
    }

  private:
    void tryValue(std::size_t attribute, std::int32_t value) {
        if (value == m_attributes[attribute]) {
            return;
        }
        if (++m_tries > maxTries) {
            m_found.areAllTried = false;
            return;
        }
        auto changed = m_attributes;
        changed[attribute] = value;
        auto outcome = m_trial.judge(changed);
        if (!outcome.isSpam) {
            outcome.changes.push_back({static_cast<std::int32_t>(attribute), value});
            m_found.list.push_back(std::move(outcome));
        }
    }

    NamedValues m_named;
    VectorTrial m_trial;
    AttributeVector const& m_attributes;
    int m_tries = 0;
    SingleChanges m_found{{}, true};
};

} // namespace

SingleChanges findSingleChanges(DeepHeaderAdapter& engine, DeepHeaderSettings const& settings,
                                AttributeVector const& attributes) {
    return Search(engine, settings, attributes).run();
}

} // namespace Quorvane
