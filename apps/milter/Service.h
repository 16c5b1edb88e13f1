// SPDX-License-Identifier: Apache-2.0
//
// Service: what all sessions of the daemon share: the snapshot in force, the count of scans, log
// and metrics. Any thread, but for load and reload, which one thread calls.
#pragma once

#include "apps/milter/Judgement.h"
#include "apps/milter/Metrics.h"
#include "apps/milter/ScanGate.h"
#include "apps/milter/Snapshot.h"

#include <memory>
#include <string>

namespace Quorvane::Milter {

// One message that is done.
struct MessageReport {
    std::string const& m_queueId;
    Judgement const& m_judgement;
    Action const& m_action;
    double m_seconds;
};

class Service {
  public:
    // A SettingsError when the settings are wrong; without rules it serves, and says so in the log.
    explicit Service(CommandLine const& line);

    std::shared_ptr<Snapshot const> current() const { return m_snapshot.current(); }
    Metrics& metrics() { return m_metrics; }
    // Scans under way, and callbacks of sessions.
    ScanGate& scans() { return m_scans; }
    ScanGate& callbacks() { return m_callbacks; }

    // Both write to the log what came of it.
    void reload();
    void lookForRules();

    void report(MessageReport const& report);
    void reportError(std::string const& text);

    // "ok", or why the daemon judges nothing.
    std::string health() const;

  private:
    void noteRules();

    SnapshotInForce m_snapshot;
    Metrics m_metrics;
    ScanGate m_scans;
    ScanGate m_callbacks;
};

// Writes one of the daemon's messages to the log. Throws nothing.
void logMessage(int messageId, std::string const& text) noexcept;

} // namespace Quorvane::Milter
