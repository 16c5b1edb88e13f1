// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Commands.h"

#include "apps/commandline/Program.h"
#include "apps/input/Inputs.h"
#include "apps/qvrules/NameWarning.h"
#include "apps/settings/SettingFiles.h"
#include "apps/settings/SettingSources.h"
#include "rules/format/RuleFiles.h"
#include "rules/language/AttributePage.h"
#include "rules/model/RuleError.h"

#include <algorithm>
#include <filesystem>

namespace Quorvane::RulesApp {

namespace {

// Whether the first thing at the path is a message. A pipe has been read already.
bool s_holdsMail(std::string const& path) {
    std::error_code error;
    auto const status = std::filesystem::status(path, error);
    if (!std::filesystem::is_regular_file(status) && !std::filesystem::is_directory(status)) {
        return false;
    }
    Interrupt const interrupt;
    InputItem item;
    try {
        return Inputs({path}, interrupt).next(item) && item.m_problem.empty();
    } catch (Interrupted const&) {
        return false;
    }
}

// "RULES INPUT"
std::string s_order(CommandLine const& line) {
    std::string order;
    for (auto const& argument : line.command().m_arguments) {
        order += " " + std::string(argument.m_name);
    }
    return order;
}

} // namespace

std::filesystem::path ruleFolder(CommandLine const& line) {
    auto const root = line.text("root", "/");
    std::error_code error;
    if (!std::filesystem::is_directory(root, error)) {
        throw Rules::RuleError(Rules::RuleError::Kind::noInput,
                               root + ": is not a folder; make it first, or correct --root");
    }
    return std::filesystem::path(root) / std::filesystem::path(ruleDirectory).relative_path();
}

SettingsStore settingsStore(CommandLine const& line) {
    SettingsStore settings;
    SettingsSection* const sections[] = {&settings};
    readSettings(line, "qvrules", sections);
    return settings;
}

HostSettings hostSettings(CommandLine const& line) {
    auto const settings = settingsStore(line);
    warnAbout(settings, "qvrules");
    return withFiles(settings.values());
}

MessageFacts messageFacts(CommandLine const& line) {
    FactsStore facts;
    takeOptions(line, facts);
    return facts.values();
}

int listAttributes(CommandLine const& /*line*/) {
    printOutput(Rules::attributePage());
    return ExitStatus::ok;
}

Rules::LoadedRules loadRulesOf(CommandLine const& line, std::string_view argument) {
    auto const path = line.text(argument);
    try {
        auto rules = Rules::loadRules(path);
        warnAboutNames(path, rules.m_names.m_problem);
        return rules;
    } catch (Rules::RuleError const&) {
        if (!s_holdsMail(path)) {
            throw;
        }
    }
    throw UsageError(path + " seems to be a message, where rules are expected: qvrules " +
                     std::string(line.command().m_name) + s_order(line));
}

bool hasFacts(CommandLine const& line) {
    auto const rows = factRows();
    return std::any_of(rows.begin(), rows.end(),
                       [&line](auto const& row) { return line.has(row.m_facts.m_name); });
}

} // namespace Quorvane::RulesApp
