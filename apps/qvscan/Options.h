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
    HostSettings m_host;
    MessageFacts m_facts;
    // Empty: text on a terminal, JSON elsewhere.
    std::optional<OutputFormat> m_format;
    bool m_explain = false;
    // Empty: on a terminal, when work is long.
    std::optional<bool> m_progress;
    std::vector<std::string> m_paths;
};

ProgramTable const& scanTable();

// Both throw a UsageError, and a SettingsError for a bad settings file.
SettingsStore scanSettings(CommandLine const& line);
ScanOptions scanOptions(CommandLine const& line);

} // namespace Quorvane
