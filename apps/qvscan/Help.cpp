// SPDX-License-Identifier: Apache-2.0
#include "apps/qvscan/Options.h"
#include "apps/qvscan/OptionTable.h"

#include <algorithm>

namespace Quorvane {

namespace {

constexpr std::string_view head = R"(Usage: qvscan [options] [PATH ...]
Judges e-mail by its transport trail. PATH: message, mbox, Maildir, folder, - (standard input).
)";

constexpr std::string_view tail = R"(
Defaults: spam 0.95, ham 0.95, support 0.15, elite level 1, score threshold 6, walk to leaf 1.
Examples: qvscan strange.eml      qvscan --explain --dns off archive.mbox.xz
          qvscan --format json --internal 192.0.2.0/24 ~/Maildir
Exit status: 0 no spam, 1 spam, 64 usage, 65 no message, 66 cannot open, 78 settings or rules.
)";

std::string s_row(OptionRow const& row) {
    constexpr std::size_t helpColumn = 31;
    auto line = "  --" + std::string(row.m_name);
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
    text += "  -h, --help                   show this\n"
            "  --version                    show the version\n";
    return text + std::string(tail);
}

} // namespace Quorvane
