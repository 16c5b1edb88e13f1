// SPDX-License-Identifier: Apache-2.0
//
// qvrules: the command line.
#include "apps/qvrules/Command.h"
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Diff.h"
#include "apps/qvrules/Evaluate.h"
#include "apps/qvrules/Explain.h"
#include "apps/qvrules/Learn.h"
#include "apps/qvrules/Show.h"
#include "apps/qvrules/Test.h"
#include "apps/settings/SettingsTable.h"
#include "apps/text/Utf8.h"
#include "apps/workshop/MailVectors.h"
#include "rules/language/Nearest.h"
#include "rules/model/RuleError.h"

#include <algorithm>
#include <csignal>
#include <iostream>
#include <sstream>
#include <string_view>
#include <vector>

namespace Quorvane::RulesApp {

namespace {

constexpr char examples[] =
    "Examples:\n"
    "  qvrules compile my.qvr -o folder      make rule files of a text\n"
    "  qvrules decompile folder -o my.qvr    and back, byte for byte\n"
    "  qvrules check my.qvr                  find what can never work\n"
    "  qvrules install my.qvr                put in force under running hosts\n"
    "  qvrules install --rollback            and take it back\n"
    "  qvrules learn --ham A --spam B -o my.qvr   learn a tree from mail\n"
    "  qvrules evaluate my.qvr --ham A --spam B   measure rules on mail\n"
    "  qvrules show my.qvr                   see the tree\n"
    "  qvrules explain my.qvr strange.eml    why a message is judged so\n"
    "  qvrules test cases/                   do rules judge as they should?\n"
    "  qvrules diff my.qvr other.qvr --on A  see which verdicts change\n"
    "  qvrules attributes                    what rules can test\n"
    "\n"
    "\"qvrules COMMAND --help\" says more. Exit status: 0 well, 1 findings, 64 bad\n"
    "usage, 65 a rule text with errors, 66 an input that cannot be opened, 73 an\n"
    "output that cannot be written, 78 bad settings or rules that no engine would\n"
    "load. 70 is a fault of the program or of the machine.";

void s_addFileCommands(CLI::App& app, Action& action) {
    Command(app, action, "compile", compile)
        .tie("SRC", &CompileOptions::m_source)
        .tie("-o,--output", &CompileOptions::m_folder);
    Command(app, action, "decompile", decompile)
        .tie("DIR", &DecompileOptions::m_folder)
        .tie("-o,--output", &DecompileOptions::m_source);
    Command(app, action, "check", check)
        .tie("PATH", &CheckOptions::m_path)
        .tie("--against", &CheckOptions::m_against)
        .tie("--format", &CheckOptions::m_format)
        .tieSettings(&CheckOptions::m_settings);
    Command(app, action, "install", install)
        .tie("PATH", &InstallOptions::m_source)
        .tie("--root", &InstallOptions::m_root)
        .tie("--rollback", &InstallOptions::m_isRollback)
        .tie("--force", &InstallOptions::m_isForced);
}

void s_addMailCommands(CLI::App& app, Action& action) {
    Command(app, action, "learn", learn)
        .tie("--ham", &LearnArguments::m_ham)
        .tie("--spam", &LearnArguments::m_spam)
        .tie("--vectors", &LearnArguments::m_vectors)
        .tie("--ham-vectors", &LearnArguments::m_hamVectors)
        .tie("--spam-vectors", &LearnArguments::m_spamVectors)
        .tie("-o,--output", &LearnArguments::m_output)
        .tie("--table", &LearnArguments::m_table)
        .tie("--with", &LearnArguments::m_with)
        .tie("--augment", &LearnArguments::m_augment)
        .tie("--impurity", &LearnArguments::m_impurity)
        .tie("--min-node-support", &LearnArguments::m_minSupport)
        .tie("--min-gain", &LearnArguments::m_minGain)
        .tie("--max-nodes", &LearnArguments::m_maxNodes)
        .tie("--prune", &LearnArguments::m_prune)
        .tie("--exclude", &LearnArguments::m_exclude)
        .tie("--lookups", &LearnArguments::m_lookups)
        .tieSettings(&LearnArguments::m_settings);
    Command(app, action, "evaluate", evaluate)
        .tie("RULES", &EvaluateArguments::m_rules)
        .tie("--ham", &EvaluateArguments::m_ham)
        .tie("--spam", &EvaluateArguments::m_spam)
        .tie("--vectors", &EvaluateArguments::m_vectors)
        .tie("--ham-vectors", &EvaluateArguments::m_hamVectors)
        .tie("--spam-vectors", &EvaluateArguments::m_spamVectors)
        .tie("--augment", &EvaluateArguments::m_augment)
        .tie("--format", &EvaluateArguments::m_format)
        .tie("-o,--output", &EvaluateArguments::m_output)
        .tieSettings(&EvaluateArguments::m_settings);
}

void s_addViewCommands(CLI::App& app, Action& action) {
    Command(app, action, "show", show)
        .tie("RULES", &ShowArguments::m_rules)
        .tie("--format", &ShowArguments::m_format)
        .tie("-o,--output", &ShowArguments::m_output)
        .tie("--on", &ShowArguments::m_on)
        .tie("--vectors", &ShowArguments::m_vectors)
        .tie("--message", &ShowArguments::m_messages)
        .tie("--serve", &ShowArguments::m_serve)
        .tieSettings(&ShowArguments::m_settings);
    Command(app, action, "explain", explain)
        .tie("RULES", &ExplainArguments::m_rules)
        .tie("INPUT", &ExplainArguments::m_input)
        .tie("--format", &ExplainArguments::m_format)
        .tieSettings(&ExplainArguments::m_settings);
    Command(app, action, "test", test)
        .tie("PATH", &TestArguments::m_paths)
        .tie("--rules", &TestArguments::m_rules)
        .tie("--format", &TestArguments::m_format);
    Command(app, action, "diff", diff)
        .tie("OLD", &DiffArguments::m_old)
        .tie("NEW", &DiffArguments::m_new)
        .tie("--on", &DiffArguments::m_unsorted)
        .tie("--ham", &DiffArguments::m_ham)
        .tie("--spam", &DiffArguments::m_spam)
        .tie("--vectors", &DiffArguments::m_vectors)
        .tie("--on-vectors", &DiffArguments::m_unsortedVectors)
        .tie("--ham-vectors", &DiffArguments::m_hamVectors)
        .tie("--spam-vectors", &DiffArguments::m_spamVectors)
        .tie("--format", &DiffArguments::m_format)
        .tie("-o,--output", &DiffArguments::m_output)
        .tieSettings(&DiffArguments::m_settings);
    Command(app, action, "attributes", listAttributes);
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
    std::cerr << toPrintableLines(text) << (hasEnd ? "" : "\n");
}

// What the parser would only call unexpected: a first word that is no command.
bool s_rejectsCommand(int argc, char** argv) {
    std::string_view const word = argc > 1 ? argv[1] : "-";
    std::vector<std::string_view> names;
    for (auto const& row : commandRows()) {
        names.emplace_back(row.m_name);
    }
    auto const isKnown = std::find(names.begin(), names.end(), word) != names.end();
    if (isKnown || word.substr(0, 1) == "-") {
        return false;
    }
    s_complain("unknown command \"" + std::string(word) + '"' + Rules::didYouMean(word, names) +
               "\nRun with --help for more information.");
    return true;
}

int s_run(int argc, char** argv) {
    CLI::App app("Write, learn, measure, try and install the rules of Quorvane Deep Header.",
                 "qvrules");
    Action action;
    app.set_help_flag(helpOption.m_names, helpOption.m_help);
    app.set_version_flag(versionOption.m_names, "qvrules " QV_VERSION, versionOption.m_help);
    app.require_subcommand(1);
    s_addFileCommands(app, action);
    s_addMailCommands(app, action);
    s_addViewCommands(app, action);
    app.footer(examples);
    if (s_rejectsCommand(argc, argv)) {
        return ExitStatus::usage;
    }
    try {
        app.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
        std::ostringstream complaint;
        auto const status = app.exit(error, std::cout, complaint);
        if (status == 0) {
            return ExitStatus::well;
        }
        s_complain(complaint.str());
        return ExitStatus::usage;
    }
    return action();
}

int s_guardedRun(int argc, char** argv) {
    try {
        return s_run(argc, argv);
    } catch (Rules::RuleError const& error) {
        s_complain(error.what());
        return s_status(error.kind());
    } catch (UsageError const& error) {
        s_complain(std::string("qvrules: ") + error.what() + "; --help shows the options");
        return ExitStatus::usage;
    } catch (SettingsError const& error) {
        s_complain(error.what());
        return ExitStatus::badRules;
    } catch (Workshop::ScanInterrupted const& interrupted) {
        return ExitStatus::interrupted + interrupted.m_signal;
    } catch (std::exception const& error) {
        s_complain(std::string("qvrules: unexpected: ") + error.what());
        return ExitStatus::internal;
    }
}

} // namespace

} // namespace Quorvane::RulesApp

int main(int argc, char** argv) {
    // A reader that has seen enough ends us without a word, whatever we were started with.
    std::signal(SIGPIPE, SIG_DFL);
    return Quorvane::RulesApp::s_guardedRun(argc, argv);
}
