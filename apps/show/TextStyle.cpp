// SPDX-License-Identifier: Apache-2.0
#include "apps/show/TextStyle.h"

#include "apps/commandline/Terminal.h"
#include "apps/text/Utf8.h"

#include <algorithm>
#include <clocale>
#include <langinfo.h>

namespace Quorvane::Show {

namespace {

bool s_isUtf8Locale() {
    // Beside the locale of the process, in which other threads may be reading.
    auto* const locale = ::newlocale(LC_CTYPE_MASK, "", nullptr);
    if (locale == nullptr) {
        return false; // the environment names one that this machine does not have
    }
    bool const isUtf8 = std::string_view(::nl_langinfo_l(CODESET, locale)) == "UTF-8";
    ::freelocale(locale);
    return isUtf8;
}

} // namespace

TextStyle terminalStyle(bool isStandardOutput, bool hasColour) {
    TextStyle style;
    style.m_hasColour = hasColour;
    style.m_isUtf8 = s_isUtf8Locale();
    if (isStandardOutput) {
        style.m_width = std::max(terminalWidth().value_or(style.m_width), narrowestText);
    }
    return style;
}

std::string rightAligned(std::string const& text, std::size_t width) {
    auto const taken = columns(text);
    return std::string(width > taken ? width - taken : 0, ' ') + text;
}

std::vector<std::string> wrapped(std::string_view text, std::size_t width) {
    std::vector<std::string> lines;
    while (text.size() > width) {
        auto blank = text.rfind(' ', width);
        bool const isBroken = blank == std::string_view::npos || blank == 0;
        blank = isBroken ? width : blank;
        while (blank > 1 && (text[blank] & 0xC0) == 0x80) {
            --blank; // not within a character
        }
        lines.emplace_back(text.substr(0, blank));
        text.remove_prefix(isBroken ? blank : blank + 1);
    }
    lines.emplace_back(text);
    return lines;
}

std::string wrappedText(std::string_view text, TextStyle const& style) {
    std::string lines;
    for (auto const& line : wrapped(text, style.m_width)) {
        lines += line + '\n';
    }
    return lines;
}

std::string coloured(TextStyle const& style, std::string_view parameters, std::string const& text) {
    if (!style.m_hasColour || text.empty()) {
        return text;
    }
    return "\x1B[" + std::string(parameters) + 'm' + text + "\x1B[0m";
}

} // namespace Quorvane::Show
