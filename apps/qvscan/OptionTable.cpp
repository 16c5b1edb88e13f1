// SPDX-License-Identifier: Apache-2.0
#include "apps/qvscan/OptionTable.h"

#include "apps/settings/FactsTable.h"
#include "apps/settings/SettingOptions.h"
#include "apps/settings/SettingsTable.h"

namespace Quorvane {

namespace {

constexpr std::string_view outputGroup = "Output";
constexpr std::string_view otherGroup = "Other";

constexpr std::string_view footer =
    R"(Examples:
  qvscan --explain strange.eml
  qvscan --format json --internal 192.0.2.0/24 ~/Maildir archive.mbox.xz
Exit status: 0 no spam, 1 spam, 64 usage, 65 no message, 66 cannot be opened,
70 internal error, 73 cannot write, 78 bad settings or rules.)";

OptionRow s_other(OptionRow row) {
    row.m_group = otherGroup;
    return row;
}

std::vector<OptionRow> s_options() {
    std::vector<OptionRow> rows{
        {"format", "text|json|csv", "default: text on a terminal, else json", 0, '\0', outputGroup},
        {"explain", "", "add the working record of the scan", 0, '\0', outputGroup},
        {"progress", "", "show progress, and failed look-ups at the end (default: on a terminal)",
         0, '\0', outputGroup},
        {"no-progress", "", "show neither", 0, '\0', outputGroup},
    };
    addRows(rows, factsOf(factRows()), "Message");
    addRows(rows, factsOf(settingRows()), "Settings");
    for (auto const& row : {configRow, showConfigRow, helpRow, versionRow}) {
        rows.push_back(s_other(row));
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
