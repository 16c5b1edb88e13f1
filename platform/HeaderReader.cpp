// SPDX-License-Identifier: Apache-2.0
#include "platform/HeaderReader.h"

#include "platform/Strings.h"

#include <limits>
#include <string>

namespace Quorvane {

namespace {

constexpr std::string_view s_mboxStart = "From ";

bool s_isBlank(char c) {
    return c == ' ' || c == '\t';
}

// Offsets into the message.
struct Line {
    std::size_t m_begin;
    std::size_t m_contentEnd; // where its line break begins
    std::size_t m_end;        // where the next line begins
};

// A CR alone is an ordinary byte; before an LF it belongs to the line break.
Line s_lineAt(std::string_view message, std::size_t begin) {
    auto const feed = message.find('\n', begin);
    if (feed == std::string_view::npos) {
        return {begin, message.size(), message.size()};
    }
    bool const afterReturn = feed > begin && message[feed - 1] == '\r';
    return {begin, afterReturn ? feed - 1 : feed, feed + 1};
}

bool s_isEmpty(Line const& line) {
    return line.m_begin == line.m_contentEnd;
}

bool s_beginsWithBlank(std::string_view message, std::size_t position) {
    return position < message.size() && s_isBlank(message[position]);
}

// The last of the lines that belong to the field beginning with `line`.
Line s_lastLine(std::string_view message, Line line) {
    while (s_beginsWithBlank(message, line.m_end)) {
        line = s_lineAt(message, line.m_end);
    }
    return line;
}

std::string_view s_slice(std::string_view message, std::size_t begin, std::size_t end) {
    return message.substr(begin, end - begin);
}

template<typename IsDropped>
std::string_view s_withoutTrailing(std::string_view text, IsDropped isDropped) {
    while (!text.empty() && isDropped(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

std::string_view s_withoutLeadingBlanks(std::string_view text) {
    while (!text.empty() && s_isBlank(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

// A field that begins with a blank continues nothing, because it is the first of the section.
bool s_isSkipped(std::string_view message, Line const& first) {
    bool const isMboxLine =
        first.m_begin == 0 && message.substr(0, s_mboxStart.size()) == s_mboxStart;
    return isMboxLine || s_beginsWithBlank(message, first.m_begin);
}

// Calls `take` with the name of each field and with all that follows its colon.
template<typename Take>
void s_forEachField(std::string_view message, Take take) {
    for (std::size_t position = 0; position < message.size();) {
        auto const first = s_lineAt(message, position);
        if (s_isEmpty(first)) {
            return;
        }
        auto const last = s_lastLine(message, first);
        auto const line = s_slice(message, first.m_begin, first.m_contentEnd);
        auto const colon = line.find(':');
        if (colon != std::string_view::npos && !s_isSkipped(message, first)) {
            take(s_withoutTrailing(line.substr(0, colon), s_isBlank),
                 s_slice(message, first.m_begin + colon + 1, last.m_contentEnd));
        }
        position = last.m_end;
    }
}

} // namespace

HeaderContainer HeaderReader::read(std::string_view message) {
    return read(message, std::numeric_limits<std::size_t>::max());
}

HeaderContainer HeaderReader::read(std::string_view message, std::size_t maxHops) {
    HeaderContainer headers;
    std::size_t hops = 0;
    s_forEachField(message, [&](std::string_view name, std::string_view text) {
        if (isSameNoCase(name, "received") && ++hops > maxHops) {
            return;
        }
        auto const value = s_withoutLeadingBlanks(s_withoutTrailing(text, isBlankOrBreak));
        headers.append(std::string(name), std::string(value));
    });
    return headers;
}

std::size_t HeaderReader::countFields(std::string_view message) {
    std::size_t count = 0;
    s_forEachField(message, [&count](std::string_view, std::string_view) { ++count; });
    return count;
}

std::size_t HeaderReader::sectionLength(std::string_view message) {
    std::size_t position = 0;
    while (position < message.size()) {
        auto const line = s_lineAt(message, position);
        position = line.m_end;
        if (s_isEmpty(line)) {
            break;
        }
    }
    return position;
}

} // namespace Quorvane
