// SPDX-License-Identifier: Apache-2.0
//
// Resolver: blocking, cached DNS look-ups with a deadline, for many threads at once.
//
// Configuration is checked when it is made, never during a scan: a look-up that fails, is refused
// or comes late gives an empty answer and is counted. Settings are published as a whole; pending
// look-ups finish with the ones they began with.
//
// fork(): the child does not have the threads that answer, so look-ups there count as failed, at
// once, until the child puts settings of its own in force; the parent goes on. Configure after
// becoming a daemon.
#pragma once

#include "include2/Export.h"
#include "platform/IPAddress.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Quorvane {

class HostName;

// Numbers of the IANA "Resource Record (RR) TYPEs" registry, and one of our own.
enum class RecordType : int {
    A = 1,
    PTR = 12,
    MX = 15,
    AAAA = 28,
    // "Does this name exist in mail's sense?": an A, AAAA or MX record, asked side by side. The
    // answer holds the records of whichever type answers first and has some.
    mailName = 100,
};

// Numbers of the IANA "DNS CLASSes" registry.
enum class RecordClass : int { IN = 1 };

// How a look-up ended. All but `answered` count as "does not resolve".
enum class LookupResult : std::uint8_t {
    notAsked,     // nothing can have this name, or the resolver is off
    answered,     // with at least one record
    doesNotExist, // no such name, or no record of the types asked for
    failed,       // SERVFAIL, refused, no server
    late,         // no answer before the deadline
};

// The answer to one look-up: its records in the order of the answer. A plain value.
class QV_API ResolverMessage {
  public:
    // There is no record.
    bool isEmpty() const { return m_records.empty(); }
    // How the look-up ended.
    LookupResult result() const { return isEmpty() ? m_result : LookupResult::answered; }
    // Of a message without records.
    void result(LookupResult result) { m_result = result; }
    // Wire-format record data (RFC 1035 section 3.2.1, RDATA).
    std::vector<std::string> const& records() const { return m_records; }
    // Adds a record; the result is then `answered`.
    void append(std::string rdata);

  private:
    std::vector<std::string> m_records;
    LookupResult m_result = LookupResult::notAsked;
};

// Who is asked, and for how long. A plain value; Resolver::prepare checks it.
struct ResolverSettings {
    // Who answers look-ups.
    enum class Mode {
        system,  // the servers that m_systemFile names
        servers, // m_servers
        local,   // m_zoneData alone; nothing else is asked
        off,     // nothing resolves
    };
    Mode m_mode = Mode::system; // who answers
    // The system's resolver configuration (resolv.conf(5)); its "nameserver" lines count.
    std::string m_systemFile = "/etc/resolv.conf";
    // "192.0.2.1", "192.0.2.1@5353", "2001:db8::1@53".
    std::vector<std::string> m_servers;
    // Zone-file lines: "name. A 192.0.2.1", "name. MX 10 mail.name.", answered locally in every
    // mode but off. One record a line, each with its full name; empty lines and comments (";", "#")
    // are skipped; no wildcards. Aliases (CNAME) are followed, up to 8 in a row.
    std::vector<std::string> m_zoneData;
    // From the call to the answer, for each look-up; late answers count as empty. 1 ms to 10 min.
    // LookupDeadline.h sets one end for several.
    std::chrono::milliseconds m_deadline{2000};
};

// Called for each look-up that was waited for: how it ended, and how long it took from its start.
// Runs on many threads at once; throws nothing.
using LookupObserver = void (*)(LookupResult result, std::chrono::nanoseconds time);

// A pending look-up. Waiting for it gives the answer; dropping it cancels it.
class QV_API PendingLookup {
  public:
    // No look-up: wait gives an empty answer at once.
    PendingLookup();
    PendingLookup(PendingLookup&&) noexcept;
    PendingLookup& operator=(PendingLookup&&) noexcept;
    ~PendingLookup();

    // Blocks until the answer is there or the deadline, counted from the start of the look-up, has
    // passed. Call it once.
    ResolverMessage wait();

  private:
    friend class Resolver;
    class State;
    explicit PendingLookup(std::unique_ptr<State> state);

    std::unique_ptr<State> m_state;
};

namespace Dns {
struct Engine;
} // namespace Dns

// Settings that were checked and can be put in force.
using PreparedResolver = std::shared_ptr<Dns::Engine const>;

class QV_API Resolver {
  public:
    // Never destroyed, nor are the settings in force: names may be looked up until the process
    // ends.
    static Resolver& instance();

    // Checks settings and starts what they need, without putting them in force. An Exception of
    // category 3 names the server or the line of zone data that is wrong.
    static PreparedResolver prepare(ResolverSettings const& settings);
    // Puts prepared settings in force; does not throw.
    void configure(PreparedResolver prepared);
    // Both at once: when the settings are wrong, those in force stay. Without a call the first
    // look-up puts default settings in force; when the system's configuration cannot be used then,
    // look-ups count as failed until a call.
    void configure(ResolverSettings const& settings);

    // For a host that ends: scans under way end soon. Look-ups that are waited for end at once, and
    // later ones are not asked; they count as failed. Until other settings are put in force.
    void stop();

    // Blocking look-up. One trailing dot is ignored. An address literal, an empty name and a name
    // that is not a domain name do not resolve, and nothing is asked for them: names hold no blanks
    // or control bytes, at least 1 and at most 63 bytes between dots and at most 253 in all. Bytes
    // are asked as they are: names in other scripts should be in their ASCII
    // form ("xn--").
    ResolverMessage submit(RecordType type, std::string const& name, RecordClass recordClass);
    // The same without waiting, so that look-ups can run side by side.
    PendingLookup start(RecordType type, std::string const& name, RecordClass recordClass);

    // The reverse name of an address (RFC 1035 section 3.5, RFC 3596 section 2.5); null when there
    // is none.
    HostName getHostname(IPAddress const& address);

    // Look-ups since start that failed (SERVFAIL, refused, no server) and that came late. With
    // them a host can tell "does not resolve" from "could not ask". Each look-up that was waited
    // for counts at most once; a Host is two look-ups.
    struct Counters {
        std::uint64_t m_failed = 0; // SERVFAIL, refused, no server
        std::uint64_t m_late = 0;   // no answer before the deadline
    };
    // Both as they are now.
    Counters counters() const;

    // One observer for the process; null: none. It stays while settings change.
    void observe(LookupObserver observer);

    Resolver(Resolver const&) = delete;
    Resolver& operator=(Resolver const&) = delete;

  private:
    Resolver();
    ~Resolver();

    class Slot;
    std::unique_ptr<Slot> m_slot;
};

} // namespace Quorvane
