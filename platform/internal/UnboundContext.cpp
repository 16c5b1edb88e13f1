// SPDX-License-Identifier: Apache-2.0
#include "platform/internal/UnboundContext.h"

#include "include2/Exception.h"
#include "platform/ForkBarrier.h"
#include "platform/internal/DnsSettings.h"
#include "platform/SignalsBlocked.h"

#include <array>
#include <cerrno>
#include <mutex>
#include <poll.h>
#include <sys/eventfd.h>
#include <system_error>
#include <unbound.h>
#include <unistd.h>
#include <utility>

namespace Quorvane::Dns {

struct Delivery {
    std::shared_ptr<AnswerBox> m_box;
    std::size_t m_slot;
};

namespace {

[[noreturn]] void s_doesNotStart(char const* why) {
    throw Exception(std::string("DNS: the resolver does not start: ") + why, 3, nullptr, 0);
}

// libunbound sets up and clears variables of the process with each context and does not synchronise
// that: one context at a time is made or destroyed.
std::mutex& s_lifecycleMutex() {
    static std::mutex s_mutex;
    return s_mutex;
}

ub_ctx* s_create() {
    ForkBarrier const barrier;
    std::lock_guard<std::mutex> const lock(s_lifecycleMutex());
    return ub_ctx_create();
}

constexpr int s_rcodeNoError = 0;
constexpr int s_rcodeNoSuchName = 3;

Answer s_readAnswer(ub_result const& result) {
    Answer answer;
    answer.m_failed = result.rcode != s_rcodeNoError && result.rcode != s_rcodeNoSuchName;
    if (result.havedata != 0) {
        for (std::size_t i = 0; result.data[i] != nullptr; ++i) {
            answer.m_message.append(
                std::string(result.data[i], static_cast<std::size_t>(result.len[i])));
        }
    } else if (result.canonname != nullptr && result.rcode == s_rcodeNoError) {
        answer.m_alias = result.canonname;
    }
    return answer;
}

// Out of memory is a failed look-up like any other.
Answer s_answerOf(int error, ub_result const* result) noexcept {
    try {
        if (error == UB_NOERROR && result != nullptr) {
            return s_readAnswer(*result);
        }
    } catch (...) {
    }
    Answer failed;
    failed.m_failed = true;
    return failed;
}

void s_deliver(void* data, int error, ub_result* result) {
    std::unique_ptr<Delivery> const delivery(static_cast<Delivery*>(data));
    delivery->m_box->put(delivery->m_slot, s_answerOf(error, result));
    ub_resolve_free(result);
}

void s_ignoreAnswer(void* /*data*/, int /*error*/, ub_result* result) {
    ub_resolve_free(result);
}

} // namespace

void UnboundContext::Deleter::operator()(ub_ctx* context) const {
    ForkBarrier const barrier;
    std::lock_guard<std::mutex> const lock(s_lifecycleMutex());
    ub_ctx_delete(context);
}

UnboundContext::StopEvent::StopEvent() : m_event(eventfd(0, EFD_CLOEXEC)) {
    if (m_event < 0) {
        s_doesNotStart("no file descriptors left");
    }
}

UnboundContext::StopEvent::~StopEvent() {
    close(m_event);
}

void UnboundContext::StopEvent::raise() const {
    eventfd_write(m_event, 1);
}

UnboundContext::UnboundContext(ResolverSettings const& settings)
    : m_process(getpid()), m_hasZoneData(!settings.m_zoneData.empty()), m_context(s_create()) {
    if (!m_context) {
        s_doesNotStart("no memory, no file descriptors or no random numbers");
    }
    ForkBarrier const barrier;
    std::lock_guard<std::mutex> const lock(s_lifecycleMutex());
    setUpUnbound(*m_context, settings);
    startThreads();
}

bool UnboundContext::isUsable() const {
    return getpid() == m_process && !m_hasFailed.load(std::memory_order_relaxed);
}

// A child of fork has the memory of this object but none of its threads: waiting for them would
// never end, so there everything stays as it is.
UnboundContext::~UnboundContext() {
    if (getpid() != m_process) {
        static_cast<void>(m_pump.release());
        static_cast<void>(m_context.release());
        return;
    }
    m_stopEvent.raise();
    m_pump->join();
}

// libunbound starts its thread with the first question. Asking one here shows now, and not in a
// scan, whether that works.
void UnboundContext::startThreads() {
    SignalsBlocked const blocked;
    int const error =
        ub_resolve_async(m_context.get(), startQuestion, static_cast<int>(RecordType::A),
                         static_cast<int>(RecordClass::IN), nullptr, s_ignoreAnswer, nullptr);
    if (error != UB_NOERROR) {
        s_doesNotStart(ub_strerror(error));
    }
    try {
        m_pump = std::make_unique<std::thread>([this] { pump(); });
    } catch (std::system_error const&) {
        s_doesNotStart("no thread left");
    }
}

// Ends when the stop event is raised, or when libunbound's own thread is gone; look-ups then fail.
void UnboundContext::pump() const {
    std::array<pollfd, 2> events{
        {{ub_fd(m_context.get()), POLLIN, 0}, {m_stopEvent.descriptor(), POLLIN, 0}}};
    for (;;) {
        if (poll(events.data(), events.size(), -1) < 0 && errno == EINTR) {
            continue;
        }
        if (events[1].revents != 0) {
            return;
        }
        if (events[0].revents == 0 || ub_process(m_context.get()) != UB_NOERROR) {
            m_hasFailed.store(true, std::memory_order_relaxed);
            return;
        }
    }
}

Ticket UnboundContext::ask(RecordType type, std::string const& name, std::shared_ptr<AnswerBox> box,
                           std::size_t slot) const {
    Ticket ticket;
    if (!isUsable()) {
        return ticket;
    }
    std::unique_ptr<Delivery> delivery(new Delivery{std::move(box), slot});
    if (ub_resolve_async(m_context.get(), name.c_str(), static_cast<int>(type),
                         static_cast<int>(RecordClass::IN), delivery.get(), s_deliver,
                         &ticket.m_id) == UB_NOERROR) {
        ticket.m_delivery = delivery.release();
    }
    return ticket;
}

// libunbound calls s_deliver exactly when it does not accept the cancellation.
void UnboundContext::cancel(Ticket ticket) const {
    if (isUsable() && ticket.m_delivery != nullptr &&
        ub_cancel(m_context.get(), ticket.m_id) == UB_NOERROR) {
        delete ticket.m_delivery;
    }
}

} // namespace Quorvane::Dns
