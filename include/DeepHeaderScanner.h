// SPDX-License-Identifier: Apache-2.0
//
// DeepHeaderScanner: the entry to the library. A host calls init once at start and again whenever
// a newer version of the rules may be installed, then postQuery for each message.
//
// The objects hold nothing: any number of them use the one process-wide engine. All operations may
// be called from many threads at once. A scan keeps the engine it began with, also when init
// installs another one meanwhile. No Exception escapes: failures go to the Logger, and the caller
// gets an answer without a verdict. Whatever the Logger itself throws is dropped. std::bad_alloc
// may escape when there is not even memory for a handle or the version; what was in force stays.
//
// A thread that is cancelled (pthread_cancel) ends after the call. A child of fork may scan; its
// look-ups count as failed until it configures the Resolver itself.
#pragma once

#include "DeepHeaderAnswer.h"
#include "DeepHeaderQuery.h"
#include "include2/Export.h"
#include "platform/Mutex.h"

#include <atomic>
#include <cstdint>

namespace Quorvane {

class QV_API DeepHeaderScanner {
  public:
    DeepHeaderScanner();
    virtual ~DeepHeaderScanner();

    // Loads the rules from /var/spool/etc/antispam, unless the engine in force is at least as new
    // as the version that README in that folder names (a line with "CF_DT_VERSION="). Without such
    // a version every call loads. When loading fails, what was in force stays in force.
    void init();

    // True when an engine was installed with a version other than 0 (-1: without version).
    bool ready();

    // Judges one message. May block on DNS, never on another scan.
    DeepHeaderAnswer postQuery(DeepHeaderQuery& query);

    // Guards the process-wide engine: held only to swap it and to take a reference to it.
    static Mutex m_Mutex;

  private:
    // Read and written without ordering; the engine itself is published under m_Mutex.
    static std::atomic<std::int32_t> m_version;
};

} // namespace Quorvane
