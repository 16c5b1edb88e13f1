// SPDX-License-Identifier: Apache-2.0
#include "platform/OwnSystem.h"

#include "support/LoopbackSocket.h"
#include "support/TemporaryFolder.h"

#include <cstring>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>

namespace Quorvane::Testing {
namespace {

// Root needs no user namespace, which a process with threads could not enter.
bool s_leaveTheSystem() {
    constexpr int apart = CLONE_NEWNS | CLONE_NEWNET;
    return unshare(apart) == 0 || unshare(apart | CLONE_NEWUSER) == 0;
}

bool s_startLoopback() {
    int const any = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ifreq request{};
    std::strncpy(request.ifr_name, "lo", IFNAMSIZ - 1);
    bool const isKnown = ioctl(any, SIOCGIFFLAGS, &request) == 0;
    request.ifr_flags |= IFF_UP;
    bool const isUp = isKnown && ioctl(any, SIOCSIFFLAGS, &request) == 0;
    close(any);
    return isUp;
}

bool s_nameTheResolver() {
    TemporaryFolder const folder;
    auto const file = folder.write("resolv.conf", "nameserver 127.0.0.1\n");
    return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount(file.c_str(), "/etc/resolv.conf", nullptr, MS_BIND, nullptr) == 0;
}

} // namespace

bool enterOwnSystem() {
    return s_leaveTheSystem() && s_startLoopback() && s_nameTheResolver();
}

} // namespace Quorvane::Testing
