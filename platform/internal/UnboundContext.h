// SPDX-License-Identifier: Apache-2.0
//
// UnboundContext: one libunbound context with its cache, its resolving thread and the pump thread
// that delivers answers. It never changes once made; questions may be asked from many threads.
//
// Ownership: whoever asks keeps the context alive until its questions are answered or cancelled.
// Answers are delivered on the pump thread and hold no share of the context, so that it is never
// destroyed there, where it would wait for itself.
#pragma once

#include "platform/internal/AnswerBox.h"
#include "platform/Resolver.h"

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <sys/types.h>
#include <thread>

struct ub_ctx;

namespace Quorvane::Dns {

struct Delivery;

// A pending question.
struct Ticket {
    int m_id = 0;
    // Belongs to libunbound while the question is pending; null when there is none.
    Delivery* m_delivery = nullptr;
};

class UnboundContext {
  public:
    // An Exception of category 3 when a setting is wrong or the threads cannot be started.
    explicit UnboundContext(ResolverSettings const& settings);
    UnboundContext(UnboundContext const&) = delete;
    UnboundContext& operator=(UnboundContext const&) = delete;
    ~UnboundContext();

    // Asks for the records of `name`, which askableName made. The answer goes into the slot of the
    // box. A ticket without delivery when libunbound does not take the question.
    Ticket ask(RecordType type, std::string const& name, std::shared_ptr<AnswerBox> box,
               std::size_t slot) const;
    // Cancels a question. Its answer may already be on its way and then still arrives.
    void cancel(Ticket ticket) const;

    // False in a child of fork: there libunbound must not be called. Parent and child share the
    // pipe to its thread, so a question of the child would spoil those of the parent.
    bool isUsable() const;

    // True when zone data may answer with an alias that libunbound leaves to the caller.
    bool hasLocalAliases() const { return m_hasZoneData; }

  private:
    struct Deleter {
        void operator()(ub_ctx* context) const;
    };

    // Ends the pump thread's wait.
    class StopEvent {
      public:
        StopEvent();
        StopEvent(StopEvent const&) = delete;
        StopEvent& operator=(StopEvent const&) = delete;
        ~StopEvent();

        void raise() const;
        int descriptor() const { return m_event; }

      private:
        int m_event;
    };

    void startThreads();
    void pump() const;

    pid_t const m_process;
    mutable std::atomic<bool> m_hasFailed{false}; // libunbound's thread is gone
    bool m_hasZoneData;
    std::unique_ptr<ub_ctx, Deleter> m_context;
    StopEvent m_stopEvent;
    std::unique_ptr<std::thread> m_pump;
};

} // namespace Quorvane::Dns
