// SPDX-License-Identifier: Apache-2.0
#include "platform/internal/DnsLookup.h"

#include "platform/internal/DnsName.h"
#include "platform/LookupDeadline.h"
#include "platform/NoCancellation.h"

#include <algorithm>
#include <utility>

namespace Quorvane::Dns {
namespace {

std::vector<RecordType> s_typesToAsk(RecordType type) {
    if (type == RecordType::mailName) {
        return {RecordType::A, RecordType::AAAA, RecordType::MX};
    }
    return {type};
}

} // namespace

Lookup::Lookup(Engine const& engine, std::shared_ptr<Tally> tally)
    : m_context(engine.m_context), m_tally(std::move(tally)),
      m_start(std::chrono::steady_clock::now()),
      m_deadline(std::min(m_start + engine.m_deadline, LookupDeadline::current())),
      m_stop(engine.m_stop.get_token()) {}

// Delegates, so that the destructor cancels what was asked when memory runs out half-way.
Lookup::Lookup(Engine const& engine, std::shared_ptr<Tally> tally, RecordType type,
               std::string const& name)
    : Lookup(engine, std::move(tally)) {
    if (name.empty()) {
        return;
    }
    m_failed = engine.m_broken || m_stop.stop_requested();
    if (!m_context || m_stop.stop_requested()) {
        return;
    }
    m_box = std::make_shared<AnswerBox>();
    std::size_t slot = 0;
    for (RecordType const each : s_typesToAsk(type)) {
        m_questions.at(slot).m_type = each;
        ask(slot, name);
        ++slot;
    }
}

Lookup::~Lookup() {
    cancelOpen();
}

ResolverMessage Lookup::wait() {
    NoCancellation const guard;
    while (m_open > 0 && m_message.isEmpty() && m_context->isUsable()) {
        auto arrival = m_box->take(m_deadline, m_stop);
        if (!arrival) {
            break;
        }
        take(*arrival);
    }
    m_message.result(end());
    count(m_message.result());
    cancelOpen();
    return std::exchange(m_message, ResolverMessage());
}

void Lookup::ask(std::size_t slot, std::string const& name) {
    Ticket& ticket = m_questions.at(slot).m_ticket;
    ticket = m_context->ask(m_questions.at(slot).m_type, name, m_box, slot);
    if (ticket.m_delivery != nullptr) {
        ++m_open;
    } else {
        m_failed = true;
    }
}

void Lookup::take(AnswerBox::Arrival& arrival) {
    --m_open;
    m_questions.at(arrival.m_slot).m_ticket = Ticket();
    Answer& answer = arrival.m_answer;
    m_failed = m_failed || answer.m_failed;
    if (!answer.m_message.isEmpty()) {
        m_message = std::move(answer.m_message);
    } else if (!answer.m_alias.empty() && m_context->hasLocalAliases()) {
        followAlias(arrival.m_slot, answer.m_alias);
    }
}

// libunbound follows aliases among servers, not those that its local data begins with.
void Lookup::followAlias(std::size_t slot, std::string const& alias) {
    if (++m_questions.at(slot).m_aliases > maxAliases) {
        m_failed = true;
        return;
    }
    ask(slot, alias);
}

void Lookup::cancelOpen() {
    for (Question& question : m_questions) {
        if (question.m_ticket.m_delivery != nullptr) {
            m_context->cancel(std::exchange(question.m_ticket, Ticket()));
        }
    }
    m_open = 0;
}

// For a look-up without records: one that got some ignores the rest.
LookupResult Lookup::end() const {
    if (m_open > 0) {
        bool const isGivenUp = m_stop.stop_requested() || !m_context->isUsable();
        return isGivenUp ? LookupResult::failed : LookupResult::late;
    }
    if (m_failed) {
        return LookupResult::failed;
    }
    return m_box ? LookupResult::doesNotExist : LookupResult::notAsked;
}

void Lookup::count(LookupResult result) {
    if (result == LookupResult::late) {
        m_tally->m_late.fetch_add(1, std::memory_order_relaxed);
    } else if (result == LookupResult::failed) {
        m_tally->m_failed.fetch_add(1, std::memory_order_relaxed);
    }
    if (auto const observer = m_tally->m_observer.load(std::memory_order_relaxed)) {
        observer(result, std::chrono::steady_clock::now() - m_start);
    }
}

} // namespace Quorvane::Dns
