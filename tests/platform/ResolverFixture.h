// SPDX-License-Identifier: Apache-2.0
//
// Settings for tests of the resolver, and a fixture that leaves it switched off at its end.
#pragma once

#include "platform/Resolver.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace Quorvane::Testing {

// Longer than any answer on a loaded test machine takes: where an answer is expected, lateness must
// not decide.
inline constexpr std::chrono::milliseconds patientDeadline{30000};
// For servers that never answer.
inline constexpr std::chrono::milliseconds shortDeadline{100};

inline ResolverSettings serverSettings(std::string server,
                                       std::chrono::milliseconds deadline = patientDeadline) {
    ResolverSettings settings;
    settings.m_mode = ResolverSettings::Mode::servers;
    settings.m_servers = {std::move(server)};
    settings.m_deadline = deadline;
    return settings;
}

inline ResolverSettings localSettings(std::vector<std::string> zoneData) {
    ResolverSettings settings;
    settings.m_mode = ResolverSettings::Mode::local;
    settings.m_zoneData = std::move(zoneData);
    settings.m_deadline = patientDeadline;
    return settings;
}

class ResolverFixture : public testing::Test {
  protected:
    ~ResolverFixture() override {
        ResolverSettings off;
        off.m_mode = ResolverSettings::Mode::off;
        Resolver::instance().configure(off);
    }

    void configure(ResolverSettings const& settings) {
        Resolver::instance().configure(settings);
        m_before = Resolver::instance().counters();
    }

    static ResolverMessage ask(RecordType type, std::string const& name) {
        return Resolver::instance().submit(type, name, RecordClass::IN);
    }
    static bool resolves(std::string const& name) {
        return !ask(RecordType::mailName, name).isEmpty();
    }

    // Counts since configure.
    std::uint64_t failed() const {
        return Resolver::instance().counters().m_failed - m_before.m_failed;
    }
    std::uint64_t late() const { return Resolver::instance().counters().m_late - m_before.m_late; }

  private:
    Resolver::Counters m_before;
};

} // namespace Quorvane::Testing
