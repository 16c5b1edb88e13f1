// SPDX-License-Identifier: Apache-2.0
#include "apps/common/SettingsFile.h"

#include "rules/language/Nearest.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <toml++/toml.h>

namespace Quorvane {

namespace {

std::string s_place(std::string const& path, toml::source_position const& at) {
    return path + ":" + std::to_string(at.line) + ":" + std::to_string(at.column) + ": ";
}

std::string s_readAll(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    if (file && file.peek() != std::ifstream::traits_type::eof()) {
        text << file.rdbuf();
    }
    if (!file.is_open() || file.bad() || !std::filesystem::is_regular_file(path)) {
        throw SettingsError(path +
                            ": cannot be read: " + std::strerror(errno != 0 ? errno : EISDIR));
    }
    return text.str();
}

toml::table s_parse(std::string const& path) {
    auto const text = s_readAll(path);
    try {
        return toml::parse(text, path);
    } catch (toml::parse_error const& error) {
        throw SettingsError(s_place(path, error.source().begin) + std::string(error.description()));
    }
}

std::string s_unknownKey(std::string_view name) {
    std::vector<std::string_view> names{milterTable};
    for (auto const& key : settingKeys()) {
        names.push_back(key.m_name);
    }
    auto const nearest = std::string(Rules::nearestWord(name, names));
    return "unknown key \"" + std::string(name) + "\"; " +
           (nearest.empty() ? "qvscan --show-config lists the known ones"
                            : "the nearest known one is \"" + nearest + '"');
}

std::string s_numberText(double value) {
    std::array<char, 32> buffer{};
    auto const end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    return {buffer.data(), end};
}

// Empty when the value is not of the kind.
std::optional<std::string> s_scalarText(SettingKind kind, toml::node const& node) {
    bool const isNumber = kind == SettingKind::number || kind == SettingKind::integer;
    if (auto const* const integer = node.as_integer(); integer != nullptr && isNumber) {
        return std::to_string(integer->get());
    }
    if (auto const* const number = node.as_floating_point();
        number != nullptr && kind == SettingKind::number) {
        return s_numberText(number->get());
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

std::string s_expected(SettingKind kind) {
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

class FileLoader {
  public:
    FileLoader(std::string const& path, SettingsStore& store) : m_path(path), m_store(store) {}

    void load() const {
        auto const file = s_parse(m_path);
        for (auto const& [name, node] : file) {
            if (name.str() == milterTable && node.is_table()) {
                continue;
            }
            auto const* const key = findSetting(name.str());
            if (key == nullptr) {
                fail(name.source().begin, s_unknownKey(name.str()));
            }
            take(*key, node);
        }
    }

  private:
    [[noreturn]] void fail(toml::source_position const& at, std::string const& what) const {
        throw SettingsError(s_place(m_path, at) + what);
    }

    std::string text(SettingKey const& key, toml::node const& node) const {
        auto const found = s_scalarText(key.m_kind, node);
        if (!found) {
            fail(node.source().begin, std::string(key.m_name) + " needs " + s_expected(key.m_kind));
        }
        if (key.m_kind == SettingKind::path && !found->empty()) {
            return (std::filesystem::path(m_path).parent_path() / *found).string();
        }
        return *found;
    }

    void take(SettingKey const& key, toml::node const& node) const {
        if (auto const* const array = node.as_array();
            array != nullptr && key.m_kind == SettingKind::list) {
            takeList(key, node, *array);
            return;
        }
        set(key, {text(key, node)}, node.source().begin);
    }

    // Elements are tried one by one first, so that an error points at the element.
    void takeList(SettingKey const& key, toml::node const& node, toml::array const& array) const {
        std::vector<std::string> texts;
        for (auto const& element : array) {
            texts.push_back(text(key, element));
            SettingsStore trial;
            setIn(trial, key, {texts.back()}, element.source().begin);
        }
        set(key, texts, node.source().begin);
    }

    void set(SettingKey const& key, std::vector<std::string> const& texts,
             toml::source_position const& at) const {
        setIn(m_store, key, texts, at);
    }

    void setIn(SettingsStore& store, SettingKey const& key, std::vector<std::string> const& texts,
               toml::source_position const& at) const {
        try {
            store.set(key, texts, m_path + ":" + std::to_string(at.line));
        } catch (SettingsError const& error) {
            fail(at, error.what());
        }
    }

    std::string const& m_path;
    SettingsStore& m_store;
};

} // namespace

void loadSettingsFile(std::string const& path, SettingsStore& store) {
    FileLoader(path, store).load();
}

} // namespace Quorvane
