// SPDX-License-Identifier: Apache-2.0
#include "apps/settings/TomlSettings.h"

#include "apps/text/NumberText.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <vector>

namespace Quorvane {

namespace {

bool s_stumbles(std::string_view text) {
    try {
        static_cast<void>(toml::parse(text));
    } catch (toml::parse_error const&) {
        return false;
    } catch (TomlStumbled const&) {
        return true;
    }
    return false;
}

// The last character of the shortest start of the text over which the parser stumbles. It reads
// from left to right, so it stumbles over every longer start too.
toml::source_position s_stumblingPlace(std::string_view text) {
    std::size_t without = 0;
    std::size_t with = text.size();
    while (with - without > 1) {
        auto const middle = without + (with - without) / 2;
        (s_stumbles(text.substr(0, middle)) ? with : without) = middle;
    }
    auto const before = text.substr(0, without);
    auto const line = std::count(before.begin(), before.end(), '\n');
    auto const start = before.rfind('\n') + 1; // 0 when there is none
    return {static_cast<toml::source_index>(line + 1),
            static_cast<toml::source_index>(without - start + 1)};
}

class NodeSetter {
  public:
    NodeSetter(std::string const& path, SettingKey const& key) : m_path(path), m_key(key) {}

    void take(SettingsStore& store, toml::node const& node) const {
        if (auto const* const array = node.as_array();
            array != nullptr && m_key.m_kind == SettingKind::list) {
            takeList(store, node, *array);
            return;
        }
        set(store, {text(node)}, node.source().begin);
    }

  private:
    [[noreturn]] void fail(toml::source_position const& at, std::string const& what) const {
        throw SettingsError(tomlPlace(m_path, at) + what);
    }

    std::string text(toml::node const& node) const {
        auto const found = tomlScalar(m_key.m_kind, node);
        if (!found) {
            fail(node.source().begin,
                 std::string(m_key.m_name) + " needs " + tomlExpected(m_key.m_kind));
        }
        if (m_key.m_kind == SettingKind::path && !found->empty()) {
            return (std::filesystem::path(m_path).parent_path() / *found).string();
        }
        return *found;
    }

    // Elements are tried one by one first, so that an error points at the element.
    void takeList(SettingsStore& store, toml::node const& node, toml::array const& array) const {
        std::vector<std::string> texts;
        for (auto const& element : array) {
            texts.push_back(text(element));
            SettingsStore trial;
            set(trial, {texts.back()}, element.source().begin);
        }
        set(store, texts, node.source().begin);
    }

    void set(SettingsStore& store, std::vector<std::string> const& texts,
             toml::source_position const& at) const {
        try {
            store.set(m_key, texts, m_path + ":" + std::to_string(at.line));
        } catch (SettingsError const& error) {
            fail(at, error.what());
        }
    }

    std::string const& m_path;
    SettingKey const& m_key;
};

} // namespace

std::string tomlPlace(std::string const& path, toml::source_position const& at) {
    return path + ":" + std::to_string(at.line) + ":" + std::to_string(at.column) + ": ";
}

toml::table parseToml(std::string const& path, std::string const& text) {
    try {
        return toml::parse(text, path);
    } catch (toml::parse_error const& error) {
        throw SettingsError(tomlPlace(path, error.source().begin) +
                            std::string(error.description()));
    } catch (TomlStumbled const&) {
        throw SettingsError(tomlPlace(path, s_stumblingPlace(text)) + "this is no TOML; \"[\" is " +
                            "followed by the name of a table");
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
    switch (kind) {
    case SettingKind::number:
        return "a number";
    case SettingKind::integer:
        return "a whole number";
    case SettingKind::list:
        return "a list of texts, as in [\"192.0.2.0/24\"]";
    case SettingKind::text:
    case SettingKind::path:
        break;
    }
    return "a text in quotes";
}

void setFromToml(SettingsStore& store, SettingKey const& key, toml::node const& node,
                 std::string const& path) {
    NodeSetter(path, key).take(store, node);
}

} // namespace Quorvane
