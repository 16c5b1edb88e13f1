// SPDX-License-Identifier: Apache-2.0
#include "apps/show/AskedSettings.h"

#include "apps/settings/SettingsTable.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string>

namespace Quorvane::Show {

namespace {

// As browsers write the values of forms: "+" is a blank, "%2B" a plus sign. A "%" without two
// digits stands for itself (url.spec.whatwg.org, "percent-decode").
std::string s_decoded(std::string_view text) {
    std::string decoded;
    for (; !text.empty(); text.remove_prefix(1)) {
        std::uint8_t byte = 0;
        auto const digits = text.substr(1, 2);
        auto const* const end = digits.data() + digits.size();
        bool const isEscape = text.front() == '%' && digits.size() == 2 &&
                              std::from_chars(digits.data(), end, byte, 16).ptr == end;
        decoded += isEscape ? static_cast<char>(byte) : text.front() == '+' ? ' ' : text.front();
        text.remove_prefix(isEscape ? digits.size() : 0);
    }
    return decoded;
}

void s_set(HostSettings& settings, std::string const& name, std::string const& value) {
    auto const rows = settingRows();
    auto const row = std::find_if(rows.begin(), rows.end(), [&name](auto const& each) {
        return each.m_facts.m_name == name && each.m_facts.m_isOfRules;
    });
    if (row == rows.end()) {
        throw SettingsError("a page cannot set \"" + name + "\"");
    }
    try {
        if (row->m_check != nullptr) {
            row->m_check(value);
        }
        row->m_assign(settings, value);
    } catch (SettingsError const& error) {
        throw SettingsError(name + ": " + error.what());
    }
}

} // namespace

HostSettings askedSettings(HostSettings host, std::string_view query) {
    while (!query.empty()) {
        auto const pair = query.substr(0, query.find('&'));
        query.remove_prefix(std::min(pair.size() + 1, query.size()));
        auto const name = pair.substr(0, pair.find('='));
        auto const value = pair.substr(std::min(name.size() + 1, pair.size()));
        s_set(host, s_decoded(name), s_decoded(value));
    }
    return host;
}

} // namespace Quorvane::Show
