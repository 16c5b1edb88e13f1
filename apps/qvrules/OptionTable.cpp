// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/OptionTable.h"

#include "apps/settings/FactsTable.h"
#include "apps/settings/SettingOptions.h"
#include "apps/settings/SettingsTable.h"

#include <iterator>

namespace Quorvane::RulesApp {

namespace {

constexpr OptionRow rulesArgument{"RULES", "PATH", "rule text, or folder with rule files",
                                  Takes::required};
constexpr OptionRow formatRow{"format", "text|json", "text for people, json for programs"};
constexpr OptionRow outputRow{"output", "FILE", "file to write (default: to stdout)", 0, 'o'};
constexpr OptionRow mailRows[] = {
    {"ham", "[CORPUS=]PATH", "wanted mail: files, mboxes, folders, Maildirs", Takes::several},
    {"spam", "[CORPUS=]PATH", "unwanted mail", Takes::several},
    {"vectors", "[CORPUS=]FILE", "CSV of vectors with a column label; - for standard input",
     Takes::several},
    {"ham-vectors", "[CORPUS=]FILE", "the same without label: all ham", Takes::several},
    {"spam-vectors", "[CORPUS=]FILE", "the same without label: all spam", Takes::several},
};

CommandRow const compileCommand{
    "compile",
    "Make rule files of a rule text",
    {{"SRC", "SRC", "rule text", Takes::required}},
    {{"output", "DIR", "folder for README, qv.dt and qv2.dt", Takes::required, 'o'}},
    "Each file is replaced in one step; files that the rules do not have are\n"
    "removed. For a folder that running hosts read use \"qvrules install\".\n\n"
    "Example: qvrules compile my.qvr -o /tmp/rules"};

CommandRow const decompileCommand{
    "decompile",
    "Make a rule text of rule files",
    {{"DIR", "DIR", "folder with qv.dt, qv2.dt and README", Takes::required}},
    {{"output", "SRC", "rule text to write (default: to stdout)", 0, 'o'}},
    "Compiling the text gives the same bytes, whatever the files hold.\n\n"
    "Example: qvrules decompile /var/spool/etc/antispam -o now.qvr"};

CommandRow const checkCommand{
    "check",
    "Find what is wrong with rules",
    {{"PATH", "PATH", "rule text, or folder with rule files", Takes::required}},
    {{"against", "DIR", "say how the rule files in this folder differ, too"}, formatRow},
    "Finds what engines refuse or drop, what the walk through the tree gives up\n"
    "at, tests and rules that no message can ever satisfy, rules that others always\n"
    "keep out, and thresholds at which nothing can be called spam or ham. The\n"
    "defaults are those of the programs, 0.95; the library's own, 95, never judge.\n\n"
    "Examples: qvrules check my.qvr --format json\n"
    "          qvrules check my.qvr --against /var/spool/etc/antispam"};

CommandRow const installCommand{
    "install",
    "Put rules in force under running hosts",
    {{"PATH", "PATH", "rule text, or folder with rule files"}},
    {{"root", "DIR", "install below DIR instead of /"},
     {"rollback", "", "restore the previous rules"},
     {"force", "", "install in spite of errors, if it loads"}},
    "The rules go to /var/spool/etc/antispam with a higher version, so that\n"
    "running hosts reload them. The rules before are kept.\n\n"
    "Examples: qvrules install my.qvr\n"
    "          qvrules install --rollback --root /srv/test"};

CommandRow const learnCommand{
    "learn",
    "Learn a decision tree from mail",
    {},
    {{"output", "SRC", "rule text to write, - for standard output", 0, 'o'},
     {"table", "FILE", "write the counted vectors as CSV"},
     {"with", "SRC", "put this rule text (version, elite rules) before the tree"},
     {"augment", "no-reverse-name",
      "learn from copies too, as a gateway that records no reverse DNS would have recorded the "
      "mail"},
     {"impurity", "entropy|gini", "what the splits of the tree reduce (default: entropy)"},
     {"min-node-support", "X", "percentage of the mail that a node must have (default: 0.15)"},
     {"min-gain", "X", "minimum impurity decrease of a split, for each message (default: 0)"},
     {"max-nodes", "N", "nodes of the tree, the root included (default: 497)"},
     {"prune", "minimum|one-se|none|ALPHA",
      "least error on corpora left out (default); the smallest tree not clearly worse; whole "
      "tree; or the strength"},
     {"exclude", "NAME", "attribute that no rule may test", Takes::several},
     {"lookups", "",
      "the mail is scanned with DNS look-ups that are answered: rules may test what they say"}},
    "A corpus is the mail of one site. Its name stands before the path\n"
    "(\"--ham site=mail/ham\"), or is the name of the folder that the path lies in.\n"
    "Pruning is chosen by learning without each corpus in turn, so give mail of\n"
    "several sites. The same mail in any order gives the same text to the byte.\n\n"
    "Examples: qvrules learn --ham */ham.mbox --spam */spam.mbox -o learned.qvr\n"
    "          qvscan --format csv new/ | qvrules learn --spam-vectors new=- \\\n"
    "              --vectors table.csv -o learned.qvr\n"
    "          qvrules learn --vectors shards/*.csv --table all.csv"};

CommandRow const evaluateCommand{
    "evaluate",
    "Measure rules on sorted mail",
    {rulesArgument},
    {{"augment", "no-reverse-name",
      "measure copies too, as a gateway that records no reverse DNS would have recorded "
      "the mail, as corpora of their own"},
     {"format", "text|json|html", "text for people, json for programs, html: a page with charts"},
     outputRow},
    "For each corpus and together: how much can be judged, what the thresholds give,\n"
    "the ROC curve, how far confidences can be trusted, which rules decide and which\n"
    "err, with sample messages. Measure on mail that the rules were not learned from.\n\n"
    "Examples: qvrules evaluate my.qvr --ham new/ham --spam new/spam --dns off\n"
    "          qvrules evaluate my.qvr --vectors new.csv --format html -o page.html"};

CommandRow const showCommand{
    "show",
    "Draw rules",
    {rulesArgument},
    {{"format", "text|dot|svg|html", "for a terminal (default), for Graphviz, a picture, a page"},
     outputRow,
     {"on", "PATH", "mail to measure on how much comes to each node", Takes::several},
     {"vectors", "FILE", "the same of a CSV of vectors; - for standard input", Takes::several},
     {"message", "FILE", "message to judge now and to explain in the page", Takes::several},
     {"serve", "[PORT]", "serve the page to the browser of this machine; it then judges messages"}},
    "The elite rules and the tree, each node with its test, the probability of spam\n"
    "that it gives and how much of the training mail came to it. The page searches\n"
    "and explains the messages of --message; served, it also judges messages and\n"
    "vectors that are dropped into it.\n\n"
    "Examples: qvrules show my.qvr\n"
    "          qvrules show my.qvr --format svg -o my.svg --on mail/today\n"
    "          qvrules show my.qvr --format html -o my.html --message odd.eml\n"
    "          qvrules show my.qvr --serve"};

CommandRow const explainCommand{
    "explain",
    "Explain in plain words what rules say",
    {rulesArgument,
     {"INPUT", "PATH", "message, table of vectors, - for standard input, or vector",
      Takes::required}},
    {formatRow},
    "INPUT is a message or an mbox; or a table of vectors, as \"qvscan --format csv\"\n"
    "writes them; or, where there is no such file, a vector: NAME=VALUE,... with\n"
    "what is not named as a scan leaves it that finds nothing else.\n\n"
    "Examples: qvrules explain my.qvr strange.eml\n"
    "          qvrules explain my.qvr first_reverse_dynamic=yes,first_helo_dynamic=yes\n"
    "          qvscan --format csv new/ | qvrules explain my.qvr -"};

CommandRow const testCommand{
    "test",
    "Try rules on cases with a known answer",
    {{"PATH", "PATH", "rule tests, or folder with such files (*.toml)",
      Takes::required | Takes::several}},
    {{"rules", "PATH", "rule text or folder to test, whatever the files name"}, formatRow},
    "A case is a vector or a message and the verdict that it should get, written in\n"
    "TOML (docs/testing-rules.md). Nothing is looked up in DNS but what a case gives.\n"
    "Status 1 says that a case failed.\n\n"
    "Examples: qvrules test cases/\n"
    "          qvrules test old.toml --rules new.qvr"};

CommandRow const diffCommand{
    "diff",
    "Show which verdicts change with other rules",
    {{"OLD", "PATH", "rule text, or folder with rule files", Takes::required},
     {"NEW", "PATH", "the rules to compare with them", Takes::required}},
    {{"on", "[CORPUS=]PATH", "unsorted mail: files, mboxes, folders, Maildirs", Takes::several},
     {"on-vectors", "[CORPUS=]FILE", "the same without label: unsorted", Takes::several},
     {"format", "text|json|html", "text for people, json for programs, html: a page"},
     outputRow},
    "Which messages change verdict between OLD and NEW, by which node or elite rule\n"
    "of each, whether that is better or worse for mail that is sorted, and how\n"
    "confidences change elsewhere. Exit status 0 when no verdict changes, 1 when one\n"
    "does.\n\n"
    "Example: qvrules diff now.qvr my.qvr --on mail/today --ham kept/ham --dns off"};

CommandRow const attributesCommand{"attributes", "List what rules can test, as Markdown", {}, {}};

// The rules to learn from or to measure are arguments of the command, not of the host.
std::vector<SettingFacts> s_settings(bool (*isTaken)(SettingFacts const&)) {
    auto facts = factsOf(settingRows());
    std::erase_if(facts, [isTaken](SettingFacts const& one) { return !isTaken(one); });
    return facts;
}

// The command for mail that is scanned with the settings of the site.
CommandRow s_scanning(CommandRow row) {
    constexpr std::string_view group = "How mail is scanned";
    row.m_options.push_back(configRow.in(group));
    addRows(row.m_options,
            s_settings([](SettingFacts const& facts) { return facts.m_name != "root"; }), group);
    return row;
}

// The same for sorted mail.
CommandRow s_measuring(CommandRow row) {
    row.m_options.insert(row.m_options.begin(), std::begin(mailRows), std::end(mailRows));
    return s_scanning(row);
}

// The same for single messages.
CommandRow s_explaining(CommandRow const& command) {
    auto row = s_scanning(command);
    addRows(row.m_options, factsOf(factRows()), "What is known of the message");
    return row;
}

// The command takes the settings that say how rules judge.
CommandRow s_judging(CommandRow row) {
    row.m_options.push_back(configRow);
    addRows(row.m_options, s_settings([](SettingFacts const& facts) { return facts.m_isOfRules; }),
            "");
    return row;
}

constexpr std::string_view footer =
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
    "\"qvrules COMMAND --help\" says more. Exit status: 0 ok, 1 findings, 64 usage,\n"
    "65 a rule text with errors, 66 cannot be opened, 70 internal error, 73 cannot\n"
    "write, 78 bad settings, or rules that no engine would load.";

ProgramTable s_table() {
    ProgramTable table{"qvrules",
                       {"",
                        "Write, learn, measure, try and install the rules of Quorvane Deep Header.",
                        {},
                        {helpRow, versionRow, configRow, showConfigRow},
                        footer},
                       {compileCommand, decompileCommand, s_judging(checkCommand), installCommand,
                        s_measuring(learnCommand), s_measuring(evaluateCommand),
                        s_explaining(showCommand), s_explaining(explainCommand), testCommand,
                        s_measuring(diffCommand), attributesCommand}};
    for (auto& command : table.m_commands) {
        command.m_options.insert(command.m_options.begin(), helpRow);
    }
    return table;
}

} // namespace

ProgramTable const& rulesTable() {
    static auto const table = s_table();
    return table;
}

} // namespace Quorvane::RulesApp
