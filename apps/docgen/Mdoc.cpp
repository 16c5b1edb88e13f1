// SPDX-License-Identifier: Apache-2.0
#include "apps/docgen/Mdoc.h"

#include "apps/settings/SettingsTable.h"
#include "apps/settings/ValueNames.h"

namespace Quorvane::Docs {

namespace {

// " Cm text | Cm json | Ar HOST[@PORT]"; nothing for a flag.
std::string s_value(std::string const& valueName) {
    std::string text;
    for (auto const& alternative : alternativesOf(valueName)) {
        text += text.empty() ? "" : " |";
        text += (isLiteral(alternative) ? " Cm " : " Ar ") + mdocText(alternative);
    }
    return text;
}

std::string s_letter(OptionDoc const& option) {
    return "Fl " + option.m_letter;
}

std::string s_long(OptionDoc const& option) {
    return "Fl " + mdocText("-" + option.m_name);
}

std::string s_kind(SettingKind kind) {
    switch (kind) {
    case SettingKind::text:
        return "text";
    case SettingKind::path:
        return "path";
    case SettingKind::number:
        return "number";
    case SettingKind::integer:
        return "whole number";
    case SettingKind::list:
        break;
    }
    return "list of texts";
}

} // namespace

std::string mdocText(std::string_view text) {
    std::string out;
    if (text.starts_with('.') || text.starts_with('\'')) {
        out = "\\&";
    }
    for (char const c : text) {
        if (c == '\\') {
            out += "\\e";
        } else if (c == '-') {
            out += "\\-";
        } else {
            out += c;
        }
    }
    return out;
}

std::string mdocSentence(std::string_view phrase) {
    auto text = std::string(phrase);
    if (text[0] >= 'a' && text[0] <= 'z') {
        text[0] = static_cast<char>(text[0] - 'a' + 'A');
    }
    return mdocText(text + ".") + "\n";
}

std::string mdocItem(OptionDoc const& option) {
    auto const letter = option.m_letter.empty() ? "" : s_letter(option) + " , ";
    return ".It " + letter + s_long(option) + s_value(option.m_valueName) + "\n" +
           mdocSentence(option.m_help) +
           (option.m_isRepeatable ? "May be given more than once.\n" : "");
}

std::string mdocItem(ArgumentDoc const& argument) {
    return ".It Ar " + argument.m_name + (argument.m_isRepeatable ? " ..." : "") + "\n" +
           mdocSentence(argument.m_help);
}

std::string mdocSynopsis(ProgramDoc const& program, CommandDoc const& command) {
    auto text = ".Nm " + program.m_name + "\n.Cm " + command.m_name + "\n";
    bool hasSettings = false;
    for (auto const& option : command.m_options) {
        if (option.m_section != command.m_name) {
            hasSettings = true; // the page tells of them in one place for all commands
            continue;
        }
        auto const name = option.m_letter.empty() ? s_long(option) : s_letter(option);
        text += (option.m_isRequired ? "." : ".Op ") + name + s_value(option.m_valueName) +
                (option.m_isRepeatable ? " ..." : "") + "\n";
    }
    text += hasSettings ? ".Op Ar settings\n" : "";
    for (auto const& argument : command.m_arguments) {
        text += (argument.m_isRequired ? ".Ar " : ".Op Ar ") + argument.m_name +
                (argument.m_isRepeatable ? " ..." : "") + "\n";
    }
    return text;
}

std::string mdocSettings() {
    std::string text = ".Bl -tag -width Ds\n";
    for (auto const& key : settingKeys()) {
        text += ".It Cm " + mdocText(key.m_name) + " = Ar " + s_kind(key.m_kind) + "\n" +
                mdocSentence(key.m_help);
        if (alternativesOf(key.m_valueName).size() > 1) {
            text += "One of\n." + s_value(std::string(key.m_valueName)).substr(1) + " .\n";
        }
    }
    return text + ".El\n";
}

} // namespace Quorvane::Docs
