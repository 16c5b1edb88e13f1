// SPDX-License-Identifier: Apache-2.0
#include "platform/Resolver.h"

#include "include2/Exception.h"
#include "platform/ForkBarrier.h"
#include "platform/Host.h"
#include "platform/internal/DnsLookup.h"
#include "platform/internal/DnsName.h"
#include "platform/internal/DnsSettings.h"

#include <atomic>
#include <mutex>
#include <utility>

namespace Quorvane {
namespace {

PreparedResolver s_makeEngine(ResolverSettings const& settings) {
    Dns::checkDeadline(settings.m_deadline);
    auto engine = std::make_shared<Dns::Engine>();
    engine->m_deadline = settings.m_deadline;
    if (settings.m_mode != ResolverSettings::Mode::off) {
        engine->m_context = std::make_shared<Dns::UnboundContext const>(settings);
    }
    return engine;
}

// A scan has nobody to report bad configuration to.
PreparedResolver s_makeDefaultEngine() {
    try {
        return s_makeEngine(ResolverSettings());
    } catch (Exception const&) {
        auto broken = std::make_shared<Dns::Engine>();
        broken->m_broken = true;
        return broken;
    }
}

} // namespace

void ResolverMessage::append(std::string rdata) {
    m_records.push_back(std::move(rdata));
}

class PendingLookup::State {
  public:
    State(Dns::Engine const& engine, std::shared_ptr<Dns::Tally> tally, RecordType type,
          std::string const& name)
        : m_lookup(engine, std::move(tally), type, name) {}

    Dns::Lookup m_lookup;
};

PendingLookup::PendingLookup() = default;
PendingLookup::PendingLookup(PendingLookup&&) noexcept = default;
PendingLookup& PendingLookup::operator=(PendingLookup&&) noexcept = default;
PendingLookup::~PendingLookup() = default;
PendingLookup::PendingLookup(std::unique_ptr<State> state) : m_state(std::move(state)) {}

ResolverMessage PendingLookup::wait() {
    return m_state ? m_state->m_lookup.wait() : ResolverMessage();
}

// The settings in force, made on first use, and the counts.
class Resolver::Slot {
  public:
    PreparedResolver engine() {
        ForkBarrier const barrier;
        std::lock_guard<std::mutex> const lock(m_mutex);
        if (!m_engine) {
            m_engine = s_makeDefaultEngine();
        }
        return m_engine;
    }

    // The old engine may end here, which takes a while: not under the lock.
    void publish(PreparedResolver engine) {
        ForkBarrier const barrier;
        std::lock_guard<std::mutex> const lock(m_mutex);
        m_engine.swap(engine);
        m_isOff.store(m_engine->m_context == nullptr && !m_engine->m_broken,
                      std::memory_order_relaxed);
    }

    // Settings under which no name is asked cost a look-up no lock.
    bool isOff() const { return m_isOff.load(std::memory_order_relaxed); }

    // From now on look-ups fail, also those that would not be asked.
    void stop() {
        engine()->m_stop.request_stop();
        m_isOff.store(false, std::memory_order_relaxed);
    }

    std::shared_ptr<Dns::Tally> const m_tally = std::make_shared<Dns::Tally>();

  private:
    std::mutex m_mutex;
    PreparedResolver m_engine;
    std::atomic<bool> m_isOff{false};
};

Resolver::Resolver() : m_slot(std::make_unique<Slot>()) {}
Resolver::~Resolver() = default;

// Never destroyed: threads and static objects may still scan while the process ends.
Resolver& Resolver::instance() {
    static auto* const resolver = new Resolver;
    return *resolver;
}

PreparedResolver Resolver::prepare(ResolverSettings const& settings) {
    return s_makeEngine(settings);
}

void Resolver::configure(PreparedResolver prepared) {
    m_slot->publish(std::move(prepared));
}

void Resolver::configure(ResolverSettings const& settings) {
    configure(prepare(settings));
}

void Resolver::stop() {
    m_slot->stop();
}

ResolverMessage Resolver::submit(RecordType type, std::string const& name,
                                 RecordClass recordClass) {
    return start(type, name, recordClass).wait();
}

PendingLookup Resolver::start(RecordType type, std::string const& name, RecordClass recordClass) {
    if (m_slot->isOff()) {
        return {};
    }
    std::string const asked = Dns::askableName(name);
    if (asked.empty() || recordClass != RecordClass::IN) {
        return {};
    }
    return PendingLookup(
        std::make_unique<PendingLookup::State>(*m_slot->engine(), m_slot->m_tally, type, asked));
}

HostName Resolver::getHostname(IPAddress const& address) {
    if (address.isNull()) {
        return {};
    }
    ResolverMessage const answer =
        submit(RecordType::PTR, Dns::reverseName(address), RecordClass::IN);
    return answer.isEmpty() ? HostName() : HostName(Dns::wireNameText(answer.records().front()));
}

Resolver::Counters Resolver::counters() const {
    return {m_slot->m_tally->m_failed.load(std::memory_order_relaxed),
            m_slot->m_tally->m_late.load(std::memory_order_relaxed)};
}

void Resolver::observe(LookupObserver observer) {
    m_slot->m_tally->m_observer.store(observer, std::memory_order_relaxed);
}

} // namespace Quorvane
