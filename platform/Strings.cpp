// SPDX-License-Identifier: Apache-2.0
#include "platform/Strings.h"

#include <algorithm>

namespace Quorvane {

namespace {

// Written so that the compiler can turn a loop over it into vector instructions.
char s_lower(char c) {
    bool const upper = c >= 'A' && c <= 'Z';
    return static_cast<char>(c | (upper ? 0x20 : 0));
}

} // namespace

void copyStringToLower(std::string const& src, std::string& dst, std::string::size_type pos,
                       std::string::size_type length) {
    dst.assign(src, pos, length);
    stringToLowerNoCopy(dst);
}

void stringToLowerNoCopy(std::string& text) {
    std::transform(text.begin(), text.end(), text.begin(), s_lower);
}

int stringCompareNoCase(std::string_view a, std::string_view b, std::string::size_type pos) {
    auto const rest = a.substr(std::min(pos, a.size()));
    auto const common = std::min(rest.size(), b.size());
    for (std::string::size_type i = 0; i < common; ++i) {
        auto const left = static_cast<unsigned char>(s_lower(rest[i]));
        auto const right = static_cast<unsigned char>(s_lower(b[i]));
        if (left != right) {
            return left < right ? -1 : 1;
        }
    }
    if (rest.size() == b.size()) {
        return 0;
    }
    return rest.size() < b.size() ? -1 : 1;
}

// Looks at all bytes whatever they are, which takes less time for short names than to stop early.
bool isSameNoCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    int difference = 0;
    for (std::string_view::size_type i = 0; i < a.size(); ++i) {
        difference |= s_lower(a[i]) ^ s_lower(b[i]);
    }
    return difference == 0;
}

void stringLeftTrim(std::string& text) {
    text.erase(text.begin(), std::find_if_not(text.begin(), text.end(), isBlankOrBreak));
}

void stringRightTrim(std::string& text) {
    while (!text.empty() && isBlankOrBreak(text.back())) {
        text.pop_back();
    }
}

} // namespace Quorvane
