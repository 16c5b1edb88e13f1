// SPDX-License-Identifier: Apache-2.0
//
// MsgReceivedImpl: the counted record of MsgReceived. Its const accessors parse on demand and
// so write: one record, one thread at a time.
#pragma once

#include "MsgReceived.h"
#include "platform/Header.h"
#include "platform/IPAddress.h"
#include "received/ReceivedScanner.h"

#include <string>
#include <typeinfo>

namespace Quorvane {

class MsgReceivedImpl final : public HeaderImpl {
  public:
    // The record that a handle holds; null when it holds none, or one of another kind: operations
    // of the base classes put any header's record into a MsgReceived. Every accessor call asks, and
    // exact types compare faster than a dynamic_cast.
    static MsgReceivedImpl* of(TypeAndValueImpl* held) {
        bool const isOne = held != nullptr && typeid(*held) == typeid(MsgReceivedImpl);
        return isOne ? static_cast<MsgReceivedImpl*>(held) : nullptr;
    }

    explicit MsgReceivedImpl(std::string const& value);
    // A record of fields from another source, without text. It parses only when `fields` say
    // that they are not parsed.
    explicit MsgReceivedImpl(ReceivedFields fields);
    // Inline, so that every module that includes this has the type's identity.
    ~MsgReceivedImpl() override = default;

    std::string const& from() const { return parsed().m_from; }
    std::string const& by() const { return parsed().m_by; }
    std::string const& reverseName() const { return parsed().m_reverseName; }
    IPAddress const& address() const { return parsed().m_address; }
    bool privateIP() const { return parsed().m_privateIP; }
    bool authenticated() const { return parsed().m_authenticated; }
    std::string const& receiveTime() const { return parsed().m_receiveTime; }

    // Uses the fields as they are, parsed or not: a call before any other accessor gives 0, and
    // 0 is kept.
    int isForged() const;
    void isForged(int forged) { m_fields.m_forged = forged; }

    // The fields as they stand; never parses.
    ReceivedFields const& fields() const { return m_fields; }

  private:
    // A record whose parse was abandoned is parsed again at every call.
    ReceivedFields const& parsed() const;

    mutable ReceivedFields m_fields;
};

// Looks at a Received record and leaves it as it is. The accessors of MsgReceived may parse;
// whoever displays a finished scan must not.
class ReceivedAccess {
  public:
    // The fields as they stand, valid as long as a handle to the record lives. Null on a handle
    // without a record of its kind.
    static ReceivedFields const* fields(MsgReceived const& hop) {
        auto const* const record = MsgReceivedImpl::of(hop.impl());
        return record == nullptr ? nullptr : &record->fields();
    }
};

} // namespace Quorvane
