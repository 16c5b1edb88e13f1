// SPDX-License-Identifier: Apache-2.0
#include "apps/input/Interrupt.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <poll.h>
#include <pthread.h>
#include <sys/signalfd.h>
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

} // namespace

Interrupt::Interrupt() {
    auto const signals = s_signals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    m_descriptor = ::signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC);
}

Interrupt::~Interrupt() {
    ::close(m_descriptor);
    auto const signals = s_signals();
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

void Interrupt::wait() {
    pollfd waiting{m_descriptor, POLLIN, 0};
    while (signalNumber() == 0) {
        ::poll(&waiting, 1, -1);
    }
}

void Interrupt::waitForInput(int descriptor) {
    std::array<pollfd, 2> waiting{{{descriptor, POLLIN, 0}, {m_descriptor, POLLIN, 0}}};
    while (::poll(waiting.data(), waiting.size(), -1) < 0 && errno == EINTR) {
    }
    if (signalNumber() != 0) {
        throw Interrupted();
    }
}

int Interrupt::signalNumber() {
    if (m_signal == 0) {
        take();
    }
    return m_signal;
}

// From the first signal on the signals have their usual effect again.
void Interrupt::take() {
    signalfd_siginfo info{};
    if (::read(m_descriptor, &info, sizeof info) == sizeof info) {
        m_signal = static_cast<int>(info.ssi_signo);
        auto const signals = s_signals();
        pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    }
}

} // namespace Quorvane
