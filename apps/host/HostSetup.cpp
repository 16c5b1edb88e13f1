// SPDX-License-Identifier: Apache-2.0
#include "apps/host/HostSetup.h"

#include "apps/host/RuleLoader.h"
#include "apps/settings/FileTrust.h"
#include "apps/settings/SettingFiles.h"
#include "apps/settings/SettingsTable.h"
#include "include2/Exception.h"
#include "platform/DynamicIdentifier.h"
#include "platform/Resolver.h"
#include "platform/TrustedMTASet.h"
#include "rules/format/AttributeTable.h"
#include "rules/format/RulePlace.h"

#include <algorithm>
#include <sstream>
#include <utility>

namespace Quorvane {

namespace {

// A host may read the file again, and on a thread that no signal reaches.
std::string s_text(std::string const& path, std::optional<std::string> const& text) {
    if (text) {
        return *text;
    }
    requireRegularFile(path, "give a file that can be read again");
    return readSettingFile(path);
}

// All lines, comments and empty ones too: errors refer to their numbers.
std::vector<std::string> s_lines(std::string const& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        lines.push_back(line);
    }
    return lines;
}

ResolverSettings s_resolverSettings(HostSettings const& settings) {
    ResolverSettings resolver;
    if (settings.m_dns == "off") {
        resolver.m_mode = ResolverSettings::Mode::off;
    } else if (settings.m_dns != "system" && settings.m_dns != dnsAsNeeded) {
        resolver.m_mode = ResolverSettings::Mode::servers;
        resolver.m_servers = {settings.m_dns};
    }
    if (!settings.m_dnsData.empty() || !settings.m_zoneLines.empty()) {
        resolver.m_mode = ResolverSettings::Mode::local;
        resolver.m_servers.clear();
    }
    if (!settings.m_dnsData.empty()) {
        resolver.m_zoneData = s_lines(s_text(settings.m_dnsData, settings.m_zoneText));
    }
    resolver.m_deadline = settings.lookupTime();
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

boost::shared_ptr<Telvanis::DynamicIdentifier> s_patterns(HostSettings const& settings) {
    using Telvanis::DynamicIdentifier;
    auto const& path = settings.m_dynamicPatterns;
    try {
        return path.empty()
                   ? DynamicIdentifier::builtIn()
                   : DynamicIdentifier::compile(s_text(path, settings.m_patternText), path);
    } catch (Exception const& error) {
        throw SettingsError({error.fileName(), error.lineNumber(), 0}, error.stringParameter());
    }
}

// Whether "auto" is to be decided by the rules: lists of relays are asked whatever these test, and
// local data costs nothing.
bool s_dependsOnRules(HostSettings const& settings) {
    return settings.m_dns == dnsAsNeeded && settings.m_dnsLists.empty() &&
           settings.m_dnsData.empty() && settings.m_zoneLines.empty();
}

PreparedResolver s_silentResolver() {
    ResolverSettings settings;
    settings.m_mode = ResolverSettings::Mode::off;
    return Resolver::prepare(settings);
}

// REQUIRES: s_dependsOnRules(settings).
PreparedResolver s_resolverFor(HostSettings const& settings, DeepHeaderEngine const& engine) {
    return needsLookups(engine) ? s_resolver(settings) : s_silentResolver();
}

// The tables of the process for all scans, built but not yet in force.
class PreparedPlatform {
  public:
    explicit PreparedPlatform(HostSettings const& settings)
        : m_trusted(settings.m_trusted, settings.m_antiSpam, settings.m_internal, settings.m_ipv6),
          m_patterns(s_patterns(settings)),
          m_resolver(s_dependsOnRules(settings) ? nullptr : s_resolver(settings)) {}

    // Completes it, once the rules are known.
    void fit(HostSettings const& settings, DeepHeaderEngine const& engine) {
        if (m_resolver == nullptr) {
            m_resolver = s_resolverFor(settings, engine);
        }
    }

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

LoadedRules s_rules(std::string const& root, std::string const& rootName) {
    try {
        return loadRules(root);
    } catch (NoRulesError const& error) {
        throw NoRulesError(error.what() + ("; " + rootName) + " says below which folder to look");
    }
}

} // namespace

bool needsLookups(DeepHeaderEngine const& engine) {
    auto const tested = engine.testedAttributes();
    return std::any_of(tested.begin(), tested.end(), [](std::int32_t attribute) {
        return dependsOnDns(attributeTable.at(static_cast<std::size_t>(attribute)));
    });
}

void settleDns(HostSettings& settings, bool isNeeded) {
    if (settings.m_dns == dnsAsNeeded) {
        settings.m_dns = isNeeded ? "system" : "off";
    }
}

std::shared_ptr<ScanHost const> setUpHost(HostSettings const& settings, LoadedRules rules) {
    auto host = std::make_shared<ScanHost const>(settings, std::move(rules));
    putInForce(*host);
    return host;
}

void putInForce(ScanHost const& host) {
    PreparedPlatform platform(host.settings());
    platform.fit(host.settings(), host.engine());
    platform.publish();
}

std::shared_ptr<ScanHost const> setUpHost(HostSettings const& settings, std::string const& rootName,
                                          std::shared_ptr<Logger> logger) {
    PreparedPlatform platform(settings);
    if (!holdsRules(settings.m_root)) {
        useRoot(settings.m_root);
    }
    if (settings.m_root == HostSettings().m_root) {
        requireOwnRules(settings.m_root); // nobody chose them for this run
    }
    auto rules = s_rules(settings.m_root, rootName);
    platform.fit(settings, rules.m_engine);
    auto host = std::make_shared<ScanHost const>(settings, std::move(rules));
    if (logger != nullptr) {
        Logger::install(std::move(logger));
    }
    platform.publish();
    return host;
}

bool canBeSideBySide(ScanHost const& one, ScanHost const& other) {
    auto const isSame = [&one, &other](auto HostSettings::*field) {
        return one.settings().*field == other.settings().*field;
    };
    auto const areSame = [&one, &other](std::vector<IPPrefix> HostSettings::*relays) {
        return settingTexts(one.settings().*relays) == settingTexts(other.settings().*relays);
    };
    auto const asks = [](ScanHost const& host) {
        return !s_dependsOnRules(host.settings()) || needsLookups(host.engine());
    };
    return areSame(&HostSettings::m_trusted) && areSame(&HostSettings::m_antiSpam) &&
           areSame(&HostSettings::m_internal) && isSame(&HostSettings::m_ipv6) &&
           isSame(&HostSettings::m_dynamicPatterns) && isSame(&HostSettings::m_patternText) &&
           isSame(&HostSettings::m_dns) && isSame(&HostSettings::m_dnsTimeout) &&
           isSame(&HostSettings::m_dnsData) && isSame(&HostSettings::m_zoneText) &&
           isSame(&HostSettings::m_zoneLines) && asks(one) == asks(other);
}

std::shared_ptr<ScanHost const> withNewerRules(std::shared_ptr<ScanHost const> host) {
    auto const& root = host->settings().m_root;
    auto const installed = installedVersion(root);
    if (!installed || *installed <= host->ruleVersion().value_or(0)) {
        return host;
    }
    auto rules = loadRules(root);
    if (s_dependsOnRules(host->settings()) &&
        needsLookups(rules.m_engine) != needsLookups(host->engine())) {
        Resolver::instance().configure(s_resolverFor(host->settings(), rules.m_engine));
    }
    return std::make_shared<ScanHost const>(host->judgingWith(std::move(rules)));
}

} // namespace Quorvane
