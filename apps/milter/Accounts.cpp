// SPDX-License-Identifier: Apache-2.0
#include "apps/milter/Accounts.h"

#include "apps/settings/SettingValue.h"

#include <cerrno>
#include <cstring>
#include <grp.h>
#include <pwd.h>
#include <unistd.h>

namespace Quorvane::Milter {

namespace {

// Called at start, on the only thread.
passwd const& s_user(std::string const& name) {
    auto const* const user = ::getpwnam(name.c_str()); // NOLINT(concurrency-mt-unsafe)
    if (user == nullptr) {
        throw SettingsError("user: there is no user \"" + name + "\"");
    }
    return *user;
}

} // namespace

uid_t userId(std::string const& name) {
    return s_user(name).pw_uid;
}

// Called at start, on the only thread.
gid_t groupId(std::string const& name) {
    auto const* const group = ::getgrnam(name.c_str()); // NOLINT(concurrency-mt-unsafe)
    if (group == nullptr) {
        throw SettingsError("socket-group: there is no group \"" + name + "\"");
    }
    return group->gr_gid;
}

void becomeUser(std::string const& name) {
    if (name.empty()) {
        return;
    }
    auto const& user = s_user(name);
    if (user.pw_uid == ::geteuid()) {
        return;
    }
    if (::initgroups(name.c_str(), user.pw_gid) != 0 || ::setgid(user.pw_gid) != 0 ||
        ::setuid(user.pw_uid) != 0) {
        throw SettingsError("user: cannot become \"" + name + "\": " + std::strerror(errno) +
                            "; start the daemon as root, or leave user out");
    }
}

} // namespace Quorvane::Milter
