// SPDX-License-Identifier: Apache-2.0
//
// Scans with look-ups on several threads while others load rules and change settings, for a time or
// for a number of scans, and says what became of the memory.
//
// soak SECONDS | soak --scans N
#include "DeepHeaderScanner.h"
#include "platform/DynamicIdentifier.h"
#include "platform/Resolver.h"
#include "platform/TrustedMTASet.h"
#include "support/RuleFolder.h"
#include "support/SteadyScans.h"

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>
#include <unistd.h>

using namespace Quorvane;
using namespace Quorvane::Testing;

namespace {

using Clock = std::chrono::steady_clock;

constexpr int threads = 4;
constexpr int sets = 100;
constexpr std::uint64_t reportEvery = 1'000'000;

long s_residentKilobytes() {
    std::ifstream statm("/proc/self/statm");
    long size = 0;
    long resident = 0;
    statm >> size >> resident;
    return resident * ::sysconf(_SC_PAGESIZE) / 1024;
}

// The confidence of the set in force, or none while a prefix is trusted; whatever DNS says.
bool s_isRight(DeepHeaderAnswer const& /*answer*/) {
    Message message(
        received("relay.example", "dyn-192-0-2-7.relay.example", "192.0.2.7", "c.example") +
        "From: \"A name\" <author@organisation.example>\n"
        "Return-Path: <b@relay.example>\nMessage-ID: <1@relay.example>\n");
    message.m_settings.spamThreshold = 0.1;
    auto query = message.query();
    auto const number = numberIn(DeepHeaderScanner().postQuery(query));
    return number >= 0 && number < sets;
}

ResolverSettings s_resolver(int number) {
    ResolverSettings settings;
    settings.m_mode = ResolverSettings::Mode::local;
    settings.m_zoneData = {"relay.example. A 192.0.2." + std::to_string(number % 200 + 1),
                           "dyn-192-0-2-7.relay.example. A 192.0.2.9"};
    return settings;
}

void s_change(RuleFolder const& rules, int number) {
    rules.writeElite(eliteHeader(0, 1, 1), {});
    rules.writeTree(treeOf({leaf(0, 0, markOf(number % sets)), leaf(0, 1, markOf(number % sets))}));
    DeepHeaderScanner().init();
    TrustedMTASetRef::install({IPPrefix::parse("198.51.100.0/24")}, {},
                              {IPPrefix::parse("10.0.0.0/8")});
    Telvanis::DynamicIdentifierSingleton::install(
        Telvanis::DynamicIdentifier::compile("^dyn-" + std::to_string(number % 5), "soak"));
    if (number % 100 == 0) { // a context and its threads cost milliseconds
        Resolver::instance().configure(s_resolver(number));
    }
}

void s_report(SteadyScans const& scans, int changes) {
    std::cout << scans.scanned() << " scans, " << changes << " reloads and changes of settings, "
              << s_residentKilobytes() << " KiB resident" << std::endl;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::cerr << "usage: soak SECONDS | soak --scans N\n";
        return 64;
    }
    bool const countsScans = argc > 2 && std::string(argv[1]) == "--scans";
    auto const limit = std::strtoull(argv[countsScans ? 2 : 1], nullptr, 10);
    auto const end = Clock::now() + std::chrono::seconds(countsScans ? 0 : limit);
    RuleFolder const rules;
    s_change(rules, 0);
    SteadyScans scans(threads, s_isRight);
    int changes = 0;
    std::uint64_t reported = 0;
    while (countsScans ? scans.scanned() < limit : Clock::now() < end) {
        s_change(rules, ++changes);
        if (scans.scanned() / reportEvery > reported) {
            reported = scans.scanned() / reportEvery;
            s_report(scans, changes);
        }
    }
    auto const wrong = scans.stop();
    s_report(scans, changes);
    std::cout << wrong << " answers were wrong" << std::endl;
    return wrong == 0 ? 0 : 1;
}
