// SPDX-License-Identifier: Apache-2.0
#include "apps/qvscan/Options.h"

#include "apps/commandline/ProgramError.h"
#include "apps/commandline/Terminal.h"
#include "apps/settings/SettingSources.h"

#include <algorithm>
#include <unistd.h>

namespace Quorvane {

namespace {

constexpr std::string_view footer =
    R"(Examples:
  qvscan --explain strange.eml
  qvscan --format json --internal 192.0.2.0/24 ~/Maildir archive.mbox.xz
Exit status: 0 no spam, 1 spam found, 64 usage error, 65 not a message,
66 cannot open input, 70 internal error, 73 cannot write output,
78 bad settings or rules.
In --explain=all, not-analysed means that there was no such hop, n/a that the
question does not apply, unknown that a part of the comparison is missing.)";

constexpr OptionRow extractRow{"extract", "DIR",
                               "write the messages of these results as files into this folder"};

constexpr OptionRow csvRow{"csv", "vectors|verdicts",
                           "what CSV has of each message: its attributes (default), or its verdict "
                           "for a spreadsheet"};

// Text on a terminal, JSON elsewhere.
OutputFormat s_format(CommandLine const& line) {
    auto const format = line.text("format", ::isatty(STDOUT_FILENO) == 1 ? "text" : "json");
    if (format != "csv" && line.has(csvRow.m_name)) {
        throw UsageError("--csv is for --format csv");
    }
    if (format == "csv") {
        return line.text(csvRow.m_name) == "verdicts" ? OutputFormat::verdictCsv
                                                      : OutputFormat::csv;
    }
    return format == "text" ? OutputFormat::text : OutputFormat::json;
}

// It shows no results, so there is nothing to choose from them.
bool s_findsRelays(CommandLine const& line) {
    for (auto const* const name : {"only", "rule", "extract", "explain"}) {
        if (line.has("find-relays") && line.has(name)) {
            throw UsageError("--find-relays proposes settings, and shows no results: leave out --" +
                             std::string(name));
        }
    }
    return line.has("find-relays");
}

// An explanation is no table.
std::vector<Column> s_columns(CommandLine const& line, OutputFormat format) {
    auto const row = columnsRow();
    if (line.has(row.m_name) && (format != OutputFormat::text || line.has("explain"))) {
        throw UsageError(row.dashed() + " is for --format text without --explain");
    }
    return chosenColumns(line);
}

std::vector<OptionRow> s_options() {
    OptionRow const output[] = {
        {"format", "text|json|csv", "output format (default: text on a terminal, otherwise json)"},
        csvRow,
        columnsRow(),
        {"explain", "[=all]",
         "show why each verdict was reached; all: also the attributes, all rules that fired and "
         "the path in the tree"},
        colorRow,
        noPagerRow,
        {"progress", "",
         "show progress, then the number of failed look-ups (default: on a terminal)"},
        {"no-progress", "", "do not show them"},
        {"summary", "", "count at the end what was found (default: on a terminal)"},
        {"no-summary", "", "do not count it"},
        {"find-relays", "",
         "write settings for relays that may be the site's own instead of verdicts"},
    };
    std::vector<OptionRow> rows;
    for (auto const& row : output) {
        rows.push_back(row.in("Output"));
    }
    for (auto const& row : filterRows()) {
        rows.push_back(row.in("Selection"));
    }
    rows.push_back(extractRow.in("Selection"));
    addRows(rows, factsOf(factRows()), "Message");
    addRows(rows, factsOf(settingRows()), "Settings");
    for (auto const& row : {configRow, showConfigRow, helpRow, versionRow}) {
        rows.push_back(row.in("Other"));
    }
    return rows;
}

} // namespace

ProgramTable const& scanTable() {
    static ProgramTable const table{
        "qvscan",
        {"",
         "Judges e-mail by its Received headers.",
         {{"PATH", "PATH",
           "message, mbox, Maildir, folder or archive (tar, zip) of messages, also packed (gzip, "
           "bzip2, xz, zstd); FILE:N for message N; - for standard input (default)",
           Takes::repeatable | Takes::anyText}},
         s_options(),
         footer}};
    return table;
}

bool isTyped(std::vector<std::string> const& paths) {
    bool const isInput = paths.empty() || std::find(paths.begin(), paths.end(), "-") != paths.end();
    return isInput && ::isatty(STDIN_FILENO) == 1;
}

ScanOptions scanOptions(CommandLine const& line) {
    ScanOptions options;
    SettingsSection* const sections[] = {&options.m_settings};
    readSettings(line, "qvscan", sections);
    FactsStore facts;
    takeOptions(line, facts);
    options.m_facts = facts.values();
    options.m_filter = Filter(line);
    options.m_format = s_format(line);
    options.m_columns = s_columns(line, options.m_format);
    options.m_explain = line.has("explain");
    options.m_explainsAll = line.text("explain") == "all";
    options.m_colour = wantsColour(line);
    options.m_width = terminalWidth();
    options.m_extractTo = line.text(extractRow.m_name);
    if (line.has("progress") || line.has("no-progress")) {
        options.m_progress = !line.has("no-progress");
    }
    if (line.has("summary") || line.has("no-summary")) {
        options.m_summary = !line.has("no-summary");
    }
    options.m_findsRelays = s_findsRelays(line);
    options.m_paths = line.texts("PATH");
    options.m_wantsPager = options.m_explain && options.m_format == OutputFormat::text &&
                           !line.has(noPagerRow.m_name) && !isTyped(options.m_paths);
    return options;
}

} // namespace Quorvane
