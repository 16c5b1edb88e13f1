// SPDX-License-Identifier: Apache-2.0
#include "docs/Documents.h"

#include <regex>
#include <sstream>

namespace Quorvane::Testing {

std::string programPath(std::string const& program) {
    return QV_PROGRAMS "/" + program;
}

std::string documentPath(std::string const& name) {
    return QV_SHARE "/" + name;
}

std::string helpOf(std::string const& program, std::string const& command) {
    std::vector<std::string> arguments{"--help"};
    if (!command.empty()) {
        arguments.insert(arguments.begin(), command);
    }
    return runProgram(programPath(program), arguments).m_output;
}

Names optionsIn(std::string const& help) {
    return captures(help, "^  (-[a-zA-Z], ?)?(--[a-z][a-z0-9-]*)", 2);
}

std::vector<std::string> rulesCommands() {
    auto const help = helpOf("qvrules");
    auto const start = help.find("Commands:");
    auto const end = help.find("Options:");
    auto const names = captures(help.substr(start, end - start), "^  ([a-z]+)");
    return {names.begin(), names.end()};
}

Names captures(std::string const& text, std::string const& pattern, std::size_t number) {
    Names names;
    std::regex const expression(pattern);
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line)) {
        for (std::sregex_iterator at(line.begin(), line.end(), expression), end; at != end; ++at) {
            names.insert((*at)[number].str());
        }
    }
    return names;
}

} // namespace Quorvane::Testing
