// SPDX-License-Identifier: Apache-2.0
#include "apps/docgen/ProgramDoc.h"

#include "apps/qvrules/OptionTable.h"
#include "apps/qvscan/OptionTable.h"
#include "apps/settings/FactsTable.h"
#include "apps/settings/SettingsTable.h"
#include "apps/settings/ValueNames.h"

#include <stdexcept>

namespace Quorvane::Docs {

namespace {

ProgramDoc s_scan() {
    ProgramDoc doc{"qvscan", {}, {}};
    for (auto const& row : optionRows()) {
        auto const letter = row.m_letter == '\0' ? std::string() : std::string(1, row.m_letter);
        doc.m_own.m_options.push_back({std::string(row.m_group), std::string(row.m_name), letter,
                                       std::string(row.m_valueName), std::string(row.m_help), false,
                                       row.m_isRepeatable});
    }
    doc.m_own.m_arguments.push_back(
        {"PATH", "PATH", "Message, mbox, Maildir or folder", false, true});
    return doc;
}

// "-o,--output" or "--force".
OptionDoc s_option(RulesApp::ArgumentRow const& row, std::string const& section) {
    std::string const names = row.m_names;
    auto const dashes = names.find("--");
    return {section,
            names.substr(dashes + 2),
            dashes == 0 ? "" : names.substr(1, 1),
            row.m_valueName,
            row.m_help,
            row.m_isRequired,
            row.m_isRepeatable};
}

// Settings that several commands take stand in one section of their own; a command that takes only
// some has them in its own.
void s_addSettings(CommandDoc& doc, bool areAllTaken) {
    std::string const section = areAllTaken ? "How mail is scanned" : doc.m_name;
    doc.m_options.push_back({section, "config", "", "FILE", "settings file (TOML)"});
    for (auto const& key : settingKeys()) {
        if (areAllTaken ? key.m_name != "root" : key.m_isOfRules) {
            doc.m_options.push_back({section, std::string(key.m_name), "",
                                     std::string(key.m_valueName), std::string(key.m_help), false,
                                     key.m_kind == SettingKind::list});
        }
    }
}

void s_addFacts(CommandDoc& doc) {
    for (auto const& key : factKeys()) {
        doc.m_options.push_back({"What is known of the message", std::string(key.m_name), "",
                                 std::string(key.m_valueName), std::string(key.m_help)});
    }
}

CommandDoc s_command(RulesApp::CommandRow const& row) {
    CommandDoc doc{row.m_name, row.m_summary, {}, {}};
    for (auto const& argument : row.m_arguments) {
        if (argument.isOption()) {
            doc.m_options.push_back(s_option(argument, doc.m_name));
        } else {
            doc.m_arguments.push_back({argument.m_names, argument.m_valueName, argument.m_help,
                                       argument.m_isRequired, argument.m_isRepeatable});
        }
    }
    if (row.m_takesSettings || row.m_takesThresholds) {
        s_addSettings(doc, row.m_takesSettings);
    }
    if (row.m_takesFacts) {
        s_addFacts(doc);
    }
    return doc;
}

ProgramDoc s_rules() {
    ProgramDoc doc{"qvrules", {}, {}};
    doc.m_own.m_options.push_back(s_option(RulesApp::helpOption, "General"));
    doc.m_own.m_options.push_back(s_option(RulesApp::versionOption, "General"));
    for (auto const& row : RulesApp::commandRows()) {
        doc.m_commands.push_back(s_command(row));
    }
    return doc;
}

} // namespace

ProgramDoc programDoc(std::string_view name) {
    if (name == "qvscan") {
        return s_scan();
    }
    if (name == "qvrules") {
        return s_rules();
    }
    if (name == "qvdeepheader.conf") {
        return {std::string(name), {}, {}}; // a file that programs share: no options
    }
    throw std::out_of_range(std::string(name) + ": no program with an option table");
}

ValueKind kindOf(std::string_view valueName) {
    if (valueName.empty()) {
        return ValueKind::flag;
    }
    if (!literalsOf(valueName).empty()) {
        return ValueKind::words;
    }
    for (std::string_view const fileName : {"FILE", "SRC", "PATH"}) {
        if (valueName.ends_with(fileName)) {
            return ValueKind::file;
        }
    }
    return valueName == "DIR" ? ValueKind::folder : ValueKind::other;
}

} // namespace Quorvane::Docs
