// SPDX-License-Identifier: Apache-2.0
#include "rules/install/Guards.h"

#include "rules/model/RuleError.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace Quorvane::Rules {

FolderLock::FolderLock(std::filesystem::path const& folder)
    : m_fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    int result = m_fd;
    while (result >= 0 && (result = ::flock(m_fd, LOCK_EX)) < 0 && errno == EINTR) {
        result = m_fd;
    }
    if (result < 0) {
        auto const error = errno;
        if (m_fd >= 0) {
            ::close(m_fd);
        }
        throw RuleError(RuleError::Kind::cannotWrite,
                        folder.string() + ": cannot be locked: " + std::strerror(error));
    }
}

FolderLock::~FolderLock() {
    ::close(m_fd);
}

SignalsHeldBack::SignalsHeldBack() : m_before() {
    sigset_t signals;
    sigemptyset(&signals);
    for (auto const signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
        sigaddset(&signals, signal);
    }
    pthread_sigmask(SIG_BLOCK, &signals, &m_before);
}

SignalsHeldBack::~SignalsHeldBack() {
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

} // namespace Quorvane::Rules
