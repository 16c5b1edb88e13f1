// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Commands.h"

#include "apps/commandline/Terminal.h"
#include "apps/settings/SettingSources.h"
#include "apps/settings/SettingsTable.h"

#include <iterator>

namespace Quorvane::RulesApp {

namespace {

constexpr OptionRow rulesArgument{"RULES", "PATH", "rule text, or folder of rule files",
                                  Takes::required};
constexpr OptionRow formatRow{"format", "text|json", "output format: text (default) or JSON"};
constexpr OptionRow rootRow{"root", "DIR", "the rules below DIR instead of /"};
constexpr OptionRow outputRow{"output", "FILE", "output file (default: standard output)", 0, 'o'};
constexpr OptionRow forceRow{"force", "", "replace a file that this command did not write"};
constexpr OptionRow mailRows[] = {
    {"ham", "[CORPUS=]PATH", "wanted mail: mboxes, Maildirs, folders, archives", Takes::several},
    {"spam", "[CORPUS=]PATH", "unwanted mail", Takes::several},
    {"vectors", "[CORPUS=]FILE", "CSV of vectors with a label column; - for standard input",
     Takes::several},
    {"ham-vectors", "[CORPUS=]FILE", "CSV of vectors without labels: all ham", Takes::several},
    {"spam-vectors", "[CORPUS=]FILE", "CSV of vectors without labels: all spam", Takes::several},
};

CommandRow const compileCommand{
    "compile",
    "Compile a rule text into rule files",
    {{"SRC", "SRC", "rule text", Takes::required}},
    {{"output", "DIR", "folder for README, qv.dt, qv2.dt and qv.names", Takes::required, 'o'},
     {"force", "", "replace a README that is not of rules"}},
    "Each file is replaced atomically; files that the rules do not need are removed.\n"
    "For a folder that running hosts read, use \"qvrules install\".\n\n"
    "Example: qvrules compile my.qvr -o /tmp/rules"};

CommandRow const decompileCommand{
    "decompile",
    "Convert rule files back into a rule text",
    {{"DIR", "DIR", "folder with qv.dt, qv2.dt, README and qv.names", Takes::required}},
    {{"output", "SRC", "rule text to write (default: standard output)", 0, 'o'},
     {"force", "", "replace a file that is there"}},
    "Compiling the text gives the same bytes, even if the files are damaged.\n\n"
    "Example: qvrules decompile /var/spool/etc/antispam -o now.qvr"};

CommandRow const checkCommand{
    "check",
    "Find errors in rules",
    {{"PATH", "PATH", "rule text, or folder of rule files", Takes::required}},
    {{"against", "DIR", "also report how the rule files in this folder differ"}, formatRow},
    "Finds what engines refuse or drop, nodes at which the walk through the tree\n"
    "fails, tests and rules that no message can satisfy, rules that can never win\n"
    "over others, and thresholds at which nothing can be called spam or ham. The\n"
    "default thresholds are those of the programs, 0.95; those of the library, 95,\n"
    "give no verdicts at all.\n\n"
    "Examples: qvrules check my.qvr --format json\n"
    "          qvrules check my.qvr --against /var/spool/etc/antispam"};

CommandRow const installCommand{
    "install",
    "Install rules; running hosts reload them",
    {{"PATH", "PATH", "rule text, or folder of rule files"}},
    {rootRow,
     {"rollback", "", "restore the rules before those in force; each call leads one step back"},
     {"to", "VERSION", "with --rollback: restore the rules of this version"},
     {"dry-run", "", "check the rules and say what would be installed; change nothing"},
     {"force", "", "install even with errors, if the rules can be loaded"}},
    "The rules are written to /var/spool/etc/antispam with a higher version number,\n"
    "so that running hosts reload them. They are put in force in one step: there is\n"
    "no moment without rules. The last ten sets are kept.\n\n"
    "Examples: qvrules install my.qvr\n"
    "          qvrules install --rollback --root /srv/test\n"
    "          qvrules install --rollback --to 12"};

CommandRow const statusCommand{
    "status",
    "Show the rules in force",
    {},
    {rootRow, formatRow},
    "Shows the version in force, since when, its size and where it is from, what is\n"
    "kept for \"qvrules install --rollback\", and the running programs that use the\n"
    "library.\n\n"
    "Example: qvrules status --root /srv/test"};

CommandRow const learnCommand{
    "learn",
    "Learn a decision tree from mail",
    {},
    {{"output", "SRC", "rule text to write; - for standard output", 0, 'o'},
     {"table", "FILE", "write the vectors, with counts, as CSV"},
     forceRow,
     {"with", "SRC", "start the output with this rule text (version, elite rules)"},
     {"augment", "no-reverse-name",
      "also learn from copies of the mail as a gateway without reverse DNS records it"},
     {"impurity", "entropy|gini", "impurity that the splits of the tree reduce (default: entropy)"},
     {"min-node-support", "X", "minimum percentage of the mail in a node (default: 0.15)"},
     {"min-gain", "X", "minimum impurity decrease of a split, per message (default: 0)"},
     {"max-nodes", "N", "maximum number of nodes, including the root (default: 497)"},
     {"prune", "minimum|one-se|none|ALPHA",
      "least error on held-out corpora (default); the smallest tree that is not clearly worse; "
      "the whole tree; or a pruning strength"},
     {"exclude", "NAME", "attribute that the tree must not test", Takes::several},
     {"lookups", "", "scan with DNS look-ups; the tree may test their results"}},
    "A corpus is the mail of one site. Its name is given before the path\n"
    "(\"--ham site=mail/ham\"); otherwise it is the name of the folder that contains\n"
    "the path. Pruning is chosen by learning without each corpus in turn, so give\n"
    "mail of several sites. The same mail gives the same text, byte for byte,\n"
    "whatever its order.\n\n"
    "Examples: qvrules learn --ham */ham.mbox --spam */spam.mbox -o learned.qvr\n"
    "          qvscan --format csv new/ | qvrules learn --spam-vectors new=- \\\n"
    "              --vectors table.csv -o learned.qvr\n"
    "          qvrules learn --vectors shards/*.csv --table all.csv"};

CommandRow const adaptCommand{
    "adapt",
    "Adapt rules to the mail of your site",
    {rulesArgument},
    {{"output", "SRC", "rule text to write; - for standard output", Takes::required, 'o'},
     forceRow},
    "Begins with RULES and lets the mail of one site correct them: probabilities are\n"
    "estimated again, elite rules that do not hold there are left out, and leaves of\n"
    "the tree with enough mail grow branches. From a dozen messages of each kind on;\n"
    "a few hundred make a difference.\n\n"
    "A third of the mail is kept aside. The figures shown are what RULES and the\n"
    "adapted rules do on it. When those are no better, nothing is written, and the\n"
    "exit status is 1.\n\n"
    "Example: qvrules adapt now.qvr --ham kept/ham --spam kept/spam -o site.qvr"};

CommandRow const evaluateCommand{
    "evaluate",
    "Measure rules on sorted mail",
    {rulesArgument},
    {{"augment", "no-reverse-name",
      "also measure copies of the mail as a gateway without reverse DNS records it, as separate "
      "corpora"},
     {"format", "text|json|html", "output format: text (default), JSON, or a page with charts"},
     outputRow,
     forceRow},
    "For each corpus and for all together: how much mail can be judged, the verdicts\n"
    "at the thresholds, the ROC curve, how reliable confidences are, which rules\n"
    "decide and which are wrong, with sample messages. Use mail that the rules were\n"
    "not learned from.\n\n"
    "Examples: qvrules evaluate my.qvr --ham new/ham --spam new/spam --dns off\n"
    "          qvrules evaluate my.qvr --vectors new.csv --format html -o page.html"};

CommandRow const showCommand{
    "show",
    "Draw rules",
    {rulesArgument},
    {{"format", "text|dot|svg|html", "for a terminal (default), for Graphviz, a picture, a page"},
     outputRow,
     forceRow,
     colorRow,
     {"on", "PATH", "mail on which to measure how much reaches each node", Takes::several},
     {"vectors", "FILE", "CSV of vectors to measure on; - for standard input", Takes::several},
     {"message", "FILE", "message to judge and to explain in the page", Takes::several},
     {"serve", "[PORT]", "serve the page to browsers on this machine; it can then judge messages"}},
    "Shows the elite rules and the tree: each node with its test, its probability of\n"
    "spam and how much of the training mail reached it. The page can be searched and\n"
    "explains the messages of --message; when served, it also judges messages and\n"
    "vectors that are dropped into it.\n\n"
    "Examples: qvrules show my.qvr\n"
    "          qvrules show my.qvr --format svg -o my.svg --on mail/today\n"
    "          qvrules show my.qvr --format html -o my.html --message odd.eml\n"
    "          qvrules show my.qvr --serve"};

CommandRow const explainCommand{
    "explain",
    "Explain verdicts in plain words",
    {rulesArgument,
     {"INPUT", "PATH|VECTOR", "message, FILE:N, table of vectors, vector, or - for standard input",
      Takes::required}},
    {formatRow,
     {"all", "",
      "also show the attributes, all rules that fired and the path in the tree (JSON has them "
      "anyway)"},
     colorRow,
     noPagerRow},
    "INPUT is a message, an mbox, message N of an mbox, or an archive; a table of\n"
    "vectors from \"qvscan --format csv\"; or, if there is no such file, a vector:\n"
    "NAME=VALUE,... Attributes that are not named have the values of a scan that finds\n"
    "nothing else.\n\n"
    "The value not-analysed means that there was no such hop, n/a that the question\n"
    "does not apply, unknown that a part of the comparison is missing.\n\n"
    "Examples: qvrules explain my.qvr strange.eml\n"
    "          qvrules explain my.qvr first_reverse_dynamic=yes,first_helo_dynamic=yes\n"
    "          qvscan --format csv new/ | qvrules explain my.qvr -"};

CommandRow const testCommand{
    "test",
    "Test rules on cases with a known answer",
    {{"PATH", "PATH", "file of rule tests, or folder of such files (*.toml)",
      Takes::required | Takes::several}},
    {{"rules", "PATH", "rule text or folder to test, instead of what the files name"}, formatRow},
    "A case is a vector or a message with its expected verdict, written in TOML\n"
    "(docs/testing-rules.md). No server is asked: DNS data comes from the cases.\n"
    "The exit status is 1 if a case failed.\n\n"
    "Examples: qvrules test cases/\n"
    "          qvrules test old.toml --rules new.qvr"};

CommandRow const diffCommand{
    "diff",
    "Show which verdicts change between two rule sets",
    {{"OLD", "PATH", "rule text, or folder of rule files", Takes::required},
     {"NEW", "PATH", "the rules to compare with OLD", Takes::required}},
    {{"on", "[CORPUS=]PATH", "unsorted mail: mboxes, Maildirs, folders, archives", Takes::several},
     {"on-vectors", "[CORPUS=]FILE", "CSV of vectors without labels: unsorted", Takes::several},
     {"format", "text|json|html", "output format: text (default), JSON, or a page"},
     outputRow,
     forceRow},
    "Shows which messages change verdict between OLD and NEW, which node or elite\n"
    "rule decides in each, whether the change is right where mail is sorted, and how\n"
    "confidences change elsewhere. The exit status is 1 if a verdict changes.\n\n"
    "Example: qvrules diff now.qvr my.qvr --on mail/today --ham kept/ham --dns off"};

CommandRow const attributesCommand{"attributes", "List the attributes that rules can test", {}, {}};

// The rules to measure are an argument of the command, not a setting of the host.
std::vector<SettingFacts> s_settings(bool (*isTaken)(SettingFacts const&)) {
    auto facts = factsOf(settingRows());
    std::erase_if(facts, [isTaken](SettingFacts const& one) { return !isTaken(one); });
    return facts;
}

// Adds the settings with which mail is scanned.
CommandRow s_scanning(CommandRow row) {
    constexpr std::string_view group = "How mail is scanned";
    row.m_options.push_back(configRow.in(group));
    addRows(row.m_options,
            s_settings([](SettingFacts const& facts) { return facts.m_name != "root"; }), group);
    return row;
}

// The same, and the options for sorted mail.
CommandRow s_measuring(CommandRow row) {
    row.m_options.insert(row.m_options.begin(), std::begin(mailRows), std::end(mailRows));
    return s_scanning(row);
}

// The same, and what is known of single messages.
CommandRow s_explaining(CommandRow const& command) {
    auto row = s_scanning(command);
    addRows(row.m_options, factsOf(factRows()), "What is known of the message");
    return row;
}

// Adds the settings that control how rules judge.
CommandRow s_judging(CommandRow row) {
    row.m_options.push_back(configRow);
    addRows(row.m_options, s_settings([](SettingFacts const& facts) { return facts.m_isOfRules; }),
            "");
    return row;
}

constexpr std::string_view footer =
    "Examples:\n"
    "  qvrules compile my.qvr -o folder      compile a text into rule files\n"
    "  qvrules decompile folder -o my.qvr    convert them back into a text\n"
    "  qvrules check my.qvr                  find errors\n"
    "  qvrules install my.qvr                install; running hosts reload\n"
    "  qvrules install --rollback            restore the previous rules\n"
    "  qvrules status                        show what is in force\n"
    "  qvrules learn --ham A --spam B -o my.qvr   learn a tree from mail\n"
    "  qvrules adapt now.qvr --ham A --spam B -o my.qvr   fit rules to a site\n"
    "  qvrules evaluate my.qvr --ham A --spam B   measure rules on mail\n"
    "  qvrules show my.qvr                   draw the rules\n"
    "  qvrules explain my.qvr strange.eml    explain a verdict\n"
    "  qvrules test cases/                   test rules on known cases\n"
    "  qvrules diff my.qvr other.qvr --on A  see which verdicts change\n"
    "  qvrules attributes                    list what rules can test\n"
    "\n"
    "\"qvrules COMMAND --help\" shows more. Exit status: 0 ok, 1 findings, 64 usage\n"
    "error, 65 error in a rule text, 66 cannot open input, 70 internal error,\n"
    "73 cannot write output, 78 bad settings, or rules that no engine can load.";

ProgramTable s_table() {
    ProgramTable table{
        "qvrules",
        {"",
         "Writes, learns, measures, tests and installs the rules of Quorvane Deep Header.",
         {},
         {helpRow, versionRow, configRow, showConfigRow},
         footer},
        {compileCommand, decompileCommand, s_judging(checkCommand), installCommand, statusCommand,
         s_measuring(learnCommand), s_measuring(adaptCommand), s_measuring(evaluateCommand),
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
