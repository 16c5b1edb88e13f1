// SPDX-License-Identifier: Apache-2.0
#include "apps/qvscan/Options.h"

#include "apps/qvscan/OptionTable.h"
#include "apps/settings/FactsTable.h"
#include "apps/settings/SettingsFile.h"
#include "rules/language/Nearest.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <cstdint>
#include <map>
#include <utility>

namespace Quorvane {

namespace {

using Texts = std::vector<std::string>;
// What was given on the command line, by option name; flags have no text.
using Given = std::map<std::string, Texts, std::less<>>;

std::string s_dashed(std::string_view name) {
    return "--" + std::string(name);
}

bool s_takesValue(std::string const& argument) {
    auto const rows = optionRows();
    return std::any_of(rows.begin(), rows.end(), [&argument](OptionRow const& row) {
        return !row.m_valueName.empty() && s_dashed(row.m_name) == argument;
    });
}

// CLI11 takes "--name=" for a name without value and would swallow the next argument: a script
// that hands over an empty envelope sender must not lose its PATH to it.
Texts s_withEmptyValues(Texts const& arguments) {
    Texts out;
    bool isValue = false;
    bool isOption = true;
    for (auto const& argument : arguments) {
        isOption = isOption && argument != "--";
        if (isOption && !isValue && argument.ends_with('=') &&
            s_takesValue(argument.substr(0, argument.size() - 1))) {
            out.push_back(argument.substr(0, argument.size() - 1));
            out.emplace_back();
            continue;
        }
        out.push_back(argument);
        isValue = isOption && !isValue && s_takesValue(argument);
    }
    return out;
}

std::string s_names(OptionRow const& row) {
    auto const letter = row.m_letter == '\0' ? std::string() : std::string{'-', row.m_letter, ','};
    return letter + s_dashed(row.m_name);
}

void s_register(CLI::App& app, OptionRow const& row, Given& given) {
    auto const name = std::string(row.m_name);
    if (row.m_valueName.empty()) {
        app.add_flag_function(s_names(row), [&given, name](std::int64_t) { given[name] = {}; });
        return;
    }
    // Without extra arguments: a list option takes one value each time, and no value in brackets
    // is taken apart.
    app.add_option_function<Texts>(s_names(row),
                                   [&given, name](Texts const& texts) { given[name] = texts; })
        ->expected(1)
        ->multi_option_policy(row.m_isRepeatable ? CLI::MultiOptionPolicy::TakeAll
                                                 : CLI::MultiOptionPolicy::TakeLast)
        ->allow_extra_args(false);
}

std::string s_unknownOption(std::string const& argument) {
    auto const name = argument.substr(0, argument.find('='));
    Texts dashed;
    for (auto const& row : optionRows()) {
        dashed.push_back(s_dashed(row.m_name));
    }
    std::vector<std::string_view> const names(dashed.begin(), dashed.end());
    auto const nearest = std::string(Rules::nearestWord(name, names));
    return "unknown option " + name +
           (nearest.empty() ? "" : "; the nearest known one is " + nearest);
}

// What the parser left over: PATHs, and options that it does not know. It cannot take the PATHs
// itself, as it would take a folder named "[a]" apart.
Texts s_paths(Texts const& remaining) {
    Texts paths;
    bool isOption = true;
    for (auto const& argument : remaining) {
        if (isOption && argument == "--") {
            isOption = false;
        } else if (isOption && argument.size() > 1 && argument[0] == '-') {
            throw UsageError(s_unknownOption(argument));
        } else {
            paths.push_back(argument);
        }
    }
    return paths;
}

class OptionReader {
  public:
    OptionReader(Given given, Texts paths) : m_given(std::move(given)) {
        m_options.m_paths = std::move(paths);
    }

    ScanOptions read() {
        if (auto const* const file = text("config")) {
            loadSettingsFile(*file, m_options.m_settings);
        }
        readSettings();
        readOutput();
        readFacts();
        return std::move(m_options);
    }

  private:
    bool has(std::string_view name) const { return m_given.find(name) != m_given.end(); }

    // Null when not given.
    std::string const* text(std::string_view name) const {
        auto const found = m_given.find(name);
        return found == m_given.end() ? nullptr : &found->second.back();
    }

    void readSettings() {
        for (auto const& key : settingKeys()) {
            auto const found = m_given.find(key.m_name);
            if (found == m_given.end()) {
                continue;
            }
            try {
                m_options.m_settings.set(key, found->second, "command line");
            } catch (SettingsError const& error) {
                throw UsageError("--" + std::string(error.what()));
            }
        }
    }

    void readOutput() {
        m_options.m_explain = has("explain");
        m_options.m_showConfig = has("show-config");
        if (has("progress") || has("no-progress")) {
            m_options.m_progress = !has("no-progress");
        }
        if (auto const* const format = text("format")) {
            m_options.m_format = readFormat(*format);
        }
    }

    static OutputFormat readFormat(std::string const& text) {
        if (text == "text") {
            return OutputFormat::text;
        }
        if (text == "json") {
            return OutputFormat::json;
        }
        if (text == "csv") {
            return OutputFormat::csv;
        }
        throw UsageError("--format: \"" + text + "\" is no format; write text, json or csv");
    }

    void readFacts() {
        for (auto const& key : factKeys()) {
            auto const* const given = text(key.m_name);
            if (given == nullptr) {
                continue;
            }
            try {
                key.m_assign(m_options.m_facts, *given);
            } catch (SettingsError const& error) {
                throw UsageError("--" + std::string(key.m_name) + ": " + error.what());
            }
        }
    }

    Given m_given;
    ScanOptions m_options;
};

} // namespace

ScanOptions parseOptions(Texts arguments) {
    Given given;
    CLI::App app;
    app.set_help_flag();
    app.allow_extras();
    for (auto const& row : optionRows()) {
        s_register(app, row, given);
    }
    arguments = s_withEmptyValues(arguments);
    // CLI11 takes its arguments from the back.
    std::reverse(arguments.begin(), arguments.end());
    try {
        app.parse(arguments);
    } catch (CLI::ParseError const& error) {
        throw UsageError(error.what());
    }
    ScanOptions options;
    options.m_showHelp = given.contains("help");
    options.m_showVersion = given.contains("version");
    if (options.m_showHelp || options.m_showVersion) {
        return options;
    }
    return OptionReader(std::move(given), s_paths(app.remaining())).read();
}

} // namespace Quorvane
