// SPDX-License-Identifier: Apache-2.0
#include "include2/Exception.h"
#include "platform/internal/DnsSettings.h"

#include <array>
#include <string>
#include <unbound.h>
#include <vector>

namespace Quorvane::Dns {
namespace {

struct Option {
    char const* m_name;
    char const* m_value;
};

constexpr std::array<Option, 11> s_options{{
    // Without validation: the site's own server is the place for DNSSEC.
    {"module-config:", "iterator"},
    {"do-not-query-localhost:", "no"},
    // The site's server decides about private addresses too.
    {"unblock-lan-zones:", "yes"},
    // Otherwise a server that is down for a while, or that is asked for names whose own servers are
    // dead (and whoever sends mail chooses the names), would be avoided for up to 15 minutes.
    {"infra-host-ttl:", "5"},
    // A nearby server answers most names in a millisecond and asks the world for the rest. With a
    // retry every 50 ms the retries would be used up before it has the answer.
    {"infra-cache-min-rtt:", "300"},
    // Records in the order of the answer.
    {"rrset-roundrobin:", "no"},
    // The library's default of 16 sockets would make scans wait for one another.
    {"outgoing-range:", "256"},
    {"outgoing-num-tcp:", "16"},
    {"num-queries-per-thread:", "1024"},
    {"msg-cache-size:", "8m"},
    {"rrset-cache-size:", "16m"},
}};

// Zones that libunbound answers by itself by default. Here the server, or the zone data, answers
// them.
constexpr std::array<char const*, 7> s_builtInZones{
    "localhost.",
    "127.in-addr.arpa.",
    "1.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.ip6.arpa.",
    "home.arpa.",
    "onion.",
    "test.",
    "invalid."};

[[noreturn]] void s_refuse(std::string const& what, int error) {
    throw Exception("DNS: " + what + ": " + ub_strerror(error), 3, nullptr, 0);
}

void s_require(int error, std::string const& what) {
    if (error != UB_NOERROR) {
        s_refuse(what, error);
    }
}

void s_setOptions(ub_ctx& context) {
    // It would write its messages to the host's standard error.
    s_require(ub_ctx_debugout(&context, nullptr), "libunbound's log cannot be turned off");
    for (Option const& option : s_options) {
        s_require(ub_ctx_set_option(&context, option.m_name, option.m_value),
                  std::string("libunbound does not take the option ") + option.m_name);
    }
    s_require(ub_ctx_async(&context, 1), "libunbound has no threads");
}

void s_setServers(ub_ctx& context, ResolverSettings const& settings) {
    if (settings.m_servers.empty()) {
        throw Exception("DNS: no server given; name at least one or use the system's", 3, nullptr,
                        0);
    }
    for (std::string const& server : settings.m_servers) {
        checkServer(server);
        s_require(ub_ctx_set_fwd(&context, server.c_str()), "server \"" + server + "\"");
    }
}

void s_setSource(ub_ctx& context, ResolverSettings const& settings) {
    if (settings.m_mode == ResolverSettings::Mode::servers) {
        s_setServers(context, settings);
    } else if (settings.m_mode == ResolverSettings::Mode::system) {
        std::string const& file = settings.m_systemFile;
        s_require(ub_ctx_resolvconf(&context, file.c_str()),
                  "\"" + file + "\" cannot be used; mend it or name a server");
    }
}

void s_addZone(ub_ctx& context, char const* name) {
    s_require(ub_ctx_zone_add(&context, name, "static"), std::string("local zone ") + name);
}

void s_setZones(ub_ctx& context, ResolverSettings const& settings) {
    for (char const* const zone : s_builtInZones) {
        s_require(ub_ctx_zone_remove(&context, zone), std::string("local zone ") + zone);
    }
    s_addZone(context, startQuestion);
    if (settings.m_mode == ResolverSettings::Mode::local) {
        s_addZone(context, ".");
    }
}

// libunbound puts each record before those that it has, so the last line goes first. Returns
// the number of the first line that it refuses, counted from 1, or 0.
std::size_t s_addRecords(ub_ctx& context, std::vector<std::string> const& records) {
    std::size_t refused = 0;
    for (std::size_t number = records.size(); number > 0; --number) {
        std::string const& record = records[number - 1];
        if (!record.empty() && ub_ctx_data_add(&context, record.c_str()) != UB_NOERROR) {
            refused = number;
        }
    }
    return refused;
}

void s_setZoneData(ub_ctx& context, std::vector<std::string> const& lines) {
    std::vector<std::string> records;
    records.reserve(lines.size());
    for (std::string const& line : lines) {
        records.push_back(zoneRecord(line, records.size() + 1));
    }
    std::size_t const refused = s_addRecords(context, records);
    if (refused != 0) {
        refuseZoneLine(lines[refused - 1], refused,
                       "no resource record of that name, type and data");
    }
}

} // namespace

// The first zone closes the options, so the order matters.
void setUpUnbound(ub_ctx& context, ResolverSettings const& settings) {
    s_setOptions(context);
    s_setSource(context, settings);
    s_setZones(context, settings);
    s_setZoneData(context, settings.m_zoneData);
}

} // namespace Quorvane::Dns
