// SPDX-License-Identifier: Apache-2.0
#include "apps/commandline/ValueNames.h"

#include <algorithm>

namespace Quorvane {

std::vector<std::string> alternativesOf(std::string_view valueName) {
    std::vector<std::string> alternatives;
    while (!valueName.empty()) {
        auto const bar = std::min(valueName.find('|'), valueName.size());
        alternatives.emplace_back(valueName.substr(0, bar));
        valueName.remove_prefix(std::min(bar + 1, valueName.size()));
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
    return valueName == "DIR" ? ValueKind::folder : ValueKind::other;
}

} // namespace Quorvane
