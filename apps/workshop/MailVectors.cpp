// SPDX-License-Identifier: Apache-2.0
#include "apps/workshop/MailVectors.h"

#include "apps/host/HostSetup.h"
#include "apps/host/RuleLoader.h"
#include "apps/settings/ExitCode.h"
#include "platform/HeaderReader.h"
#include "platform/IPAddress.h"
#include "rules/model/RuleError.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <future>
#include <thread>
#include <utility>

namespace Quorvane::Workshop {

namespace {

// Enough to keep all cores at work between two joins.
constexpr std::size_t batchItems = 2048;
// Header sections of one batch.
constexpr std::size_t batchBytes = std::size_t{32} << 20;

bool s_contains(std::vector<IPPrefix> const& prefixes, IPAddress const& address) {
    return std::any_of(prefixes.begin(), prefixes.end(),
                       [&](IPPrefix const& prefix) { return prefix.contains(address); });
}

// Private addresses, and whatever relays the settings name as the site's.
Rules::IsOwnRelay s_ownRelays(HostSettings const& settings) {
    return [trusted = settings.m_trusted, antiSpam = settings.m_antiSpam,
            internal = settings.m_internal](std::string const& text) {
        IPAddress const address(text);
        return IPAddress::isPrivateAddress(address) || s_contains(trusted, address) ||
               s_contains(antiSpam, address) || s_contains(internal, address);
    };
}

std::vector<InputItem> s_readBatch(Inputs& inputs) {
    std::vector<InputItem> batch;
    std::size_t bytes = 0;
    InputItem item;
    while (batch.size() < batchItems && bytes < batchBytes && inputs.next(item)) {
        bytes += item.m_headers.size();
        batch.push_back(std::move(item));
        item = {};
    }
    return batch;
}

[[noreturn]] void s_refuse(InputItem const& item, std::string const& problem) {
    auto const kind = item.m_exitCode == ExitCode::noInput ? Rules::RuleError::Kind::noInput
                                                           : Rules::RuleError::Kind::badData;
    throw Rules::RuleError(kind, item.m_source + ": " + problem);
}

} // namespace

// The engine will not start without a tree; one without records decides nothing.
MailVectors::MailVectors(HostSettings const& settings, bool wantsRewritten)
    : m_wantsRewritten(wantsRewritten), m_host(setUpHost(settings, engineOf(Rules::RuleSet{}))),
      m_isOwnRelay(s_ownRelays(settings)) {}

void MailVectors::scan(std::vector<std::string> const& paths, Sink const& sink) {
    Inputs inputs(paths, m_interrupt);
    try {
        scanInputs(inputs, sink);
    } catch (Interrupted const&) {
        throw ScanInterrupted{m_interrupt.signalNumber()};
    }
}

void MailVectors::scanInputs(Inputs& inputs, Sink const& sink) {
    auto batch = s_readBatch(inputs);
    while (!batch.empty()) {
        auto next = std::async(std::launch::async, [&inputs] { return s_readBatch(inputs); });
        for (auto const& vector : scanBatch(batch)) {
            sink(vector);
        }
        checkInterrupt();
        batch = next.get();
    }
}

void MailVectors::checkInterrupt() {
    if (m_interrupt.signalNumber() != 0) {
        throw Interrupted();
    }
}

std::vector<MailVector> MailVectors::scanBatch(std::vector<InputItem> const& batch) const {
    std::vector<MailVector> vectors(batch.size());
    std::atomic<std::size_t> next{0};
    auto const work = [&] {
        for (auto i = next++; i < batch.size(); i = next++) {
            vectors[i] = vectorOf(batch[i]);
        }
    };
    auto const jobs = m_host->settings().m_jobs;
    auto const threads = jobs != 0 ? jobs : std::max(1U, std::thread::hardware_concurrency());
    std::vector<std::future<void>> workers;
    for (unsigned int i = 0; i < threads; ++i) {
        workers.push_back(std::async(std::launch::async, work));
    }
    for (auto& worker : workers) {
        worker.get();
    }
    return vectors;
}

MailVector MailVectors::vectorOf(InputItem const& item) const {
    if (!item.m_problem.empty()) {
        s_refuse(item, item.m_problem);
    }
    if (HeaderReader::read(item.m_headers).headers().empty()) {
        s_refuse(item, "no message: it has no header field");
    }
    MailVector vector;
    vector.m_source = item.m_source;
    vector.m_vector = attributesOf(item.m_headers);
    if (m_wantsRewritten) {
        if (auto const rewritten = Rules::withoutReverseNames(item.m_headers, m_isOwnRelay)) {
            vector.m_withoutReverseName = attributesOf(*rewritten);
        }
    }
    return vector;
}

std::optional<Rules::AttributeVector>
MailVectors::attributesOf(std::string const& headerSection) const {
    auto const record =
        m_host->scan(HeaderReader::read(headerSection), MessageFacts{}, RecordDepth::result);
    return record.isJudged() ? std::optional(record.attributes) : std::nullopt;
}

} // namespace Quorvane::Workshop
