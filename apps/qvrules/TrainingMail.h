// SPDX-License-Identifier: Apache-2.0
//
// Gathers the mail that a command line names into tables: messages, which are scanned, and tables
// of vectors.
#pragma once

#include "apps/commandline/CommandLine.h"
#include "apps/settings/HostSettings.h"
#include "rules/evaluate/Difference.h"
#include "rules/vectors/VectorTable.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Quorvane::RulesApp {

// Copies of the mail as a gateway without reverse DNS would have recorded it.
enum class Copies {
    none,
    together, // they belong to the corpus of the mail
    apart,    // they are a corpus of their own
};

// What one option names.
struct MailInputs {
    std::vector<std::string> m_paths; // each [CORPUS=]PATH
    bool m_areVectors = false;        // tables of vectors, not messages
    bool m_isSorted = false;
    // Empty: the rows of the tables have labels. Without meaning for unsorted mail.
    std::optional<Rules::MailLabel> m_label = Rules::MailLabel::ham;
};

// The options of learn, evaluate and diff.
std::vector<MailInputs> mailInputs(CommandLine const& line);

struct TrainingMail {
    std::vector<MailInputs> m_inputs;
    Copies m_copies = Copies::none;
    HostSettings m_host;
};

struct TrainingMailCounts {
    std::uint64_t m_messages = 0;      // scanned, copies not counted
    std::uint64_t m_notJudgeable = 0;  // no public hop, so no vector
    std::uint64_t m_copies = 0;        // rewritten messages that were added
    std::uint64_t m_failedLookups = 0; // messages left out since a DNS look-up failed or came late
    std::uint64_t m_leftOut = 0;       // inputs that are no messages, or cannot be read
    // For the first of them, once the work on the others is done; else `status`.
    int exitStatus(int status) const { return m_leftOut == 0 ? status : m_leftOutStatus; }
    int m_leftOutStatus = 0;
};

// All mail, with the sources of some messages of each kind. What is no message is reported and left
// out, and so are messages whose names could not be looked up. A RuleError for a path that there is
// not and for a table that cannot be read, a SettingsError for settings that cannot be put in
// force.
Rules::ComparedMail gatherMail(TrainingMail const& mail, TrainingMailCounts& counts);

// The same for commands that measure: a RuleError when there are no messages at all.
Rules::ComparedMail gatherMessages(TrainingMail const& mail, TrainingMailCounts& counts);

} // namespace Quorvane::RulesApp
