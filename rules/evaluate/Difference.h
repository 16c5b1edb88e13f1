// SPDX-License-Identifier: Apache-2.0
//
// Difference: what changes for some mail when one rule set replaces another. A plain value, made
// from tables of counted vectors and two functions that judge one vector; each distinct vector is
// judged once by each.
#pragma once

#include "rules/evaluate/Evaluation.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Quorvane::Rules {

// The label of a message, or that nobody has sorted it.
enum class MailKind : std::uint8_t { spam, ham, unsorted };
inline constexpr std::array<MailKind, 3> mailKinds{MailKind::spam, MailKind::ham,
                                                   MailKind::unsorted};

// "spam", "ham", "unsorted".
constexpr char const* mailKindName(MailKind kind) {
    return kind == MailKind::spam ? "spam" : kind == MailKind::ham ? "ham" : "unsorted";
}

// A value for each kind of mail.
template<typename Value>
struct ByKind {
    std::array<Value, mailKinds.size()> m_values{};

    Value& of(MailKind kind) { return m_values.at(static_cast<std::size_t>(kind)); }
    Value const& of(MailKind kind) const { return m_values.at(static_cast<std::size_t>(kind)); }
};

struct KindCounts : ByKind<std::uint64_t> {
    std::uint64_t total() const {
        return of(MailKind::spam) + of(MailKind::ham) + of(MailKind::unsorted);
    }
    KindCounts& operator+=(KindCounts const& other);
};

struct KnownSource {
    MailKind m_kind;
    std::string m_source;
};

// Messages whose verdict changes, with the same ruling before and the same ruling after.
struct ChangeGroup {
    JudgedVector m_before; // score left out
    JudgedVector m_after;
    KindCounts m_counts;
    std::vector<KnownSource> m_samples;
};

// Messages whose verdict stays.
struct ConfidenceChanges {
    std::uint64_t m_up = 0;         // confidence, adjusted, now higher: more like spam
    std::uint64_t m_down = 0;       // lower
    double m_sum = 0.0;             // of all these changes, without sign
    double m_largest = 0.0;         // with sign
    std::uint64_t m_nowDecided = 0; // no rule gave a confidence before
    std::uint64_t m_noLongerDecided = 0;

    double mean() const; // 0 without changes
};

struct CorpusChanges {
    std::string m_name;
    std::uint64_t m_messages = 0;
    std::uint64_t m_changed = 0;
};

struct Difference {
    // Samples kept for each group and kind of mail.
    static constexpr std::size_t maxSamples = 3;

    KindCounts m_messages; // judgeable
    KindCounts m_unjudged;
    ByKind<VerdictCounts> m_before;
    ByKind<VerdictCounts> m_after;
    std::vector<ChangeGroup> m_groups; // most messages first
    ConfidenceChanges m_confidence;
    std::vector<CorpusChanges> m_corpora; // by name

    KindCounts changed() const;
    // Sorted mail whose verdict moves towards its label, and away from it.
    std::uint64_t better() const;
    std::uint64_t worse() const;
};

// Whether a verdict moves towards the label, +1, away from it, -1; 0 for unsorted mail.
int improvement(MailKind kind, Verdict before, Verdict after);

struct ComparedMail {
    VectorTable m_sorted;
    SampleSources m_sortedSamples;
    // Counted as ham, since a table knows labels only.
    VectorTable m_unsorted;
    SampleSources m_unsortedSamples;
};

Difference compare(ComparedMail const& mail, Judge const& before, Judge const& after);

} // namespace Quorvane::Rules
