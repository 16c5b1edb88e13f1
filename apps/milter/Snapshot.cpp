// SPDX-License-Identifier: Apache-2.0
#include "apps/milter/Snapshot.h"

#include "apps/host/HostSetup.h"
#include "apps/host/RuleLoader.h"
#include "apps/settings/FileTrust.h"
#include "apps/settings/SettingFiles.h"
#include "apps/settings/SettingSources.h"

#include <utility>

namespace Quorvane::Milter {

namespace {

// They are used up when the program starts.
constexpr std::string_view fixedSettings[] = {
    "socket", "socket-group", "socket-mode", "user", "pid-file", "log", "metrics", "idle-timeout"};

void s_checkFixed(MilterStore const& before, MilterStore const& now) {
    for (auto const name : fixedSettings) {
        if (before.texts(name) != now.texts(name)) {
            throw SettingsError(now.origin(name) + ": " + std::string(name) +
                                " cannot change while the program runs; restart it");
        }
    }
}

} // namespace

std::shared_ptr<ScanHost const> setUpHost(FileSettings const& settings) {
    auto host = settings.m_host.values();
    requireOwnFiles(host);
    if (settings.m_milter.values().m_logDetails != 0) {
        settleDns(host, true); // the log shows the attributes that come from DNS
    }
    return Quorvane::setUpHost(host, "root in the settings file");
}

FileSettings readFileSettings(std::string const& path) {
    requireRegularFile(path, "a daemon reads its settings again at each reload");
    requireOwnFile(path);
    FileSettings settings;
    SettingsSection* const sections[] = {&settings.m_host, &settings.m_milter};
    loadSettingsFile(path, "qvmilter", sections);
    return settings;
}

SnapshotInForce::SnapshotInForce(std::string path) : m_path(std::move(path)) {
    auto settings = readFileSettings(m_path);
    try {
        put(settings, setUpHost(settings));
    } catch (NoRulesError const& error) {
        m_whyNoRules = error.what();
        put(settings, nullptr);
    }
}

std::shared_ptr<Snapshot const> SnapshotInForce::current() const {
    std::lock_guard const lock(m_mutex);
    return m_current;
}

void SnapshotInForce::put(FileSettings const& settings, std::shared_ptr<ScanHost const> host) {
    auto const loaded = loadTime(host.get());
    auto next = std::make_shared<Snapshot const>(Snapshot{settings, std::move(host), loaded});
    std::lock_guard const lock(m_mutex);
    m_current.swap(next);
}

// A reload that finds no newer rules goes on with those it has.
Snapshot::Time SnapshotInForce::loadTime(ScanHost const* host) const {
    if (host == nullptr) {
        return {};
    }
    auto const before = current();
    bool const areSame = before != nullptr && before->m_host != nullptr &&
                         before->m_host->ruleVersion() == host->ruleVersion();
    return areSame ? before->m_rulesLoaded : Snapshot::Clock::now();
}

void SnapshotInForce::reload() {
    auto settings = readFileSettings(m_path);
    s_checkFixed(current()->m_settings.m_milter, settings.m_milter);
    auto host = setUpHost(settings);
    m_whyNoRules.clear();
    put(settings, std::move(host));
}

bool SnapshotInForce::loadNewerRules() {
    auto const before = current();
    auto const& settings = before->m_settings;
    requireOwnFiles(settings.m_host.values());
    auto host = before->m_host == nullptr ? setUpHost(settings) : withNewerRules(before->m_host);
    if (host == before->m_host) {
        return false;
    }
    m_whyNoRules.clear();
    put(settings, std::move(host));
    return true;
}

} // namespace Quorvane::Milter
