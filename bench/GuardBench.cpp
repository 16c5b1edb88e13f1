// SPDX-License-Identifier: Apache-2.0
//
// Fixed work for counting: bench/guard runs it under callgrind, and keeps the counts. With the name
// of a case, does its work once to warm up (tables, automatons, memory), then once more in
// guardedWork, whose instructions are counted, and prints the heap allocations of the latter for
// each message. Without a name, prints the names.
#include "DeepHeaderEngine.h"
#include "DeepHeaderScanner.h"
#include "Measure.h"
#include "MsgReceived.h"
#include "platform/HeaderReader.h"
#include "platform/Resolver.h"
#include "support/RuleFolder.h"
#include "Trails.h"

#include <array>
#include <cstdio>
#include <functional>
#include <string_view>

namespace Quorvane::Bench {

// Not inlined, so that callgrind finds it by its name.
__attribute__((noinline)) void guardedWork(std::function<void()> const& work) {
    work();
}

namespace {

constexpr std::size_t messageCount = 200;

class Guard {
  public:
    Guard() : m_trails(makeTrails(messageCount)) {
        m_rules.writeElite(
            Testing::eliteHeader(1, 1, 1),
            // Holds for no message, so that the tree is walked.
            {Testing::deciding(9001, 0.99, 5.0, {EliteCondition{0, Comparison::equals, 77}})});
        m_rules.writeTree(Testing::treeOf(
            {Testing::leaf(10, 1, 0.9), Testing::leaf(7, 1, 0.1), Testing::leaf(33, 0, 0.5)}));
        ResolverSettings off;
        off.m_mode = ResolverSettings::Mode::off;
        Resolver::instance().configure(off);
        DeepHeaderScanner().init();
        for (auto const& block : m_trails.m_blocks) {
            m_containers.push_back(HeaderReader::read(block));
        }
        m_address = EmailAddress::rfc5322Parse("someone@sender1.example", true);
    }

    void readReceived() const {
        for (auto const& value : m_trails.m_received) {
            MsgReceived const hop(value);
            keep(hop.authenticated());
        }
    }

    void split() const {
        for (auto const& block : m_trails.m_blocks) {
            keep(HeaderReader::read(block).headers().size());
        }
    }

    void judge() const {
        for (auto const& headers : m_containers) {
            auto query = queryOf(headers, m_address);
            keep(DeepHeaderScanner().postQuery(query).getNode());
        }
    }

    void judgeRaw() const {
        for (auto const& block : m_trails.m_blocks) {
            auto query = queryOf(HeaderReader::read(block), {});
            keep(DeepHeaderScanner().postQuery(query).getReasons().size());
        }
    }

    void record() const {
        auto const engine = DeepHeaderEngine::inForce();
        for (auto const& headers : m_containers) {
            auto query = queryOf(headers, m_address);
            keep(engine.scan(query, RecordDepth::alternatives).verdict.node);
        }
    }

  private:
    DeepHeaderQuery queryOf(HeaderContainer const& headers, EmailAddress const& address) const {
        DeepHeaderSettings settings;
        settings.spamThreshold = 0.95;
        settings.hamThreshold = 0.95;
        return {headers, Header(), settings, 0, address, address, address, m_properties};
    }

    Testing::RuleFolder m_rules;
    Trails m_trails;
    std::vector<HeaderContainer> m_containers;
    EmailAddress m_address;
    RefMessageProperties m_properties{true};
};

struct Case {
    char const* m_name;
    void (Guard::*m_work)() const;
};

constexpr std::array cases = {
    Case{"received", &Guard::readReceived}, Case{"split", &Guard::split},
    Case{"judge", &Guard::judge},           Case{"judge-raw", &Guard::judgeRaw},
    Case{"record", &Guard::record},
};

int runCase(std::string_view name) {
    for (auto const& each : cases) {
        if (name != each.m_name) {
            continue;
        }
        Guard const guard;
        auto const work = [&] { (guard.*each.m_work)(); };
        work();
        auto const before = allocations();
        guardedWork(work);
        std::printf("%.2f\n", static_cast<double>(allocations() - before) / messageCount);
        return 0;
    }
    std::fprintf(stderr, "there is no case with this name\n");
    return 64;
}

} // namespace
} // namespace Quorvane::Bench

int main(int argc, char** argv) {
    if (argc == 2) {
        return Quorvane::Bench::runCase(argv[1]);
    }
    for (auto const& each : Quorvane::Bench::cases) {
        std::printf("%s\n", each.m_name);
    }
    return 0;
}
