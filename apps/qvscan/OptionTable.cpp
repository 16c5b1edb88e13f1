// SPDX-License-Identifier: Apache-2.0
#include "apps/qvscan/OptionTable.h"

#include "apps/settings/FactsTable.h"
#include "apps/settings/SettingOptions.h"
#include "apps/settings/SettingsTable.h"

namespace Quorvane {

namespace {

constexpr std::string_view footer =
    R"(Examples:
  qvscan --explain strange.eml
  qvscan --format json --internal 192.0.2.0/24 ~/Maildir archive.mbox.xz
Exit status: 0 no spam, 1 spam, 64 usage, 65 no message, 66 cannot be opened,
70 internal error, 73 cannot write, 78 bad settings or rules.)";

std::vector<OptionRow> s_options() {
    OptionRow const output[] = {
        {"format", "text|json|csv", "default: text on a terminal, else json"},
        {"explain", "", "add the working record of the scan"},
        {"progress", "", "show progress, and failed look-ups at the end (default: on a terminal)"},
        {"no-progress", "", "show neither"},
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
         "Judges e-mail by its transport trail.",
         {{"PATH", "PATH",
           "message, mbox, Maildir, folder of messages, gzip, xz or zstd file, or - (standard "
           "input; the default)",
           Takes::repeatable | Takes::anyText}},
         s_options(),
         footer}};
    return table;
}

} // namespace Quorvane
