// SPDX-License-Identifier: Apache-2.0
//
// SettingsStore: the settings in force and where each came from. Layers are put on in order, later
// ones win: defaults, settings file, command line. A list is replaced as a whole. Used at start, on
// one thread.
#pragma once

#include "apps/settings/HostSettings.h"
#include "apps/settings/SettingsTable.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace Quorvane {

class SettingsStore {
  public:
    HostSettings const& values() const { return m_values; }

    // Throws a SettingsError ("name: what is wrong"); the setting may then be half set.
    void set(SettingKey const& key, std::vector<std::string> const& texts,
             std::string const& origin);

    // "default", "command line", or file and line.
    std::string origin(std::string_view name) const;

    // All settings as a settings file that gives just these, each with its origin in a comment.
    std::string asToml() const;

  private:
    HostSettings m_values;
    std::map<std::string, std::string, std::less<>> m_origins;
};

} // namespace Quorvane
