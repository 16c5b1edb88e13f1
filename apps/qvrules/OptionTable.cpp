// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/OptionTable.h"

#include <array>
#include <stdexcept>
#include <string>

namespace Quorvane::RulesApp {

namespace {

constexpr ArgumentRow compileArguments[] = {
    {"SRC", "SRC", "Rule text", true},
    {"-o,--output", "DIR", "Folder for README, qv.dt and qv2.dt", true},
};

constexpr ArgumentRow decompileArguments[] = {
    {"DIR", "DIR", "Folder with qv.dt, qv2.dt and README", true},
    {"-o,--output", "SRC", "Rule text to write (default: to stdout)"},
};

constexpr ArgumentRow checkArguments[] = {
    {"PATH", "PATH", "Rule text, or folder with rule files", true},
    {"--against", "DIR", "Say how the rule files in this folder differ, too"},
    {"--format", "text|json", "text for people, json for programs"},
};

constexpr ArgumentRow installArguments[] = {
    {"PATH", "PATH", "Rule text, or folder with rule files"},
    {"--root", "DIR", "Install below DIR instead of /"},
    {"--rollback", "", "Bring the previous rules back"},
    {"--force", "", "Install in spite of errors, if it loads"},
};

constexpr ArgumentRow learnArguments[] = {
    {"--ham", "[CORPUS=]PATH", "Wanted mail: files, mboxes, folders, Maildirs", false, true},
    {"--spam", "[CORPUS=]PATH", "Unwanted mail", false, true},
    {"--vectors", "[CORPUS=]FILE", "CSV of vectors with a column label; - for standard input",
     false, true},
    {"--ham-vectors", "[CORPUS=]FILE", "The same without label: all ham", false, true},
    {"--spam-vectors", "[CORPUS=]FILE", "The same without label: all spam", false, true},
    {"-o,--output", "SRC", "Rule text to write, - for standard output"},
    {"--table", "FILE", "Write the counted vectors as CSV"},
    {"--with", "SRC", "Put this rule text (version, elite rules) before the tree"},
    {"--augment", "no-reverse-name",
     "Learn from copies too, as a border without reverse names "
     "would have recorded the mail"},
    {"--impurity", "entropy|gini", "What a split must lessen (default: entropy)"},
    {"--min-node-support", "X", "Percentage of the mail that a node must have (default: 0.15)"},
    {"--min-gain", "X", "Impurity that a split must take away, a message (default: 0)"},
    {"--max-nodes", "N", "Nodes of the tree, the root included (default: 497)"},
    {"--prune", "minimum|one-se|none|ALPHA",
     "Least error on corpora left out (default); the smallest tree not clearly worse; whole tree; "
     "or the strength"},
    {"--exclude", "NAME", "Attribute that no rule may test", false, true},
    {"--lookups", "",
     "The mail is scanned with DNS look-ups that are answered: rules may test "
     "what they say"},
};

constexpr ArgumentRow evaluateArguments[] = {
    {"RULES", "PATH", "Rule text, or folder with rule files", true},
    {"--ham", "[CORPUS=]PATH", "Wanted mail: files, mboxes, folders, Maildirs", false, true},
    {"--spam", "[CORPUS=]PATH", "Unwanted mail", false, true},
    {"--vectors", "[CORPUS=]FILE", "CSV of vectors with a column label; - for standard input",
     false, true},
    {"--ham-vectors", "[CORPUS=]FILE", "The same without label: all ham", false, true},
    {"--spam-vectors", "[CORPUS=]FILE", "The same without label: all spam", false, true},
    {"--augment", "no-reverse-name",
     "Measure copies too, as a border without reverse names would "
     "have recorded the mail, as corpora of their own"},
    {"--format", "text|json|html", "text for people, json for programs, html: a page with charts"},
    {"-o,--output", "FILE", "File to write (default: to stdout)"},
};

constexpr ArgumentRow showArguments[] = {
    {"RULES", "PATH", "Rule text, or folder with rule files", true},
    {"--format", "text|dot|svg|html", "For a terminal (default), for Graphviz, a picture, a page"},
    {"-o,--output", "FILE", "File to write (default: to stdout)"},
    {"--on", "PATH", "Mail to measure on how much comes to each node", false, true},
    {"--vectors", "FILE", "The same of a CSV of vectors; - for standard input", false, true},
    {"--message", "FILE", "Message to judge now and to explain in the page", false, true},
    {"--serve", "[PORT]", "Serve the page to the browser of this machine; it then judges messages"},
};

constexpr ArgumentRow explainArguments[] = {
    {"RULES", "PATH", "Rule text, or folder with rule files", true},
    {"INPUT", "PATH", "Message, table of vectors, - for standard input, or vector", true},
    {"--format", "text|json", "text for people, json for programs"},
};

constexpr ArgumentRow testArguments[] = {
    {"PATH", "PATH", "Rule tests, or folder with such files (*.toml)", true, true},
    {"--rules", "PATH", "Rule text or folder to test, whatever the files name"},
    {"--format", "text|json", "text for people, json for programs"},
};

constexpr ArgumentRow diffArguments[] = {
    {"OLD", "PATH", "Rule text, or folder with rule files", true},
    {"NEW", "PATH", "The rules to compare with them", true},
    {"--on", "[CORPUS=]PATH", "Unsorted mail: files, mboxes, folders, Maildirs", false, true},
    {"--ham", "[CORPUS=]PATH", "Wanted mail", false, true},
    {"--spam", "[CORPUS=]PATH", "Unwanted mail", false, true},
    {"--vectors", "[CORPUS=]FILE", "CSV of vectors with a column label; - for standard input",
     false, true},
    {"--on-vectors", "[CORPUS=]FILE", "The same without label: unsorted", false, true},
    {"--ham-vectors", "[CORPUS=]FILE", "The same without label: all ham", false, true},
    {"--spam-vectors", "[CORPUS=]FILE", "The same without label: all spam", false, true},
    {"--format", "text|json|html", "text for people, json for programs, html: a page"},
    {"-o,--output", "FILE", "File to write (default: to stdout)"},
};

constexpr auto table = std::to_array<CommandRow>({
    {"compile", "Make rule files of a rule text", compileArguments,
     "Each file is replaced in one step; files that the rules do not have are\n"
     "removed. For a folder that running hosts read use \"qvrules install\".\n\n"
     "Example: qvrules compile my.qvr -o /tmp/rules"},
    {"decompile", "Make a rule text of rule files", decompileArguments,
     "Compiling the text gives the same bytes, whatever the files hold.\n\n"
     "Example: qvrules decompile /var/spool/etc/antispam -o now.qvr"},
    {"check", "Find what is wrong with rules", checkArguments,
     "Finds what engines refuse or drop, what the walk through the tree gives up\n"
     "at, tests and rules that no message can ever satisfy, rules that others always\n"
     "keep out, and thresholds at which nothing can be called spam or ham. The\n"
     "defaults are those of the programs, 0.95; the library's own, 95, never judge.\n\n"
     "Examples: qvrules check my.qvr --format json\n"
     "          qvrules check my.qvr --against /var/spool/etc/antispam",
     false, false, true},
    {"install", "Put rules in force under running hosts", installArguments,
     "The rules go to /var/spool/etc/antispam with a version that grows, so that\n"
     "hosts take them up when they next look. The rules before are kept.\n\n"
     "Examples: qvrules install my.qvr\n"
     "          qvrules install --rollback --root /srv/test"},
    {"learn", "Learn a decision tree from mail", learnArguments,
     "A corpus is the mail of one site. Its name stands before the path\n"
     "(\"--ham site=mail/ham\"), or is the name of the folder that the path lies in.\n"
     "Pruning is chosen by learning without each corpus in turn, so give mail of\n"
     "several sites. The same mail in any order gives the same text to the byte.\n\n"
     "Examples: qvrules learn --ham */ham.mbox --spam */spam.mbox -o learned.qvr\n"
     "          qvscan --format csv new/ | qvrules learn --spam-vectors new=- \\\n"
     "              --vectors table.csv -o learned.qvr\n"
     "          qvrules learn --vectors shards/*.csv --table all.csv",
     true},
    {"evaluate", "Measure rules on sorted mail", evaluateArguments,
     "For each corpus and together: how much can be judged, what the thresholds give,\n"
     "the ROC curve, how far confidences can be trusted, which rules decide and which\n"
     "err, with sample messages. Measure on mail that the rules were not learned from.\n\n"
     "Examples: qvrules evaluate my.qvr --ham new/ham --spam new/spam --dns off\n"
     "          qvrules evaluate my.qvr --vectors new.csv --format html -o page.html",
     true},
    {"show", "Draw rules", showArguments,
     "The elite rules and the tree, each node with its test, the probability of spam\n"
     "that it gives and how much of the training mail came to it. The page searches\n"
     "and explains the messages of --message; served, it also judges messages and\n"
     "vectors that are dropped into it.\n\n"
     "Examples: qvrules show my.qvr\n"
     "          qvrules show my.qvr --format svg -o my.svg --on mail/today\n"
     "          qvrules show my.qvr --format html -o my.html --message odd.eml\n"
     "          qvrules show my.qvr --serve",
     true, true},
    {"explain", "Tell in plain words what rules say", explainArguments,
     "INPUT is a message or an mbox; or a table of vectors, as \"qvscan --format csv\"\n"
     "writes them; or, where there is no such file, a vector: NAME=VALUE,... with\n"
     "what is not named as a scan leaves it that finds nothing else.\n\n"
     "Examples: qvrules explain my.qvr strange.eml\n"
     "          qvrules explain my.qvr first_reverse_dynamic=yes,first_helo_dynamic=yes\n"
     "          qvscan --format csv new/ | qvrules explain my.qvr -",
     true, true},
    {"test", "Try rules on cases with a known answer", testArguments,
     "A case is a vector or a message and the verdict that it should get, written in\n"
     "TOML (docs/testing-rules.md). Nothing is looked up in DNS but what a case gives.\n"
     "Status 1 says that a case failed.\n\n"
     "Examples: qvrules test cases/\n"
     "          qvrules test old.toml --rules new.qvr"},
    {"diff", "Show which verdicts change with other rules", diffArguments,
     "Which messages change verdict between OLD and NEW, by which node or elite rule\n"
     "of each, whether that is better or worse for mail that is sorted, and how\n"
     "confidences change elsewhere. Exit status 0 when no verdict changes, 1 when one\n"
     "does.\n\n"
     "Example: qvrules diff now.qvr my.qvr --on mail/today --ham kept/ham --dns off",
     true},
    {"attributes", "List what rules can test, as Markdown", {}},
});

[[noreturn]] void s_isMissing(std::string_view name) {
    throw std::out_of_range(std::string(name) + ": not in the table of commands");
}

} // namespace

std::span<CommandRow const> commandRows() {
    return table;
}

CommandRow const& commandRow(std::string_view name) {
    for (auto const& row : table) {
        if (row.m_name == name) {
            return row;
        }
    }
    s_isMissing(name);
}

ArgumentRow const& argumentRow(CommandRow const& command, std::string_view names) {
    for (auto const& row : command.m_arguments) {
        if (row.m_names == names) {
            return row;
        }
    }
    s_isMissing(names);
}

} // namespace Quorvane::RulesApp
