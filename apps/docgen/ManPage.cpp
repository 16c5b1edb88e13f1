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
    Page(ProgramDoc const& program, std::string_view version)
        : m_program(program), m_version(version) {
        listSections(program.m_own);
        for (auto const& command : program.m_commands) {
            listSections(command);
        }
    }

    void add(std::string const& line) {
        if (line == "@SYNOPSIS@") {
            addSynopsis();
        } else if (line == "@COMMANDS@") {
            addCommands();
        } else if (line == "@SETTINGS@") {
            m_text += mdocSettings();
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
    void listSections(CommandDoc const& command) {
        for (auto const& option : command.m_options) {
            m_missing.insert(option.m_section);
        }
        if (!command.m_name.empty() && !command.m_arguments.empty()) {
            m_missing.insert(command.m_name);
        }
    }

    void addSynopsis() {
        for (auto const& command : m_program.m_commands) {
            m_text += mdocSynopsis(m_program, command);
        }
    }

    void addCommands() {
        for (auto const& command : m_program.m_commands) {
            if (m_missing.contains(command.m_name)) {
                m_text += ".Ss " + command.m_name + "\n" + mdocSentence(command.m_summary);
                addOptions(command.m_name);
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

    void addItems(CommandDoc const& command, std::string const& section) {
        if (command.m_name == section) {
            for (auto const& argument : command.m_arguments) {
                m_text += mdocItem(argument);
            }
        }
        for (auto const& option : command.m_options) {
            // Commands may share a section.
            if (option.m_section == section && m_listed.insert(option.m_name).second) {
                m_text += mdocItem(option);
            }
        }
    }

    std::string withVersion(std::string line) const {
        constexpr std::string_view mark = "@VERSION@";
        auto const at = line.find(mark);
        return at == std::string::npos ? line : line.replace(at, mark.size(), m_version);
    }

    ProgramDoc const& m_program;
    std::string m_version;
    std::set<std::string> m_missing;
    std::set<std::string> m_listed; // in the section under way
    std::string m_text;
};

} // namespace

std::string manPage(ProgramDoc const& program, std::string_view prose, std::string_view version) {
    Page page(program, version);
    std::istringstream lines{std::string(prose)};
    std::string line;
    while (std::getline(lines, line)) {
        page.add(line);
    }
    return page.finish();
}

} // namespace Quorvane::Docs
