// SPDX-License-Identifier: Apache-2.0
//
// What the look-ups of a scan cost when the name server answers after 20 ms. No name is asked for
// twice, so no answer comes from memory.
#include "DeepHeaderScanner.h"
#include "Measure.h"
#include "platform/HeaderReader.h"
#include "platform/Host.h"
#include "platform/Resolver.h"
#include "support/LateDnsServer.h"
#include "support/RuleFolder.h"

namespace Quorvane::Bench {
namespace {

constexpr std::chrono::milliseconds delay{20};

class LookupBench {
  public:
    LookupBench() {
        m_rules.writeTree({});
        ResolverSettings settings;
        settings.m_mode = ResolverSettings::Mode::servers;
        settings.m_servers = {m_server.address()};
        Resolver::instance().configure(settings);
        DeepHeaderScanner().init();
    }

    void addAll() {
        add("floor: the addresses of one name", 1, [this] {
            keep(Host(freshName("client"), true).isNull());
        })->UseRealTime();
        add("whether one name resolves", 1, [this] { lookUp("relay"); })->UseRealTime();
        add("all three look-ups of a scan, one after the other", 1, [this] {
            keep(Host(freshName("client"), true).isNull());
            lookUp("relay");
            lookUp("sender");
        })->UseRealTime();
        add("a scan that makes all three", 1, [this] { scan(); })->UseRealTime();
    }

  private:
    // A name that nobody has asked for yet.
    std::string freshName(char const* host) {
        return host + std::to_string(++m_number) + ".example";
    }

    void lookUp(char const* host) {
        keep(Resolver::instance()
                 .submit(RecordType::mailName, freshName(host), RecordClass::IN)
                 .isEmpty());
    }

    void scan() {
        auto const headers =
            HeaderReader::read("Received: from " + freshName("relay") + " (" + freshName("client") +
                               " [192.0.2.9]) by mx.example; Mon, 1 Jan 2024 00:00:00 +0000\n");
        auto const sender = EmailAddress::rfc5322Parse("a@" + freshName("sender"), true);
        DeepHeaderQuery query(headers, Header(), DeepHeaderSettings(), -1, sender, sender,
                              EmailAddress(), m_properties);
        keep(DeepHeaderScanner().postQuery(query).getNode());
    }

    Testing::LateDnsServer m_server{delay};
    Testing::RuleFolder m_rules;
    RefMessageProperties m_properties{true};
    int m_number = 0;
};

} // namespace
} // namespace Quorvane::Bench

int main(int argc, char** argv) {
    Quorvane::Bench::LookupBench bench;
    bench.addAll();
    return Quorvane::Bench::run(argc, argv);
}
