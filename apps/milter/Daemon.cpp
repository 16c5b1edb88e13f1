// SPDX-License-Identifier: Apache-2.0
#include "apps/milter/Daemon.h"

#include "apps/commandline/ProgramError.h"
#include "apps/host/HostSetup.h"
#include "apps/milter/Accounts.h"
#include "apps/milter/Background.h"
#include "apps/milter/Callbacks.h"
#include "apps/milter/ListenSocket.h"
#include "apps/milter/PidFile.h"
#include "apps/milter/ServiceLogger.h"
#include "apps/milter/StatusServer.h"
#include "platform/LogMessages.h"

#include <atomic>
#include <csignal>
#include <libmilter/mfapi.h>
#include <memory>
#include <systemd/sd-daemon.h>
#include <thread>

namespace Quorvane::Milter {

namespace {

using std::chrono::steady_clock;

// Above the time that the look-ups of a message may take by default.
constexpr std::chrono::seconds drainTime{10};

sigset_t s_signals(std::initializer_list<int> numbers) {
    sigset_t signals;
    sigemptyset(&signals);
    for (int const number : numbers) {
        sigaddset(&signals, number);
    }
    return signals;
}

// What the daemon does besides its sessions, on a thread of its own: reloads when SIGUSR1 asks for
// it, looks for newer rules, and tells the service manager that it lives.
class Caretaker {
  public:
    explicit Caretaker(Service& service) : m_service(service), m_thread([this] { run(); }) {}
    Caretaker(Caretaker const&) = delete;
    Caretaker& operator=(Caretaker const&) = delete;
    ~Caretaker() {
        m_isEnding = true;
        ::pthread_kill(m_thread.native_handle(), SIGUSR1);
        m_thread.join();
    }

  private:
    void run() {
        auto const usr1 = s_signals({SIGUSR1});
        auto nextLook = lookTime();
        while (!m_isEnding) {
            timespec const wait{1, 0};
            bool const isAsked = ::sigtimedwait(&usr1, nullptr, &wait) == SIGUSR1 && !m_isEnding;
            if (isAsked) {
                reload();
            } else if (steady_clock::now() >= nextLook) {
                m_service.lookForRules();
                nextLook = lookTime();
            }
            ::sd_notify(0, "WATCHDOG=1");
        }
    }

    steady_clock::time_point lookTime() const {
        return steady_clock::now() +
               std::chrono::seconds(m_service.current()->milter().m_ruleCheckSeconds);
    }

    void reload() {
        auto const now = std::chrono::duration_cast<std::chrono::microseconds>(
            steady_clock::now().time_since_epoch());
        ::sd_notifyf(0, "RELOADING=1\nMONOTONIC_USEC=%lld", static_cast<long long>(now.count()));
        m_service.reload();
        ::sd_notify(0, "READY=1");
    }

    Service& m_service;
    std::atomic<bool> m_isEnding{false};
    std::thread m_thread;
};

std::unique_ptr<StatusServer> s_statusServer(Service& service, std::string const& address) {
    if (address.empty()) {
        return nullptr;
    }
    return std::make_unique<StatusServer>(
        StatusAddress::parse(address),
        StatusServer::Pages{[&service] { return service.metrics().text(); },
                            [&service] { return service.health(); }});
}

// In the background nobody reads standard error.
LogTarget s_logTarget(MilterSettings const& settings, bool foreground) {
    bool const isLost = !foreground && settings.m_log == LogTarget::standardError;
    return isLost ? LogTarget::syslog : settings.m_log;
}

// Until SIGTERM, which libmilter takes. It then returns without waiting for callbacks.
int s_serveSessions(Service& service) {
    int const result = smfi_main();
    ::sd_notify(0, "STOPPING=1");
    logMessage(LogId::stopping, "");
    bool const isDone = service.callbacks().waitUntilEmpty(drainTime);
    return result == MI_SUCCESS && isDone ? ExitStatus::ok : ExitStatus::internal;
}

} // namespace

void checkSettings(CommandLine const& line) {
    auto const settings = readFileSettings(line);
    setUpHost(settings.m_host.values());
}

int serve(CommandLine const& line) {
    auto const file = readFileSettings(line);
    auto const& settings = file.m_milter.values();
    Background background(line.has("foreground"));
    // Before there are threads: libmilter waits for the others on a thread of its own.
    auto const signals = s_signals({SIGHUP, SIGTERM, SIGINT, SIGUSR1});
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    PidFile const pidFile(settings.m_pidFile);
    Logger::install(serviceLogger(s_logTarget(settings, line.has("foreground"))));
    // Callbacks that are still under way when the process ends use it.
    static auto* const service = new Service(line);
    Resolver::instance().observe([](LookupResult result, std::chrono::nanoseconds time) {
        service->metrics().lookup(result, time);
    });
    if (!registerFilter(*service)) {
        throw SettingsError("libmilter does not take the filter");
    }
    openSocket(settings);
    becomeUser(settings.m_user);
    auto const status = s_statusServer(*service, settings.m_metrics);
    Caretaker const caretaker(*service);
    logMessage(LogId::started, settings.m_socket);
    background.ready();
    ::sd_notify(0, "READY=1");
    return s_serveSessions(*service);
}

} // namespace Quorvane::Milter
