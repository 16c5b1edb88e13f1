// SPDX-License-Identifier: Apache-2.0
//
// CsvRecords: reads CSV (RFC 4180) from a stream, and holds one record at a time in memory.
//
// Line ends are LF or CR LF. A quoted field may hold commas, quotes (doubled) and line breaks. The
// stream belongs to the caller and must outlive the reader. A quote that is never closed or stands
// inside a field, or a record beyond maxCsvRecord, is a LearnError with name, line and column.
#pragma once

#include <cstddef>
#include <istream>
#include <string>
#include <vector>

namespace Quorvane::Rules {

// The most bytes of one record; a longer one is not a table of vectors.
inline constexpr std::size_t maxCsvRecord = std::size_t{1} << 20;

class CsvRecords {
  public:
    CsvRecords(std::istream& input, std::string name);

    // Reads the next record into `fields`; false at the end of the input. Empty lines are skipped.
    bool next(std::vector<std::string>& fields);

    // The line in which the last record began, counted from 1.
    std::size_t line() const { return m_recordLine; }
    std::string const& name() const { return m_name; }

  private:
    bool readLine();
    void split(std::vector<std::string>& fields);
    void readQuoted(std::string& field);
    void readPlain(std::string& field);
    [[noreturn]] void fail(std::string const& what) const;

    std::istream& m_input;
    std::string m_name;
    std::string m_text; // the current line
    std::size_t m_position = 0;
    std::size_t m_line = 0;
    std::size_t m_recordLine = 0;
    std::size_t m_recordBytes = 0;
};

} // namespace Quorvane::Rules
