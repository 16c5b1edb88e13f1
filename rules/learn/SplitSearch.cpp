// SPDX-License-Identifier: Apache-2.0
#include "rules/learn/SplitSearch.h"

#include "rules/learn/Impurity.h"

#include <algorithm>
#include <map>

namespace Quorvane::Rules {

namespace {

// A gain below this share of the node's impurity is a rounding error.
constexpr double noise = 1e-10;

using ValueCounts = std::map<std::int32_t, LabelCounts>;

ValueCounts s_countValues(std::vector<CountedVector> const& table, RowIndices const& rows,
                          std::size_t attribute) {
    ValueCounts values;
    for (auto const row : rows) {
        values[table[row].m_vector[attribute]] += table[row].m_counts;
    }
    return values;
}

LabelCounts s_sum(std::vector<CountedVector> const& table, RowIndices const& rows) {
    LabelCounts sum;
    for (auto const row : rows) {
        sum += table[row].m_counts;
    }
    return sum;
}

bool s_isBetter(Split const& split, std::optional<Split> const& best) {
    return !best || split.m_gain > best->m_gain;
}

} // namespace

double supportPercent(std::uint64_t messages, std::uint64_t allMessages) {
    return 100.0 * static_cast<double>(messages) / static_cast<double>(allMessages);
}

std::optional<Split> bestSplit(std::vector<CountedVector> const& table, RowIndices const& rows,
                               LearnSettings const& settings, std::uint64_t allMessages) {
    LabelCounts const node = s_sum(table, rows);
    double const impurity = summedImpurity(settings.m_impurity, node);
    double const leastGain =
        std::max(settings.m_minGain * static_cast<double>(allMessages), noise * impurity);
    std::optional<Split> best;
    for (std::size_t attribute = 0; attribute < attributeCount; ++attribute) {
        if (!settings.m_attributes.at(attribute)) {
            continue;
        }
        for (auto const& [value, equal] : s_countValues(table, rows, attribute)) {
            LabelCounts const other = node - equal;
            auto const smaller = std::min(equal.total(), other.total());
            if (smaller == 0 || supportPercent(smaller, allMessages) < settings.m_minSupport) {
                continue;
            }
            // Both sides are added first, so that a split and its mirror image gain the same.
            double const left = summedImpurity(settings.m_impurity, equal) +
                                summedImpurity(settings.m_impurity, other);
            Split const split{attribute, value, equal, impurity - left};
            if (split.m_gain > leastGain && s_isBetter(split, best)) {
                best = split;
            }
        }
    }
    return best;
}

} // namespace Quorvane::Rules
