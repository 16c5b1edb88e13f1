// SPDX-License-Identifier: Apache-2.0
#include "apps/qvscan/RelayFinder.h"

#include "apps/commandline/Program.h"
#include "apps/commandline/Progress.h"
#include "apps/host/HostSetup.h"
#include "apps/host/LookupEnd.h"
#include "apps/input/Inputs.h"
#include "apps/input/InputSize.h"
#include "apps/input/OrderedPool.h"
#include "apps/input/PooledInputs.h"
#include "apps/story/OwnRelay.h"
#include "apps/text/NumberText.h"
#include "apps/text/Utf8.h"
#include "platform/HeaderReader.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <map>
#include <utility>
#include <vector>

namespace Quorvane {

namespace {

// A chain of relays of one site is not longer.
constexpr int maxPasses = 6;
// A relay of the site carries more than one message in 250.
constexpr std::uint64_t leastShare = 250;
// One relay that carries a quarter of all mail may be the site's own, whatever its name.
constexpr std::uint64_t commonShare = 4;
constexpr std::uint64_t fewMessages = 20;
// Spam has as many relays as there are infected machines.
constexpr std::size_t maxRelays = 100'000;

struct Relay {
    std::string m_name;     // its reverse name; empty: none was recorded
    std::string m_receiver; // the host that received from it
    std::uint64_t m_messages = 0;
    bool m_isOwn = false; // possibleOwnRelay
};

using Relays = std::map<std::string, Relay>; // by address

// One judgement of the whole archive.
struct Pass {
    std::uint64_t m_messages = 0;
    std::map<std::string, std::uint64_t> m_kinds; // resultKind
    Relays m_relays;
};

struct Found {
    std::string m_kind;
    std::string m_address; // empty: no relay was judged
    Relay m_relay;
};

Found s_found(ScanRecord const& record) {
    Found found;
    found.m_kind = resultKind(record);
    if (auto const* const hop = judgedRelay(record)) {
        found.m_address = hop->address.asString(true);
        found.m_relay = {hop->reverseName, hop->by, 1, possibleOwnRelay(record) == hop};
    }
    return found;
}

void s_add(Pass& pass, Found const& found) {
    ++pass.m_messages;
    ++pass.m_kinds[found.m_kind];
    auto const known = pass.m_relays.find(found.m_address);
    if (known != pass.m_relays.end()) {
        ++known->second.m_messages;
        known->second.m_isOwn = known->second.m_isOwn || found.m_relay.m_isOwn;
    } else if (!found.m_address.empty() && pass.m_relays.size() < maxRelays) {
        pass.m_relays.emplace(found.m_address, found.m_relay);
    }
}

class RelayFinder {
  public:
    RelayFinder(ScanOptions const& options, HostSettings settings, Interrupt& interrupt)
        : m_options(options), m_settings(std::move(settings)), m_interrupt(interrupt),
          m_size(options.m_paths), m_progress("qvscan", [this] { return m_size.bytes(); }) {}

    int run() {
        auto pass = judgeAll();
        auto const before = pass;
        for (int number = 1; number < maxPasses && takeOwn(pass); ++number) {
            pass = judgeAll();
        }
        if (m_interrupt.signalNumber() != 0) {
            return ExitStatus::interrupted + m_interrupt.signalNumber();
        }
        m_progress.clear();
        printOutput(proposal(before, pass));
        return m_problem;
    }

  private:
    Pass judgeAll() {
        auto const host = setUpHost(m_settings, "--root, or root in the settings file,");
        Pass pass;
        m_progress.begin("messages");
        PooledInputs inputs(m_options.m_paths, m_interrupt, m_settings.m_limits);
        std::vector<std::optional<Found>> found(OrderedPool::places(m_settings.m_jobs));
        OrderedPool pool(
            m_settings.m_jobs,
            {[&](InputItem const& item, std::size_t place) { found[place] = judge(*host, item); },
             [&](InputItem const& item, std::size_t place) {
                 if (found[place]) {
                     s_add(pass, *found[place]);
                 } else if (!item.m_problem.empty()) {
                     note(item);
                 }
                 m_progress.update(pass.m_messages);
                 m_progress.doneTo(item.m_position);
                 return true;
             },
             inputs.source()},
            m_interrupt.token());
        pool.finish(); // run looks at the signal
        m_isFirst = false;
        return pass;
    }

    // Empty for a problem, and for a message of another time.
    std::optional<Found> judge(ScanHost const& host, InputItem const& item) const {
        if (!item.m_problem.empty()) {
            return std::nullopt;
        }
        auto const headers = host.read(item.m_headers);
        if (!m_options.m_filter.isInPeriod(headers)) {
            return std::nullopt;
        }
        return s_found(host.scan(headers, m_options.m_facts, RecordDepth::steps));
    }

