// SPDX-License-Identifier: Apache-2.0
#include "platform/internal/AddressText.h"

#include "platform/internal/AddressSyntax.h"
#include "platform/Strings.h"

#include <algorithm>

namespace Quorvane::internal {

namespace {

// Bytes of an atom (RFC 5322 section 3.2.3) that addresses hardly ever have.
constexpr std::string_view s_atomBytes = "{}|~^`$#%*&!'/_";

// Where GMime begins or ends an address after an error, also in quoted text.
constexpr std::string_view s_marks = "<>,";

// What GMime looks for, in lower case, and which byte of it is hidden.
struct Decoded {
    std::string_view m_mark;
    std::size_t m_hidden;
};

constexpr Decoded s_decoded[] = {{"xn--", 3}, {"=?", 1}};

std::size_t s_limit(std::string_view header) {
    auto const considered = header.substr(0, consideredBytes);
    std::size_t separators = 0;
    for (std::size_t i = 0; i < considered.size(); ++i) {
        if (isAddressSeparator(considered[i]) && ++separators > consideredSeparators) {
            return i;
        }
    }
    return considered.size();
}

// A place where no address is cut in two: after a comma, because a cut inside a comment would lose
// the whole list; without one, after another end of an address.
std::size_t s_cut(std::string_view header) {
    auto const comma = header.rfind(',');
    return comma != std::string_view::npos ? comma + 1 : header.find_last_of(" \t\r\n;>") + 1;
}

std::string s_considered(std::string const& header) {
    auto const limit = s_limit(header);
    return limit == header.size() ? header : header.substr(0, s_cut(header.substr(0, limit)));
}

char s_unusedByte(std::string const& text) {
    auto const* const found = std::find_if(s_atomBytes.begin(), s_atomBytes.end(), [&](char c) {
        return text.find(c) == std::string::npos;
    });
    return found == s_atomBytes.end() ? '\0' : *found;
}

// All of these are false when there is something to hide and no unused byte to hide it with.

// Hides `byte` at those of `places` where it stands.
bool s_hideByte(char byte, std::vector<std::size_t> const& places, AddressText& prepared) {
    char standIn = '\0';
    for (auto const at : places) {
        if (prepared.m_text[at] != byte) {
            continue;
        }
        if (standIn == '\0') {
            standIn = s_unusedByte(prepared.m_text);
            if (standIn == '\0') {
                return false;
            }
            prepared.m_standIns.emplace_back(byte, standIn);
        }
        prepared.m_text[at] = standIn;
    }
    return true;
}

bool s_hideOpenComments(AddressText& prepared) {
    return s_hideByte('(', openCommentsAfterLiterals(prepared.m_text), prepared);
}

bool s_cutAtStrayBracket(AddressText& prepared) {
    auto const brackets = wellBracketed(prepared.m_text);
    for (auto const& [begin, end] : brackets.m_routes) {
        std::fill(prepared.m_text.begin() + static_cast<std::ptrdiff_t>(begin),
                  prepared.m_text.begin() + static_cast<std::ptrdiff_t>(end), ' ');
    }
    prepared.m_text.resize(brackets.m_length);
    return std::all_of(s_marks.begin(), s_marks.end(), [&](char mark) {
        return s_hideByte(mark, brackets.m_plainMarks, prepared);
    });
}

bool s_hide(Decoded const& decoded, AddressText& prepared) {
    auto lower = prepared.m_text;
    stringToLowerNoCopy(lower);
    std::vector<std::size_t> places;
    for (auto at = lower.find(decoded.m_mark); at != std::string::npos;
         at = lower.find(decoded.m_mark, at + 1)) {
        places.push_back(at + decoded.m_hidden);
    }
    return s_hideByte(decoded.m_mark[decoded.m_hidden], places, prepared);
}

} // namespace

std::string AddressText::original(std::string_view part) const {
    std::string text(part);
    for (auto const& [byte, standIn] : m_standIns) {
        std::replace(text.begin(), text.end(), standIn, byte);
    }
    return text;
}

std::optional<AddressText> prepareAddressText(std::string const& header, bool lenient) {
    AddressText prepared{s_considered(header), {}};
    if (!lenient && !s_cutAtStrayBracket(prepared)) {
        return std::nullopt;
    }
    spoilDoubleAts(prepared.m_text);
    bool const usable = !prepared.m_text.empty() && header.find('\0') == std::string::npos &&
                        s_hideOpenComments(prepared) &&
                        std::all_of(std::begin(s_decoded), std::end(s_decoded),
                                    [&](Decoded const& each) { return s_hide(each, prepared); });
    return usable ? std::optional(std::move(prepared)) : std::nullopt;
}

std::string unquoted(std::string const& localPart) {
    std::string plain;
    bool quoted = false;
    for (std::size_t i = 0; i < localPart.size(); ++i) {
        char c = localPart[i];
        if (c == '"') {
            quoted = !quoted;
            continue;
        }
        if (quoted && (c == '\r' || c == '\n')) {
            continue;
        }
        if (quoted && c == '\\' && i + 1 < localPart.size()) {
            c = localPart[++i];
        }
        plain += c;
    }
    return plain;
}

} // namespace Quorvane::internal
