// SPDX-License-Identifier: Apache-2.0
#include "apps/settings/TomlSettings.h"

#include "apps/settings/TomlKeys.h"
#include "apps/text/NumberText.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <vector>

namespace Quorvane {

namespace {

bool s_failsAssertion(std::string_view text) {
    try {
        static_cast<void>(toml::parse(text));
    } catch (toml::parse_error const&) {
        return false;
    } catch (TomlAssertion const&) {
        return true;
    }
    return false;
}

toml::source_position s_place(std::string_view text, std::size_t byte) {
    auto const before = text.substr(0, byte);
    auto const line = std::count(before.begin(), before.end(), '\n');
    auto const start = before.rfind('\n') + 1; // 0 when there is none
    return {static_cast<toml::source_index>(line + 1),
            static_cast<toml::source_index>(byte - start + 1)};
}

// The last character of the shortest prefix that fails an assertion of the parser. It reads from
// left to right, so every longer prefix fails too.
toml::source_position s_assertionPlace(std::string_view text) {
    std::size_t without = 0;
    std::size_t with = text.size();
    while (with - without > 1) {
        auto const middle = without + (with - without) / 2;
        (s_failsAssertion(text.substr(0, middle)) ? with : without) = middle;
    }
    return s_place(text, without);
}

// Adds one value of a setting; an error shows its place.
void s_add(SettingsSection& section, SettingFacts const& facts, toml::node const& node,
           std::string const& path) {
    auto const at = node.source().begin;
    auto text = tomlScalar(facts.m_kind, node);
    if (!text) {
        throw SettingsError(tomlPlace(path, at),
                            std::string(facts.m_name) + " needs " + tomlExpected(facts.m_kind));
    }
    if (facts.m_kind == SettingKind::path && !text->empty()) {
        text = (std::filesystem::path(path).parent_path() / *text).string();
    }
    try {
        section.add(facts.m_name, *text);
    } catch (SettingsError const& error) {
        throw SettingsError(tomlPlace(path, at), error.what());
    }
}

} // namespace

Rules::FilePlace tomlPlace(std::string const& path, toml::source_position const& at) {
    return {path, at.line, at.column};
}

toml::table parseToml(std::string const& path, std::string const& text) {
    if (auto const byte = findLongKey(text)) {
        throw SettingsError(tomlPlace(path, s_place(text, *byte)),
                            "a key of more than " + std::to_string(maxKeyParts) +
                                " parts; no setting has so many");
    }
    try {
        return toml::parse(text, path);
    } catch (toml::parse_error const& error) {
        throw SettingsError(tomlPlace(path, error.source().begin),
                            std::string(error.description()));
    } catch (TomlAssertion const&) {
        throw SettingsError(tomlPlace(path, s_assertionPlace(text)),
                            "this is not TOML; \"[\" is followed by the name of a table");
    }
}

std::optional<std::string> tomlScalar(SettingKind kind, toml::node const& node) {
    bool const isNumber = kind == SettingKind::number || kind == SettingKind::integer;
    if (auto const* const integer = node.as_integer(); integer != nullptr && isNumber) {
        return std::to_string(integer->get());
    }
    if (auto const* const number = node.as_floating_point();
        number != nullptr && kind == SettingKind::number) {
        return exactNumberText(number->get());
    }
    if (auto const* const flag = node.as_boolean();
        flag != nullptr && kind == SettingKind::integer) {
        return flag->get() ? "1" : "0";
    }
    if (auto const* const text = node.as_string(); text != nullptr && !isNumber) {
        return text->get();
    }
    return std::nullopt;
}

std::string tomlExpected(SettingKind kind) {
    // In the order of SettingKind.
    constexpr char const* expected[] = {"a text in quotes", "a text in quotes", "a number",
                                        "a whole number",
                                        "a list of texts, as in [\"192.0.2.0/24\"]"};
    return expected[static_cast<std::size_t>(kind)];
}

void setFromToml(SettingsSection& section, std::string_view name, toml::node const& node,
                 std::string const& path) {
    auto const& facts = *section.find(name);
    section.reset(name, path + ":" + std::to_string(node.source().begin.line));
    auto const* const array = node.as_array();
    if (array == nullptr || facts.m_kind != SettingKind::list) {
        s_add(section, facts, node, path);
        return;
    }
    for (auto const& element : *array) {
        s_add(section, facts, element, path);
    }
}

} // namespace Quorvane
