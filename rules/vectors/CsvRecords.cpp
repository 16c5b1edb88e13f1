// SPDX-License-Identifier: Apache-2.0
#include "rules/vectors/CsvRecords.h"

#include "rules/vectors/LearnError.h"

#include <string_view>
#include <utility>

namespace Quorvane::Rules {

namespace {

// Spreadsheet programs write it at the start of a UTF-8 file.
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

} // namespace

CsvRecords::CsvRecords(std::istream& input, std::string name)
    : m_input(input), m_name(std::move(name)) {}

bool CsvRecords::next(std::vector<std::string>& fields) {
    m_recordBytes = 0;
    do {
        if (!readLine()) {
            return false;
        }
        if (m_line == 1 && m_text.rfind(byteOrderMark, 0) == 0) {
            m_text.erase(0, byteOrderMark.size());
        }
    } while (m_text.empty());
    m_recordLine = m_line;
    split(fields);
    return true;
}

// Byte by byte up to the limit: a hostile file without line ends must not fill the memory.
bool CsvRecords::readLine() {
    m_text.clear();
    m_position = 0;
    ++m_line;
    std::streambuf* const buffer = m_input.rdbuf();
    for (int c = buffer->sbumpc(); c != std::char_traits<char>::eof(); c = buffer->sbumpc()) {
        if (c == '\n') {
            if (!m_text.empty() && m_text.back() == '\r') {
                m_text.pop_back();
            }
            return true;
        }
        m_text.push_back(static_cast<char>(c));
        if (++m_recordBytes > maxCsvRecord) {
            fail("a record longer than 1 MiB: this is not a table of vectors");
        }
    }
    return !m_text.empty();
}

void CsvRecords::split(std::vector<std::string>& fields) {
    std::size_t count = 0;
    for (bool more = true; more; ++count) {
        if (fields.size() <= count) {
            fields.emplace_back();
        }
        fields[count].clear();
        if (m_position < m_text.size() && m_text[m_position] == '"') {
            readQuoted(fields[count]);
        } else {
            readPlain(fields[count]);
        }
        more = m_position < m_text.size();
        ++m_position;
    }
    fields.resize(count);
}

// Leaves the position at the comma after the field or at the end of the line.
void CsvRecords::readQuoted(std::string& field) {
    ++m_position;
    while (true) {
        auto const quote = m_text.find('"', m_position);
        field.append(m_text, m_position, quote - m_position);
        if (quote == std::string::npos) {
            field.push_back('\n');
            if (!readLine()) {
                fail("a quoted field is never closed; add its second quote");
            }
            continue;
        }
        m_position = quote + 1;
        if (m_position == m_text.size() || m_text[m_position] == ',') {
            return;
        }
        if (m_text[m_position] != '"') {
            fail("text after a closing quote; double the quotes inside a field");
        }
        field.push_back('"');
        ++m_position;
    }
}

void CsvRecords::readPlain(std::string& field) {
    auto const comma = m_text.find(',', m_position);
    auto const end = comma == std::string::npos ? m_text.size() : comma;
    field.append(m_text, m_position, end - m_position);
    m_position = end;
    if (field.find('"') != std::string::npos) {
        fail("a quote inside a field that does not begin with one");
    }
}

void CsvRecords::fail(std::string const& what) const {
    throw LearnError(m_name + ":" + std::to_string(m_line) + ":" + std::to_string(m_position + 1) +
                     ": " + what);
}

} // namespace Quorvane::Rules
