// SPDX-License-Identifier: Apache-2.0
//
// Summary: what a run found, counted: for a person after an archive, and for programs. Counts names
// and addresses that senders chose, so it keeps a limited number of them. One thread at a time.
#pragma once

#include "platform/DeepHeaderSettings.h"
#include "platform/Resolver.h"
#include "rules/model/RuleNames.h"
#include "ScanRecord.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Quorvane {

// What the summary counts of one message. Texts are bytes of the message.
struct MessageFigures {
    std::string m_kind;   // as resultKind says
    std::string m_whyNot; // of one that was not judged
    Decision m_decision = Decision::notReached;
    std::int32_t m_node = 0; // 0: no rule decided
    std::string m_relay;     // the newest public one, and its reverse name; empty: none
    std::string m_relayName;
    std::string m_senderDomain;
    bool m_isByOwnRelay = false; // possibleOwnRelay
};

// REQUIRES: a record of depth `steps`.
MessageFigures figuresOf(ScanRecord const& record, DeepHeaderSettings const& settings);

// "DNS: 3 look-ups failed and 1 came too late; ...", with its line break; empty without any.
std::string failedLookupsText(Resolver::Counters const& lookups);

class Summary {
  public:
    // Time starts to count.
    Summary();

    void add(MessageFigures const& figures);
    // An input that could not be read, or is no message.
    void addProblem() { ++m_problems; }

    // Without those that could not be read.
    std::uint64_t messages() const { return m_messages; }

    // What is not counted here.
    struct Run {
        Rules::RuleNames const& m_names;
        std::optional<std::int32_t> m_ruleVersion;
        Resolver::Counters m_lookups;
    };

    // Lines for people, each with its line break.
    std::string text(Run const& run) const;
    // {"summary": {...}} on one line, with its line break.
    std::string json(Run const& run) const;

  private:
    using Counts = std::map<std::string, std::uint64_t>;
    using Relay = std::pair<std::string, std::string>; // address and reverse name, if any
    using Rule = std::pair<Decision, std::int32_t>;

    void countSpam(MessageFigures const& figures);
    double seconds() const;

    std::chrono::steady_clock::time_point m_start;
    std::uint64_t m_messages = 0;
    std::uint64_t m_problems = 0;
    std::uint64_t m_byOwnRelay = 0;
    Counts m_kinds;
    Counts m_whyNot;
    std::map<Rule, std::uint64_t> m_rules;
    std::map<Relay, std::uint64_t> m_spamRelays;
    Counts m_spamDomains;
};

} // namespace Quorvane
