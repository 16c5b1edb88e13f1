// SPDX-License-Identifier: Apache-2.0
//
// What rules decide about one attribute vector, as much as an evaluation needs. A plain value.
#pragma once

#include "rules/evaluate/Roc.h"

#include <cstdint>
#include <tuple>

namespace Quorvane::Rules {

enum class Verdict : std::uint8_t { none, ham, spam };

// "spam", "ham", "none".
constexpr char const* verdictName(Verdict verdict) {
    return verdict == Verdict::spam ? "spam" : verdict == Verdict::ham ? "ham" : "none";
}

// A tree node or a deciding elite rule, by the number that the answer reports.
struct Decider {
    bool m_isElite = false;
    std::int32_t m_number = 0; // 0: nothing decided

    bool operator==(Decider const&) const = default;
    bool operator<(Decider const& other) const {
        return std::tie(m_isElite, m_number) < std::tie(other.m_isElite, other.m_number);
    }
};

struct JudgedVector {
    Verdict m_verdict = Verdict::none;
    Decider m_decider;
    double m_confidence = -1.0; // of the decider, before adjustments
    double m_support = 0.0;
    double m_adjust = 0.0;
    double m_score = noScore;
};

} // namespace Quorvane::Rules
