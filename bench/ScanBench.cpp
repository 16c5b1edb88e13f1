// SPDX-License-Identifier: Apache-2.0
//
// What a scan costs, compared with the least that any reader of Received headers has to do: copy
// each, lower-case it, and search it for six words.
#include "DeepHeaderEngine.h"
#include "DeepHeaderScanner.h"
#include "Measure.h"
#include "MsgReceived.h"
#include "platform/HeaderReader.h"
#include "platform/Resolver.h"
#include "support/RuleFolder.h"
#include "Trails.h"

#include <cctype>

namespace Quorvane::Bench {
namespace {

constexpr int messageCount = 2000;

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

    void addParsing() const {
        auto const count = static_cast<double>(m_trails.m_received.size());
        add("one Received header/floor: copy, lower-case, six searches", count,
            [this] { floor(); });
        add("one Received header/MsgReceived: construct, read all fields", count, [this] {
            for (auto const& value : m_trails.m_received) {
                s_readAllFields(value);
            }
        });
    }

    void addScans() const {
        add("one message/floor of its Received headers", messageCount, [this] { floor(); });
        add("one message/headers in memory, addresses given", messageCount, [this] { judgeAll(); });
        add("one message/splitting the header section", messageCount, [this] {
            for (auto const& block : m_trails.m_blocks) {
                keep(HeaderReader::read(block).headers().size());
            }
        });
        add("one message/raw header section, From, To, Return-Path parsed", messageCount,
            [this] { judgeBlocks({}); });
        add("one message/raw header section, addresses given", messageCount,
            [this] { judgeBlocks(EmailAddress::rfc5322Parse("someone@sender1.example", true)); })
            ->ThreadRange(1, 2)
            ->UseRealTime();
    }

    // What the record of a scan costs those who ask for it; the first row asks for none.
    void addRecords() const {
        add("record of a scan/none: postQuery", messageCount, [this] { judgeAll(); });
        std::pair<char const*, RecordDepth> const depths[] = {
            {"result", RecordDepth::result},
            {"steps", RecordDepth::steps},
            {"alternatives", RecordDepth::alternatives},
        };
        for (auto const& [name, depth] : depths) {
            add(std::string("record of a scan/") + name, messageCount,
                [this, depth = depth] { recordAll(depth); });
        }
    }

    // A hop should cost the same, however many there are.
    void addGrowth() const {
        std::string const hop = "Received: " + m_trails.m_received.front() + '\n';
        for (int const hops : {100, 1000, 10000}) {
            std::string block;
            for (int i = 0; i < hops; ++i) {
                block += hop;
            }
            auto const headers = HeaderReader::read(block);
            add("one hop/of " + std::to_string(hops), hops, [=, this] {
                auto query = s_query(headers, m_address, m_properties);
                keep(DeepHeaderScanner().postQuery(query).getNode());
            });
        }
    }

  private:
    void floor() const {
        for (auto const& value : m_trails.m_received) {
            s_floor(value);
        }
    }

    // Properties of its own for each call: threads would else share their count.
    void judgeBlocks(EmailAddress const& address) const {
        RefMessageProperties const properties(true);
        for (auto const& block : m_trails.m_blocks) {
            auto query = s_query(HeaderReader::read(block), address, properties);
            keep(DeepHeaderScanner().postQuery(query).getNode());
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

int main(int argc, char** argv) {
    Quorvane::Bench::ScanBench const bench;
    bench.addParsing();
    bench.addScans();
    bench.addRecords();
    bench.addGrowth();
    return Quorvane::Bench::run(argc, argv);
}
