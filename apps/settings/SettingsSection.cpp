// SPDX-License-Identifier: Apache-2.0
#include "apps/settings/SettingsSection.h"

#include <algorithm>
#include <boost/algorithm/string/join.hpp>
#include <stdexcept>
#include <utility>

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

// 1 is an integer in TOML, not a float; either is accepted for a number.
std::string s_value(SettingKind kind, SettingTexts texts) {
    if (kind == SettingKind::number || kind == SettingKind::integer) {
        return texts.front();
    }
    std::transform(texts.begin(), texts.end(), texts.begin(), s_quoted);
    auto const list = boost::algorithm::join(texts, ", ");
    return kind == SettingKind::list ? "[" + list + "]" : list;
}

} // namespace

SettingsSection::SettingsSection(std::string_view title, std::vector<SettingFacts> facts)
    : m_title(title), m_facts(std::move(facts)) {}

SettingFacts const* SettingsSection::find(std::string_view name) const {
    auto const found =
        std::find_if(m_facts.begin(), m_facts.end(),
                     [name](SettingFacts const& facts) { return facts.m_name == name; });
    return found == m_facts.end() ? nullptr : &*found;
}

std::size_t SettingsSection::rowOf(std::string_view name) const {
    auto const* const facts = find(name);
    if (facts == nullptr) {
        throw std::out_of_range(std::string(name) + ": no such setting");
    }
    return static_cast<std::size_t>(facts - m_facts.data());
}

void SettingsSection::set(std::string_view name, SettingTexts const& texts,
                          std::string const& origin) {
    reset(name, origin);
    for (auto const& text : texts) {
        add(name, text);
    }
}

void SettingsSection::reset(std::string_view name, std::string const& origin) {
    resetRow(rowOf(name));
    m_origins.insert_or_assign(std::string(name), origin);
}

void SettingsSection::add(std::string_view name, std::string const& text) {
    try {
        assignRow(rowOf(name), text);
    } catch (SettingsError const& error) {
        throw SettingsError(std::string(name) + ": " + error.what());
    }
}

SettingTexts SettingsSection::texts(std::string_view name) const {
    return showRow(rowOf(name));
}

std::string SettingsSection::origin(std::string_view name) const {
    auto const found = m_origins.find(name);
    return found == m_origins.end() ? std::string(defaultOrigin) : found->second;
}

std::string SettingsSection::asToml() const {
    constexpr std::size_t commentColumn = 40;
    auto out = m_title.empty() ? std::string() : "\n[" + std::string(m_title) + "]\n";
    for (auto const& facts : m_facts) {
        auto const shown = texts(facts.m_name);
        auto line = std::string(facts.m_name) + " = " + s_value(facts.m_kind, shown);
        auto const from = origin(facts.m_name);
        // A path that is not set has no value. One that was set to nothing is shown as it was set,
        // because its default may be a folder.
        if (facts.m_kind == SettingKind::path && shown.front().empty() && from == defaultOrigin) {
            line.insert(0, "# ");
        }
        line.resize(std::max(line.size() + 1, commentColumn), ' ');
        out.append(line).append("# ").append(from) += '\n';
    }
    return out;
}

} // namespace Quorvane
