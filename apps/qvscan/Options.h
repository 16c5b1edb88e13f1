// SPDX-License-Identifier: Apache-2.0
//
// The command line of qvscan: its options, and what it asks for. Read once at start.
#pragma once

#include "apps/commandline/CommandLine.h"
#include "apps/settings/SettingsTable.h"

#include <optional>
#include <string>
#include <vector>

namespace Quorvane {

enum class OutputFormat { text, json, csv };

struct ScanOptions {
    SettingsStore m_settings;
    MessageFacts m_facts;
    // Empty: text on a terminal, JSON elsewhere.
    std::optional<OutputFormat> m_format;
    bool m_explain = false;
    // Empty: on a terminal, when work is long.
    std::optional<bool> m_progress;
    std::vector<std::string> m_paths;
};

ProgramTable const& scanTable();

// Throws a UsageError, and a SettingsError for a bad settings file.
ScanOptions scanOptions(CommandLine const& line);

} // namespace Quorvane
