// SPDX-License-Identifier: Apache-2.0
//
// The relays that the site trusts: its mail servers (skipped along the trail), its anti-spam relays
// (they end the trail), and the internal ones, which stand at the newest end of every trail and say
// nothing about the sender (skipped as long as no other relay came before them, IPv6 or not). And
// what an IPv6 relay means: it stands here so that a scan, which holds one set from its first hop
// to its last, never sees two answers.
//
// A TrustedMTASet never changes. TrustedMTASetRef::install publishes a new one at any time; scans
// that hold a reference to the old one finish with it.
#pragma once

#include "include2/Export.h"
#include "include2/QvaneRefcounted.h"
#include "platform/IPAddress.h"
#include "platform/IPPrefix.h"

#include <memory>
#include <vector>

namespace Quorvane {

// What becomes of an IPv6 relay that is none of the site's own.
enum class IPv6Relays {
    stop,  // an IPv6 relay ends the trail
    judge, // it is like any other: trusted, private, of good reputation, or judged by its names
};

class QV_API TrustedMTASet : public RefImpl {
  public:
    // Trusts nobody; IPv6 relays end the trail.
    TrustedMTASet();
    // The ranges may overlap, and be empty.
    TrustedMTASet(std::vector<IPPrefix> const& trusted, std::vector<IPPrefix> const& antiSpam,
                  std::vector<IPPrefix> const& internal = {}, IPv6Relays ipv6 = IPv6Relays::stop);
    ~TrustedMTASet() override;

    // A trusted relay. This and the next two are false for a null address.
    bool isTrustedMTA(IPAddress const& address) const;
    // An anti-spam relay. It is not by itself a trusted relay.
    bool isTrustedAntiSpamMTA(IPAddress const& address) const;
    // One of the internal relays.
    bool isInternalMTA(IPAddress const& address) const;
    // Whether a scan takes the relay for an IPv6 one, which its trail ends at: what isV6() of the
    // address says, and with IPv6Relays::judge never.
    bool countsAsV6(IPAddress const& address) const;

  private:
    friend class TrustedMTASetRef;
    struct Content;
    explicit TrustedMTASet(std::shared_ptr<Content const> content);

    // Aligned so that the counts of two threads' sets never share a cache line.
    alignas(64) std::shared_ptr<Content const> m_content;
};

// A handle to a set, and the place of the one that is in force for the process.
class QV_API TrustedMTASetRef : public Ref<TrustedMTASet> {
  public:
    // Empty.
    TrustedMTASetRef() = default;
    // Takes over the initial reference of `set`.
    explicit TrustedMTASetRef(TrustedMTASet* set);
    ~TrustedMTASetRef() override;

    // A counted reference to the set in force: the empty set until one is installed, never an empty
    // handle. `reload` is there for hosts whose set has a source of its own; this one has none and
    // ignores it. Each thread counts on a line of its own, so taking a reference costs no traffic
    // between cores.
    static TrustedMTASetRef instance(bool reload);

    // Puts a new set in force. Safe at any time from any thread. The first one does not throw.
    static void install(TrustedMTASet const& set);
    // The same with a set of these.
    static void install(std::vector<IPPrefix> const& trusted, std::vector<IPPrefix> const& antiSpam,
                        std::vector<IPPrefix> const& internal = {},
                        IPv6Relays ipv6 = IPv6Relays::stop);

  private:
    struct InForce;
};

} // namespace Quorvane
