// SPDX-License-Identifier: Apache-2.0
//
// What a scan and its parts cost, compared with the least that any reader of Received headers has
// to do: copy each, lower-case it, and search it for six words. Then the same with two threads, and
// what records and long trails cost.
#include "DeepHeaderEngine.h"
#include "DeepHeaderScanner.h"
#include "Measure.h"
#include "MsgReceived.h"
#include "platform/HeaderReader.h"
#include "platform/Resolver.h"
#include "support/RuleFolder.h"
#include "Trails.h"

#include <array>

namespace Quorvane::Bench {
namespace {

// As many as the cache of a core holds: a host has just read the message that it judges.
constexpr int messageCount = 250;

// ASCII only, so that the compiler makes vector instructions of the loop: an honest floor.
char s_lower(char c) {
    return static_cast<char>(c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c);
}

void s_floor(std::string const& value) {
    std::string text = value;
    for (char& c : text) {
        c = s_lower(c);
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
    ScanBench() : m_trails(benchmarkTrails(messageCount)) {
        s_writeRules(m_rules);
        ResolverSettings off;
        off.m_mode = ResolverSettings::Mode::off;
        Resolver::instance().configure(off);
        DeepHeaderScanner().init();
        for (auto& containers : m_containers) {
            for (auto const& block : m_trails.m_blocks) {
                containers.push_back(HeaderReader::read(block));
            }
        }
        for (auto const& container : m_containers[0]) {
            for (auto const& header : container.headers()) {
                takeAddressText(header);
            }
        }
        m_address = EmailAddress::rfc5322Parse("someone@sender1.example", true);
    }

    void addParsing() const {
        auto const count = static_cast<double>(m_trails.m_received.size());
        add("one Received header/floor: copy, lower-case, six searches", count,
            [this] { floor(); });
        add("one Received header/MsgReceived: construct, read all fields", count,
            [this] { readReceived(); });
    }

    void addScans() const {
        addMessages("one message/floor of its Received headers", [this] { floor(); });
        addMessages("one message/headers in memory, addresses given", [this] { judgeAll(); });
        addMessages("one message/the same by a DeepHeaderEngine", [this] { judgeByEngine(0); });
        addMessages("one message/splitting the header section", [this] { split(); });
        addMessages("one message/reading its addresses", [this] { readAddresses(); });
        addMessages("one message/raw header section, addresses parsed",
                    [this] { judgeBlocks({}); });
        addMessages("one message/raw header section, addresses given",
                    [this] { judgeBlocks(m_address); });
    }

    // What two threads take for a message each, as a share of what one takes for one. CPU time, so
    // that what else runs on the machine does not count: it grows with every cache line that the
    // threads take from each other, but not while one waits for a lock.
    void addThreads() const {
        std::pair<char const*, void (ScanBench::*)(int) const> const parts[] = {
            {"floor", &ScanBench::alone<&ScanBench::floor>},
            {"MsgReceived", &ScanBench::alone<&ScanBench::readReceived>},
            {"headers in memory", &ScanBench::judgeOwn},
            {"the same by a DeepHeaderEngine", &ScanBench::judgeByEngine},
            {"splitting", &ScanBench::alone<&ScanBench::split>},
            {"addresses", &ScanBench::alone<&ScanBench::readAddresses>},
            {"raw header section", &ScanBench::alone<&ScanBench::judgeOwnBlocks>},
        };
        for (auto const& [name, part] : parts) {
            addMessages(std::string("two threads, ") + name + "/threads", [this, part = part](
                                                                              int thread) {
                (this->*part)(thread);
            })->ThreadRange(1, 2);
        }
    }

    // What the record of a scan costs those who ask for it; the first row asks for none.
    void addRecords() const {
        addMessages("record of a scan/none: postQuery", [this] { judgeAll(); });
        std::pair<char const*, RecordDepth> const depths[] = {
            {"result", RecordDepth::result},
            {"steps", RecordDepth::steps},
            {"alternatives", RecordDepth::alternatives},
        };
        for (auto const& [name, depth] : depths) {
            addMessages(std::string("record of a scan/") + name,
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
    template<typename Work>
    benchmark::internal::Benchmark* addMessages(std::string const& name, Work const& work) const {
        return add(name, static_cast<double>(m_trails.m_blocks.size()), work);
    }

    void takeAddressText(Header const& header) {
        for (auto const* name : {"from", "to", "return-path"}) {
            if (header.typeLowerCase() == name) {
                m_addressTexts.push_back(header.value());
            }
        }
    }

    void floor() const {
        for (auto const& value : m_trails.m_received) {
            s_floor(value);
        }
    }

    void readReceived() const {
        for (auto const& value : m_trails.m_received) {
            s_readAllFields(value);
        }
    }

    void split() const {
        for (auto const& block : m_trails.m_blocks) {
            keep(HeaderReader::read(block).headers().size());
        }
    }

    void readAddresses() const {
        for (auto const& text : m_addressTexts) {
            keep(EmailAddress::rfc5322Parse(text, true).isNull());
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

    void judgeOwnBlocks() const { judgeBlocks({}); }

    static void judge(std::vector<HeaderContainer> const& containers, EmailAddress const& address,
                      RefMessageProperties const& properties) {
        for (auto const& headers : containers) {
            auto query = s_query(headers, address, properties);
            keep(DeepHeaderScanner().postQuery(query).getNode());
        }
    }

    void judgeAll() const { judge(m_containers[0], m_address, m_properties); }

    // Nor do threads of a host judge the same message.
    void judgeOwn(int thread) const {
        judge(m_containers.at(static_cast<std::size_t>(thread)), m_address,
              RefMessageProperties(true));
    }

    // As programs do that keep the engine: nothing is shared.
    void judgeByEngine(int thread) const {
        auto const engine = DeepHeaderEngine::inForce();
        RefMessageProperties const properties(true);
        for (auto const& headers : m_containers.at(static_cast<std::size_t>(thread))) {
            auto query = s_query(headers, m_address, properties);
            keep(engine.scan(query, RecordDepth::result).verdict.node);
        }
    }

    template<void (ScanBench::*work)() const>
    void alone(int /*thread*/) const {
        (this->*work)();
    }

    void recordAll(RecordDepth depth) const {
        auto const engine = DeepHeaderEngine::inForce();
        for (auto const& headers : m_containers[0]) {
            auto query = s_query(headers, m_address, m_properties);
            keep(engine.scan(query, depth).verdict.node);
        }
    }

    Testing::RuleFolder m_rules;
    Trails m_trails;
    std::array<std::vector<HeaderContainer>, 2> m_containers; // the same for each of two threads
    std::vector<std::string> m_addressTexts;
    EmailAddress m_address;
    RefMessageProperties m_properties{true};
};

} // namespace
} // namespace Quorvane::Bench

int main(int argc, char** argv) {
    Quorvane::Bench::ScanBench const bench;
    bench.addParsing();
    bench.addScans();
    bench.addThreads();
    bench.addRecords();
    bench.addGrowth();
    return Quorvane::Bench::run(argc, argv);
}
