// SPDX-License-Identifier: Apache-2.0
//
// VectorTable: the training mail, as distinct attribute vectors with exact counts of spam and ham
// for each corpus. Learning reads nothing else, so its cost follows the number of distinct vectors
// (a few thousand), not the number of messages (any number).
//
// A plain value that never changes once it is finished. Rows and corpora are sorted, so the same
// mail read in any order, in any number of shards, makes the same table. A LearnError is thrown
// when the counts leave the range in which every sum is exact.
#pragma once

#include "rules/format/RuleTests.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace Quorvane::Rules {

using Quorvane::AttributeVector;

enum class MailLabel : std::uint8_t { ham, spam };

struct LabelCounts {
    std::uint64_t m_spam = 0;
    std::uint64_t m_ham = 0;

    std::uint64_t total() const { return m_spam + m_ham; }
    LabelCounts& operator+=(LabelCounts const& other) {
        m_spam += other.m_spam;
        m_ham += other.m_ham;
        return *this;
    }
    LabelCounts operator-(LabelCounts const& other) const {
        return {m_spam - other.m_spam, m_ham - other.m_ham};
    }
    bool operator==(LabelCounts const&) const = default;
};

// One distinct vector and the messages that had it.
struct CountedVector {
    AttributeVector m_vector{};
    LabelCounts m_counts;
};

// The most messages that a table holds: up to here doubles count exactly.
inline constexpr std::uint64_t maxTrainingMessages = std::uint64_t{1} << 53;

class VectorTable {
  public:
    struct Row {
        AttributeVector m_vector;
        std::vector<LabelCounts> m_byCorpus; // in the order of corpora()
    };

    std::vector<std::string> const& corpora() const { return m_corpora; }
    std::vector<Row> const& rows() const { return m_rows; }
    LabelCounts total() const;
    LabelCounts totalOf(std::size_t corpus) const;
    // Messages of a corpus without a vector, since nothing in them can be judged. No row and no
    // total counts them.
    LabelCounts const& unjudgedOf(std::size_t corpus) const { return m_unjudged.at(corpus); }

    // The vectors of all corpora, of all but one, of one alone, without those that have no
    // messages.
    std::vector<CountedVector> all() const;
    std::vector<CountedVector> without(std::size_t corpus) const;
    std::vector<CountedVector> only(std::size_t corpus) const;

  private:
    friend class VectorTableBuilder;

    std::vector<std::string> m_corpora;
    std::vector<Row> m_rows;
    std::vector<LabelCounts> m_unjudged; // in the order of m_corpora
};

// Collects vectors in any order. Not for several threads at once.
class VectorTableBuilder {
  public:
    // Adds `count` messages. A LearnError when the table would pass maxTrainingMessages.
    void add(AttributeVector const& vector, MailLabel label, std::string_view corpus,
             std::uint64_t count = 1);

    // Adds messages without a vector.
    void addUnjudged(MailLabel label, std::string_view corpus, std::uint64_t count = 1);

    // The table of everything added so far.
    VectorTable finish() const;

  private:
    // Counts of corpora in the order in which they came.
    using ByArrival = std::vector<LabelCounts>;

    void addTo(ByArrival& counts, MailLabel label, std::string_view corpus, std::uint64_t count);

    std::map<std::string, std::size_t> m_corpora; // numbered as they came
    std::map<AttributeVector, ByArrival> m_counts;
    ByArrival m_unjudged;
    std::uint64_t m_messages = 0;
};

} // namespace Quorvane::Rules
