// SPDX-License-Identifier: Apache-2.0
#include "apps/commandline/ValueNames.h"
#include "apps/docgen/Completion.h"

#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/replace.hpp>

namespace Quorvane::Docs {

namespace {

// The place of the cursor: `current` is the word to complete, `key` the option whose value it may
// be, `command` the command so far. Bash splits "--format=json" into three words.
constexpr std::string_view head = R"(# shellcheck shell=bash
# Completion of @ for bash. Generated from the program's option table.

_@() {
    local current=${COMP_WORDS[COMP_CWORD]} key=${COMP_WORDS[COMP_CWORD - 1]}
    local command='' isOption=1 index
    COMPREPLY=()
    if [[ $current == '=' ]]; then
        current=''
    elif [[ $key == '=' ]]; then
        key=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    for ((index = 1; index < COMP_CWORD; ++index)); do
        if [[ ${COMP_WORDS[index]} == -- ]]; then
            isOption='' key=''
        elif [[ ! $command && ${COMP_WORDS[index]} != -* ]]; then
            command=${COMP_WORDS[index]}
        fi
    done
)";

std::string s_named(std::string_view text, std::string_view name) {
    return boost::algorithm::replace_all_copy(std::string(text), "@", name);
}

std::string s_offer(std::vector<std::string> const& words) {
    return "mapfile -t COMPREPLY < <(compgen -W '" + boost::algorithm::join(words, " ") +
           "' -- \"$current\")";
}

// NAME=VALUE,NAME=VALUE: the last name. Names would hide files as long as nothing is typed.
std::string s_offerAttributes() {
    return "compopt -o default\n"
           "        if [[ $current ]]; then\n"
           "            mapfile -t COMPREPLY < <(compgen -P \"${current%\"${current##*,}\"}\" -W "
           "'" +
           attributeWords("=") +
           "' -- \"${current##*,}\")\n"
           "            [[ ${#COMPREPLY[@]} == 0 ]] || compopt -o nospace\n"
           "        fi";
}

// Readline completes paths itself: it knows how to quote them.
std::string s_offerValue(std::string_view valueName) {
    switch (kindOf(valueName)) {
    case ValueKind::words:
        return s_offer(literalsOf(valueName));
    case ValueKind::file:
        return "compopt -o default";
    case ValueKind::folder:
        return "compopt -o dirnames";
    case ValueKind::vector:
        return s_offerAttributes();
    case ValueKind::flag:
    case ValueKind::other:
        break;
    }
    return ":";
}

std::string s_case(std::string const& pattern, std::string const& action) {
    return "    " + pattern + ")\n        " + action + "\n        return\n        ;;\n";
}

// The command is part of the key only if the program has commands.
std::string s_prefix(ProgramTable const& program, CommandRow const& command) {
    return program.m_commands.empty() ? "*" : std::string(command.m_name);
}

std::string s_valueCases(ProgramTable const& program, CommandRow const& command) {
    std::string text;
    for (auto const& option : command.m_options) {
        if (option.isFlag() || option.isValueAttached()) {
            continue;
        }
        auto const start = s_prefix(program, command) + ":";
        auto const letter = option.m_letter == '\0' ? "" : start + '-' + option.m_letter + " | ";
        text += s_case(letter + start + option.dashed(), s_offerValue(option.m_valueName));
    }
    return text;
}

std::vector<std::string> s_optionWords(CommandRow const& command) {
    std::vector<std::string> words;
    for (auto const& option : command.m_options) {
        words.push_back(option.dashed());
    }
    return words;
}

// Nobody counts which argument the cursor is at: the last one offers what the others do, and more.
std::string s_arguments(CommandRow const& command) {
    return command.m_arguments.empty() ? ":" : s_offerValue(command.m_arguments.back().m_valueName);
}

// After the values: options where the word begins with "-", arguments elsewhere.
std::string s_wordCases(ProgramTable const& program, CommandRow const& command) {
    auto const prefix = s_prefix(program, command);
    return s_case(prefix + ":1-*", s_offer(s_optionWords(command))) +
           s_case(prefix + ":*", s_arguments(command));
}

std::string s_commandCases(ProgramTable const& program) {
    std::vector<std::string> names;
    std::string text;
    for (auto const& command : program.m_commands) {
        names.emplace_back(command.m_name);
        text += s_wordCases(program, command);
    }
    return s_case(":1-*", s_offer(s_optionWords(program.m_own))) + s_case(":*", s_offer(names)) +
           text;
}

} // namespace

std::string bashCompletion(ProgramTable const& program) {
    auto text = s_named(head, program.m_name);
    text += "    case $command:$key in\n" + s_valueCases(program, program.m_own);
    for (auto const& command : program.m_commands) {
        text += s_valueCases(program, command);
    }
    text += "    esac\n    case $command:$isOption$current in\n";
    text +=
        program.m_commands.empty() ? s_wordCases(program, program.m_own) : s_commandCases(program);
    return text + s_named("    esac\n}\ncomplete -F _@ @\n", program.m_name);
}

} // namespace Quorvane::Docs
