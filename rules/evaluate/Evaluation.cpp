// SPDX-License-Identifier: Apache-2.0
#include "rules/evaluate/Evaluation.h"

#include <algorithm>

namespace Quorvane::Rules {

namespace {

using JudgedRow = std::pair<JudgedVector, LabelCounts>;

std::size_t s_bin(double confidence) {
    auto const scaled = std::clamp(confidence, 0.0, 1.0) * static_cast<double>(reliabilityBins);
    return std::min(static_cast<std::size_t>(scaled), reliabilityBins - 1);
}

CorpusFigures s_figures(std::string const& name, std::vector<JudgedRow> const& rows,
                        LabelCounts const& unjudged) {
    CorpusFigures figures;
    figures.m_name = name;
    figures.m_unjudged = unjudged;
    std::vector<ScoredCounts> scores;
    for (auto const& [judged, counts] : rows) {
        figures.m_spamVerdicts.add(judged.m_verdict, counts.m_spam);
        figures.m_hamVerdicts.add(judged.m_verdict, counts.m_ham);
        scores.push_back({judged.m_score, counts});
        if (judged.m_decider.m_number != 0) {
            auto& bin = figures.m_reliability.at(s_bin(judged.m_confidence));
            bin.m_counts += counts;
            bin.m_confidenceSum += judged.m_confidence * static_cast<double>(counts.total());
        }
    }
    figures.m_roc = RocCurve(std::move(scores));
    return figures;
}

std::vector<std::string> s_wrongSources(SampleSources const& samples, AttributeVector const& vector,
                                        Verdict verdict) {
    if (verdict == Verdict::none) {
        return {};
    }
    auto const wrong = verdict == Verdict::spam ? MailLabel::ham : MailLabel::spam;
    auto const found = samples.find({vector, wrong});
    return found == samples.end() ? std::vector<std::string>{} : found->second;
}

} // namespace

double ReliabilityBin::meanConfidence() const {
    return m_counts.total() == 0 ? 0.0 : m_confidenceSum / static_cast<double>(m_counts.total());
}

Rate CorpusFigures::judgeable() const {
    return {judged().total(), judged().total() + m_unjudged.total()};
}

CorpusFigures figuresOf(std::vector<CountedVector> const& vectors, Judge const& judge) {
    std::vector<JudgedRow> rows(vectors.size());
    std::transform(vectors.begin(), vectors.end(), rows.begin(), [&judge](auto const& row) {
        return JudgedRow(judge(row.m_vector), row.m_counts);
    });
    return s_figures({}, rows, {});
}

Evaluation evaluate(VectorTable const& table, Judge const& judge, SampleSources const& samples) {
    Evaluation evaluation;
    auto const corpora = table.corpora().size();
    std::vector<std::vector<JudgedRow>> byCorpus(corpora);
    std::vector<JudgedRow> together;
    for (auto const& row : table.rows()) {
        auto const judged = judge(row.m_vector);
        LabelCounts all;
        for (std::size_t corpus = 0; corpus < corpora; ++corpus) {
            byCorpus[corpus].emplace_back(judged, row.m_byCorpus[corpus]);
            all += row.m_byCorpus[corpus];
        }
        together.emplace_back(judged, all);
        evaluation.m_deciders.add(judged, all,
                                  s_wrongSources(samples, row.m_vector, judged.m_verdict));
    }
    LabelCounts unjudged;
    for (std::size_t corpus = 0; corpus < corpora; ++corpus) {
        evaluation.m_corpora.push_back(
            s_figures(table.corpora()[corpus], byCorpus[corpus], table.unjudgedOf(corpus)));
        unjudged += table.unjudgedOf(corpus);
    }
    evaluation.m_together = s_figures("All together", together, unjudged);
    return evaluation;
}

} // namespace Quorvane::Rules
