// SPDX-License-Identifier: Apache-2.0
//
// The only source that knows prometheus-cpp, whose headers are slow to compile.
#include "apps/milter/Metrics.h"

#include "apps/story/StepText.h"
#include "apps/story/VerdictStory.h"

#include <prometheus/counter.h>
#include <prometheus/gauge.h>
#include <prometheus/histogram.h>
#include <prometheus/registry.h>
#include <prometheus/text_serializer.h>

namespace Quorvane::Milter {

namespace {

using prometheus::BuildCounter;
using prometheus::BuildGauge;
using prometheus::BuildHistogram;

// Seconds. Without DNS a scan takes tens of microseconds; look-ups end after seconds at most.
prometheus::Histogram::BucketBoundaries const& s_times() {
    static prometheus::Histogram::BucketBoundaries const times{
        0.00005, 0.0001, 0.00025, 0.001, 0.005, 0.02, 0.05, 0.1, 0.25, 0.5, 1, 2, 5, 10};
    return times;
}

} // namespace

struct Metrics::Families {
    prometheus::Registry m_registry;
    prometheus::Family<prometheus::Counter>& m_messages =
        BuildCounter()
            .Name("qvmilter_messages_total")
            .Help("Messages by verdict and by what became of them")
            .Register(m_registry);
    prometheus::Family<prometheus::Counter>& m_failures =
        BuildCounter()
            .Name("qvmilter_failures_total")
            .Help("Messages that could not be judged, by class")
            .Register(m_registry);
    prometheus::Family<prometheus::Counter>& m_lookups =
        BuildCounter()
            .Name("qvmilter_lookups_total")
            .Help("DNS look-ups by result, of scans and of lists")
            .Register(m_registry);
    prometheus::Counter& m_exempted = BuildCounter()
                                          .Name("qvmilter_exempted_total")
                                          .Help("Messages of exempted clients, not judged")
                                          .Register(m_registry)
                                          .Add({});
    prometheus::Family<prometheus::Counter>& m_reloads = BuildCounter()
                                                             .Name("qvmilter_reloads_total")
                                                             .Help("Reloads by result")
                                                             .Register(m_registry);
    prometheus::Gauge& m_sessions = BuildGauge()
                                        .Name("qvmilter_sessions")
                                        .Help("Sessions with mail servers that are open")
                                        .Register(m_registry)
                                        .Add({});
    prometheus::Gauge& m_version = BuildGauge()
                                       .Name("qvmilter_rule_version")
                                       .Help("Version of the rules in force; 0: none")
                                       .Register(m_registry)
                                       .Add({});
    prometheus::Gauge& m_loaded = BuildGauge()
                                      .Name("qvmilter_rules_loaded_timestamp_seconds")
                                      .Help("When the rules in force were loaded")
                                      .Register(m_registry)
                                      .Add({});
    prometheus::Histogram& m_scanTimes = BuildHistogram()
                                             .Name("qvmilter_scan_seconds")
                                             .Help("Time from the end of a message to its verdict")
                                             .Register(m_registry)
                                             .Add({}, s_times());
    prometheus::Histogram& m_dnsTimes = BuildHistogram()
                                            .Name("qvmilter_dns_seconds")
                                            .Help("Time of DNS look-ups")
                                            .Register(m_registry)
                                            .Add({}, s_times());
};

Metrics::Metrics() : m_families(std::make_unique<Families>()) {}

Metrics::~Metrics() = default;

void Metrics::sessions(int change) {
    m_families->m_sessions.Increment(change);
}

void Metrics::message(Judgement const& judgement, Action const& action, double seconds) {
    m_families->m_messages
        .Add({{"verdict", verdictName(judgement.m_verdict)}, {"action", actionWord(action)}})
        .Increment();
    if (judgement.m_failure) {
        m_families->m_failures.Add({{"class", failureWord(*judgement.m_failure)}}).Increment();
    }
    if (judgement.m_record) {
        m_families->m_scanTimes.Observe(seconds);
    }
}

void Metrics::lookup(LookupResult result, std::chrono::duration<double> time) {
    if (result != LookupResult::notAsked) {
        m_families->m_lookups.Add({{"result", lookupName(result)}}).Increment();
        m_families->m_dnsTimes.Observe(time.count());
    }
}

void Metrics::exempted() {
    m_families->m_exempted.Increment();
}

void Metrics::rules(std::int32_t version, std::chrono::system_clock::time_point loaded) {
    m_families->m_version.Set(version);
    m_families->m_loaded.Set(std::chrono::duration<double>(loaded.time_since_epoch()).count());
}

void Metrics::reloaded(bool isDone) {
    m_families->m_reloads.Add({{"result", isDone ? "done" : "refused"}}).Increment();
}

std::string Metrics::text() const {
    return prometheus::TextSerializer().Serialize(m_families->m_registry.Collect());
}

} // namespace Quorvane::Milter
