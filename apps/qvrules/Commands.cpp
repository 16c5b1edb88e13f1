// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Commands.h"

#include "apps/commandline/Program.h"
#include "apps/input/Inputs.h"
#include "apps/input/Interrupt.h"
#include "apps/qvrules/NameWarning.h"
#include "apps/settings/SettingFiles.h"
#include "apps/settings/SettingSources.h"
#include "platform/HeaderReader.h"
#include "rules/format/RulePlace.h"
#include "rules/language/AttributePage.h"
#include "rules/model/RuleError.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

namespace Quorvane::RulesApp {

namespace {

// What all mail has some of. A rule text may have lines with a colon, too.
bool s_isMail(std::string_view headers) {
    constexpr std::string_view usual[] = {"received", "from",       "to",
                                          "date",     "message-id", "subject"};
    auto const container = HeaderReader::read(headers);
    return std::any_of(container.headers().begin(), container.headers().end(),
                       [&](Header const& header) {
                           return std::find(std::begin(usual), std::end(usual),
                                            header.typeLowerCase()) != std::end(usual);
                       });
}

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
        return Inputs({path}, interrupt, HeaderLimits()).next(item) && s_isMail(item.m_headers);
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

void s_readOption(CommandLine const& line, std::string const& name, auto const& read) {
    try {
        if (line.has(name)) {
            read(line.text(name));
        }
    } catch (SettingsError const& error) {
        throw UsageError("--" + name + ": " + error.what());
    }
}

} // namespace

std::filesystem::path ruleFolder(CommandLine const& line) {
    auto const root = line.text("root", "/");
    std::error_code error;
    if (!std::filesystem::is_directory(root, error)) {
        throw Rules::RuleError(Rules::RuleError::Kind::noInput,
                               root + ": is not a folder; make it first, or correct --root");
    }
    return ruleFolderBelow(root);
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

void readNumberOption(CommandLine const& line, std::string const& name, double& number, double low,
                      double high) {
    s_readOption(line, name,
                 [&](std::string const& text) { number = readNumber(text, low, high); });
}

void readNumberOption(CommandLine const& line, std::string const& name, int& number, int low,
                      int high) {
    s_readOption(line, name, [&](std::string const& text) {
        number = static_cast<int>(readInteger(text, low, high));
    });
}

Rules::LoadedRules loadRulesOf(CommandLine const& line, std::string_view argument) {
    auto rules = readRulesOf(line, argument);
    warnAboutNames(line.text(argument), rules.m_names.m_problem);
    return rules;
}

Rules::LoadedRules readRulesOf(CommandLine const& line, std::string_view argument) {
    auto const path = line.text(argument);
    try {
        return Rules::loadRules(path);
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
