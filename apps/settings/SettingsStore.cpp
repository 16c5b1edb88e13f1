// SPDX-License-Identifier: Apache-2.0
#include "apps/settings/SettingsStore.h"

#include <algorithm>
#include <array>

namespace Quorvane {

namespace {

// TOML basic string (toml.io v1.0.0, "String").
std::string s_quoted(std::string const& text) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string out = "\"";
    for (char const c : text) {
        auto const byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (byte < 0x20 || byte == 0x7F) {
            out += "\\u00";
            out += digits[byte >> 4];
            out += digits[byte & 0x0F];
        } else {
            out += c;
        }
    }
    return out + "\"";
}

std::string s_list(std::vector<std::string> const& texts) {
    std::string out = "[";
    for (auto const& text : texts) {
        out += (out.size() > 1 ? ", " : "") + s_quoted(text);
    }
    return out + "]";
}

// A TOML float has a point or an exponent; 1 would be an integer, which is as good.
std::string s_value(SettingKey const& key, HostSettings const& settings) {
    auto const texts = key.m_show(settings);
    switch (key.m_kind) {
    case SettingKind::list:
        return s_list(texts);
    case SettingKind::number:
    case SettingKind::integer:
        return texts.front();
    case SettingKind::text:
    case SettingKind::path:
        break;
    }
    return s_quoted(texts.front());
}

bool s_isUnset(SettingKey const& key, HostSettings const& settings) {
    auto const texts = key.m_show(settings);
    return key.m_kind == SettingKind::path && texts.front().empty();
}

} // namespace

void SettingsStore::set(SettingKey const& key, std::vector<std::string> const& texts,
                        std::string const& origin) {
    if (key.m_clear != nullptr) {
        key.m_clear(m_values);
    }
    try {
        for (auto const& text : texts) {
            key.m_assign(m_values, text);
        }
    } catch (SettingsError const& error) {
        throw SettingsError(std::string(key.m_name) + ": " + error.what());
    }
    m_origins.insert_or_assign(std::string(key.m_name), origin);
}

std::string SettingsStore::origin(std::string_view name) const {
    auto const found = m_origins.find(name);
    return found == m_origins.end() ? "default" : found->second;
}

std::string SettingsStore::asToml() const {
    constexpr std::size_t commentColumn = 40;
    std::string out;
    for (auto const& key : settingKeys()) {
        auto line = std::string(key.m_name) + " = " + s_value(key, m_values);
        // A path that is not set has no value to write down.
        if (s_isUnset(key, m_values)) {
            line.insert(0, "# ");
        }
        line.resize(std::max(line.size() + 1, commentColumn), ' ');
        out += line + "# " + origin(key.m_name) + "\n";
    }
    return out;
}

} // namespace Quorvane
