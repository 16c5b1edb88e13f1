// SPDX-License-Identifier: Apache-2.0
#include "apps/milter/Snapshot.h"

#include "apps/host/HostSetup.h"
#include "apps/host/RuleLoader.h"
#include "apps/settings/SettingSources.h"

#include <utility>

namespace Quorvane::Milter {

namespace {

// They are used up when the program starts.
constexpr std::string_view fixedSettings[] = {"socket",   "socket-group", "socket-mode", "user",
                                              "pid-file", "log",          "metrics"};

void s_checkFixed(MilterStore const& before, MilterStore const& now) {
    for (auto const name : fixedSettings) {
        if (before.texts(name) != now.texts(name)) {
            throw SettingsError(now.origin(name) + ": " + std::string(name) +
                                " cannot change while the program runs; restart it");
        }
    }
}

} // namespace

FileSettings readFileSettings(CommandLine const& line) {
    FileSettings settings;
    SettingsSection* const sections[] = {&settings.m_host, &settings.m_milter};
    readSettings(line, "qvmilter", sections);
    return settings;
}

SnapshotInForce::SnapshotInForce(CommandLine line) : m_line(std::move(line)) {
    auto settings = readFileSettings(m_line);
    try {
        auto host = setUpHost(settings.m_host.values());
        put({std::move(settings), std::move(host), std::chrono::system_clock::now()});
    } catch (NoRulesError const& error) {
        m_whyNoRules = error.what();
        put({std::move(settings), nullptr, {}});
    }
}

std::shared_ptr<Snapshot const> SnapshotInForce::current() const {
    std::lock_guard const lock(m_mutex);
    return m_current;
}

void SnapshotInForce::put(Snapshot snapshot) {
    auto next = std::make_shared<Snapshot const>(std::move(snapshot));
    std::lock_guard const lock(m_mutex);
    m_current.swap(next);
}

void SnapshotInForce::reload() {
    auto settings = readFileSettings(m_line);
    s_checkFixed(current()->m_settings.m_milter, settings.m_milter);
    auto host = setUpHost(settings.m_host.values());
    m_whyNoRules.clear();
    put({std::move(settings), std::move(host), std::chrono::system_clock::now()});
}

bool SnapshotInForce::loadNewerRules() {
    auto const before = current();
    auto const& settings = before->m_settings;
    auto host = before->m_host == nullptr ? setUpHost(settings.m_host.values())
                                          : withNewerRules(before->m_host);
    if (host == before->m_host) {
        return false;
    }
    m_whyNoRules.clear();
    put({settings, std::move(host), std::chrono::system_clock::now()});
    return true;
}

} // namespace Quorvane::Milter
