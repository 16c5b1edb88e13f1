// SPDX-License-Identifier: Apache-2.0
//
// Evaluation: what a rule set does on sorted mail, for each corpus and together. A plain value,
// made from a table of counted vectors and a function that judges one vector.
//
// Rates count judgeable messages. A message without a public hop gets no verdict, whatever the
// rules are, and is counted apart. Verdict "none" is neither right nor wrong.
#pragma once

#include "rules/evaluate/Deciders.h"
#include "rules/evaluate/JudgedVector.h"
#include "rules/evaluate/Roc.h"
#include "rules/evaluate/Wilson.h"
#include "rules/vectors/VectorTable.h"

#include <array>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace Quorvane::Rules {

// How the messages of one label were judged.
struct VerdictCounts {
    std::uint64_t m_spam = 0;
    std::uint64_t m_ham = 0;
    std::uint64_t m_none = 0;

    std::uint64_t total() const { return m_spam + m_ham + m_none; }
    void add(Verdict verdict, std::uint64_t messages) {
        (verdict == Verdict::spam ? m_spam : verdict == Verdict::ham ? m_ham : m_none) += messages;
    }
};

// Messages whose reported confidence lies in one tenth of the scale. Adjusting rules are left out:
// they change the verdict, not the confidence of the deciding rule.
struct ReliabilityBin {
    double m_confidenceSum = 0.0; // weighted by messages
    LabelCounts m_counts;

    double meanConfidence() const;
    Rate spamRate() const { return {m_counts.m_spam, m_counts.total()}; }
};
inline constexpr std::size_t reliabilityBins = 10;

// The lowest confidence of a bin, counted from 0.
inline double binStart(std::size_t bin) {
    return static_cast<double>(bin) / static_cast<double>(reliabilityBins);
}

struct CorpusFigures {
    std::string m_name;
    LabelCounts m_unjudged;
    VerdictCounts m_spamVerdicts;
    VerdictCounts m_hamVerdicts;
    RocCurve m_roc{{}};
    std::array<ReliabilityBin, reliabilityBins> m_reliability{};

    LabelCounts judged() const { return m_roc.total(); }
    Rate judgeable() const;
    Rate caught() const { return {m_spamVerdicts.m_spam, m_spamVerdicts.total()}; }
    Rate falsePositives() const { return {m_hamVerdicts.m_spam, m_hamVerdicts.total()}; }
    Rate missed() const { return {m_spamVerdicts.m_ham, m_spamVerdicts.total()}; }
    Rate passed() const { return {m_hamVerdicts.m_ham, m_hamVerdicts.total()}; }
};

struct Evaluation {
    std::vector<CorpusFigures> m_corpora;
    // All together; only here the deciders.
    CorpusFigures m_together;
    Deciders m_deciders;
};

using Judge = std::function<JudgedVector(AttributeVector const&)>;
// Where some messages with a vector came from; nothing for vectors from tables.
using SampleSources = std::map<std::pair<AttributeVector, MailLabel>, std::vector<std::string>>;

// The figures of some vectors, without a name.
CorpusFigures figuresOf(std::vector<CountedVector> const& vectors, Judge const& judge);

Evaluation evaluate(VectorTable const& table, Judge const& judge, SampleSources const& samples);

} // namespace Quorvane::Rules
