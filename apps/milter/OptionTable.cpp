// SPDX-License-Identifier: Apache-2.0
#include "apps/milter/MilterTable.h"

#include "apps/settings/SettingSources.h"

namespace Quorvane::Milter {

namespace {

constexpr std::string_view footer =
    R"(SIGUSR1 reloads settings and rules, SIGTERM ends the daemon when the messages
under way are done.

Example: qvmilter --config /etc/qvdeepheader.toml --check
Exit status: 0 done, 64 usage, 70 internal error, 78 bad settings or rules.)";

} // namespace

ProgramTable const& milterTable() {
    static ProgramTable const table{
        "qvmilter",
        {"",
         "Judges the mail of Postfix or Sendmail by its transport trail.",
         {},
         {{"config", "FILE", "settings file (TOML); the daemon's own are below [milter]",
           Takes::required},
          {"check", "", "read settings and rules, say what is wrong, and end"},
          {"foreground", "", "stay in the foreground, as under systemd"},
          showConfigRow,
          helpRow,
          versionRow},
         footer}};
    return table;
}

} // namespace Quorvane::Milter
