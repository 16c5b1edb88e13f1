// SPDX-License-Identifier: Apache-2.0
#include "include2/Exception.h"

#include <array>
#include <cstdio>

namespace Quorvane {

namespace {

void s_appendOnOneLine(std::string& line, std::string const& text) {
    for (char const c : text) {
        auto const byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7f) {
            std::array<char, sizeof "\\xNN"> escape{};
            std::snprintf(escape.data(), escape.size(), "\\x%02x", static_cast<unsigned>(byte));
            line += escape.data();
        } else {
            line += c;
        }
    }
}

} // namespace

Exception::Exception(std::string const& text, int intParameter, char const* fileName,
                     unsigned int lineNumber)
    : m_text(text), m_fileName(fileName == nullptr ? "" : fileName), m_category(intParameter),
      m_line(lineNumber) {}

Exception::~Exception() = default;

std::string const& Exception::stringParameter() const {
    return m_text;
}

void Exception::stringParameter(std::string const& text) {
    m_text = text;
}

int Exception::intParameter() const {
    return m_category;
}

void Exception::intParameter(int category) {
    m_category = category;
}

std::string const& Exception::fileName() const {
    return m_fileName;
}

void Exception::fileName(std::string const& name) {
    m_fileName = name;
}

void Exception::fileName(char const* name) {
    m_fileName = name == nullptr ? "" : name;
}

unsigned int Exception::lineNumber() const {
    return m_line;
}

void Exception::lineNumber(unsigned int line) {
    m_line = line;
}

void Exception::cause(Exception const& cause) {
    m_cause = std::make_shared<Exception const>(cause);
}

Exception const& Exception::cause() const {
    return *m_cause;
}

bool Exception::hasCause() const {
    return m_cause != nullptr;
}

std::string Exception::asString() const {
    std::string line;
    s_appendOnOneLine(line, m_text);
    line += " (category " + std::to_string(m_category);
    if (!m_fileName.empty()) {
        line += ", ";
        s_appendOnOneLine(line, m_fileName);
        line += ':' + std::to_string(m_line);
    }
    line += ')';
    return line;
}

} // namespace Quorvane
