// SPDX-License-Identifier: Apache-2.0
#include "rules/vectors/VectorCsv.h"

#include "rules/vectors/CsvRecords.h"
#include "rules/vectors/LearnError.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace Quorvane::Rules {

namespace {

using Fields = std::vector<std::string>;

constexpr std::uint64_t rowsBetweenReports = 4096;

// What a column holds: an attribute, by its number, or one of these.
namespace Column {
enum Index : std::size_t { source = attributeCount, label, count, corpus, end };
} // namespace Column

// In the order of their numbers.
constexpr std::array<std::string_view, Column::end - attributeCount> otherColumns{
    "source", "label", "count", "corpus"};

// The column with this name; Column::end when there is none.
std::size_t s_columnOf(std::string_view name) {
    auto const* const other = std::find(otherColumns.begin(), otherColumns.end(), name);
    auto const otherColumn =
        attributeCount + static_cast<std::size_t>(other - otherColumns.begin());
    return attributeIndex(name).value_or(otherColumn);
}

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
            auto const column = s_columnOf(field);
            if (column == Column::end) {
                fail(m_columns.size(),
                     "unknown column '" + field +
                         "'; known are source, the attributes, label, count, corpus");
            }
            if (has(column)) {
                fail(m_columns.size(), "a second column '" + field + "'");
            }
            m_columns.push_back(column);
        }
        if (m_columns.front() != Column::source) {
            fail(0, "the first column must be 'source'");
        }
        for (auto const& facts : attributeTable) {
            if (!has(facts.m_index)) {
                fail(0, "the column '" + std::string(facts.m_name) + "' is missing");
            }
        }
        if (!m_defaults.m_label && !has(Column::label)) {
            fail(0, "no column 'label' says which rows are spam and which are ham");
        }
    }

    bool has(std::size_t column) const {
        return std::find(m_columns.begin(), m_columns.end(), column) != m_columns.end();
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
        switch (m_columns[index]) {
        case Column::source:
            row.m_source = field;
            return;
        case Column::label:
            row.m_label = readLabel(index, field);
            return;
        case Column::count:
            readNumber(index, field, row.m_count);
            return;
        case Column::corpus:
            row.m_corpus = field;
            return;
        default:
            if (field.empty()) {
                ++row.m_emptyAttributes;
            } else {
                readNumber(index, field, row.m_vector.at(m_columns[index]));
            }
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
    std::vector<std::size_t> m_columns;
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

void s_writeRow(std::ostream& output, std::string const& values, char const* label,
                std::uint64_t count, std::string const& corpus) {
    if (count != 0) {
        output << values << ',' << label << ',' << count << ',' << corpus << '\n';
    }
}

// The rows of one vector: the spam and the ham of each corpus.
void s_writeRows(std::ostream& output, std::string const& values,
                 std::vector<LabelCounts> const& counts, VectorTable const& table) {
    for (std::size_t i = 0; i < counts.size(); ++i) {
        auto const corpus = csvField(table.corpora()[i]);
        s_writeRow(output, values, "spam", counts[i].m_spam, corpus);
        s_writeRow(output, values, "ham", counts[i].m_ham, corpus);
    }
}

} // namespace

VectorCsvCounts readVectorCsv(std::istream& input, std::string const& name,
                              VectorCsvDefaults const& defaults, VectorTableBuilder& table,
                              RowProgress const& progress) {
    CsvRecords records(input, name);
    VectorCsvCounts counts;
    VectorReader(records, defaults).read([&](Row const& row) {
        try {
            s_add(row, table, counts);
        } catch (LearnError const& error) {
            throw LearnError(name + ":" + std::to_string(records.line()) + ": " + error.what());
        }
        if (progress && counts.m_rows % rowsBetweenReports == 0) {
            progress(counts.m_rows);
        }
    });
    return counts;
}

void readVectorRows(std::istream& input, std::string const& name,
                    std::function<void(VectorCsvRow const&)> const& sink) {
    CsvRecords records(input, name);
    // The label is not used; with a default none has to be given.
    VectorReader(records, {MailLabel::ham, {}}).read([&](Row const& row) {
        sink({row.m_source,
              row.m_emptyAttributes == 0 ? std::optional(row.m_vector) : std::nullopt});
    });
}

std::string csvField(std::string const& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) {
        return text;
    }
    std::string quoted = "\"";
    for (char const c : text) {
        quoted.append(c == '"' ? 2 : 1, c);
    }
    return quoted + '"';
}

std::string csvValues(std::optional<AttributeVector> const& vector) {
    if (!vector) {
        return std::string(attributeCount, ',');
    }
    std::string text;
    for (auto const value : *vector) {
        text += ',' + std::to_string(value);
    }
    return text;
}

std::string csvHeader() {
    std::string line = "source";
    for (auto const& facts : attributeTable) {
        line += ',' + std::string(facts.m_name);
    }
    return line;
}

void writeVectorCsv(std::ostream& output, VectorTable const& table) {
    output << csvHeader() << ",label,count,corpus\n";
    std::vector<LabelCounts> unjudged;
    for (std::size_t i = 0; i < table.corpora().size(); ++i) {
        unjudged.push_back(table.unjudgedOf(i));
    }
    s_writeRows(output, csvValues(std::nullopt), unjudged, table);
    for (auto const& row : table.rows()) {
        s_writeRows(output, csvValues(row.m_vector), row.m_byCorpus, table);
    }
}

} // namespace Quorvane::Rules
