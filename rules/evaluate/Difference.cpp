// SPDX-License-Identifier: Apache-2.0
#include "rules/evaluate/Difference.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace Quorvane::Rules {

namespace {

// The messages with one vector.
struct Row {
    std::map<std::string, KindCounts> m_byCorpus;
    std::vector<KnownSource> m_samples;
};
using Rows = std::map<AttributeVector, Row>;

// What the rules decide; it is the same for all messages of a group.
using Ruling = std::tuple<Verdict, Decider, double, double>;

Ruling s_ruling(JudgedVector const& judged) {
    return {judged.m_verdict, judged.m_decider, judged.m_confidence, judged.m_adjust};
}

KindCounts s_counts(LabelCounts const& counts, bool isSorted) {
    KindCounts kinds;
    kinds.of(MailKind::spam) = counts.m_spam;
    kinds.of(isSorted ? MailKind::ham : MailKind::unsorted) = counts.m_ham;
    return kinds;
}

int s_spamminess(Verdict verdict) {
    return verdict == Verdict::spam ? 1 : verdict == Verdict::ham ? -1 : 0;
}

std::size_t s_countOf(std::vector<KnownSource> const& samples, MailKind kind) {
    return static_cast<std::size_t>(
        std::count_if(samples.begin(), samples.end(),
                      [kind](KnownSource const& sample) { return sample.m_kind == kind; }));
}

class Comparison {
  public:
    Difference compare(ComparedMail const& mail, Judge const& before, Judge const& after) {
        addTable(mail.m_sorted, mail.m_sortedSamples, true);
        addTable(mail.m_unsorted, mail.m_unsortedSamples, false);
        for (auto const& [vector, row] : m_rows) {
            addRow(row, before(vector), after(vector));
        }
        finish();
        return std::move(m_difference);
    }

  private:
    void addTable(VectorTable const& table, SampleSources const& samples, bool isSorted) {
        auto const& corpora = table.corpora();
        for (std::size_t corpus = 0; corpus < corpora.size(); ++corpus) {
            m_difference.m_unjudged += s_counts(table.unjudgedOf(corpus), isSorted);
            m_corpora[corpora[corpus]]; // also one of which nothing can be judged
        }
        for (auto const& row : table.rows()) {
            for (std::size_t corpus = 0; corpus < corpora.size(); ++corpus) {
                m_rows[row.m_vector].m_byCorpus[corpora[corpus]] +=
                    s_counts(row.m_byCorpus[corpus], isSorted);
            }
        }
        for (auto const& [key, sources] : samples) {
            auto const kind = !isSorted                       ? MailKind::unsorted
                              : key.second == MailLabel::spam ? MailKind::spam
                                                              : MailKind::ham;
            for (auto const& source : sources) {
                m_rows[key.first].m_samples.push_back({kind, source});
            }
        }
    }

    void addRow(Row const& row, JudgedVector const& before, JudgedVector const& after) {
        KindCounts counts;
        bool const isChanged = before.m_verdict != after.m_verdict;
        for (auto const& [name, ofCorpus] : row.m_byCorpus) {
            counts += ofCorpus;
            auto& corpus = m_corpora[name];
            corpus.m_messages += ofCorpus.total();
            corpus.m_changed += isChanged ? ofCorpus.total() : 0;
        }
        m_difference.m_messages += counts;
        for (auto const kind : mailKinds) {
            m_difference.m_before.of(kind).add(before.m_verdict, counts.of(kind));
            m_difference.m_after.of(kind).add(after.m_verdict, counts.of(kind));
        }
        if (isChanged) {
            addChange(row, counts, before, after);
        } else {
            addConfidence(counts.total(), before, after);
        }
    }

    void addChange(Row const& row, KindCounts const& counts, JudgedVector const& before,
                   JudgedVector const& after) {
        auto& group = m_groups[{s_ruling(before), s_ruling(after)}];
        group.m_before = before;
        group.m_after = after;
        group.m_counts += counts;
        for (auto const& sample : row.m_samples) {
            if (s_countOf(group.m_samples, sample.m_kind) < Difference::maxSamples) {
                group.m_samples.push_back(sample);
            }
        }
    }

    void addConfidence(std::uint64_t messages, JudgedVector const& before,
                       JudgedVector const& after) {
        auto& changes = m_difference.m_confidence;
        bool const wasDecided = before.m_decider.m_number != 0;
        bool const isDecided = after.m_decider.m_number != 0;
        if (!wasDecided || !isDecided) {
            changes.m_nowDecided += isDecided ? messages : 0;
            changes.m_noLongerDecided += wasDecided ? messages : 0;
            return;
        }
        // Both sums first, so that the difference of equal ones is exactly 0.
        auto const change =
            (after.m_confidence + after.m_adjust) - (before.m_confidence + before.m_adjust);
        changes.m_up += change > 0.0 ? messages : 0;
        changes.m_down += change < 0.0 ? messages : 0;
        changes.m_sum += std::abs(change) * static_cast<double>(messages);
        if (std::abs(change) > std::abs(changes.m_largest)) {
            changes.m_largest = change;
        }
    }

    void finish() {
        for (auto& [ruling, group] : m_groups) {
            m_difference.m_groups.push_back(std::move(group));
        }
        std::stable_sort(m_difference.m_groups.begin(), m_difference.m_groups.end(),
                         [](ChangeGroup const& a, ChangeGroup const& b) {
                             return a.m_counts.total() > b.m_counts.total();
                         });
        for (auto& [name, corpus] : m_corpora) {
            corpus.m_name = name;
            m_difference.m_corpora.push_back(std::move(corpus));
        }
    }

    Rows m_rows;
    std::map<std::pair<Ruling, Ruling>, ChangeGroup> m_groups;
    std::map<std::string, CorpusChanges> m_corpora;
    Difference m_difference;
};

// Messages of the groups whose verdict moves this way.
std::uint64_t s_moved(std::vector<ChangeGroup> const& groups, int way) {
    std::uint64_t messages = 0;
    for (auto const& group : groups) {
        for (auto const kind : mailKinds) {
            if (improvement(kind, group.m_before.m_verdict, group.m_after.m_verdict) == way) {
                messages += group.m_counts.of(kind);
            }
        }
    }
    return messages;
}

} // namespace

KindCounts& KindCounts::operator+=(KindCounts const& other) {
    std::transform(m_values.begin(), m_values.end(), other.m_values.begin(), m_values.begin(),
                   std::plus<>());
    return *this;
}

double ConfidenceChanges::mean() const {
    return m_up + m_down == 0 ? 0.0 : m_sum / static_cast<double>(m_up + m_down);
}

KindCounts Difference::changed() const {
    KindCounts counts;
    for (auto const& group : m_groups) {
        counts += group.m_counts;
    }
    return counts;
}

std::uint64_t Difference::better() const {
    return s_moved(m_groups, 1);
}

std::uint64_t Difference::worse() const {
    return s_moved(m_groups, -1);
}

int improvement(MailKind kind, Verdict before, Verdict after) {
    if (kind == MailKind::unsorted) {
        return 0;
    }
    int const change = s_spamminess(after) - s_spamminess(before);
    int const way = change > 0 ? 1 : change < 0 ? -1 : 0;
    return kind == MailKind::spam ? way : -way;
}

Difference compare(ComparedMail const& mail, Judge const& before, Judge const& after) {
    return Comparison().compare(mail, before, after);
}

} // namespace Quorvane::Rules
