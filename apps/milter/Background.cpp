// SPDX-License-Identifier: Apache-2.0
#include "apps/milter/Background.h"

#include "apps/commandline/ProgramError.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Quorvane::Milter {

namespace {

// The daemon serves, or has ended with this status.
[[noreturn]] void s_awaitStart(pid_t daemon, int pipe) {
    char word = 0;
    ssize_t count = 0;
    do {
        count = ::read(pipe, &word, 1);
    } while (count < 0 && errno == EINTR);
    if (count == 1) {
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(daemon, &status, 0);
    ::_exit(WIFEXITED(status) ? WEXITSTATUS(status) : ExitStatus::internal);
}

[[noreturn]] void s_fail(char const* what) {
    throw ProgramError(ExitStatus::internal, std::string(what) + ": " + std::strerror(errno));
}

} // namespace

Background::Background(bool foreground) {
    if (foreground) {
        return;
    }
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        s_fail("pipe");
    }
    auto const daemon = ::fork();
    if (daemon < 0) {
        s_fail("fork");
    }
    if (daemon > 0) {
        ::close(ends[1]);
        s_awaitStart(daemon, ends[0]);
    }
    ::close(ends[0]);
    m_pipe = ends[1];
    ::setsid();
}

Background::~Background() {
    if (m_pipe >= 0) {
        ::close(m_pipe);
    }
}

void Background::ready() {
    if (m_pipe < 0) {
        return;
    }
    if (::chdir("/") != 0) {
        s_fail("chdir");
    }
    int const null = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    ::dup2(null, STDIN_FILENO);
    ::dup2(null, STDOUT_FILENO);
    ::dup2(null, STDERR_FILENO);
    ::close(null);
    if (::write(m_pipe, "", 1) != 1) {
        s_fail("write");
    }
    ::close(m_pipe);
    m_pipe = -1;
}

} // namespace Quorvane::Milter
