// SPDX-License-Identifier: Apache-2.0
#include "apps/host/HostSetup.h"

#include "apps/settings/SettingsTable.h"
#include "DeepHeaderScanner.h"
#include "platform/DynamicIdentifier.h"
#include "platform/File.h"
#include "platform/Logger.h"
#include "platform/Resolver.h"
#include "platform/TrustedMTASet.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <mutex>
#include <thread>

namespace Quorvane {

namespace {

// Keeps what the library logs while it loads, to say it in our own error.
class RecordingLogger : public Logger {
  public:
    void log(int, int, char const* format, ...) override __attribute__((format(printf, 4, 5)));

    std::string text() const {
        std::lock_guard const lock(m_mutex);
        return m_text;
    }

  private:
    mutable std::mutex m_mutex;
    std::string m_text;
};

void RecordingLogger::log(int, int, char const* format, ...) {
    std::array<char, 1024> line{};
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line.data(), line.size(), format, arguments);
    va_end(arguments);
    std::lock_guard const lock(m_mutex);
    m_text = line.data();
}

// Lines as they stand, comments and empty ones too: errors name them by number.
std::vector<std::string> s_lines(std::string const& path) {
    std::ifstream file(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        lines.push_back(line);
    }
    if (!file.is_open() || file.bad()) {
        throw SettingsError(path + ": cannot be read: " + std::strerror(errno));
    }
    return lines;
}

ResolverSettings s_resolver(HostSettings const& settings) {
    ResolverSettings resolver;
    if (settings.m_dns == "off") {
        resolver.m_mode = ResolverSettings::Mode::off;
    } else if (settings.m_dns != "system") {
        resolver.m_mode = ResolverSettings::Mode::servers;
        resolver.m_servers = {settings.m_dns};
    }
    if (!settings.m_dnsData.empty() || !settings.m_zoneLines.empty()) {
        resolver.m_mode = ResolverSettings::Mode::local;
        resolver.m_servers.clear();
    }
    if (!settings.m_dnsData.empty()) {
        resolver.m_zoneData = s_lines(settings.m_dnsData);
    }
    resolver.m_zoneData.insert(resolver.m_zoneData.end(), settings.m_zoneLines.begin(),
                               settings.m_zoneLines.end());
    return resolver;
}

void s_setUpPlatform(HostSettings const& settings) {
    File::setRoot(settings.m_root);
    TrustedMTASetRef::install(settings.m_trusted, settings.m_antiSpam);
    if (!settings.m_dynamicPatterns.empty()) {
        Telvanis::DynamicIdentifierSingleton::install(
            Telvanis::DynamicIdentifier::load(settings.m_dynamicPatterns));
    }
    try {
        Resolver::instance().configure(s_resolver(settings));
    } catch (Exception const& error) {
        auto const server = settings.m_zoneLines.empty() ? settings.m_dns : std::string("dns");
        throw SettingsError((settings.m_dnsData.empty() ? server : settings.m_dnsData) + ": " +
                            error.stringParameter());
    }
}

// "file:line: text" where the error knows its place.
std::string s_located(Exception const& error) {
    auto const& file = error.fileName();
    auto const line = error.lineNumber() == 0 ? "" : ':' + std::to_string(error.lineNumber());
    return file.empty() ? error.stringParameter() : file + line + ": " + error.stringParameter();
}

// A version that is no number above 0 is never newer than "nothing loaded", and the library then
// has nothing to log.
std::string s_whyNotLoaded(std::string const& logged) {
    return logged.empty() ? std::string("the version in README must be above 0") : logged;
}

RefDeepHeaderAdapter s_engine() {
    DeepHeaderScanner().init();
    Synchronized const lock(DeepHeaderScanner::m_Mutex);
    return RefDeepHeaderAdapter::instance(nullptr);
}

// While rules are installed their version is 0, so that nobody loads half of two sets. That takes a
// quarter of a second; a host that starts just then looks again before it gives up.
RefDeepHeaderAdapter s_engineBehindInstallation(RecordingLogger const& logger) {
    auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    auto engine = s_engine();
    while (engine.isEmpty() && logger.text().empty() &&
           std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        engine = s_engine();
    }
    return engine;
}

RefDeepHeaderAdapter s_loadEngine() {
    auto const logger = std::make_shared<RecordingLogger>();
    Logger::install(logger);
    auto engine = s_engineBehindInstallation(*logger);
    Logger::install(nullptr);
    if (engine.isEmpty()) {
        throw SettingsError("no usable rules in " + File::root() + ruleDirectory + ": " +
                            s_whyNotLoaded(logger->text()) +
                            "; --root says below which folder to look");
    }
    return engine;
}

} // namespace

void setUpPlatform(HostSettings const& settings) {
    try {
        s_setUpPlatform(settings);
    } catch (Exception const& error) {
        throw SettingsError(s_located(error));
    }
}

RefDeepHeaderAdapter setUpHost(HostSettings const& settings) {
    setUpPlatform(settings);
    return s_loadEngine();
}

} // namespace Quorvane
