// SPDX-License-Identifier: Apache-2.0
#include "apps/milter/Daemon.h"

#include "apps/commandline/ProgramError.h"
#include "apps/milter/Accounts.h"
#include "apps/milter/Background.h"
#include "apps/milter/Callbacks.h"
#include "apps/milter/ListenSocket.h"
#include "apps/milter/PidFile.h"
#include "apps/milter/ServiceLogger.h"
#include "apps/milter/StatusServer.h"
#include "apps/milter/StopWatch.h"
#include "apps/settings/SettingSources.h"
#include "platform/LogMessages.h"

#include <atomic>
#include <csignal>
#include <libmilter/mfapi.h>
#include <memory>
#include <sys/resource.h>
#include <systemd/sd-daemon.h>
#include <thread>
#include <unistd.h>

namespace Quorvane::Milter {

namespace {

using std::chrono::steady_clock;

// For what a message takes besides its look-ups.
constexpr std::chrono::seconds workTime{5};
// libmilter sends the reply of a callback after it has returned, and does not say when.
constexpr std::chrono::milliseconds replyTime{100};

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

// Each session takes a file descriptor, and the usual limit of 1024 is there for programs that use
// select.
void s_raiseFileLimit() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = limit.rlim_max;
        static_cast<void>(::setrlimit(RLIMIT_NOFILE, &limit));
    }
}

// Waits for the callbacks that are under way; the mail server asks again about later messages.
bool s_finishCallbacks(Service& service) {
    auto& callbacks = service.callbacks();
    callbacks.close();
    logMessage(LogId::stopping, "");
    std::chrono::duration<double> const lookups(
        service.current()->m_settings.m_host.values().m_dnsTimeout);
    auto const time = std::chrono::ceil<std::chrono::milliseconds>(lookups) + workTime;
    auto const told = std::chrono::microseconds(time + replyTime).count();
    ::sd_notifyf(0, "STOPPING=1\nEXTEND_TIMEOUT_USEC=%lld", static_cast<long long>(told));
    bool const isDone = callbacks.waitUntilEmpty(time);
    std::this_thread::sleep_until(callbacks.lastLeft() + replyTime);
    return isDone;
}

int s_runLibrary(Service& service, PidFile& pidFile, ListenPlace const& place) {
    StopWatch const watch(place, [&service, &pidFile] {
        bool const isDone = s_finishCallbacks(service);
        pidFile.remove();
        ::_exit(isDone ? ExitStatus::ok : ExitStatus::internal);
    });
    return smfi_main();
}

// Until SIGTERM, which libmilter takes. It then returns without waiting for callbacks.
int s_serveSessions(Service& service, PidFile& pidFile, ListenPlace const& place) {
    int const result = s_runLibrary(service, pidFile, place);
    bool const isDone = s_finishCallbacks(service);
    return result == MI_SUCCESS && isDone ? ExitStatus::ok : ExitStatus::internal;
}

// What one thread is enough for, as root if need be.
ListenPlace s_openSocket(MilterSettings const& settings) {
    if (!registerFilter()) {
        throw SettingsError("libmilter does not take the filter");
    }
    smfi_settimeout(static_cast<int>(settings.m_idleTimeoutSeconds));
    return openSocket(settings);
}

} // namespace

void checkSettings(std::string const& path) {
    auto const settings = readFileSettings(path);
    warnAbout(settings.m_host, "qvmilter");
    auto const host = setUpHost(settings);
    if (auto const& problem = host->namesProblem(); !problem.empty()) {
        logMessage(LogId::namesUnusable, problem);
    }
}

int serve(std::string const& path, bool foreground) {
    auto const file = readFileSettings(path);
    auto const& settings = file.m_milter.values();
    Background background(foreground);
    // Before there are threads: libmilter waits for the others on a thread of its own.
    auto const signals = s_signals({SIGHUP, SIGTERM, SIGINT, SIGUSR1});
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    s_raiseFileLimit();
    Logger::install(serviceLogger(settings.m_log, foreground));
    auto const place = s_openSocket(settings);
    PidFile pidFile(settings.m_pidFile);
    becomeUser(settings.m_user);
    // Callbacks that are still under way when the process ends use it. Made by the user that will
    // reload: what that user may not read is found out now.
    static auto* const service = new Service(path);
    useService(*service);
    Resolver::instance().observe([](LookupResult result, std::chrono::nanoseconds time) {
        service->metrics().lookup(result, time);
    });
    auto const status = s_statusServer(*service, settings.m_metrics);
    Caretaker const caretaker(*service);
    logMessage(LogId::started, settings.m_socket);
    background.ready();
    ::sd_notify(0, "READY=1");
    return s_serveSessions(*service, pidFile, place);
}

} // namespace Quorvane::Milter
