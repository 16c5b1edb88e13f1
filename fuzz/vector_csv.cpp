// SPDX-License-Identifier: Apache-2.0
//
// Reads arbitrary bytes as a table of vectors. What cannot be read is a LearnError with its place;
// a table that was read is written as one that is read the same.
#include "Check.h"
#include "rules/vectors/LearnError.h"
#include "rules/vectors/VectorCsv.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string>

using namespace Quorvane::Rules;
using Quorvane::check;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace {

struct Read {
    VectorTable m_table;
    VectorCsvCounts m_counts;
};

std::optional<Read> s_read(std::string const& text, VectorCsvDefaults const& defaults) {
    std::istringstream input(text);
    VectorTableBuilder builder;
    try {
        auto const counts = readVectorCsv(input, "table", defaults, builder);
        return Read{builder.finish(), counts};
    } catch (LearnError const& error) {
        check(std::string(error.what()).find("table") == 0, "an error begins with its file");
        return std::nullopt;
    }
}

std::string s_written(VectorTable const& table) {
    std::ostringstream output;
    writeVectorCsv(output, table);
    return output.str();
}

// Another way to read the same file; false for a table that cannot be read.
bool s_countRows(std::string const& text, std::uint64_t& rows) {
    std::istringstream input(text);
    try {
        readVectorRows(input, "table", [&rows](VectorCsvRow const& /*row*/) { ++rows; });
        return true;
    } catch (LearnError const&) {
        return false;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string const text(reinterpret_cast<char const*>(data), size);
    auto const read = s_read(text, {MailLabel::spam, "corpus"});
    std::uint64_t rows = 0;
    bool const areRows = s_countRows(text, rows);
    if (read) {
        check(areRows && rows == read->m_counts.m_rows, "a table has the rows that are counted");
        auto const written = s_written(read->m_table);
        auto const again = s_read(written, {});
        check(again && s_written(again->m_table) == written, "a written table is read the same");
        check(again->m_table.total() == read->m_table.total(), "no message gets lost");
    }
    return 0;
}
