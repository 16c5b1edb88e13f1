// SPDX-License-Identifier: Apache-2.0
//
// Users and groups of the machine. Errors are SettingsErrors.
#pragma once

#include <string>
#include <sys/types.h>

namespace Quorvane::Milter {

// Of the settings "user" and "socket-group".
uid_t userId(std::string const& name);
gid_t groupId(std::string const& name);

// Makes the process run as this user, with its groups and nothing of the old one's. An empty name
// changes nothing.
void becomeUser(std::string const& name);

} // namespace Quorvane::Milter
