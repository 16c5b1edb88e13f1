// SPDX-License-Identifier: Apache-2.0
//
// What a command line of qvscan asks for. Read once at start, then only looked at.
#pragma once

#include "apps/settings/MessageFacts.h"
#include "apps/settings/SettingsStore.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace Quorvane {

// The command line is wrong; the text says what and what to do.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

enum class OutputFormat { text, json, csv };

struct ScanOptions {
    SettingsStore m_settings;
    MessageFacts m_facts;
    // Empty: text on a terminal, JSON elsewhere.
    std::optional<OutputFormat> m_format;
    bool m_explain = false;
    bool m_showConfig = false;
    bool m_showHelp = false;
    bool m_showVersion = false;
    // Empty: on a terminal, when work is long.
    std::optional<bool> m_progress;
    std::vector<std::string> m_paths;
};

// `arguments` without the program's name. Throws a UsageError, and a SettingsError for a settings
// file that is no good.
ScanOptions parseOptions(std::vector<std::string> arguments);

// The text of --help.
std::string helpText();

} // namespace Quorvane
