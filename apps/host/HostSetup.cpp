// SPDX-License-Identifier: Apache-2.0
#include "apps/host/HostSetup.h"

#include "apps/host/RuleLoader.h"
#include "apps/settings/SettingsTable.h"
#include "include2/Exception.h"
#include "platform/DynamicIdentifier.h"
#include "platform/Resolver.h"
#include "platform/TrustedMTASet.h"

#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstring>
#include <fstream>
#include <utility>

namespace Quorvane {

namespace {

// All lines, comments and empty ones too: errors refer to their numbers.
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

ResolverSettings s_resolverSettings(HostSettings const& settings) {
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
    // The lists are asked at once, then the names of the scan: each round gets half of the time.
    auto const share = settings.m_dnsLists.empty() ? 1.0 : 0.5;
    resolver.m_deadline =
        std::chrono::milliseconds(std::lround(settings.m_dnsTimeout * share * 1000));
    resolver.m_zoneData.insert(resolver.m_zoneData.end(), settings.m_zoneLines.begin(),
                               settings.m_zoneLines.end());
    return resolver;
}

PreparedResolver s_resolver(HostSettings const& settings) {
    try {
        return Resolver::prepare(s_resolverSettings(settings));
    } catch (Exception const& error) {
        auto const server = settings.m_zoneLines.empty() ? settings.m_dns : std::string("dns");
        throw SettingsError((settings.m_dnsData.empty() ? server : settings.m_dnsData) + ": " +
                            error.stringParameter());
    }
}

// "file:line: text" if the error has a place.
std::string s_located(Exception const& error) {
    auto const& file = error.fileName();
    auto const line = error.lineNumber() == 0 ? "" : ':' + std::to_string(error.lineNumber());
    return file.empty() ? error.stringParameter() : file + line + ": " + error.stringParameter();
}

boost::shared_ptr<Telvanis::DynamicIdentifier> s_patterns(HostSettings const& settings) {
    using Telvanis::DynamicIdentifier;
    try {
        return settings.m_dynamicPatterns.empty()
                   ? DynamicIdentifier::builtIn()
                   : DynamicIdentifier::load(settings.m_dynamicPatterns);
    } catch (Exception const& error) {
        throw SettingsError(s_located(error));
    }
}

// The tables of the process for all scans, built but not yet in force.
class PreparedPlatform {
  public:
    explicit PreparedPlatform(HostSettings const& settings)
        : m_trusted(settings.m_trusted, settings.m_antiSpam, settings.m_internal),
          m_patterns(s_patterns(settings)), m_resolver(s_resolver(settings)) {}

    // Only swaps pointers.
    void publish() {
        TrustedMTASetRef::install(m_trusted);
        Telvanis::DynamicIdentifierSingleton::install(m_patterns);
        Resolver::instance().configure(std::move(m_resolver));
    }

  private:
    TrustedMTASet m_trusted;
    boost::shared_ptr<Telvanis::DynamicIdentifier> m_patterns;
    PreparedResolver m_resolver;
};

} // namespace

std::shared_ptr<ScanHost const> setUpHost(HostSettings const& settings, DeepHeaderEngine engine) {
    PreparedPlatform platform(settings);
    auto host = std::make_shared<ScanHost const>(settings, std::move(engine));
    platform.publish();
    return host;
}

std::shared_ptr<ScanHost const> setUpHost(HostSettings const& settings,
                                          std::shared_ptr<Logger> logger) {
    PreparedPlatform platform(settings);
    useRoot(settings.m_root);
    auto rules = loadRules();
    auto host =
        std::make_shared<ScanHost const>(settings, std::move(rules.m_engine), rules.m_version);
    if (logger != nullptr) {
        Logger::install(std::move(logger));
    }
    platform.publish();
    return host;
}

std::shared_ptr<ScanHost const> withNewerRules(std::shared_ptr<ScanHost const> host) {
    auto const installed = installedVersion();
    if (!installed || *installed <= host->ruleVersion().value_or(0)) {
        return host;
    }
    auto rules = loadRules();
    return std::make_shared<ScanHost const>(
        host->judgingWith(std::move(rules.m_engine), rules.m_version));
}

} // namespace Quorvane
