// SPDX-License-Identifier: Apache-2.0
//
// A command of the table while its arguments are tied to the members of Options that they fill.
// Lives while the command line is described; what it made belongs to the app and to the action.
// CLI11 compiles slowly: only main.cpp and HostOptions.cpp include it.
#pragma once

#include "apps/qvrules/HostOptions.h"
#include "apps/qvrules/OptionTable.h"
#include "apps/settings/ValueNames.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <type_traits>

namespace Quorvane::RulesApp {

// What to run once the command line has been read.
using Action = std::function<int()>;

template<typename Options>
class Command {
  public:
    Command(CLI::App& app, Action& action, char const* name, int (*run)(Options const&))
        : m_row(commandRow(name)), m_command(app.add_subcommand(m_row.m_name, m_row.m_summary)),
          m_options(std::make_shared<Options>()) {
        m_command->footer(m_row.m_footer);
        m_command->callback([options = m_options, run, &action] {
            action = [options, run] { return run(*options); };
        });
    }

    // Of Options, or of a base of it.
    template<typename Value, typename Owner>
    Command& tie(char const* names, Value Owner::*member) {
        auto const& row = argumentRow(m_row, names);
        auto& value = (*m_options).*member;
        if constexpr (std::is_same_v<Value, bool>) {
            m_command->add_flag(row.m_names, value, row.m_help);
        } else {
            describe(*m_command->add_option(row.m_names, value, row.m_help), row);
        }
        return *this;
    }

    // The settings and facts that the command takes.
    Command& tieSettings(GivenSettings Options::*member) {
        if (m_row.m_takesSettings) {
            addHostOptions(*m_command, (*m_options).*member);
        }
        if (m_row.m_takesThresholds) {
            addThresholdOptions(*m_command, (*m_options).*member);
        }
        if (m_row.m_takesFacts) {
            addFactOptions(*m_command, (*m_options).*member);
        }
        return *this;
    }

  private:
    // An unset variable of a script: nowhere does it mean the folder that hosts read.
    static std::string complainIfEmpty(std::string const& text) {
        return text.empty() ? "an empty text says nothing" : "";
    }

    static void describe(CLI::Option& option, ArgumentRow const& row) {
        option.required(row.m_isRequired);
        option.type_name(row.isOption() ? row.m_valueName : "");
        if (row.isValueOptional()) {
            option.expected(0, 1);
        } else {
            option.check(CLI::Validator(complainIfEmpty, ""));
        }
        auto const literals = literalsOf(row.m_valueName);
        if (!literals.empty() && literals == alternativesOf(row.m_valueName)) {
            option.check(CLI::IsMember(literals).description(""));
        }
    }

    CommandRow const& m_row;
    CLI::App* m_command;
    std::shared_ptr<Options> m_options;
};

} // namespace Quorvane::RulesApp
