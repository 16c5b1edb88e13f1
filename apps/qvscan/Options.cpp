// SPDX-License-Identifier: Apache-2.0
#include "apps/qvscan/Options.h"

#include "apps/settings/FactsTable.h"
#include "apps/settings/SettingOptions.h"

namespace Quorvane {

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
