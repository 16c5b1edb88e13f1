// SPDX-License-Identifier: Apache-2.0
#include "rules/model/Readme.h"

#include "rules/format/RuleFiles.h"

#include <cstdlib>

namespace Quorvane::Rules {

namespace {

// Hosts skip shorter lines.
constexpr std::size_t shortestLine = 5;

std::optional<std::int32_t> s_versionInLine(std::string const& line) {
    if (line.size() < shortestLine || line.front() == '#') {
        return std::nullopt;
    }
    auto const at = line.find(versionKey);
    if (at == std::string::npos) {
        return std::nullopt;
    }
    auto const digits = line.c_str() + at + std::string_view(versionKey).size();
    return static_cast<std::int32_t>(std::strtol(digits, nullptr, 10));
}

} // namespace

std::string readmeText(std::int32_t version) {
    return "Rules of Quorvane Deep Header.\n"
           "\n"
           "qv.dt holds the decision tree, qv2.dt the elite rules. A host loads them when the\n"
           "version below is greater than the one it runs with.\n"
           "\n" +
           std::string(versionKey) + std::to_string(version) +
           "\n"
           "\n"
           "\"qvrules decompile\" shows the rules as text, \"qvrules install\" replaces all files\n"
           "together. Do not edit them by hand.\n";
}

std::optional<std::int32_t> readmeVersion(std::string_view text) {
    while (!text.empty()) {
        auto const end = text.find('\n');
        if (auto const version = s_versionInLine(std::string(text.substr(0, end)))) {
            return version;
        }
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    }
    return std::nullopt;
}

} // namespace Quorvane::Rules
