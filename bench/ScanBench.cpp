// SPDX-License-Identifier: Apache-2.0
//
// What a scan costs, against the least that any reader of Received headers has to do: copy each,
// lower-case it, and search it for six words.
#include "DeepHeaderEngine.h"
#include "DeepHeaderScanner.h"
#include "MsgReceived.h"
#include "platform/HeaderReader.h"
#include "platform/Resolver.h"
#include "SideBySide.h"
#include "support/RuleFolder.h"
#include "Trails.h"
#include "TwoThreads.h"

#include <cctype>

namespace Quorvane::Bench {
namespace {

constexpr std::size_t messageCount = 2000;

void s_floor(std::string const& value) {
    std::string text = value;
    for (char& c : text) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    for (char const* word : {"from ", " by ", "helo", "[", "authenticated", ";"}) {
        keep(text.find(word));
    }
}

void s_readAllFields(std::string const& value) {
    MsgReceived const hop(value);
    keep(hop.from());
    keep(hop.by());
    keep(hop.reverseName());
    keep(hop.address());
    keep(hop.authenticated());
}

DeepHeaderSettings s_settings() {
    DeepHeaderSettings settings;
    settings.spamThreshold = 0.95;
    settings.hamThreshold = 0.95;
    return settings;
}

DeepHeaderQuery s_query(HeaderContainer const& headers, EmailAddress const& address,
                        RefMessageProperties const& properties) {
    return {headers, Header(), s_settings(), 0, address, address, address, properties};
}

// The rules of a tree that looks at a few attributes, as real ones do.
void s_writeRules(Testing::RuleFolder const& rules) {
    rules.writeTree(Testing::treeOf({Testing::leaf(10, 1, 0.9), Testing::leaf(7, 1, 0.1),
                                     Testing::leaf(33, 0, 0.5), Testing::leaf(33, 1, 0.2)}));
}

class ScanBench {
  public:
    ScanBench() : m_trails(makeTrails(messageCount)) {
        s_writeRules(m_rules);
        ResolverSettings off;
        off.m_mode = ResolverSettings::Mode::off;
        Resolver::instance().configure(off);
        DeepHeaderScanner().init();
        for (auto const& block : m_trails.m_blocks) {
            m_containers.push_back(HeaderReader::read(block));
        }
        m_address = EmailAddress::rfc5322Parse("someone@sender1.example", true);
    }

    void parse() const {
        SideBySide table("Reading one Received header", "header",
                         static_cast<double>(m_trails.m_received.size()));
        table.add("floor: copy, lower-case, six searches", [this] { floor(); });
        table.add("MsgReceived: construct, read all fields", [this] {
            for (auto const& value : m_trails.m_received) {
                s_readAllFields(value);
            }
        });
        table.run();
    }

    void scan() const {
        SideBySide table("Judging one message, without look-ups", "message", messageCount);
        table.add("floor of its Received headers", [this] { floor(); });
        table.add("headers in memory, addresses given", [this] { judgeAll(); });
        table.add("splitting the header section", [this] {
            for (auto const& block : m_trails.m_blocks) {
                keep(HeaderReader::read(block).headers().size());
            }
        });
        table.add("raw header section, From, To, Return-Path parsed", [this] {
            for (auto const& block : m_trails.m_blocks) {
                auto query = s_query(HeaderReader::read(block), {}, m_properties);
                keep(DeepHeaderScanner().postQuery(query).getNode());
            }
        });
        table.run();
    }

    // What the record of a scan costs those who ask for it; the first row asks for none.
    void record() const {
        SideBySide table("Recording a scan", "message", messageCount);
        table.add("no record: postQuery", [this] { judgeAll(); });
        table.add("result", [this] { recordAll(RecordDepth::result); });
        table.add("steps", [this] { recordAll(RecordDepth::steps); });
        table.add("alternatives", [this] { recordAll(RecordDepth::alternatives); });
        table.run();
    }

    // Ten times the hops should cost ten times as much.
    void growth() const {
        SideBySide table("Growth with the number of hops", "hop", 10000.0);
        std::string const hop = "Received: " + m_trails.m_received.front() + '\n';
        for (std::size_t const hops : {100U, 1000U, 10000U}) {
            std::string block;
            for (std::size_t i = 0; i < hops; ++i) {
                block += hop;
            }
            auto const headers = HeaderReader::read(block);
            auto const repeats = 10000 / hops;
            table.add(std::to_string(hops) + " hops, 10,000 in all", [=, this] {
                for (std::size_t i = 0; i < repeats; ++i) {
                    auto query = s_query(headers, m_address, m_properties);
                    keep(DeepHeaderScanner().postQuery(query).getNode());
                }
            });
        }
        table.run();
    }

    void threads() const {
        printTwoThreadGain([this] {
            RefMessageProperties const properties(true);
            auto const address = EmailAddress::rfc5322Parse("someone@sender1.example", true);
            for (int pass = 0; pass < 5; ++pass) {
                for (auto const& block : m_trails.m_blocks) {
                    auto query = s_query(HeaderReader::read(block), address, properties);
                    keep(DeepHeaderScanner().postQuery(query).getNode());
                }
            }
        });
    }

  private:
    void floor() const {
        for (auto const& value : m_trails.m_received) {
            s_floor(value);
        }
    }

    void judgeAll() const {
        for (auto const& headers : m_containers) {
            auto query = s_query(headers, m_address, m_properties);
            keep(DeepHeaderScanner().postQuery(query).getNode());
        }
    }

    void recordAll(RecordDepth depth) const {
        auto const engine = DeepHeaderEngine::inForce();
        for (auto const& headers : m_containers) {
            auto query = s_query(headers, m_address, m_properties);
            keep(engine.scan(query, depth).verdict.node);
        }
    }

    Testing::RuleFolder m_rules;
    Trails m_trails;
    std::vector<HeaderContainer> m_containers;
    EmailAddress m_address;
    RefMessageProperties m_properties{true};
};

} // namespace
} // namespace Quorvane::Bench

int main() {
    Quorvane::Bench::ScanBench const bench;
    bench.parse();
    bench.scan();
    bench.record();
    bench.growth();
    bench.threads();
    return 0;
}
