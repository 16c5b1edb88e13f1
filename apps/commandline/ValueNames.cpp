// SPDX-License-Identifier: Apache-2.0
#include "apps/commandline/ValueNames.h"

#include <algorithm>
#include <boost/algorithm/string/split.hpp>

namespace Quorvane {

std::vector<std::string> alternativesOf(std::string_view valueName) {
    std::vector<std::string> alternatives;
    if (valueName.starts_with("[=")) {
        valueName = valueName.substr(2, valueName.size() - 3);
    }
    if (!valueName.empty()) {
        boost::algorithm::split(alternatives, valueName, [](char c) { return c == '|'; });
    }
    return alternatives;
}

bool isLiteral(std::string_view alternative) {
    return std::none_of(alternative.begin(), alternative.end(),
                        [](char c) { return c >= 'A' && c <= 'Z'; });
}

std::vector<std::string> literalsOf(std::string_view valueName) {
    auto alternatives = alternativesOf(valueName);
    std::erase_if(alternatives, [](std::string const& text) { return !isLiteral(text); });
    return alternatives;
}

ValueKind kindOf(std::string_view valueName) {
    if (valueName.empty()) {
        return ValueKind::flag;
    }
    if (!literalsOf(valueName).empty()) {
        return ValueKind::words;
    }
    for (std::string_view const fileName : {"FILE", "SRC", "PATH"}) {
        if (valueName.ends_with(fileName)) {
            return ValueKind::file;
        }
    }
    if (valueName.ends_with("VECTOR")) {
        return ValueKind::vector;
    }
    return valueName == "DIR" ? ValueKind::folder : ValueKind::other;
}

} // namespace Quorvane
