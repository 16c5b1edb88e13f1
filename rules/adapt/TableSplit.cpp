// SPDX-License-Identifier: Apache-2.0
#include "rules/adapt/TableSplit.h"

#include <map>

namespace Quorvane::Rules {

namespace {

// How many of `count` messages go to `part`, when the first of them goes to part `first`.
std::uint64_t s_share(std::uint64_t count, std::size_t part, std::size_t first, std::size_t parts) {
    auto const place = (part + parts - first) % parts; // of the part in this deal
    return count / parts + (place < count % parts ? 1 : 0);
}

} // namespace

std::vector<CountedVectors> dealtOut(CountedVectors const& vectors, std::size_t parts) {
    std::vector<CountedVectors> dealt(parts);
    std::size_t nextSpam = 0; // the part that the next message goes to
    std::size_t nextHam = 0;
    for (auto const& row : vectors) {
        for (std::size_t part = 0; part < parts; ++part) {
            LabelCounts const counts{s_share(row.m_counts.m_spam, part, nextSpam, parts),
                                     s_share(row.m_counts.m_ham, part, nextHam, parts)};
            if (counts.total() != 0) {
                dealt[part].push_back({row.m_vector, counts});
            }
        }
        nextSpam = (nextSpam + row.m_counts.m_spam) % parts;
        nextHam = (nextHam + row.m_counts.m_ham) % parts;
    }
    return dealt;
}

CountedVectors allBut(std::vector<CountedVectors> const& parts, std::size_t leftOut) {
    std::map<AttributeVector, LabelCounts> sums;
    for (std::size_t part = 0; part < parts.size(); ++part) {
        for (auto const& row : parts[part]) {
            if (part != leftOut) {
                sums[row.m_vector] += row.m_counts;
            }
        }
    }
    CountedVectors all;
    for (auto const& [vector, counts] : sums) {
        all.push_back({vector, counts});
    }
    return all;
}

LabelCounts sumOf(CountedVectors const& vectors) {
    LabelCounts sum;
    for (auto const& row : vectors) {
        sum += row.m_counts;
    }
    return sum;
}

} // namespace Quorvane::Rules
