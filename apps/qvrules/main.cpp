// SPDX-License-Identifier: Apache-2.0
//
// qvrules: the command line. The only source that includes CLI11, which compiles slowly.
#include "apps/qvrules/Commands.h"
#include "rules/model/RuleError.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <iostream>

namespace Quorvane::RulesApp {

namespace {

constexpr char examples[] =
    "Examples:\n"
    "  qvrules compile my.qvr -o folder      text to rule files\n"
    "  qvrules attributes                    what rules can test\n"
    "\n"
    "Exit status: 0 well, 1 findings, 64 bad usage, 65 a rule text with\n"
    "errors, 66 an input that cannot be opened, 73 an output that cannot be\n"
    "written, 78 rules that no engine would load.";

// What to run once the command line has been read.
using Action = std::function<int()>;

void s_addCompile(CLI::App& app, Action& action) {
    auto const command = app.add_subcommand("compile", "Make rule files of a rule text");
    auto const options = std::make_shared<CompileOptions>();
    command->add_option("SRC", options->m_source, "Rule text")->required();
    command->add_option("-o,--output", options->m_folder, "Folder for README, qv.dt and qv2.dt")
        ->required()
        ->type_name("DIR");
    command->callback([options, &action] { action = [options] { return compile(*options); }; });
}

void s_addDecompile(CLI::App& app, Action& action) {
    auto const command = app.add_subcommand("decompile", "Make a rule text of rule files");
    auto const options = std::make_shared<DecompileOptions>();
    command->add_option("DIR", options->m_folder, "Folder with qv.dt, qv2.dt and README")
        ->required();
    command->add_option("-o,--output", options->m_source, "Rule text to write (default: to stdout)")
        ->type_name("SRC");
    command->callback([options, &action] { action = [options] { return decompile(*options); }; });
}

void s_addAttributes(CLI::App& app, Action& action) {
    app.add_subcommand("attributes", "List what rules can test, as Markdown")->callback([&action] {
        action = listAttributes;
    });
}

int s_status(Rules::RuleError::Kind kind) {
    switch (kind) {
    case Rules::RuleError::Kind::badData:
        return ExitStatus::badData;
    case Rules::RuleError::Kind::noInput:
        return ExitStatus::noInput;
    case Rules::RuleError::Kind::cannotWrite:
        return ExitStatus::cannotWrite;
    case Rules::RuleError::Kind::badRules:
        break;
    }
    return ExitStatus::badRules;
}

void s_complain(std::string const& text) {
    auto const hasEnd = !text.empty() && text.back() == '\n';
    std::cerr << text << (hasEnd ? "" : "\n");
}

int s_run(int argc, char** argv) {
    CLI::App app("Write, check and install the rules of Quorvane Deep Header.", "qvrules");
    Action action;
    app.set_version_flag("--version", "qvrules " QV_VERSION);
    app.require_subcommand(1);
    app.footer(examples);
    s_addCompile(app, action);
    s_addDecompile(app, action);
    s_addAttributes(app, action);
    try {
        app.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
        return app.exit(error) == 0 ? ExitStatus::well : ExitStatus::usage;
    }
    return action();
}

int s_guardedRun(int argc, char** argv) {
    try {
        return s_run(argc, argv);
    } catch (Rules::RuleError const& error) {
        s_complain(error.what());
        return s_status(error.kind());
    }
}

} // namespace

} // namespace Quorvane::RulesApp

int main(int argc, char** argv) {
    return Quorvane::RulesApp::s_guardedRun(argc, argv);
}
