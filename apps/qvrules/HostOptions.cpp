// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/HostOptions.h"

#include "apps/qvrules/Commands.h"
#include "apps/settings/FactsTable.h"
#include "apps/settings/SettingsFile.h"
#include "apps/settings/SettingsStore.h"

#include <algorithm>
#include <CLI/CLI.hpp>

namespace Quorvane::RulesApp {

namespace {

constexpr char configName[] = "config";
// The rules to learn from or to measure are arguments of the command, not of the host.
constexpr std::string_view rootName = "root";

// `Key` is a SettingKey or a FactKey.
template<typename Key>
CLI::Option* s_add(CLI::App& command, Key const& key, GivenSettings& given) {
    std::string const name(key.m_name);
    auto const take = [&given, name](std::vector<std::string> const& texts) {
        given[name] = texts;
    };
    return command
        .add_option_function<std::vector<std::string>>("--" + name, take, std::string(key.m_help))
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast)
        ->allow_extra_args(false)
        ->type_name(std::string(key.m_valueName));
}

CLI::Option* s_addConfig(CLI::App& command, GivenSettings& given) {
    return command
        .add_option_function<std::string>(
            "--config", [&given](std::string const& path) { given[configName] = {path}; },
            "settings file (TOML); the command line wins")
        ->type_name("FILE");
}

} // namespace

void addHostOptions(CLI::App& command, GivenSettings& given) {
    s_addConfig(command, given)->group("How mail is scanned");
    for (auto const& key : settingKeys()) {
        if (key.m_name != rootName) {
            auto* const option = s_add(command, key, given)->group("How mail is scanned");
            if (key.m_kind == SettingKind::list) {
                option->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
            }
        }
    }
}

void addThresholdOptions(CLI::App& command, GivenSettings& given) {
    s_addConfig(command, given);
    for (auto const& key : settingKeys()) {
        if (key.m_isOfRules) {
            s_add(command, key, given);
        }
    }
}

void addFactOptions(CLI::App& command, GivenSettings& given) {
    for (auto const& key : factKeys()) {
        s_add(command, key, given)->group("What is known of the message");
    }
}

HostSettings hostSettings(GivenSettings const& given) {
    SettingsStore store;
    if (auto const config = given.find(configName); config != given.end()) {
        loadSettingsFile(config->second.front(), store);
    }
    for (auto const& [name, texts] : given) {
        if (auto const* const key = findSetting(name)) {
            try {
                store.set(*key, texts, "command line");
            } catch (SettingsError const& error) {
                throw UsageError(std::string("--") + error.what());
            }
        }
    }
    return store.values();
}

MessageFacts messageFacts(GivenSettings const& given) {
    MessageFacts facts;
    for (auto const& [name, texts] : given) {
        if (auto const* const key = findFact(name)) {
            try {
                key->m_assign(facts, texts.front());
            } catch (SettingsError const& error) {
                throw UsageError("--" + name + ": " + error.what());
            }
        }
    }
    return facts;
}

bool hasFacts(GivenSettings const& given) {
    return std::any_of(given.begin(), given.end(),
                       [](auto const& one) { return findFact(one.first) != nullptr; });
}

} // namespace Quorvane::RulesApp
