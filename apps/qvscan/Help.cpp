// SPDX-License-Identifier: Apache-2.0
#include "apps/qvscan/Options.h"
#include "apps/qvscan/OptionTable.h"

#include <algorithm>

namespace Quorvane {

namespace {

constexpr std::string_view head = R"(Usage: qvscan [options] [PATH ...]
Judges e-mail by its transport trail. PATH: a message, mbox, Maildir, folder of
messages, gzip, xz or zstd file, or - (standard input; the default).
)";

constexpr std::string_view tail = R"(Examples:
  qvscan --explain strange.eml
  qvscan --format json --internal 192.0.2.0/24 ~/Maildir archive.mbox.xz
Exit status: 0 no spam, 1 spam, 64 usage, 65 no message, 66 cannot be opened,
74 cannot write, 78 bad settings or rules.
)";

std::string s_row(OptionRow const& row) {
    constexpr std::size_t helpColumn = 29;
    auto line = std::string("  ");
    if (row.m_letter != '\0') {
        line += {'-', row.m_letter, ',', ' '};
    }
    line += "--" + std::string(row.m_name);
    if (!row.m_valueName.empty()) {
        line += " " + std::string(row.m_valueName);
    }
    line.resize(std::max(line.size() + 1, helpColumn), ' ');
    return line + std::string(row.m_help) + "\n";
}

} // namespace

std::string helpText() {
    std::string text(head);
    std::string_view group;
    for (auto const& row : optionRows()) {
        if (row.m_group != group) {
            group = row.m_group;
            text += std::string(group) + ":\n";
        }
        text += s_row(row);
    }
    return text + std::string(tail);
}

} // namespace Quorvane
