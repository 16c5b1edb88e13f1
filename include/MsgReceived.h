// SPDX-License-Identifier: Apache-2.0
//
// MsgReceived: one Received header field (RFC 5321 section 4.4) seen as a structured record: who
// sent, who received, when, and how trustworthy that is.
//
// A handle over a counted record: copy construction shares the record, assignment from a header
// makes a new one. Parsing is lazy: the first accessor call parses, lower-cases the value text and
// cuts it down to the part before the receiving host. A header whose names hold a blank abandons
// the parse: such a record is parsed again at each accessor call, from the text as the call before
// left it, so a field may read differently the second time.
//
// Threads: nothing locks. Handles over one record may be used on one thread at a time.
//
// Errors: an accessor of a handle without record throws a HeaderException (category 1), and so does
// one of a handle that newImpl or an assignment through a base class left with another header's
// record. A value that ends in "by " makes the accessors throw std::out_of_range; no value that
// HeaderReader reads does.
#pragma once

#include "include2/Export.h"
#include "platform/Header.h"
#include "platform/IPAddress.h"

#include <string>

namespace Quorvane {

class QV_API MsgReceived : public Header {
  public:
    // Without record.
    MsgReceived();
    // A record of its own with this value text, which may be folded.
    explicit MsgReceived(std::string const& value);
    // Shares the record of `other`.
    MsgReceived(MsgReceived const& other);
    ~MsgReceived() override;

    // A record of its own with the value text of `other`; a null `other` gives an empty record.
    // Throws an Exception of category 2 when `other` is no Received header; the handle is then left
    // without record.
    MsgReceived& operator=(Header const& other) override;
    MsgReceived& operator=(MsgReceived const& other);

    // "Received".
    std::string const& type() const override;

    // The name that the sending host announced (HELO or EHLO); empty when absent.
    std::string const& from() const;
    // The name of the receiving host.
    std::string const& by() const;
    // The name that the receiving host recorded for the client's address; never asked from DNS.
    std::string const& reverseName() const;
    // The client's address; null when the header names none.
    IPAddress const& address() const;
    // True for a private address and for none.
    bool privateIP() const;
    // True when the header of a public client says that it was authenticated (RFC 4954).
    bool authenticated() const;
    // Lower-cased time text; filled only where it stands before the receiving host.
    std::string const& receiveTime() const;

    // 1 when the reverse name resolves but not to the client's address, else 0; or what was set.
    // The first call may block on DNS. Uses the fields as they are: call another accessor first.
    int isForged() const;
    // Sets the answer of isForged; -1 makes the next call compute it.
    void isForged(int forged);

  private:
    friend class ReceivedAccess;
};

// True when `name` resolves, but not to `address`. False when either is missing, and when DNS gives
// no answer. May block on DNS; safe from many threads.
QV_API bool s_isForged(IPAddress& address, std::string& name);

// Sets `name` to the reverse name of `address`, or empties it when DNS knows none. Always true. May
// block on DNS; safe from many threads.
QV_API bool s_getReverseName(IPAddress& address, std::string& name);

} // namespace Quorvane
