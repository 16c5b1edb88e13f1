// SPDX-License-Identifier: Apache-2.0
#include "apps/workshop/CaseExpectation.h"

#include "apps/settings/TomlSettings.h"
#include "rules/language/Nearest.h"

#include <limits>

namespace Quorvane::Workshop {

namespace {

std::string s_verdict(std::string const& path, toml::node const& node) {
    auto verdict = caseText(path, "verdict", node);
    if (verdict != "spam" && verdict != "ham" && verdict != "none") {
        failCase(path, node,
                 "\"" + verdict + "\" is no verdict; write spam, ham or none" +
                     Rules::didYouMean(verdict, {"spam", "ham", "none"}));
    }
    return verdict;
}

std::int32_t s_node(std::string const& path, toml::node const& node) {
    auto const text = tomlScalar(SettingKind::integer, node);
    if (!text) {
        failCase(path, node, "node is the number of a node or of an elite rule, 0 for none");
    }
    try {
        return static_cast<std::int32_t>(readInteger(*text,
                                                     std::numeric_limits<std::int32_t>::min(),
                                                     std::numeric_limits<std::int32_t>::max()));
    } catch (SettingsError const& error) {
        failCase(path, node, std::string("node: ") + error.what());
    }
}

double s_number(std::string const& path, toml::node const& node) {
    auto const found = node.value<double>();
    if (!found || !node.is_number()) {
        failCase(path, node, "confidence is a number, or a range as in [0.9, 1.0]");
    }
    return *found;
}

ConfidenceRange s_confidence(std::string const& path, toml::node const& node) {
    auto const* const range = node.as_array();
    if (range == nullptr) {
        return {s_number(path, node), s_number(path, node)};
    }
    if (range->size() != 2 || !(s_number(path, range->front()) <= s_number(path, range->back()))) {
        failCase(path, node, "a range of confidence has two ends, the lower one first");
    }
    return {s_number(path, range->front()), s_number(path, range->back())};
}

} // namespace

bool readExpectation(std::string_view name, toml::node const& node, std::string const& path,
                     CaseExpectation& expected) {
    if (name == "verdict") {
        expected.m_verdict = s_verdict(path, node);
    } else if (name == "node") {
        expected.m_node = s_node(path, node);
    } else if (name == "confidence") {
        expected.m_confidence = s_confidence(path, node);
    } else if (name == "reasons") {
        expected.m_reasons = caseText(path, name, node);
    } else {
        return false;
    }
    return true;
}

void failCase(std::string const& path, toml::node const& node, std::string const& what) {
    throw SettingsError(tomlPlace(path, node.source().begin) + what);
}

std::string caseText(std::string const& path, std::string_view name, toml::node const& node) {
    auto const* const text = node.as_string();
    if (text == nullptr) {
        failCase(path, node, std::string(name) + " needs a text in quotes");
    }
    return text->get();
}

} // namespace Quorvane::Workshop
