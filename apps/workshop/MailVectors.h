// SPDX-License-Identifier: Apache-2.0
//
// MailVectors: turns messages into attribute vectors, with all cores, in the order of input.
//
// One object per process, since it sets up the scanning host. Reading and scanning overlap; the
// sink is called on one thread at a time.
#pragma once

#include "apps/host/ScanHost.h"
#include "apps/input/Inputs.h"
#include "apps/input/Interrupt.h"
#include "apps/settings/HostSettings.h"
#include "platform/HeaderContainer.h"
#include "rules/learn/NoReverseName.h"
#include "rules/vectors/VectorTable.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Quorvane::Workshop {

struct MailVector {
    std::string m_source;
    // Not empty: the input is left out, since it is no message or cannot be read; with the exit
    // status for that.
    std::string m_problem;
    int m_exitStatus = 0;
    std::uint64_t m_position = 0; // of the input, as in InputItem
    // Empty when the message has no public hop and so nothing to judge.
    std::optional<Rules::AttributeVector> m_vector;
    // A DNS look-up failed or came late: the vectors may say that a name does not exist although it
    // does.
    bool m_hasFailedLookup = false;
    // Of the same message as a gateway that records no reverse names would have recorded it; empty
    // when that was not asked for, or the form of the gateway's header is not known.
    std::optional<Rules::AttributeVector> m_withoutReverseName;
};

// A RuleError when the item is a problem.
void requireReadable(InputItem const& item);
// The header fields of a message; a RuleError when it has none, or too many.
HeaderContainer messageHeaders(ScanHost const& host, std::string const& source,
                               std::string_view headers);

// Thrown when SIGINT or SIGTERM interrupts a scan.
struct ScanInterrupted {
    int m_signal;
};

class MailVectors {
  public:
    // The rules of `settings` are not used. Throws a SettingsError.
    MailVectors(HostSettings const& settings, bool wantsRewritten);

    using Sink = std::function<void(MailVector const&)>;

    // Scans all messages of the paths; a problem takes its place among them.
    void scan(std::vector<std::string> const& paths, Sink const& sink);

  private:
    MailVector vectorOf(InputItem const& item) const;
    std::optional<Rules::AttributeVector> attributesOf(HeaderContainer const& headers,
                                                       MailVector& vector) const;

    Interrupt m_interrupt; // before any thread
    bool m_wantsRewritten;
    RecordDepth m_depth; // look-ups are recorded only where there can be some
    std::shared_ptr<ScanHost const> m_host;
    Rules::IsOwnRelay m_isOwnRelay;
};

} // namespace Quorvane::Workshop
