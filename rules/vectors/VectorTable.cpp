// SPDX-License-Identifier: Apache-2.0
#include "rules/vectors/VectorTable.h"

#include "rules/vectors/LearnError.h"

namespace Quorvane::Rules {

namespace {

LabelCounts s_sum(std::vector<LabelCounts> const& counts) {
    LabelCounts sum;
    for (auto const& one : counts) {
        sum += one;
    }
    return sum;
}

template<typename CountsOf>
std::vector<CountedVector> s_select(std::vector<VectorTable::Row> const& rows, CountsOf countsOf) {
    std::vector<CountedVector> selected;
    for (auto const& row : rows) {
        LabelCounts const counts = countsOf(row);
        if (counts.total() > 0) {
            selected.push_back({row.m_vector, counts});
        }
    }
    return selected;
}

} // namespace

LabelCounts VectorTable::total() const {
    LabelCounts sum;
    for (auto const& row : m_rows) {
        sum += s_sum(row.m_byCorpus);
    }
    return sum;
}

LabelCounts VectorTable::totalOf(std::size_t corpus) const {
    LabelCounts sum;
    for (auto const& row : m_rows) {
        sum += row.m_byCorpus.at(corpus);
    }
    return sum;
}

std::vector<CountedVector> VectorTable::all() const {
    return s_select(m_rows, [](Row const& row) { return s_sum(row.m_byCorpus); });
}

std::vector<CountedVector> VectorTable::without(std::size_t corpus) const {
    return s_select(m_rows, [corpus](Row const& row) {
        return s_sum(row.m_byCorpus) - row.m_byCorpus.at(corpus);
    });
}

std::vector<CountedVector> VectorTable::only(std::size_t corpus) const {
    return s_select(m_rows, [corpus](Row const& row) { return row.m_byCorpus.at(corpus); });
}

void VectorTableBuilder::addTo(ByArrival& counts, MailLabel label, std::string_view corpus,
                               std::uint64_t count) {
    if (count > maxTrainingMessages - m_messages) {
        throw LearnError("more than 2^53 training messages in total: sums would not be exact; "
                         "divide the counts");
    }
    m_messages += count;
    auto const index = m_corpora.emplace(corpus, m_corpora.size()).first->second;
    if (counts.size() <= index) {
        counts.resize(index + 1);
    }
    (label == MailLabel::spam ? counts[index].m_spam : counts[index].m_ham) += count;
}

void VectorTableBuilder::add(AttributeVector const& vector, MailLabel label,
                             std::string_view corpus, std::uint64_t count) {
    if (count != 0) {
        addTo(m_counts[vector], label, corpus, count);
    }
}

void VectorTableBuilder::addUnjudged(MailLabel label, std::string_view corpus,
                                     std::uint64_t count) {
    if (count != 0) {
        addTo(m_unjudged, label, corpus, count);
    }
}

VectorTable VectorTableBuilder::finish() const {
    VectorTable table;
    // Corpora were numbered as they came; the table numbers them by name.
    std::vector<std::size_t> arrival;
    for (auto const& [name, index] : m_corpora) {
        table.m_corpora.push_back(name);
        arrival.push_back(index);
    }
    auto const inOrder = [&arrival](ByArrival const& counts) {
        std::vector<LabelCounts> sorted;
        sorted.reserve(arrival.size());
        for (auto const index : arrival) {
            sorted.push_back(index < counts.size() ? counts[index] : LabelCounts{});
        }
        return sorted;
    };
    table.m_rows.reserve(m_counts.size());
    for (auto const& [vector, counts] : m_counts) {
        table.m_rows.push_back({vector, inOrder(counts)});
    }
    table.m_unjudged = inOrder(m_unjudged);
    return table;
}

} // namespace Quorvane::Rules
