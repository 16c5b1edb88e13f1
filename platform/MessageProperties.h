// SPDX-License-Identifier: Apache-2.0
//
// What the host knows about a message besides its headers: the reputation score of the connecting
// client, the scores of the relays named in the trail, and a status.
//
// A host fills one record before it posts the query; during the scan it is only read.
#pragma once

#include "include2/Export.h"
#include "include2/QvaneRefcounted.h"
#include "platform/IPAddress.h"
#include "platform/ReputationTable.h"

#include <cstdint>
#include <list>
#include <memory>
#include <utility>

namespace Quorvane {

// The one fact of an analysed Received header that scoring needs: the relay's address.
class QV_API Received {
  public:
    Received() = default;
    // The relay has this address.
    explicit Received(IPAddress const& address) : m_address(address) {}

    // Null when the header named none.
    IPAddress const& address() const { return m_address; }

  private:
    IPAddress m_address;
};

// A relay and its reputation score.
struct AnalysedReceived {
    Received m_received; // the relay
    // 0..9 is the scale of the reputation scores; other values never end a walk.
    std::int32_t m_score = 0;
};

// What is known of the relays of a message's trail: the analysed Received headers, newest first,
// and a table of prefixes for relays that the list does not name.
class QV_API ReceivedHeaderAnalysis : public std::list<AnalysedReceived> {
  public:
    // Shared, since it is large and the same for all messages; null: none.
    void reputation(std::shared_ptr<ReputationTable const> table) {
        m_reputation = std::move(table);
    }
    // Null: none. Valid as long as this object keeps the table.
    ReputationTable const* reputation() const { return m_reputation.get(); }

  private:
    std::shared_ptr<ReputationTable const> m_reputation;
};

// The status of a message whose indicator the engine hands to the rules (attribute 36).
inline constexpr std::int32_t indicatedMessageStatus = 3;

class QV_API MessageProperties : public virtual RefImpl {
  public:
    MessageProperties() = default;
    ~MessageProperties() override;

    // The reputation score of the connecting client, 0 to 9; 0 at first.
    std::uint32_t clientScore() const { return m_clientScore; }
    // Sets it.
    void clientScore(std::uint32_t score) { m_clientScore = score; }
    // A number of the host's own; rules can only test whether it is indicatedMessageStatus.
    std::int32_t status() const { return m_status; }
    // Sets it.
    void status(std::int32_t status) { m_status = status; }
    // To be filled: the scores of the relays.
    ReceivedHeaderAnalysis& receivedHeaderAnalysis() { return m_analysis; }
    // The same to be read.
    ReceivedHeaderAnalysis const& receivedHeaderAnalysis() const { return m_analysis; }

  private:
    std::uint32_t m_clientScore = 0;
    std::int32_t m_status = 0;
    ReceivedHeaderAnalysis m_analysis;
};

// A handle to such a record; copies share it.
class QV_API RefMessageProperties : public Ref<MessageProperties> {
  public:
    // With `create` a handle to a fresh record, else an empty handle. A query needs a record: a
    // scan of a query with an empty handle fails.
    explicit RefMessageProperties(bool create);
    RefMessageProperties(RefMessageProperties const&) = default;
    RefMessageProperties& operator=(RefMessageProperties const&) = default;
    ~RefMessageProperties() override;
};

} // namespace Quorvane
