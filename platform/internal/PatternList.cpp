// SPDX-License-Identifier: Apache-2.0
#include "platform/internal/PatternList.h"

#include "include2/Exception.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>

namespace Quorvane {

namespace {

constexpr std::string_view blanks = " \t\r\v\f";

std::string_view s_trimmed(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    text.remove_suffix(text.size() - (text.find_last_not_of(blanks) + 1));
    return text;
}

[[noreturn]] void s_refuse(std::string const& text, std::string const& sourceName,
                           unsigned int line) {
    throw Exception(text, 3, sourceName.c_str(), line);
}

void s_addLine(PatternList& list, std::string_view line, unsigned int number) {
    auto expression = s_trimmed(line.substr(0, line.find('#')));
    if (expression.empty()) {
        return;
    }
    bool const counter = expression.front() == '!';
    if (counter) {
        expression = s_trimmed(expression.substr(1));
    }
    if (expression.empty()) {
        s_refuse("a \"!\" without an expression after it: write the names that are not dynamic "
                 "there, or delete the line",
                 list.m_sourceName, number);
    }
    if (list.m_patterns.size() + list.m_counterPatterns.size() == maxPatterns) {
        s_refuse("more than " + std::to_string(maxPatterns) +
                     " expressions: join some with \"|\" or leave some out",
                 list.m_sourceName, number);
    }
    auto& patterns = counter ? list.m_counterPatterns : list.m_patterns;
    patterns.push_back({std::string(expression), number});
}

void s_requireSize(std::size_t size, std::string const& sourceName) {
    if (size > maxPatternText) {
        s_refuse("a list of dynamic-name patterns has at most " + std::to_string(maxPatternText) +
                     " bytes; this is longer",
                 sourceName, 0);
    }
}

[[noreturn]] void s_cannotRead(std::string const& path, int error) {
    s_refuse("cannot read dynamic-name patterns from \"" + path + "\": " + std::strerror(error),
             path, 0);
}

} // namespace

PatternList parsePatternList(std::string_view text, std::string const& sourceName) {
    s_requireSize(text.size(), sourceName);
    PatternList list;
    list.m_sourceName = sourceName;
    for (unsigned int number = 1; !text.empty(); ++number) {
        auto const end = std::min(text.find('\n'), text.size());
        s_addLine(list, text.substr(0, end), number);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return list;
}

std::string readPatternFile(std::string const& path) {
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file.is_open()) {
        s_cannotRead(path, errno);
    }
    // One byte more than allowed, so that an endless file is neither read whole nor taken for one
    // that just fits.
    std::string text(maxPatternText + 1, '\0');
    errno = 0;
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (file.bad()) {
        s_cannotRead(path, errno);
    }
    text.resize(static_cast<std::size_t>(file.gcount()));
    s_requireSize(text.size(), path);
    return text;
}

} // namespace Quorvane
