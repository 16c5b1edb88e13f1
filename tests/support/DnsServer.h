// SPDX-License-Identifier: Apache-2.0
//
// DnsServer: a real authoritative DNS server (NSD) on a free loopback port, with its files in a
// folder of its own under the temporary folder. It answers from the constructor's return to the
// destructor. What it says:
//
//   a name in a zone         its records, "no such record", "no such name"
//   a name in a broken zone  SERVFAIL
//   any other name           REFUSED
//
// The constructor throws std::runtime_error, with the server's own log, when it does not come up.
// Make it on a thread that lives as long: the server ends with the thread that started it, so that
// a crashing test leaves none behind.
#pragma once

#include <filesystem>
#include <string>
#include <sys/types.h>
#include <vector>

namespace Quorvane::Testing {

struct DnsZone {
    // Without trailing dot: "example.test".
    std::string m_name;
    // Zone-file lines; names without trailing dot are relative to the zone. SOA and NS are added.
    std::string m_text;
    // The server knows of the zone but could not load it.
    bool m_isBroken = false;
};

class DnsServer {
  public:
    explicit DnsServer(std::vector<DnsZone> zones);
    DnsServer(DnsServer const&) = delete;
    DnsServer& operator=(DnsServer const&) = delete;
    ~DnsServer();

    // As resolver settings name a server: "127.0.0.1@12345".
    std::string address() const;

  private:
    bool start();
    void stop();
    void writeFiles() const;
    bool answers() const;
    std::string log() const;

    std::vector<DnsZone> m_zones;
    std::filesystem::path m_folder;
    int m_port = 0;
    pid_t m_process = -1;
};

} // namespace Quorvane::Testing
