// SPDX-License-Identifier: Apache-2.0
//
// Byte-string helpers. All of them are pure, treat NUL as an ordinary byte, and change case in
// ASCII only, whatever the locale: the rules compare names that attackers choose, and a name must
// not read differently on a host with another language setting.
#pragma once

#include "include2/Export.h"

#include <string>
#include <string_view>

namespace Quorvane {

// Sets `dst` to the lower-cased `length` bytes of `src` from `pos` (to the end when `length` runs
// past it). Throws std::out_of_range when `pos` is beyond the end.
QV_API void copyStringToLower(std::string const& src, std::string& dst, std::string::size_type pos,
                              std::string::size_type length);
// Lower-cases `text` in place.
QV_API void stringToLowerNoCopy(std::string& text);

// 0 when `a` from byte `pos` on equals `b` but for letter case, else the order: negative when that
// rest of `a` sorts first. A `pos` beyond the end compares the empty string.
QV_API int stringCompareNoCase(std::string_view a, std::string_view b, std::string::size_type pos);

// True when both are the same but for letter case. Faster than stringCompareNoCase, which also
// finds the order.
QV_API bool isSameNoCase(std::string_view a, std::string_view b);

// Space, tab, CR and LF: what may stand around the parts of a header field, its folding included.
inline bool isBlankOrBreak(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// `text` without these bytes at both ends.
inline std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlankOrBreak(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlankOrBreak(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// Takes these bytes away at the beginning.
QV_API void stringLeftTrim(std::string& text);
// Takes them away at the end.
QV_API void stringRightTrim(std::string& text);

} // namespace Quorvane
