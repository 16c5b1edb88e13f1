// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/HostOptions.h"

#include "apps/common/SettingsFile.h"
#include "apps/common/SettingsStore.h"
#include "rules/model/RuleError.h"

#include <CLI/CLI.hpp>

namespace Quorvane::RulesApp {

namespace {

constexpr char configName[] = "config";
// The rules to learn from or to measure are arguments of the command, not of the host.
constexpr std::string_view rootName = "root";

void s_add(CLI::App& command, std::string const& name, SettingKey const& key,
           GivenSettings& given) {
    auto const take = [&given, name](std::vector<std::string> const& texts) {
        given[name] = texts;
    };
    auto const policy = key.m_kind == SettingKind::list ? CLI::MultiOptionPolicy::TakeAll
                                                        : CLI::MultiOptionPolicy::TakeLast;
    command
        .add_option_function<std::vector<std::string>>("--" + name, take, std::string(key.m_help))
        ->expected(1)
        ->multi_option_policy(policy)
        ->allow_extra_args(false)
        ->type_name(std::string(key.m_valueName))
        ->group("How mail is scanned");
}

} // namespace

void addHostOptions(CLI::App& command, GivenSettings& given) {
    command
        .add_option_function<std::string>(
            "--config", [&given](std::string const& path) { given[configName] = {path}; },
            "settings file (TOML); the command line wins")
        ->type_name("FILE")
        ->group("How mail is scanned");
    for (auto const& key : settingKeys()) {
        if (key.m_name != rootName) {
            s_add(command, std::string(key.m_name), key, given);
        }
    }
}

HostSettings hostSettings(GivenSettings const& given) {
    try {
        SettingsStore store;
        if (auto const config = given.find(configName); config != given.end()) {
            loadSettingsFile(config->second.front(), store);
        }
        for (auto const& [name, texts] : given) {
            if (auto const* const key = findSetting(name)) {
                store.set(*key, texts, "command line");
            }
        }
        return store.values();
    } catch (SettingsError const& error) {
        throw Rules::RuleError(Rules::RuleError::Kind::badRules, error.what());
    }
}

} // namespace Quorvane::RulesApp
