// SPDX-License-Identifier: Apache-2.0
//
// The one table of settings: the name of each in the settings file and, behind "--", on the command
// line, how its text is read and shown. The settings file, the command line, --show-config, the
// help and the completion all draw on it. Plain functions without state.
#pragma once

#include "apps/settings/HostSettings.h"

#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Quorvane {

// A value that a setting does not take, or a settings file that is wrong. The text is complete:
// what, where and what to do.
class SettingsError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

enum class SettingKind {
    text,
    path, // in a settings file relative to the file's folder
    number,
    integer,
    list, // of texts; repeatable on the command line
};

struct SettingKey {
    std::string_view m_name;
    SettingKind m_kind;
    std::string_view m_valueName;
    std::string_view m_help;
    // Takes one value; of a list one more element. Throws a SettingsError.
    void (*m_assign)(HostSettings& settings, std::string const& text);
    // The value or the elements as assign would take them.
    std::vector<std::string> (*m_show)(HostSettings const& settings);
    // Empties a list; null for other kinds.
    void (*m_clear)(HostSettings& settings);
    // It says how rules judge, whatever the mail and the relays are.
    bool m_isOfRules = false;
};

std::span<SettingKey const> settingKeys();
// Null when there is none.
SettingKey const* findSetting(std::string_view name);

// Number readers shared with the options of a single run; each throws a SettingsError that shows
// the text and the range.
double readNumber(std::string const& text);
long long readInteger(std::string const& text, long long low, long long high);

} // namespace Quorvane
