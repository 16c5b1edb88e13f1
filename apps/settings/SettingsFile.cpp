// SPDX-License-Identifier: Apache-2.0
#include "apps/settings/SettingsFile.h"

#include "apps/settings/TomlSettings.h"
#include "rules/language/Nearest.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace Quorvane {

namespace {

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

} // namespace

void loadSettingsFile(std::string const& path, SettingsStore& store) {
    auto const file = parseToml(path, s_readAll(path));
    for (auto const& [name, node] : file) {
        if (name.str() == milterTable && node.is_table()) {
            continue;
        }
        auto const* const key = findSetting(name.str());
        if (key == nullptr) {
            throw SettingsError(tomlPlace(path, name.source().begin) + s_unknownKey(name.str()));
        }
        setFromToml(store, *key, node, path);
    }
}

} // namespace Quorvane
