// SPDX-License-Identifier: Apache-2.0
//
// MsgReceivedImpl: the counted record behind MsgReceived. Its const accessors parse on demand and
// so write: one record, one thread at a time.
#pragma once

#include "platform/Header.h"
#include "platform/IPAddress.h"
#include "received/ReceivedFields.h"

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
    // A record of fields that were found otherwise, without text. It parses only when `fields` say
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

    // Uses the fields as they are, parsed or not: whoever asks first, before any other accessor,
    // gets 0, and 0 is kept.
    int isForged() const;
    void isForged(int forged) { m_fields.m_forged = forged; }

    // The fields as they stand; never parses.
    ReceivedFields const& fields() const { return m_fields; }

  private:
    // A record whose parse was abandoned is parsed again at every call.
    ReceivedFields const& parsed() const;

    mutable ReceivedFields m_fields;
};

} // namespace Quorvane
