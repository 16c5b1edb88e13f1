// SPDX-License-Identifier: Apache-2.0
#include "rules/vectors/VectorCsv.h"

#include "rules/vectors/CsvRecords.h"
#include "rules/vectors/LearnError.h"

#include <algorithm>
#include <charconv>

namespace Quorvane::Rules {

namespace {

using Fields = std::vector<std::string>;

constexpr std::uint64_t rowsBetweenReports = 4096;

// What a column means.
struct Column {
    enum class Kind { source, attribute, label, count, corpus };
    Kind m_kind = Kind::source;
    std::size_t m_attribute = 0;
};

// One row, before it is counted.
struct Row {
    std::string_view m_source;
    AttributeVector m_vector{};
    std::optional<MailLabel> m_label;
    std::uint64_t m_count = 1;
    std::string_view m_corpus;
    std::size_t m_emptyAttributes = 0;
};

using RowSink = std::function<void(Row const&)>;

class VectorReader {
  public:
    VectorReader(CsvRecords& records, VectorCsvDefaults const& defaults)
        : m_records(records), m_defaults(defaults) {}

    void read(RowSink const& sink) {
        Fields fields;
        if (!m_records.next(fields)) {
            throw LearnError(m_records.name() +
                             ": empty; a first line with column names is needed");
        }
        auto const header = fields;
        readHeader(header);
        while (m_records.next(fields)) {
            if (fields == header) {
                continue; // tables that were joined with cat
            }
            if (fields.size() != m_columns.size()) {
                fail(std::min(fields.size(), m_columns.size()),
                     std::to_string(fields.size()) + " fields where the first line names " +
                         std::to_string(m_columns.size()));
            }
            sink(readRow(fields));
        }
    }

  private:
    void readHeader(Fields const& fields) {
        for (auto const& field : fields) {
            auto const column = columnOf(field);
            auto const isSame = [&](Column const& other) {
                return other.m_kind == column.m_kind && other.m_attribute == column.m_attribute;
            };
            if (std::any_of(m_columns.begin(), m_columns.end(), isSame)) {
                fail(m_columns.size(), "a second column '" + field + "'");
            }
            m_columns.push_back(column);
        }
        if (m_columns.front().m_kind != Column::Kind::source) {
            fail(0, "the first column must be 'source'");
        }
        checkComplete();
    }

    Column columnOf(std::string const& name) const {
        if (auto const index = attributeIndex(name)) {
            return {Column::Kind::attribute, *index};
        }
        if (name == "source") {
            return {Column::Kind::source, 0};
        }
        if (name == "label") {
            return {Column::Kind::label, 0};
        }
        if (name == "count") {
            return {Column::Kind::count, 0};
        }
        if (name == "corpus") {
            return {Column::Kind::corpus, 0};
        }
        fail(m_columns.size(), "unknown column '" + name +
                                   "'; known are source, the attributes, label, count, corpus");
    }

    void checkComplete() const {
        for (auto const& facts : attributeTable) {
            auto const isIt = [&](Column const& column) {
                return column.m_kind == Column::Kind::attribute &&
                       column.m_attribute == facts.m_index;
            };
            if (std::none_of(m_columns.begin(), m_columns.end(), isIt)) {
                fail(0, "the column '" + std::string(facts.m_name) + "' is missing");
            }
        }
        auto const isLabel = [](Column const& column) {
            return column.m_kind == Column::Kind::label;
        };
        if (!m_defaults.m_label && std::none_of(m_columns.begin(), m_columns.end(), isLabel)) {
            fail(0, "no column 'label' says which rows are spam and which are ham");
        }
    }

    Row readRow(Fields const& fields) const {
        Row row;
        row.m_label = m_defaults.m_label;
        row.m_corpus = m_defaults.m_corpus;
        for (std::size_t i = 0; i < fields.size(); ++i) {
            readField(row, i, fields[i]);
        }
        if (row.m_emptyAttributes != 0 && row.m_emptyAttributes != attributeCount) {
            fail(0, "some attributes are empty; give all of them, or none for a message that "
                    "cannot be judged");
        }
        return row;
    }

    void readField(Row& row, std::size_t index, std::string const& field) const {
        auto const& column = m_columns[index];
        switch (column.m_kind) {
        case Column::Kind::source:
            row.m_source = field;
            return;
        case Column::Kind::attribute:
            if (field.empty()) {
                ++row.m_emptyAttributes;
            } else {
                readNumber(index, field, row.m_vector.at(column.m_attribute));
            }
            return;
        case Column::Kind::label:
            row.m_label = readLabel(index, field);
            return;
        case Column::Kind::count:
            readNumber(index, field, row.m_count);
            return;
        case Column::Kind::corpus:
            row.m_corpus = field;
            return;
        }
    }

    MailLabel readLabel(std::size_t index, std::string const& field) const {
        if (field == "spam") {
            return MailLabel::spam;
        }
        if (field == "ham") {
            return MailLabel::ham;
        }
        fail(index, "the label is 'spam' or 'ham', not '" + field + "'");
    }

    template<typename Number>
    void readNumber(std::size_t index, std::string const& field, Number& number) const {
        auto const* const end = field.data() + field.size();
        auto const result = std::from_chars(field.data(), end, number);
        if (result.ec != std::errc() || result.ptr != end) {
            fail(index, "'" + field + "' is not a whole number in range");
        }
    }

    [[noreturn]] void fail(std::size_t column, std::string const& what) const {
        throw LearnError(m_records.name() + ":" + std::to_string(m_records.line()) + ": column " +
                         std::to_string(column + 1) + ": " + what);
    }

    CsvRecords& m_records;
    VectorCsvDefaults const& m_defaults;
    std::vector<Column> m_columns;
};

void s_add(Row const& row, VectorTableBuilder& table, VectorCsvCounts& counts) {
    ++counts.m_rows;
    if (row.m_emptyAttributes != 0) {
        counts.m_withoutVector += row.m_count;
        table.addUnjudged(*row.m_label, row.m_corpus, row.m_count);
        return;
    }
    table.add(row.m_vector, *row.m_label, row.m_corpus, row.m_count);
}

} // namespace

VectorCsvCounts readVectorCsv(std::istream& input, std::string const& name,
                              VectorCsvDefaults const& defaults, VectorTableBuilder& table,
                              RowProgress const& progress) {
    CsvRecords records(input, name);
    VectorCsvCounts counts;
    VectorReader(records, defaults).read([&](Row const& row) {
        s_add(row, table, counts);
        if (progress && counts.m_rows % rowsBetweenReports == 0) {
            progress(counts.m_rows);
        }
    });
    return counts;
}

void readVectorRows(std::istream& input, std::string const& name,
                    std::function<void(VectorCsvRow const&)> const& sink) {
    CsvRecords records(input, name);
    // A label that nobody looks at, so that none has to be given.
    VectorReader(records, {MailLabel::ham, {}}).read([&](Row const& row) {
        sink({row.m_source,
              row.m_emptyAttributes == 0 ? std::optional(row.m_vector) : std::nullopt});
    });
}

} // namespace Quorvane::Rules
