// SPDX-License-Identifier: Apache-2.0
//
// How cost grows: CPU seconds of a piece of work against its size, one line a point: curve, size,
// seconds. The least of several turns, so that what else the machine does counts little.
#include "DeepHeaderEngine.h"
#include "DeepHeaderScanner.h"
#include "Measure.h"
#include "platform/HeaderReader.h"
#include "platform/Resolver.h"
#include "rules/format/RuleFiles.h"
#include "support/RuleFolder.h"
#include "Trails.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <limits>
#include <string>

namespace Quorvane::Bench {
namespace {

constexpr int turns = 5;

double s_cpuSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

// Short work is repeated, so that the clock can tell.
template<typename Work>
void s_point(char const* curve, std::size_t size, Work work) {
    auto const repeats = std::max<std::size_t>(1, 10'000 / size);
    double least = std::numeric_limits<double>::max();
    for (int turn = 0; turn < turns; ++turn) {
        auto const start = s_cpuSeconds();
        for (std::size_t i = 0; i < repeats; ++i) {
            work();
        }
        least = std::min(least, (s_cpuSeconds() - start) / static_cast<double>(repeats));
    }
    std::printf("%s,%zu,%.9f\n", curve, size, least);
    std::fflush(stdout);
}

void s_judge(std::string const& section) {
    static RefMessageProperties const properties(true);
    DeepHeaderQuery query(HeaderReader::read(section), Header(), DeepHeaderSettings(), 0, {}, {},
                          {}, properties);
    keep(DeepHeaderScanner().postQuery(query).getNode());
}

std::string s_repeated(std::size_t count, std::string const& text) {
    std::string whole;
    for (std::size_t i = 0; i < count; ++i) {
        whole += text;
    }
    return whole;
}

void s_loadRules(std::size_t eliteRules) {
    static Testing::RuleFolder const rules;
    // Holds for no message, so that all are tried.
    auto const rule =
        Testing::deciding(9001, 0.99, 5.0, {EliteCondition{0, Comparison::equals, 77}});
    rules.writeElite(Testing::eliteHeader(static_cast<std::int32_t>(eliteRules), 1, 1),
                     std::vector<EliteNodes>(eliteRules, rule));
    rules.writeTree(Testing::treeOf({Testing::leaf(0, 1, 0.9)}));
    DeepHeaderScanner().init();
}

void s_run() {
    ResolverSettings off;
    off.m_mode = ResolverSettings::Mode::off;
    Resolver::instance().configure(off);
    auto const trails = makeTrails(1000);
    auto const hop = "Received: " + trails.m_received.front() + '\n';
    s_loadRules(1);
    for (std::size_t const hops : {1, 10, 100, 1000, 10000}) {
        auto const section = s_repeated(hops, hop);
        s_point("hops of a message", hops, [&] { s_judge(section); });
    }
    for (std::size_t const bytes : {100, 1000, 10'000, 100'000, 1'000'000, 10'000'000}) {
        auto const section = "Received: from a.example (b.example [192.0.2.1]) by " +
                             s_repeated(bytes / 10, "c.example ") + '\n';
        s_point("bytes of a Received header", bytes, [&] { s_judge(section); });
        // From a megabyte on, memory has to come from the system each time.
        s_point("the same bytes copied twice", bytes, [&] {
            std::string const copy(section);
            keep(std::string(copy));
        });
    }
    for (std::size_t const messages : {1, 10, 100, 1000, 10'000, 100'000, 1'000'000}) {
        s_point("messages of a process", messages, [&] {
            for (std::size_t i = 0; i < messages; ++i) {
                s_judge(trails.m_blocks[i % trails.m_blocks.size()]);
            }
        });
    }
    for (std::size_t const rules : {1, 10, 100, 1000, maxEliteNodes}) {
        s_loadRules(rules);
        s_point("elite rules", rules, [&] { s_judge(trails.m_blocks.front()); });
    }
}

} // namespace
} // namespace Quorvane::Bench

int main() {
    Quorvane::Bench::s_run();
    return 0;
}
