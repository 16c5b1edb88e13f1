// SPDX-License-Identifier: Apache-2.0
//
// Builders for training mail made of numbers.
#pragma once

#include "rules/format/AttributeTable.h"
#include "rules/vectors/VectorTable.h"

#include <cstdint>
#include <initializer_list>
#include <random>
#include <utility>
#include <vector>

namespace Quorvane::Testing {

// A vector that is 0 but for the attributes named.
inline Rules::AttributeVector
vectorOf(std::initializer_list<std::pair<std::size_t, std::int32_t>> values) {
    Rules::AttributeVector vector{};
    for (auto const& [attribute, value] : values) {
        vector.at(attribute) = value;
    }
    return vector;
}

inline Rules::CountedVector
counted(std::initializer_list<std::pair<std::size_t, std::int32_t>> values, std::uint64_t spam,
        std::uint64_t ham) {
    return {vectorOf(values), {spam, ham}};
}

// Vectors over attributes 5, 7, 9 and 10 in which spam follows a hidden rule, with some noise. The
// same seed gives the same mail.
inline std::vector<Rules::CountedVector> plantedMail(unsigned seed, std::size_t rows = 400) {
    std::mt19937 random(seed);
    auto const draw = [&random](std::uint32_t bound) { return random() % bound; };
    std::vector<Rules::CountedVector> mail;
    for (std::size_t i = 0; i < rows; ++i) {
        Rules::CountedVector row;
        for (auto const attribute : {5U, 7U, 9U, 10U, 12U, 19U, 33U}) {
            row.m_vector.at(attribute) = static_cast<std::int32_t>(draw(4));
        }
        bool const isSpam = (row.m_vector[Attribute::firstHeloDynamic] == 1 &&
                             row.m_vector[Attribute::firstHeloMatchesReverse] != 2) ||
                            (row.m_vector[Attribute::hopsHeloMismatchesReverse] == 3 &&
                             row.m_vector[Attribute::firstReverseDynamic] == 0);
        auto const much = 1 + draw(97);
        auto const little = draw(7);
        row.m_counts.m_spam = isSpam ? much : little;
        row.m_counts.m_ham = isSpam ? little : much;
        mail.push_back(row);
    }
    return mail;
}

} // namespace Quorvane::Testing
