// SPDX-License-Identifier: Apache-2.0
#include "support/DnsServer.h"

#include "support/LoopbackSocket.h"

#include <array>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <poll.h>
#include <sstream>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace Quorvane::Testing {
namespace {

constexpr std::chrono::seconds s_startDeadline{20};
// Another program may take the port between our look and the server's.
constexpr int s_startAttempts = 5;

std::filesystem::path s_makeFolder() {
    std::string name = std::filesystem::temp_directory_path() / "qv-dns-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("no temporary folder " + name);
    }
    return name;
}

// Free for both protocols. Tests that run beside this one hold many ports.
int s_freePort() {
    for (int attempt = 1;; ++attempt) {
        LoopbackSocket const udp(SOCK_DGRAM, 0);
        try {
            LoopbackSocket const tcp(SOCK_STREAM, udp.port());
            return udp.port();
        } catch (std::system_error const&) {
            if (attempt == 100) {
                throw;
            }
        }
    }
}

std::string s_zoneFile(DnsZone const& zone) {
    return "$ORIGIN " + zone.m_name + ".\n$TTL 60\n@ SOA ns host 1 3600 600 86400 60\n@ NS ns\n" +
           zone.m_text + "\n";
}

std::string s_configuration(std::filesystem::path const& folder, int port) {
    std::ostringstream text;
    text << "server:\n  ip-address: 127.0.0.1\n  port: " << port << "\n  server-count: 1\n"
         << "  username: \"\"\n  database: \"\"\n  rrl-ratelimit: 0\n  zonesdir: " << folder
         << "\n  pidfile: " << folder / "nsd.pid"
         << "\n  xfrdfile: " << folder / "xfrd.state"
         << "\n  zonelistfile: " << folder / "zone.list"
         << "\n  xfrdir: " << folder << "\n  logfile: " << folder / "nsd.log"
         << "\nremote-control:\n  control-enable: no\n";
    return text.str();
}

// Runs in the child of fork: only calls that are safe there.
[[noreturn]] void s_runServer(char const* configuration, pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent) {
        _exit(1);
    }
    int const null = open("/dev/null", O_RDWR | O_CLOEXEC);
    dup2(null, STDOUT_FILENO);
    execl(QV_NSD_PROGRAM, QV_NSD_PROGRAM, "-d", "-c", configuration, static_cast<char*>(nullptr));
    _exit(1);
}

} // namespace

DnsServer::DnsServer(std::vector<DnsZone> zones)
    : m_zones(std::move(zones)), m_folder(s_makeFolder()) {
    for (int attempt = 0; attempt < s_startAttempts; ++attempt) {
        if (start()) {
            return;
        }
        stop();
    }
    std::string const why = log();
    std::filesystem::remove_all(m_folder);
    throw std::runtime_error("the DNS server does not start: " + why);
}

DnsServer::~DnsServer() {
    stop();
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

std::string DnsServer::address() const {
    return "127.0.0.1@" + std::to_string(m_port);
}

// False when the server ended or stayed silent.
bool DnsServer::start() {
    m_port = s_freePort();
    writeFiles();
    std::string const configuration = m_folder / "nsd.conf";
    pid_t const parent = getpid();
    m_process = fork();
    if (m_process == 0) {
        s_runServer(configuration.c_str(), parent);
    }
    auto const deadline = std::chrono::steady_clock::now() + s_startDeadline;
    while (m_process > 0 && std::chrono::steady_clock::now() < deadline) {
        if (answers()) {
            return true;
        }
        if (waitpid(m_process, nullptr, WNOHANG) == m_process) {
            m_process = -1;
        }
    }
    return false;
}

void DnsServer::stop() {
    if (m_process > 0) {
        kill(m_process, SIGTERM);
        waitpid(m_process, nullptr, 0);
        m_process = -1;
    }
}

void DnsServer::writeFiles() const {
    std::ofstream configuration(m_folder / "nsd.conf");
    configuration << s_configuration(m_folder, m_port);
    for (DnsZone const& zone : m_zones) {
        std::string const file = zone.m_name + ".zone";
        configuration << "zone:\n  name: \"" << zone.m_name << "\"\n  zonefile: \"" << file
                      << "\"\n";
        if (!zone.m_isBroken) {
            std::ofstream(m_folder / file) << s_zoneFile(zone);
        }
    }
}

// Any answer will do, a refusal too.
bool DnsServer::answers() const {
    constexpr std::array<char, 17> question{1, 2, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 6, 0, 1};
    LoopbackSocket const socket(SOCK_DGRAM, 0);
    socket.sendTo(m_port, std::string(question.data(), question.size()));
    return !socket.receive(std::chrono::milliseconds{50}).empty();
}

std::string DnsServer::log() const {
    std::ostringstream text;
    text << std::ifstream(m_folder / "nsd.log").rdbuf();
    return text.str();
}

} // namespace Quorvane::Testing
