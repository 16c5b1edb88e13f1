// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/OptionTable.h"

#include <array>
#include <stdexcept>
#include <string>

namespace Quorvane::RulesApp {

namespace {

constexpr ArgumentRow compileArguments[] = {
    {"SRC", "SRC", "Rule text", true},
    {"-o,--output", "DIR", "Folder for README, qv.dt and qv2.dt", true},
};

constexpr ArgumentRow decompileArguments[] = {
    {"DIR", "DIR", "Folder with qv.dt, qv2.dt and README", true},
    {"-o,--output", "SRC", "Rule text to write (default: to stdout)"},
};

constexpr ArgumentRow checkArguments[] = {
    {"PATH", "PATH", "Rule text, or folder with rule files", true},
    {"--format", "text|json", "text for people, json for programs"},
};

constexpr ArgumentRow installArguments[] = {
    {"PATH", "PATH", "Rule text, or folder with rule files"},
    {"--root", "DIR", "Install below DIR instead of /"},
    {"--rollback", "", "Bring the previous rules back"},
    {"--force", "", "Install in spite of errors, if it loads"},
};

constexpr auto table = std::to_array<CommandRow>({
    {"compile", "Make rule files of a rule text", compileArguments,
     "Each file is replaced in one step; files that the rules do not have are\n"
     "removed. For a folder that running hosts read use \"qvrules install\".\n\n"
     "Example: qvrules compile my.qvr -o /tmp/rules"},
    {"decompile", "Make a rule text of rule files", decompileArguments,
     "Compiling the text gives the same bytes, whatever the files hold.\n\n"
     "Example: qvrules decompile /var/spool/etc/antispam -o now.qvr"},
    {"check", "Find what is wrong with rules", checkArguments,
     "Finds what engines refuse or drop, what the walk through the tree gives up\n"
     "at, and tests and rules that no message can ever satisfy.\n\n"
     "Example: qvrules check my.qvr --format json"},
    {"install", "Put rules in force under running hosts", installArguments,
     "The rules go to /var/spool/etc/antispam with a version that grows, so that\n"
     "hosts take them up when they next look. The rules before are kept.\n\n"
     "Examples: qvrules install my.qvr\n"
     "          qvrules install --rollback --root /srv/test"},
    {"attributes", "List what rules can test, as Markdown", {}},
});

[[noreturn]] void s_isMissing(std::string_view name) {
    throw std::out_of_range(std::string(name) + ": not in the table of commands");
}

} // namespace

std::span<CommandRow const> commandRows() {
    return table;
}

CommandRow const& commandRow(std::string_view name) {
    for (auto const& row : table) {
        if (row.m_name == name) {
            return row;
        }
    }
    s_isMissing(name);
}

ArgumentRow const& argumentRow(CommandRow const& command, std::string_view names) {
    for (auto const& row : command.m_arguments) {
        if (row.m_names == names) {
            return row;
        }
    }
    s_isMissing(names);
}

} // namespace Quorvane::RulesApp
