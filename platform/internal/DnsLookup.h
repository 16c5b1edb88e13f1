// SPDX-License-Identifier: Apache-2.0
//
// Lookup: the questions of one look-up, asked side by side under one deadline. It belongs to one
// thread and keeps the engine it began with until it ends; destroying it cancels what is open.
#pragma once

#include "platform/internal/AnswerBox.h"
#include "platform/internal/UnboundContext.h"
#include "platform/Resolver.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Quorvane::Dns {

// One set of settings in force.
struct Engine {
    // Null when nothing is to be asked, or nothing can be.
    std::shared_ptr<UnboundContext const> m_context;
    std::chrono::milliseconds m_deadline{0};
    // Look-ups count as failed: the system's configuration cannot be used.
    bool m_broken = false;
};

// Counts of the process; outlives every look-up.
struct Tally {
    std::atomic<std::uint64_t> m_failed{0};
    std::atomic<std::uint64_t> m_late{0};
    std::atomic<LookupObserver> m_observer{nullptr};
};

class Lookup {
  public:
    // Begins. `name` was made by askableName; an empty one is not asked.
    Lookup(Engine const& engine, std::shared_ptr<Tally> tally, RecordType type,
           std::string const& name);
    Lookup(Lookup const&) = delete;
    Lookup& operator=(Lookup const&) = delete;
    ~Lookup();

    // The first answer that holds records; an empty one when there is none.
    ResolverMessage wait();

  private:
    // Bounds a chain of aliases in zone data, which may run in a circle.
    static constexpr int maxAliases = 8;

    struct Question {
        RecordType m_type{};
        Ticket m_ticket;
        int m_aliases = 0;
    };

    Lookup(Engine const& engine, std::shared_ptr<Tally> tally);

    void ask(std::size_t slot, std::string const& name);
    void take(AnswerBox::Arrival& arrival);
    void followAlias(std::size_t slot, std::string const& alias);
    void cancelOpen();
    LookupResult end() const;
    void count(LookupResult result);

    std::shared_ptr<UnboundContext const> m_context;
    std::shared_ptr<Tally> m_tally;
    AnswerBox::TimePoint m_start;
    AnswerBox::TimePoint m_deadline;
    std::shared_ptr<AnswerBox> m_box;
    std::array<Question, AnswerBox::slots> m_questions;
    std::size_t m_open = 0;
    bool m_failed = false;
    ResolverMessage m_message;
};

} // namespace Quorvane::Dns
