// SPDX-License-Identifier: Apache-2.0
#include "apps/workshop/MailVectors.h"

#include "apps/commandline/ProgramError.h"
#include "apps/host/HostSetup.h"
#include "apps/host/LookupEnd.h"
#include "apps/host/RuleLoader.h"
#include "apps/input/HeaderCheck.h"
#include "apps/input/OrderedPool.h"
#include "apps/input/PooledInputs.h"
#include "apps/story/FailedLookups.h"
#include "platform/HeaderReader.h"
#include "platform/IPAddress.h"
#include "rules/model/RuleError.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace Quorvane::Workshop {

namespace {

bool s_contains(std::vector<IPPrefix> const& prefixes, IPAddress const& address) {
    return std::any_of(prefixes.begin(), prefixes.end(),
                       [&](IPPrefix const& prefix) { return prefix.contains(address); });
}

// Private addresses, and relays that the settings name as the site's.
Rules::IsOwnRelay s_ownRelays(HostSettings const& settings) {
    return [trusted = settings.m_trusted, antiSpam = settings.m_antiSpam,
            internal = settings.m_internal](std::string const& text) {
        IPAddress const address(text);
        return IPAddress::isPrivateAddress(address) || s_contains(trusted, address) ||
               s_contains(antiSpam, address) || s_contains(internal, address);
    };
}

} // namespace

void requireReadable(InputItem const& item) {
    if (!item.m_problem.empty()) {
        bool const isMissing = item.m_exitStatus == ExitStatus::noInput;
        throw Rules::RuleError(isMissing ? Rules::RuleError::Kind::noInput
                                         : Rules::RuleError::Kind::badData,
                               item.m_source + ": " + item.m_problem);
    }
}

HeaderContainer messageHeaders(ScanHost const& host, std::string const& source,
                               std::string_view headers) {
    auto const problem = whyNotJudged(headers, host.settings().m_limits);
    if (!problem.empty()) {
        throw Rules::RuleError(Rules::RuleError::Kind::badData, source + ": " + problem);
    }
    return host.read(headers);
}

// The engine does not start without a tree; an empty tree decides nothing.
MailVectors::MailVectors(HostSettings const& settings, bool wantsRewritten)
    : m_wantsRewritten(wantsRewritten),
      m_depth(settings.m_dns == "off" ? RecordDepth::result : RecordDepth::steps),
      m_host(setUpHost(settings, loadedRules(Rules::RuleSet{}))),
      m_isOwnRelay(s_ownRelays(settings)) {}

void MailVectors::scan(std::vector<std::string> const& paths, Sink const& sink) {
    PooledInputs inputs(paths, m_interrupt, m_host->settings().m_limits);
    LookupEnd const lookupEnd(m_interrupt.token());
    auto const jobs = m_host->settings().m_jobs;
    std::vector<MailVector> vectors(OrderedPool::places(jobs));
    OrderedPool pool(
        jobs,
        {[&](InputItem const& item, std::size_t place) { vectors[place] = vectorOf(item); },
         [&](InputItem const& /*item*/, std::size_t place) {
             sink(vectors[place]);
             return true;
         },
         inputs.source()},
        m_interrupt.token());
    pool.finish();
    if (int const number = m_interrupt.signalNumber(); number != 0) {
        throw ScanInterrupted{number};
    }
}

MailVector MailVectors::vectorOf(InputItem const& item) const {
    MailVector vector;
    vector.m_source = item.m_source;
    vector.m_position = item.m_position;
    if (!item.m_problem.empty()) {
        vector.m_problem = item.m_problem;
        vector.m_exitStatus = item.m_exitStatus;
        return vector;
    }
    vector.m_vector = attributesOf(m_host->read(item.m_headers), vector);
    if (m_wantsRewritten) {
        if (auto const rewritten = Rules::withoutReverseNames(item.m_headers, m_isOwnRelay)) {
            vector.m_withoutReverseName = attributesOf(m_host->read(*rewritten), vector);
        }
    }
    return vector;
}

std::optional<Rules::AttributeVector> MailVectors::attributesOf(HeaderContainer const& headers,
                                                                MailVector& vector) const {
    auto const record = m_host->scan(headers, MessageFacts{}, m_depth);
    vector.m_hasFailedLookup = vector.m_hasFailedLookup || hasFailedLookup(record);
    return record.isJudged() ? std::optional(record.attributes) : std::nullopt;
}

} // namespace Quorvane::Workshop
