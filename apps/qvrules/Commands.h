// SPDX-License-Identifier: Apache-2.0
//
// The commands of qvrules, one source file each. A command gets its options as a value, prints to
// standard output, and returns the exit status; what it cannot do it throws as a RuleError, a
// SettingsError or a UsageError, which main() turns into a message and a status.
#pragma once

#include "apps/qvrules/HostOptions.h"

#include <stdexcept>
#include <string>

namespace Quorvane::RulesApp {

// sysexits numbers, as far as we use them.
namespace ExitStatus {
inline constexpr int well = 0;
inline constexpr int findings = 1;
inline constexpr int usage = 64;
inline constexpr int badData = 65;
inline constexpr int noInput = 66;
inline constexpr int internal = 70;
inline constexpr int cannotWrite = 73;
inline constexpr int badRules = 78;
inline constexpr int interrupted = 128; // and the number of the signal, as shells report it
} // namespace ExitStatus

// An option whose value makes no sense.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct CompileOptions {
    std::string m_source;
    std::string m_folder;
};
int compile(CompileOptions const& options);

struct DecompileOptions {
    std::string m_folder;
    // "-": standard output.
    std::string m_source = "-";
};
int decompile(DecompileOptions const& options);

struct CheckOptions {
    std::string m_path;
    // Folder to compare with; empty: none.
    std::string m_against;
    std::string m_format = "text";
    GivenSettings m_settings;
};
int check(CheckOptions const& options);

struct InstallOptions {
    // Rule text or folder; empty for a rollback.
    std::string m_source;
    // Put before the fixed rule directory, as an installer's DESTDIR.
    std::string m_root;
    bool m_isRollback = false;
    // Installs what can be loaded although check finds errors.
    bool m_isForced = false;
};
int install(InstallOptions const& options);

struct AttributesOptions {};
int listAttributes(AttributesOptions const& options);

} // namespace Quorvane::RulesApp
