// SPDX-License-Identifier: Apache-2.0
#include "apps/settings/SettingSources.h"

#include "apps/settings/SettingFiles.h"
#include "apps/settings/TomlSettings.h"
#include "apps/text/Utf8.h"
#include "rules/language/Nearest.h"

#include <algorithm>
#include <iostream>
#include <iterator>

namespace Quorvane {

namespace {

// The tables of single programs. A new one must be added here, so that other programs skip it.
constexpr std::string_view programTables[] = {
    "milter", // qvmilter
};

bool s_isProgramTable(std::string_view title) {
    return std::find(std::begin(programTables), std::end(programTables), title) !=
           std::end(programTables);
}

class FileReader {
  public:
    FileReader(std::string const& path, std::string_view program,
               std::span<SettingsSection* const> sections)
        : m_path(path), m_program(program), m_sections(sections) {}

    void read() const {
        for (auto const& [name, node] : parseToml(m_path, readSettingFile(m_path))) {
            auto* const section = find(name.str());
            bool const isTable = !name.str().empty() && section != nullptr;
            if (isTable || s_isProgramTable(name.str())) {
                readTable(section, name, node);
            } else {
                readKey(*find(""), name, node);
            }
        }
    }

  private:
    SettingsSection* find(std::string_view title) const {
        auto const found =
            std::find_if(m_sections.begin(), m_sections.end(),
                         [title](auto const* section) { return section->title() == title; });
        return found == m_sections.end() ? nullptr : *found;
    }

    // `section` is null for a table of another program.
    void readTable(SettingsSection* section, toml::key const& title, toml::node const& node) const {
        auto const* const table = node.as_table();
        if (table == nullptr) {
            throw SettingsError(tomlPlace(m_path, title.source().begin),
                                std::string(title.str()) + " is a table: write [" +
                                    std::string(title.str()) + "]");
        }
        if (section == nullptr) {
            return;
        }
        for (auto const& [name, value] : *table) {
            readKey(*section, name, value);
        }
    }

    void readKey(SettingsSection& section, toml::key const& name, toml::node const& node) const {
        if (section.find(name.str()) == nullptr) {
            throw SettingsError(tomlPlace(m_path, name.source().begin),
                                unknownKey(section, name.str()));
        }
        setFromToml(section, name.str(), node, m_path);
    }

    std::string unknownKey(SettingsSection const& section, std::string_view name) const {
        std::vector<std::string_view> names;
        for (auto const& facts : section.facts()) {
            names.push_back(facts.m_name);
        }
        if (section.title().empty()) {
            names.insert(names.end(), std::begin(programTables), std::end(programTables));
        }
        auto const hint = Rules::didYouMean(name, names);
        return "unknown key \"" + std::string(name) + '"' +
               (hint.empty() ? "; " + std::string(m_program) + " --show-config lists the known ones"
                             : hint);
    }

    std::string const& m_path;
    std::string_view m_program;
    std::span<SettingsSection* const> m_sections;
};

} // namespace

void loadSettingsFile(std::string const& path, std::string_view program,
                      std::span<SettingsSection* const> sections) {
    FileReader(path, program, sections).read();
}

void addRows(std::vector<OptionRow>& rows, std::span<SettingFacts const> facts,
             std::string_view group) {
    for (auto const& one : facts) {
        bool const isList = one.m_kind == SettingKind::list;
        auto const traits = Takes::anyText | (isList ? Takes::repeatable : 0U);
        rows.push_back({one.m_name, one.m_valueName, one.m_help, traits, '\0', group});
    }
}

void takeOptions(CommandLine const& line, SettingsSection& section) {
    for (auto const& facts : section.facts()) {
        if (!line.has(facts.m_name)) {
            continue;
        }
        try {
            section.set(facts.m_name, line.texts(facts.m_name), "command line");
        } catch (SettingsError const& error) {
            throw UsageError(std::string("--") + error.what());
        }
    }
}

void warnAbout(SettingsStore const& settings, std::string_view program) {
    for (auto const& warning : settingWarnings(settings)) {
        std::cerr << program << ": " << toPrintable(warning) << '\n';
    }
}

void readSettings(CommandLine const& line, std::string_view program,
                  std::span<SettingsSection* const> sections) {
    if (line.has(configRow.m_name)) {
        loadSettingsFile(line.text(configRow.m_name), program, sections);
    }
    for (auto* const section : sections) {
        takeOptions(line, *section);
    }
}

} // namespace Quorvane
