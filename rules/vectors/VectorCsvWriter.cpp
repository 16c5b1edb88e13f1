// SPDX-License-Identifier: Apache-2.0
#include "rules/vectors/VectorCsvWriter.h"

namespace Quorvane::Rules {

namespace {

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

std::string csvValues(AttributeVector const& vector) {
    std::string text;
    for (auto const value : vector) {
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
    s_writeRows(output, std::string(attributeCount, ','), unjudged, table);
    for (auto const& row : table.rows()) {
        s_writeRows(output, csvValues(row.m_vector), row.m_byCorpus, table);
    }
}

} // namespace Quorvane::Rules
