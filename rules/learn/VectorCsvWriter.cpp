// SPDX-License-Identifier: Apache-2.0
#include "rules/learn/VectorCsvWriter.h"

#include <string>

namespace Quorvane::Rules {

namespace {

std::string s_quoted(std::string const& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) {
        return text;
    }
    std::string quoted = "\"";
    for (char const c : text) {
        quoted.append(c == '"' ? 2 : 1, c);
    }
    return quoted + '"';
}

void s_writeRow(std::ostream& output, AttributeVector const& vector, char const* label,
                std::uint64_t count, std::string const& corpus) {
    if (count == 0) {
        return;
    }
    for (auto const value : vector) {
        output << ',' << value;
    }
    output << ',' << label << ',' << count << ',' << corpus << '\n';
}

} // namespace

void writeVectorCsv(std::ostream& output, VectorTable const& table) {
    output << "source";
    for (auto const& facts : attributeTable) {
        output << ',' << facts.m_name;
    }
    output << ",label,count,corpus\n";
    for (auto const& row : table.rows()) {
        for (std::size_t i = 0; i < row.m_byCorpus.size(); ++i) {
            auto const corpus = s_quoted(table.corpora()[i]);
            s_writeRow(output, row.m_vector, "spam", row.m_byCorpus[i].m_spam, corpus);
            s_writeRow(output, row.m_vector, "ham", row.m_byCorpus[i].m_ham, corpus);
        }
    }
}

} // namespace Quorvane::Rules
