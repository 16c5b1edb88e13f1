// SPDX-License-Identifier: Apache-2.0
#include "apps/docgen/Mdoc.h"

#include "apps/commandline/ValueNames.h"

#include <boost/algorithm/string/replace.hpp>

namespace Quorvane::Docs {

namespace {

// " Cm text | Cm json | Ar HOST[@PORT]"; nothing for a flag; of "[=all]" with the brackets.
std::string s_value(std::string_view valueName) {
    std::string text;
    for (auto const& alternative : alternativesOf(valueName)) {
        text += text.empty() ? "" : " |";
        text += (isLiteral(alternative) ? " Cm " : " Ar ") + mdocText(alternative);
    }
    return valueName.starts_with("[=") ? " Ns Oo Ns = Ns" + text + " Oc" : text;
}

std::string s_letter(OptionRow const& option) {
    return std::string("Fl ") + option.m_letter;
}

std::string s_long(OptionRow const& option) {
    return "Fl " + mdocText(option.dashed().substr(1));
}

// In the order of SettingKind.
constexpr char const* kinds[] = {"text", "path", "number", "whole number", "list of texts"};

} // namespace

std::string mdocText(std::string_view text) {
    bool const isMacro = text.starts_with('.') || text.starts_with('\'');
    std::string out(text);
    boost::algorithm::replace_all(out, "\\", "\\e");
    boost::algorithm::replace_all(out, "-", "\\-");
    return isMacro ? "\\&" + out : out;
}

std::string mdocSentence(std::string_view phrase) {
    auto text = std::string(phrase);
    if (text[0] >= 'a' && text[0] <= 'z') {
        text[0] = static_cast<char>(text[0] - 'a' + 'A');
    }
    return mdocText(text + ".") + "\n";
}

std::string mdocOption(OptionRow const& option) {
    auto const letter = option.m_letter == '\0' ? "" : s_letter(option) + " , ";
    return ".It " + letter + s_long(option) + s_value(option.m_valueName) + "\n" +
           mdocSentence(option.m_help) +
           (option.is(Takes::repeatable) ? "May be given more than once.\n" : "");
}

std::string mdocArgument(OptionRow const& argument) {
    return ".It Ar " + std::string(argument.m_name) +
           (argument.is(Takes::repeatable) ? " ..." : "") + "\n" + mdocSentence(argument.m_help);
}

std::string mdocSynopsis(ProgramTable const& program, CommandRow const& command) {
    auto text =
        ".Nm " + std::string(program.m_name) + "\n.Cm " + std::string(command.m_name) + "\n";
    bool hasSettings = false;
    for (auto const& option : command.m_options) {
        if (!option.m_group.empty()) {
            hasSettings = true; // the page lists them once, for all commands
            continue;
        }
        auto const name = option.m_letter == '\0' ? s_long(option) : s_letter(option);
        text += (option.is(Takes::required) ? "." : ".Op ") + name + s_value(option.m_valueName) +
                (option.is(Takes::repeatable) ? " ..." : "") + "\n";
    }
    text += hasSettings ? ".Op Ar settings\n" : "";
    for (auto const& argument : command.m_arguments) {
        text += (argument.is(Takes::required) ? ".Ar " : ".Op Ar ") + std::string(argument.m_name) +
                (argument.is(Takes::repeatable) ? " ..." : "") + "\n";
    }
    return text;
}

std::string mdocSettings(std::span<SettingFacts const> settings) {
    std::string text = ".Bl -tag -width Ds\n";
    for (auto const& key : settings) {
        text += ".It Cm " + mdocText(key.m_name) + " = Ar " +
                kinds[static_cast<std::size_t>(key.m_kind)] + "\n" + mdocSentence(key.m_help);
        if (alternativesOf(key.m_valueName).size() > 1) {
            text += "One of\n." + s_value(key.m_valueName).substr(1) + " .\n";
        }
    }
    return text + ".El\n";
}

} // namespace Quorvane::Docs
