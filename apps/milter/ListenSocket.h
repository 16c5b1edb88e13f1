// SPDX-License-Identifier: Apache-2.0
//
// The socket at which the mail server finds the daemon.
#pragma once

#include "apps/milter/MilterSettings.h"
#include "apps/milter/WakeUpCall.h"

#include <string>
#include <sys/types.h>

namespace Quorvane::Milter {

// As the settings and libmilter write it.
struct ListenAddress {
    std::string m_path; // of a unix socket; else empty
    std::string m_text; // as libmilter takes it

    // A SettingsError when it is neither "unix:PATH" (or "local:PATH", or a path) nor
    // "inet:PORT@HOST" nor "inet6:PORT@HOST".
    static ListenAddress parse(std::string const& text);
};

// "660" is 0660. A SettingsError when it is not an octal number up to 777.
mode_t socketMode(std::string const& text);

// Opens the socket, with the user, the group and the mode that the settings name; where it listens.
// A socket that a dead daemon left is replaced. A SettingsError when it cannot be opened, or
// another program serves it. REQUIRES: the filter is registered with libmilter.
ListenPlace openSocket(MilterSettings const& settings);

} // namespace Quorvane::Milter
