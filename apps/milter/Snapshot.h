// SPDX-License-Identifier: Apache-2.0
//
// What is in force: the settings, and a host with its rules. A snapshot never changes; a reload
// puts another one in its place, and sessions keep the one they began with.
#pragma once

#include "apps/host/ScanHost.h"
#include "apps/milter/MilterTable.h"
#include "apps/settings/SettingsTable.h"

#include <chrono>
#include <memory>
#include <mutex>
#include <string>

namespace Quorvane::Milter {

// What the settings file says.
struct FileSettings {
    SettingsStore m_host;
    MilterStore m_milter;
};

// A SettingsError for what is wrong with the file.
FileSettings readFileSettings(std::string const& path);

// Puts the settings for all programs in force (apps/host/HostSetup.h).
std::shared_ptr<ScanHost const> setUpHost(FileSettings const& settings);

struct Snapshot {
    using Clock = std::chrono::system_clock;
    using Time = Clock::time_point;

    FileSettings m_settings;
    std::shared_ptr<ScanHost const> m_host; // null: no rules could be loaded yet
    Time m_rulesLoaded;

    MilterSettings const& milter() const { return m_settings.m_milter.values(); }
    HeaderLimits const& limits() const { return m_settings.m_host.values().m_limits; }
};

// The snapshot in force. current may be called from any thread; the others from one.
class SnapshotInForce {
  public:
    // `path`: of the settings file, which each reload reads again. Rules that cannot be loaded are
    // no error here (whyNoRules says so); a SettingsError for all else.
    explicit SnapshotInForce(std::string path);

    std::shared_ptr<Snapshot const> current() const;

    // Settings and rules anew. A SettingsError when anything is wrong; nothing has changed then.
    void reload();
    // Newer rules, if there are any, with the settings in force. True when they were loaded. A
    // SettingsError when they cannot be loaded.
    bool loadNewerRules();

    // Why there are no rules; empty: there are.
    std::string const& whyNoRules() const { return m_whyNoRules; }

  private:
    // `host` null: there are no rules yet.
    void put(FileSettings const& settings, std::shared_ptr<ScanHost const> host);
    Snapshot::Time loadTime(ScanHost const* host) const;

    std::string m_path;
    mutable std::mutex m_mutex; // guards m_current
    std::shared_ptr<Snapshot const> m_current;
    std::string m_whyNoRules;
};

} // namespace Quorvane::Milter
