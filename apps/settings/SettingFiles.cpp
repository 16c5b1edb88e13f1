// SPDX-License-Identifier: Apache-2.0
#include "apps/settings/SettingFiles.h"

#include "apps/settings/SettingValue.h"
#include "rules/model/Files.h"
#include "rules/model/RuleError.h"

#include <filesystem>

namespace Quorvane {

std::string readSettingFile(std::string const& path) {
    try {
        return Rules::readFile(path);
    } catch (Rules::RuleError const& error) {
        throw SettingsError(error);
    }
}

void requireRegularFile(std::string const& path, std::string const& why) {
    std::error_code error;
    auto const status = std::filesystem::status(path, error);
    if (std::filesystem::exists(status) && std::filesystem::is_other(status)) {
        throw SettingsError(path + ": is a pipe or a device; " + why);
    }
}

HostSettings withFiles(HostSettings settings) {
    if (!settings.m_dynamicPatterns.empty()) {
        settings.m_patternText = readSettingFile(settings.m_dynamicPatterns);
    }
    if (!settings.m_dnsData.empty()) {
        settings.m_zoneText = readSettingFile(settings.m_dnsData);
    }
    return settings;
}

} // namespace Quorvane
