// SPDX-License-Identifier: Apache-2.0
//
// The messages that both libraries log: one table of id, level and words, and the line that a
// logger prints. A host that derives a logger of its own (syslog, journal) takes them from here, so
// that a postmaster reads the same words everywhere. Constant data and pure functions: call them
// from any thread.
#pragma once

#include "include2/Export.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace Quorvane {

// What a postmaster has to do: nothing, look into it, act.
enum class LogLevel { information, warning, error };

// Never renumber the ids: filters on log servers know them.
struct LogMessage {
    int m_id;            // one of LogId, or of the libraries
    LogLevel m_level;    // of all messages with this id
    char const* m_words; // what happened; the detail follows them
};

// The daemon's own messages.
namespace LogId {
inline constexpr int started = 50332301;       // it serves
inline constexpr int stopping = 50332302;      // it was told to end
inline constexpr int reloaded = 50332303;      // settings and rules
inline constexpr int reloadRefused = 50332304; // settings or rules are wrong; the old ones stay
inline constexpr int rulesLoaded = 50332305;   // newer rules were found
inline constexpr int rulesRefused = 50332306;  // newer rules are wrong; the old ones stay
inline constexpr int noRules = 50332307;       // no message is judged until there are some
inline constexpr int messageJudged = 50332308; // one line for each message
inline constexpr int messageFailed = 50332309; // a message could not be handled
inline constexpr int namesUnusable = 50332310; // the names of rules cannot be read
} // namespace LogId

// Bytes of a log line at most. Exceptions quote header text, which a sender may make megabytes
// long, and syslog daemons cut lines not far above this.
constexpr std::size_t maxLogLine = 2000;

// The table's entry for `id`; null for an id that it does not hold.
QV_API LogMessage const* findLogMessage(int id);

// The level of a message; a warning when the table does not hold it.
QV_API LogLevel logLevel(int id);

// "words: detail" on one line of printable ASCII, at most maxLogLine bytes; a longer line ends in
// "...". Other bytes of the detail are shown as \xNN, so that hostile text can neither forge a
// second line nor steer a terminal. A blank detail is left out. An id that the table does not hold
// gives "message ID: detail".
QV_API std::string logLine(int id, std::string_view detail);

} // namespace Quorvane
