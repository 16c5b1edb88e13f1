// SPDX-License-Identifier: Apache-2.0
//
// RelayScores: the reputation of relays: the site's own scores of prefixes, and DNS lists
// (RFC 5782), which are asked about relays that no prefix holds.
//
// Never changes once it is made; call it from many threads at once.
#pragma once

#include "apps/settings/DnsList.h"
#include "platform/HeaderContainer.h"
#include "platform/MessageProperties.h"
#include "platform/ReputationTable.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Quorvane {

// Newest first; a sender can write any number of relays into a message, and each costs a look-up
// in each list. Mail servers refuse mail of more hops than this (Postfix: hopcount_limit, 50).
inline constexpr std::size_t maxListedRelays = 50;

class RelayScores {
  public:
    RelayScores(std::vector<ReputationTable::Entry> const& scores,
                std::vector<DnsList> const& lists);

    // Writes what is known of the client, which may be null, and of the relays that the Received
    // headers name. All look-ups run side by side, and a list that does not answer in time says
    // nothing. Of several lists that know a relay the lowest score counts, so that a block list
    // overrules a list of good relays.
    void describe(HeaderContainer const& headers, IPAddress const& client,
                  MessageProperties& properties) const;

  private:
    struct List {
        std::string m_zone;
        ReputationTable m_answers;
    };

    std::vector<AnalysedReceived> askLists(std::vector<IPAddress> const& relays) const;
    std::vector<IPAddress> askedRelays(HeaderContainer const& headers,
                                       IPAddress const& client) const;

    std::shared_ptr<ReputationTable const> m_table; // null: no scores
    std::vector<List> m_lists;
};

} // namespace Quorvane
