// SPDX-License-Identifier: Apache-2.0
#include "rules/language/NamePrinter.h"

namespace Quorvane::Rules {

namespace {

// Names and sentences are visible characters: they stay as people wrote them.
std::string s_quoted(std::string const& text) {
    std::string quoted = "\"";
    for (auto const c : text) {
        quoted += c == '"' || c == '\\' ? std::string("\\") + c : std::string(1, c);
    }
    return quoted + '"';
}

} // namespace

std::string NamePrinter::lines(RuleKey const& key, std::size_t indent) {
    auto const found = m_names.find(key);
    if (found == m_names.end() || !m_printed.insert(key).second) {
        return {};
    }
    auto const start = '\n' + std::string(indent, ' ');
    auto const& [name, sentence] = found->second;
    return start + "name " + s_quoted(name) +
           (sentence.empty() ? "" : start + "because " + s_quoted(sentence));
}

} // namespace Quorvane::Rules