    // A problem shows in every pass.
    void note(InputItem const& item) {
        if (m_isFirst) {
            m_problem = m_problem == 0 ? item.m_exitStatus : m_problem;
            m_progress.clear();
            std::cerr << "qvscan: " << toPrintable(item.m_source + ": " + item.m_problem) << '\n';
        }
    }

    // Those that may be own become internal; false when there are none.
    bool takeOwn(Pass const& pass) {
        auto const least = std::max<std::uint64_t>(2, pass.m_messages / leastShare);
        bool isAny = false;
        for (auto const& [address, relay] : pass.m_relays) {
            if (relay.m_isOwn && relay.m_messages >= least &&
                m_own.emplace(address, relay).second) {
                m_settings.m_internal.push_back(IPPrefix::parse(address));
                isAny = true;
            }
        }
        return isAny && m_interrupt.signalNumber() == 0;
    }

    std::string proposal(Pass const& before, Pass const& after) const;
    std::string commonRelays(Pass const& after) const;

    ScanOptions const& m_options;
    HostSettings m_settings;
    std::vector<IPPrefix> m_before = m_settings.m_internal;
    Interrupt& m_interrupt;
    InputSize m_size;
    Progress m_progress;
    Relays m_own;
    bool m_isFirst = true;
    int m_problem = 0;
};

// Most messages first.
std::vector<std::pair<std::string, Relay>> s_sorted(Relays const& relays) {
    std::vector<std::pair<std::string, Relay>> sorted(relays.begin(), relays.end());
    std::stable_sort(sorted.begin(), sorted.end(), [](auto const& a, auto const& b) {
        return a.second.m_messages > b.second.m_messages;
    });
    return sorted;
}

std::string s_line(std::string const& address, Relay const& relay) {
    auto const name = relay.m_name.empty() ? std::string("no reverse name") : relay.m_name;
    return "\"" + address + "\", # " + toPrintable(name) + ", to " + toPrintable(relay.m_receiver) +
           ": " + groupedText(relay.m_messages) + " messages\n";
}

std::string s_counts(char const* when, Pass const& pass) {
    std::string text = std::string("# ") + when;
    for (auto const* const kind : {"spam", "ham", "none", "unjudged"}) {
        auto const found = pass.m_kinds.find(kind);
        auto const count = groupedText(found == pass.m_kinds.end() ? 0 : found->second);
        constexpr std::size_t width = 11;
        text += std::string(width - std::min(width, count.size()), ' ') + count;
    }
    return text + "\n";
}

// Relays of other domains that carry so much that a person should look at them.
std::string RelayFinder::commonRelays(Pass const& after) const {
    std::string text;
    for (auto const& [address, relay] : s_sorted(after.m_relays)) {
        if (relay.m_messages >= fewMessages && relay.m_messages * commonShare >= after.m_messages) {
            text += "# " + s_line(address, relay);
        }
    }
    return text.empty() ? text
                        : "# A great part of the mail came through these. If they are the site's "
                          "own, list them, too:\n" +
                              text;
}

std::string RelayFinder::proposal(Pass const& before, Pass const& after) const {
    auto const all = "# " + groupedText(before.m_messages) + " messages were judged. ";
    auto const common = commonRelays(after);
    if (m_own.empty()) {
        return all + "No relay has the domain of the host that received from it.\n" + common;
    }
    auto text = all + "These relays have the domain of the host that received from\n"
                      "# them. Check that they are the site's own, then put the lines into the "
                      "settings file.\ninternal = [\n";
    for (auto const& prefix : m_before) {
        text += "    \"" + prefix.asString() + "\", # set already\n";
    }
    for (auto const& [address, relay] : s_sorted(m_own)) {
        text += "    " + s_line(address, relay);
    }
    return text + "]\n" + common + "# What changes:  spam        ham       none   unjudged\n" +
           s_counts("before", before) + s_counts("after ", after);
}

void s_requireFiles(std::vector<std::string> const& paths) {
    for (auto const& path : paths) {
        std::error_code error;
        auto const status = std::filesystem::status(inputName(path).m_path, error);
        if (path == "-" || std::filesystem::is_fifo(status)) {
            throw UsageError("--find-relays reads its input several times: give files or folders");
        }
    }
    if (paths.empty()) {
        throw UsageError("--find-relays needs files or folders of messages");
    }
}

} // namespace

int findRelays(ScanOptions const& options, HostSettings const& settings, Interrupt& interrupt) {
    s_requireFiles(options.m_paths);
    LookupEnd const lookupEnd(interrupt.token());
    return RelayFinder(options, settings, interrupt).run();
}

} // namespace Quorvane
