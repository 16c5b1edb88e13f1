// SPDX-License-Identifier: Apache-2.0
//
// Who could change a file before it is read. What a program of root reads must be root's to change:
// otherwise whoever may write the file decides what the program does. In a process that was not
// started by root, the functions do nothing; call one before the process becomes another user.
#pragma once

#include "apps/settings/HostSettings.h"

#include <string>

namespace Quorvane {

// Throws a SettingsError, with what to do, when somebody other than root and the user of this
// process could change the file or put another in its place: by its owner and mode, or by those of
// a folder above it. Folders in which only owners remove files (sticky ones, as /tmp) are safe. No
// file, no error: whoever reads it finds out.
//
// Folders that a chain of links passes through are not looked at, only those of the path and of the
// file that it leads to.
void requireOwnFile(std::string const& path);

// The same of the files of the rules below a root folder.
void requireOwnRules(std::string const& root);

// The same of the files that these settings name, and of the rules.
void requireOwnFiles(HostSettings const& settings);

} // namespace Quorvane
