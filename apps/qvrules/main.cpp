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
    "  qvrules compile my.qvr -o folder      make rule files of a text\n"
    "  qvrules decompile folder -o my.qvr    and back, byte for byte\n"
    "  qvrules check my.qvr                  find what can never work\n"
    "  qvrules install my.qvr                put in force under running hosts\n"
    "  qvrules install --rollback            and take it back\n"
    "  qvrules attributes                    what rules can test\n"
    "\n"
    "\"qvrules COMMAND --help\" says more. Exit status: 0 well, 1 findings, 64 bad\n"
    "usage, 65 a rule text with errors, 66 an input that cannot be opened, 73 an\n"
    "output that cannot be written, 78 rules that no engine would load.";

// What to run once the command line has been read.
using Action = std::function<int()>;

// A command with its example, and options of type Options that `run` gets.
template<typename Options>
std::pair<CLI::App*, std::shared_ptr<Options>>
s_addCommand(CLI::App& app, Action& action, char const* name, char const* description,
             int (*run)(Options const&)) {
    auto const command = app.add_subcommand(name, description);
    auto options = std::make_shared<Options>();
    command->callback(
        [options, run, &action] { action = [options, run] { return run(*options); }; });
    return {command, std::move(options)};
}

void s_addCompile(CLI::App& app, Action& action) {
    auto const [command, options] =
        s_addCommand(app, action, "compile", "Make rule files of a rule text", compile);
    command->add_option("SRC", options->m_source, "Rule text")->required()->type_name("");
    command->add_option("-o,--output", options->m_folder, "Folder for README, qv.dt and qv2.dt")
        ->required()
        ->type_name("DIR");
    command->footer("Each file is replaced in one step; files that the rules do not have are\n"
                    "removed. For a folder that running hosts read use \"qvrules install\".\n\n"
                    "Example: qvrules compile my.qvr -o /tmp/rules");
}

void s_addDecompile(CLI::App& app, Action& action) {
    auto const [command, options] =
        s_addCommand(app, action, "decompile", "Make a rule text of rule files", decompile);
    command->add_option("DIR", options->m_folder, "Folder with qv.dt, qv2.dt and README")
        ->required()
        ->type_name("");
    command->add_option("-o,--output", options->m_source, "Rule text to write (default: to stdout)")
        ->type_name("SRC");
    command->footer("Compiling the text gives the same bytes, whatever the files hold.\n\n"
                    "Example: qvrules decompile /var/spool/etc/antispam -o now.qvr");
}

void s_addCheck(CLI::App& app, Action& action) {
    auto const [command, options] =
        s_addCommand(app, action, "check", "Find what is wrong with rules", check);
    command->add_option("PATH", options->m_path, "Rule text, or folder with rule files")
        ->required()
        ->type_name("");
    command->add_option("--format", options->m_format, "text for people, json for programs")
        ->check(CLI::IsMember({"text", "json"}).description(""))
        ->type_name("text|json");
    command->footer("Finds what engines refuse or drop, what the walk through the tree gives up\n"
                    "at, and tests and rules that no message can ever satisfy.\n\n"
                    "Example: qvrules check my.qvr --format json");
}

void s_addInstall(CLI::App& app, Action& action) {
    auto const [command, options] =
        s_addCommand(app, action, "install", "Put rules in force under running hosts", install);
    command->add_option("PATH", options->m_source, "Rule text, or folder with rule files")
        ->type_name("");
    command->add_option("--root", options->m_root, "Install below DIR instead of /")
        ->type_name("DIR");
    command->add_flag("--rollback", options->m_isRollback, "Bring the previous rules back");
    command->add_flag("--force", options->m_isForced, "Install in spite of errors, if it loads");
    command->footer("The rules go to /var/spool/etc/antispam with a version that grows, so that\n"
                    "hosts take them up when they next look. The rules before are kept.\n\n"
                    "Examples: qvrules install my.qvr\n"
                    "          qvrules install --rollback --root /srv/test");
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
    s_addCompile(app, action);
    s_addDecompile(app, action);
    s_addCheck(app, action);
    s_addInstall(app, action);
    s_addAttributes(app, action);
    app.footer(examples);
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
