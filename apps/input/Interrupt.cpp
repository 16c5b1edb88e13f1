// SPDX-License-Identifier: Apache-2.0
#include "apps/input/Interrupt.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <system_error>
#include <unistd.h>

namespace Quorvane {

namespace {

sigset_t s_signals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    return signals;
}

// Without one of its descriptors the program would wait for signals forever.
int s_opened(int descriptor) {
    if (descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), "signals");
    }
    return descriptor;
}

// Waits until one of them can be read.
template<typename... Descriptors>
void s_waitFor(Descriptors... descriptors) {
    std::array waiting{pollfd{descriptors, POLLIN, 0}...};
    while (::poll(waiting.data(), waiting.size(), -1) < 0 && errno == EINTR) {
    }
}

} // namespace

Interrupt::Interrupt() {
    auto const signals = s_signals();
    m_signals = s_opened(::signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC));
    m_came = s_opened(::eventfd(0, EFD_CLOEXEC));
    m_end = s_opened(::eventfd(0, EFD_CLOEXEC));
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    m_watch = std::thread(&Interrupt::watch, this);
}

Interrupt::~Interrupt() {
    ::eventfd_write(m_end, 1);
    m_watch.join();
    for (int const descriptor : {m_signals, m_came, m_end}) {
        ::close(descriptor);
    }
    auto const signals = s_signals();
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

// A thread of its own sees the signal while the others read, scan or wait. The next one reaches it,
// too, with its usual effect: it ends the program.
void Interrupt::watch() {
    s_waitFor(m_signals, m_end);
    signalfd_siginfo info{};
    if (::read(m_signals, &info, sizeof info) != sizeof info) {
        return;
    }
    m_signal = static_cast<int>(info.ssi_signo);
    ::eventfd_write(m_came, 1);
    auto const signals = s_signals();
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    m_stop.request_stop();
    s_waitFor(m_end);
}

void Interrupt::wait() const {
    s_waitFor(m_came);
}

void Interrupt::waitForInput(int descriptor) const {
    s_waitFor(descriptor, m_came);
    if (signalNumber() != 0) {
        throw Interrupted();
    }
}

} // namespace Quorvane
