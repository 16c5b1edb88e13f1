// SPDX-License-Identifier: Apache-2.0
#include "apps/commandline/ValueNames.h"
#include "apps/docgen/Completion.h"

#include <boost/algorithm/string/join.hpp>

namespace Quorvane::Docs {

namespace {

// A text inside '…' of a _arguments entry, where brackets and colons part the fields.
std::string s_escaped(std::string_view text) {
    std::string out;
    for (char const c : text) {
        if (c == '\'') {
            out += "'\\''";
            continue;
        }
        if (c == '[' || c == ']' || c == ':' || c == '\\') {
            out += '\\';
        }
        out += c;
    }
    return out;
}

std::string s_action(std::string_view valueName) {
    switch (kindOf(valueName)) {
    case ValueKind::words:
        return "(" + boost::algorithm::join(literalsOf(valueName), " ") + ")";
    case ValueKind::file:
        return "_files";
    case ValueKind::folder:
        return "_files -/";
    case ValueKind::vector:
        return R"({ compset -P "*,"; compadd -S "=" - )" + attributeWords("") + "; _files }";
    case ValueKind::flag:
    case ValueKind::other:
        break;
    }
    // A blank: the value has a name and nothing to offer.
    return " ";
}

std::string s_option(OptionRow const& option) {
    bool const isAttached = option.isValueAttached();
    auto const name = option.dashed() + (option.isFlag() ? "" : isAttached ? "=-" : "=");
    auto text = "'" + std::string(option.is(Takes::repeatable) ? "*" : "") + name;
    if (option.m_letter != '\0') {
        auto const letter = std::string{'-', option.m_letter};
        text = "'(" + letter + " " + option.dashed() + ")'{" + letter +
               (option.isFlag() ? "" : "+") + "," + name + "}'";
    }
    text += "[" + s_escaped(option.m_help) + "]";
    if (!option.isFlag()) {
        text += (isAttached ? "::" : ":") + s_escaped(option.m_valueName) + ":" +
                s_action(option.m_valueName);
    }
    return text + "'";
}

std::string s_argument(OptionRow const& argument, std::size_t place) {
    auto const start = argument.is(Takes::repeatable) ? "*:"
                       : argument.is(Takes::required) ? std::to_string(place) + ":"
                                                      : std::to_string(place) + "::";
    return "'" + start + s_escaped(argument.m_help) + ":" + s_action(argument.m_valueName) + "'";
}

// The entries of _arguments, each on a line of its own after `indent`.
std::string s_entries(CommandRow const& command, std::string const& indent) {
    std::string text;
    for (auto const& option : command.m_options) {
        text += " \\\n" + indent + s_option(option);
    }
    for (std::size_t i = 0; i < command.m_arguments.size(); ++i) {
        text += " \\\n" + indent + s_argument(command.m_arguments[i], i + 1);
    }
    return text;
}

std::string s_commandList(ProgramTable const& program) {
    std::string text = "        local -a commands=(\n";
    for (auto const& command : program.m_commands) {
        text += "            '" + std::string(command.m_name) + ":" + s_escaped(command.m_summary) +
                "'\n";
    }
    return text + "        )\n        _describe command commands\n        ;;\n";
}

std::string s_commandCases(ProgramTable const& program) {
    std::string text = "    arguments)\n        case $words[1] in\n";
    for (auto const& command : program.m_commands) {
        text += "        " + std::string(command.m_name) + ")\n            _arguments -s -S" +
                s_entries(command, "                ") + "\n            ;;\n";
    }
    return text + "        esac\n        ;;\n";
}

std::string s_withCommands(ProgramTable const& program) {
    return "    local context state state_descr line\n"
           "    typeset -A opt_args\n"
           "    _arguments -s -S -C" +
           s_entries(program.m_own, "        ") +
           " \\\n        '1:command:->command' \\\n        '*:: :->arguments' && return\n"
           "    case $state in\n    command)\n" +
           s_commandList(program) + s_commandCases(program) + "    esac\n";
}

} // namespace

std::string zshCompletion(ProgramTable const& program) {
    auto const name = std::string(program.m_name);
    auto text = "#compdef " + name + "\n# Generated from the program's option table.\n\n_" + name +
                "() {\n";
    text += program.m_commands.empty()
                ? "    _arguments -s -S" + s_entries(program.m_own, "        ") + "\n"
                : s_withCommands(program);
    return text + "}\n\n_" + name + " \"$@\"\n";
}

} // namespace Quorvane::Docs
