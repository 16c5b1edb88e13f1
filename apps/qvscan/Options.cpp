// SPDX-License-Identifier: Apache-2.0
#include "apps/qvscan/Options.h"

#include "apps/settings/SettingSources.h"

namespace Quorvane {

namespace {

constexpr std::string_view footer =
    R"(Examples:
  qvscan --explain strange.eml
  qvscan --format json --internal 192.0.2.0/24 ~/Maildir archive.mbox.xz
Exit status: 0 no spam, 1 spam found, 64 usage error, 65 not a message,
66 cannot open input, 70 internal error, 73 cannot write output,
78 bad settings or rules.
In --explain, not-analysed means that there was no such hop, n/a that the
question does not apply, unknown that a part of the comparison is missing.)";

std::vector<OptionRow> s_options() {
    OptionRow const output[] = {
        {"format", "text|json|csv", "output format (default: text on a terminal, otherwise json)"},
        {"explain", "", "show how each verdict was reached"},
        {"progress", "",
         "show progress, then the number of failed look-ups (default: on a terminal)"},
        {"no-progress", "", "do not show them"},
    };
    std::vector<OptionRow> rows;
    for (auto const& row : output) {
        rows.push_back(row.in("Output"));
    }
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
           "message, mbox, Maildir or folder of messages, also packed with gzip, xz or zstd; - for "
           "standard input (default)",
           Takes::repeatable | Takes::anyText}},
         s_options(),
         footer}};
    return table;
}

ScanOptions scanOptions(CommandLine const& line) {
    ScanOptions options;
    SettingsSection* const sections[] = {&options.m_settings};
    readSettings(line, "qvscan", sections);
    FactsStore facts;
    takeOptions(line, facts);
    options.m_facts = facts.values();
    if (line.has("format")) {
        auto const format = line.text("format");
        options.m_format = format == "text"   ? OutputFormat::text
                           : format == "json" ? OutputFormat::json
                                              : OutputFormat::csv;
    }
    options.m_explain = line.has("explain");
    if (line.has("progress") || line.has("no-progress")) {
        options.m_progress = !line.has("no-progress");
    }
    options.m_paths = line.texts("PATH");
    return options;
}

} // namespace Quorvane
