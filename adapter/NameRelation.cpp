// SPDX-License-Identifier: Apache-2.0
#include "adapter/NameRelation.h"

namespace Quorvane {

namespace {

constexpr std::string::size_type shortestName = 3;

std::string_view s_key(std::string_view name) {
    return hasManyLabels(name) ? name.substr(name.find('.') + 1) : name;
}

} // namespace

bool hasManyLabels(std::string_view name) {
    auto const first = name.find('.');
    return first != std::string_view::npos && name.find('.', first + 1) != std::string_view::npos;
}

int s_domainMatch(std::string const& a, std::string const& b) {
    if (a.size() < shortestName || b.size() < shortestName) {
        return 0;
    }
    if (a == b) {
        return 1; // as below, but nearly all machines announce the name that they have
    }
    bool const isFirstShorter = a.size() < b.size();
    std::string_view const shorter = isFirstShorter ? a : b;
    std::string_view const longer = isFirstShorter ? b : a;
    return longer.find(s_key(shorter)) != std::string_view::npos ? 1 : 0;
}

bool isThreeWayMismatch(std::string const& a, std::string const& b, std::string const& c) {
    return s_domainMatch(a, b) == 1 && s_domainMatch(b, c) == 0;
}

bool s_ThreeWayMisMatch(std::string& a, std::string& b, std::string& c) {
    return isThreeWayMismatch(a, b, c);
}

} // namespace Quorvane
