// SPDX-License-Identifier: Apache-2.0
#include "apps/workshop/ExplainInput.h"

#include "apps/input/MessageReader.h"
#include "apps/workshop/VectorText.h"
#include "platform/HeaderReader.h"
#include "rules/model/RuleError.h"
#include "rules/vectors/VectorCsv.h"

#include <array>
#include <filesystem>
#include <istream>
#include <streambuf>
#include <utility>

namespace Quorvane::Workshop {

namespace {

constexpr std::string_view standardInput = "-";
constexpr std::string_view tableStart = "source,";

// The bytes of a source for what reads streams.
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

std::unique_ptr<ByteSource> s_open(std::string const& argument, Interrupt& interrupt) {
    if (argument == standardInput) {
        return openStandardInput(interrupt);
    }
    return openFile(argument, interrupt);
}

bool s_isVector(std::string const& argument) {
    std::error_code error;
    return argument != standardInput && argument.find('=') != std::string::npos &&
           !std::filesystem::exists(argument, error);
}

} // namespace

ExplainInput::ExplainInput(std::string argument, Interrupt& interrupt)
    : m_argument(std::move(argument)) {
    if (s_isVector(m_argument)) {
        m_kind = Kind::vector;
        m_vector = parseVector(m_argument);
        return;
    }
    try {
        m_source = s_open(m_argument, interrupt);
        bool const isTable = peekStart(m_source, tableStart.size()) == tableStart;
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
        sink({"vector", std::nullopt, m_vector});
        return;
    }
    try {
        if (m_kind == Kind::messages) {
            readMessages(sink);
            return;
        }
        SourceBuffer buffer(*m_source);
        std::istream stream(&buffer);
        Rules::readVectorRows(stream, m_argument, [&](Rules::VectorCsvRow const& row) {
            sink({std::string(row.m_source), std::nullopt, row.m_vector});
        });
    } catch (InputError const& error) {
        throw Rules::RuleError(Rules::RuleError::Kind::noInput,
                               m_argument + ": cannot be read: " + error.what());
    }
}

void ExplainInput::readMessages(std::function<void(AskedItem const&)> const& sink) {
    MessageReader reader(std::move(m_source), m_argument == standardInput);
    for (HeaderSection section; reader.next(section); section = {}) {
        auto const number =
            section.m_number == 0 ? std::string() : ":" + std::to_string(section.m_number);
        auto const source = m_argument + number;
        if (section.m_isTooLong) {
            throw Rules::RuleError(Rules::RuleError::Kind::badData,
                                   source +
                                       ": no message: its header section is "
                                       "longer than " +
                                       std::to_string(maxHeaderSection >> 20) + " MiB");
        }
        if (HeaderReader::read(section.m_text).headers().empty()) {
            throw Rules::RuleError(Rules::RuleError::Kind::badData,
                                   source + ": no message: it has no header field");
        }
        sink({source, std::move(section.m_text), std::nullopt});
    }
}

} // namespace Quorvane::Workshop
