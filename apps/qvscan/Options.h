// SPDX-License-Identifier: Apache-2.0
//
// The command line of qvscan: its options, and what it asks for. Read once at start.
#pragma once

#include "apps/commandline/CommandLine.h"
#include "apps/qvscan/ColumnChoice.h"
#include "apps/qvscan/Filter.h"
#include "apps/settings/SettingsTable.h"

#include <optional>
#include <string>
#include <vector>

namespace Quorvane {

enum class OutputFormat { text, json, csv, verdictCsv };

struct ScanOptions {
    SettingsStore m_settings;
    MessageFacts m_facts;
    OutputFormat m_format = OutputFormat::text;
    std::vector<Column> m_columns; // of text
    bool m_explain = false;
    bool m_explainsAll = false; // in text, too
    bool m_colour = false;
    // Of the terminal; empty: lines are as long as they are.
    std::optional<std::size_t> m_width;
    // An explanation for people, who want to read it page by page.
    bool m_wantsPager = false;
    Filter m_filter;
    // Empty: messages are not extracted.
    std::string m_extractTo;
    // Empty: on a terminal, when work is long.
    std::optional<bool> m_progress;
    // Empty: on a terminal, after more than one message.
    std::optional<bool> m_summary;
    // Instead of verdicts: which relays may be the site's own.
    bool m_findsRelays = false;
    std::vector<std::string> m_paths;
};

ProgramTable const& scanTable();

// Whether standard input is one of the inputs, and a person has to type it.
bool isTyped(std::vector<std::string> const& paths);

// Throws a UsageError, and a SettingsError for a bad settings file.
ScanOptions scanOptions(CommandLine const& line);

} // namespace Quorvane
