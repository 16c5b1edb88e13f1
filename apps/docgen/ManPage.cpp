// SPDX-License-Identifier: Apache-2.0
#include "apps/docgen/ManPage.h"

#include "apps/docgen/Mdoc.h"

#include <set>
#include <sstream>
#include <stdexcept>

namespace Quorvane::Docs {

namespace {

class Page {
  public:
    Page(ProgramTable program, SettingTables const& settings, std::string_view version)
        : m_program(std::move(program)), m_settings(settings), m_version(version) {
        listSections(m_program.m_own);
        for (auto& command : m_program.m_commands) {
            // The page lists it once, for the program.
            std::erase_if(command.m_options,
                          [](OptionRow const& row) { return row.m_name == helpRow.m_name; });
            listSections(command);
        }
    }

    void add(std::string const& line) {
        if (line == "@SYNOPSIS@") {
            addSynopsis();
        } else if (line == "@COMMANDS@") {
            addCommands();
        } else if (line == "@SETTINGS@") {
            m_text += mdocSettings(m_settings.at(""));
        } else if (line.starts_with("@SETTINGS ") && line.ends_with('@')) {
            m_text += mdocSettings(m_settings.at(line.substr(10, line.size() - 11)));
        } else if (line.starts_with("@OPTIONS ") && line.ends_with('@')) {
            addOptions(line.substr(9, line.size() - 10));
        } else {
            m_text += withVersion(line) + "\n";
        }
    }

    std::string finish() {
        if (!m_missing.empty()) {
            throw std::runtime_error("no line @OPTIONS " + *m_missing.begin() + "@");
        }
        return std::move(m_text);
    }

  private:
    void listSections(CommandRow const& command) {
        for (auto const& option : command.m_options) {
            m_missing.insert(sectionOf(command, option));
        }
        if (!command.m_name.empty() && !command.m_arguments.empty()) {
            m_missing.insert(std::string(command.m_name));
        }
    }

    static std::string sectionOf(CommandRow const& command, OptionRow const& option) {
        auto const own = command.m_name.empty() ? "General" : command.m_name;
        return std::string(option.m_group.empty() ? own : option.m_group);
    }

    void addSynopsis() {
        for (auto const& command : m_program.m_commands) {
            m_text += mdocSynopsis(m_program, command);
        }
    }

    void addCommands() {
        for (auto const& command : m_program.m_commands) {
            auto const name = std::string(command.m_name);
            if (m_missing.contains(name)) {
                m_text += ".Ss " + name + "\n" + mdocSentence(command.m_summary);
                addOptions(name);
            }
        }
    }

    void addOptions(std::string const& section) {
        if (m_missing.erase(section) == 0) {
            throw std::runtime_error("@OPTIONS " + section + "@: no such section, or twice");
        }
        m_text += ".Bl -tag -width Ds\n";
        m_listed.clear();
        addItems(m_program.m_own, section);
        for (auto const& command : m_program.m_commands) {
            addItems(command, section);
        }
        m_text += ".El\n";
    }

    void addItems(CommandRow const& command, std::string const& section) {
        if (command.m_name == section) {
            for (auto const& argument : command.m_arguments) {
                m_text += mdocArgument(argument);
            }
        }
        for (auto const& option : command.m_options) {
            // Commands may share a section.
            if (sectionOf(command, option) == section && m_listed.insert(option.m_name).second) {
                m_text += mdocOption(option);
            }
        }
    }

    std::string withVersion(std::string line) const {
        constexpr std::string_view mark = "@VERSION@";
        auto const at = line.find(mark);
        return at == std::string::npos ? line : line.replace(at, mark.size(), m_version);
    }

    ProgramTable m_program;
    SettingTables const& m_settings;
    std::string m_version;
    std::set<std::string> m_missing;
    std::set<std::string_view> m_listed; // in the section under way
    std::string m_text;
};

} // namespace

std::string manPage(ProgramTable const& program, SettingTables const& settings,
                    std::string_view prose, std::string_view version) {
    Page page(program, settings, version);
    std::istringstream lines{std::string(prose)};
    std::string line;
    while (std::getline(lines, line)) {
        page.add(line);
    }
    return page.finish();
}

} // namespace Quorvane::Docs
