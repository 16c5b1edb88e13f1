// SPDX-License-Identifier: Apache-2.0
//
// DeepHeaderQuery: everything that one scan needs, from the host to DeepHeaderScanner::postQuery.
//
// A handle over a counted record: copies share the record. Nothing in the library changes a query,
// so one may be posted again; handles may be copied and destroyed on different threads.
#pragma once

#include "include2/Export.h"
#include "include2/QvaneRefcounted.h"
#include "platform/DeepHeaderSettings.h"
#include "platform/EmailAddress.h"
#include "platform/Header.h"
#include "platform/HeaderContainer.h"
#include "platform/MessageProperties.h"

namespace Quorvane {

class DeepHeaderQueryImpl;

class QV_API DeepHeaderQuery {
  public:
    // `headers`: all header fields of the message, newest first.
    // `currentReceived`: the Received header that the host is about to add for the connection it
    // judges; a null Header when there is none.
    // `currentIsForged`: what the host found out about that header's names: 0 honest, 1 forged, -1
    // let the engine ask DNS. `from`, `headerFrom`, `recipient`: envelope sender, author,
    // recipient. When all three are null they are taken from the headers. `messageProperties`: not
    // an empty handle.
    DeepHeaderQuery(HeaderContainer const& headers, Header const& currentReceived,
                    DeepHeaderSettings const& settings, int currentIsForged,
                    EmailAddress const& from, EmailAddress const& headerFrom,
                    EmailAddress const& recipient, RefMessageProperties const& messageProperties);
    DeepHeaderQuery(DeepHeaderQuery const& other);
    DeepHeaderQuery& operator=(DeepHeaderQuery const& other);
    virtual ~DeepHeaderQuery();

    // Thresholds and switches. This reference and those below lead into the shared record: they are
    // valid as long as a handle to it lives.
    DeepHeaderSettings const& settings() const;
    // What the host knows besides the headers.
    RefMessageProperties const& messageProperties() const;
    // All header fields, newest first.
    HeaderContainer const& headers() const;
    // The header that the host is about to add; null when there is none.
    Header const& currentReceived() const;
    // 0 honest, 1 forged, -1: the engine asks DNS.
    int currentIsForged() const;
    // The envelope sender, as it was given.
    EmailAddress const& from() const;
    // The author, as it was given.
    EmailAddress const& headerFrom() const;
    // The envelope recipient, as it was given.
    EmailAddress const& recipient() const;

  private:
    friend class RecordAccess;
    RefCounted<DeepHeaderQueryImpl>* m_wrapper;
};

} // namespace Quorvane
