// SPDX-License-Identifier: Apache-2.0
#include "apps/workshop/ExplainInput.h"

#include "apps/commandline/ProgramError.h"
#include "apps/input/Inputs.h"
#include "apps/workshop/VectorText.h"
#include "platform/HeaderReader.h"
#include "rules/model/RuleError.h"
#include "rules/vectors/VectorCsv.h"

#include <array>
#include <filesystem>
#include <istream>
#include <new>
#include <streambuf>
#include <utility>

namespace Quorvane::Workshop {

namespace {

constexpr std::string_view standardInput = "-";
constexpr std::string_view tableStart = "source,";

// The bytes of a source as a stream.
class SourceBuffer : public std::streambuf {
  public:
    explicit SourceBuffer(ByteSource& source) : m_source(source) {}

  protected:
    int_type underflow() override {
        auto const count = m_source.read(m_bytes.data(), m_bytes.size());
        setg(m_bytes.data(), m_bytes.data(), m_bytes.data() + count);
        return count == 0 ? traits_type::eof() : traits_type::to_int_type(m_bytes[0]);
    }

  private:
    ByteSource& m_source;
    std::array<char, 65536> m_bytes{};
};

bool s_isVector(std::string const& argument) {
    std::error_code error;
    return argument != standardInput && argument.find('=') != std::string::npos &&
           !std::filesystem::exists(inputName(argument).m_path, error);
}

} // namespace

ExplainInput::ExplainInput(std::string argument, HeaderLimits const& limits, Interrupt& interrupt)
    : m_argument(std::move(argument)), m_limits(limits), m_interrupt(interrupt) {
    if (s_isVector(m_argument)) {
        m_kind = Kind::vector;
        m_vector = parseVector(m_argument);
        return;
    }
    auto const name = inputName(m_argument);
    if (!name.isWhole()) {
        return;
    }
    try {
        m_opened = openInput(name.m_path, interrupt);
        bool const isTable =
            m_opened.m_bytes && peekStart(m_opened.m_bytes, tableStart.size()) == tableStart;
        m_kind = isTable ? Kind::table : Kind::messages;
    } catch (InputError const& error) {
        throw Rules::RuleError(Rules::RuleError::Kind::noInput,
                               m_argument + ": cannot be opened: " + error.what() +
                                   "; give a message, a table of vectors, or a vector as in "
                                   "first_helo_dynamic=yes,hop_behind_first=no");
    }
}

void ExplainInput::read(std::function<void(AskedItem const&)> const& sink) {
    if (m_kind == Kind::vector) {
        sink({.m_source = "vector", .m_vector = m_vector});
        return;
    }
    try {
        if (m_kind == Kind::messages) {
            readMessages(sink);
            return;
        }
        SourceBuffer buffer(*m_opened.m_bytes);
        std::istream stream(&buffer);
        Rules::readVectorRows(stream, m_argument, [&](Rules::VectorCsvRow const& row) {
            sink({.m_source = std::string(row.m_source), .m_vector = row.m_vector});
        });
    } catch (InputError const& error) {
        throw Rules::RuleError(Rules::RuleError::Kind::noInput,
                               m_argument + ": cannot be read: " + error.what());
    }
}

void ExplainInput::readMessages(std::function<void(AskedItem const&)> const& sink) {
    bool const isOpen = m_opened.m_bytes || m_opened.m_archive;
    auto inputs = isOpen ? Inputs(m_argument, std::move(m_opened), m_interrupt, m_limits)
                         : Inputs({m_argument}, m_interrupt, m_limits);
    for (InputItem item; inputs.next(item);) {
        try {
            sink({item.m_source, item.m_problem, item.m_exitStatus,
                  HeaderReader::read(item.m_headers, m_limits.m_maxHops)});
        } catch (std::bad_alloc const&) {
            sink({item.m_source, noMemoryFor(item.m_headers.size()), ExitStatus::badData});
        }
    }
}

} // namespace Quorvane::Workshop
